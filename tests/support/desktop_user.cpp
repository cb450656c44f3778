#include "support/desktop_user.h"

#include <chrono>
#include <filesystem>
#include <sstream>
#include <system_error>
#include <thread>

namespace vrx::testing {

namespace fs = std::filesystem;

const std::vector<std::string>& DesktopUser::IniKeys() {
  static const std::vector<std::string> keys = {
      "SerialPort",         "KRMBaudRate",      "SystemUnits",
      "AutoAbbreviate",     "EnableBeeper",     "PrintCurrentRecipeOnly",
      "EnablePrintText",    "PrintGridLines",   "BatchTargetWtIsRecTarget",
      "ShowImportProgress", "AutoloadRecipeDB", "AutoloadTransDB"};
  return keys;
}

DesktopUser::DesktopUser(const std::string& platform) : platform_("QT_QPA_PLATFORM", platform) {
  fs::create_directories(data);
  fs::create_directories(user_settings.parent_path());
  fs::create_directory(lock.parent_path());
  fs::permissions(lock.parent_path(), fs::perms::owner_all);
  WriteShortIni();
}

void DesktopUser::MakeDatabases() const {
  fs::copy_file(SitePath("SITE.RDB"), recipes);
  ASSERT_EQ(Ctl({"new", "transaction", transactions.string()}).code, 0);
  const Result stored = Ctl({"store", SitePath("day05.qxt"), "--into", transactions.string(),
                             "--recipes", recipes.string()});
  ASSERT_EQ(stored.code, 0) << stored.err;
  folder.Write("home/config/Brantock/VRX(2260).conf",
               "[Settings]\nMRU_RecipePathName=" + recipes.string() +
                   "\nMRU_RecipeFileName=SITE.RDB\nMRU_TransPathName=" + transactions.string() +
                   "\nMRU_TransFileName=DAY1.TDB\n");
}

void DesktopUser::WriteShortIni() const {
  folder.Write("home/data/Brantock/VRX-2260/VRX-2260.INI",
               "[Comments]\nTitle=x\n[Configuration]\nSystemUnits=LB\n"
               "[Options]\nEnableBeeper=NO\nAutoloadRecipeDB=YES\nAutoloadTransDB=YES\n");
}

std::unique_ptr<Program> DesktopUser::Start(const std::vector<std::string>& files) const {
  return std::make_unique<Program>(Bin("vrx2260"), files, folder.Path().string());
}

bool DesktopUser::Eventually(const std::function<bool()>& condition) {
  constexpr std::chrono::seconds kLimit{30};
  const auto end = std::chrono::steady_clock::now() + kLimit;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) {
      return false;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds{10});
  }
  return true;
}

bool DesktopUser::HasOpened(const Program& program) const {
  bool has_recipes = false;
  bool has_transactions = false;
  std::error_code gone;  // a file that is closed meanwhile, or a process that has ended
  for (fs::directory_iterator file("/proc/" + std::to_string(program.Id()) + "/fd", gone), end;
       file != end; file.increment(gone)) {
    const fs::path path = fs::read_symlink(file->path(), gone);
    has_recipes = has_recipes || path == recipes;
    has_transactions = has_transactions || path == transactions;
  }
  return has_recipes && has_transactions;
}

std::string DesktopUser::ValueIn(const fs::path& path, const std::string& key) {
  std::string value;
  std::istringstream lines(ReadAll(path));
  for (std::string line; std::getline(lines, line);) {
    if (line.ends_with('\r')) {
      line.pop_back();
    }
    const std::size_t equals = line.find('=');
    const bool is_section = line.starts_with('[') && line.ends_with(']');
    EXPECT_TRUE(line.empty() || is_section || equals != std::string::npos) << path << ": " << line;
    if (equals != std::string::npos && line.substr(0, equals) == key) {
      value = line.substr(equals + 1);
    }
  }
  return value;
}

}  // namespace vrx::testing
