#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "end_to_end/programs_fixture.h"
#include "support/environment.h"

namespace vrx::testing {

// A user of the built vrx2260 with folders of its own for data, settings and running programs, at
// work on the sample site. Its windows are on Qt's platform of that name; "offscreen" shows
// nothing.
class DesktopUser : public ProgramsTest {
 protected:
  // The keys of the INI file, its title aside, in the order of its sections.
  static const std::vector<std::string>& IniKeys();

  explicit DesktopUser(const std::string& platform = "offscreen");

  // Databases of the sample site: the recipes, and a transaction database with one day. The program
  // opens both at its start.
  void MakeDatabases() const;

  // An INI file that leaves most of its keys to be healed.
  void WriteShortIni() const;

  std::unique_ptr<Program> Start(const std::vector<std::string>& files = {}) const;

  // Polls for half a minute.
  static bool Eventually(const std::function<bool()>& condition);

  // Whether the program has both databases open, as it has once its main window is there.
  bool HasOpened(const Program& program) const;

  // The value of a key of the INI file or of the user's settings; empty for a missing one. The test
  // fails when any line of the file is neither a section nor a key.
  static std::string ValueIn(const std::filesystem::path& path, const std::string& key);

  std::filesystem::path data = folder / "home/data/Brantock/VRX-2260";
  std::filesystem::path ini = data / "VRX-2260.INI";
  std::filesystem::path recipes = data / "SITE.RDB";
  std::filesystem::path transactions = data / "DAY1.TDB";
  std::filesystem::path lock = folder / "home/run/vrx2260.lock";
  std::filesystem::path user_settings = folder / "home/config/Brantock/VRX(2260).conf";

 private:
  std::string Path(const std::string& name) const { return (folder / "home" / name).string(); }

  Environment data_home_{"XDG_DATA_HOME", Path("data")};
  Environment config_home_{"XDG_CONFIG_HOME", Path("config")};
  Environment runtime_{"XDG_RUNTIME_DIR", Path("run")};
  Environment platform_;
};

}  // namespace vrx::testing
