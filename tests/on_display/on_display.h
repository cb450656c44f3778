#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "on_display/input.h"
#include "on_display/screen.h"
#include "on_display/windows.h"
#include "support/desktop_user.h"
#include "support/virtual_display.h"

namespace vrx::testing {

// The built vrx2260 on a display and a window manager of the test's own, driven by real keys and
// clicks. Places are pixels of the display. Nothing here waits for a fixed time: after an input,
// wait for what it does.
class OnDisplay : public DesktopUser {
 protected:
  static constexpr const char* kMainTitle = "VRX-2260 Transfer Data Software";

  explicit OnDisplay(int width = 1280, int height = 1024);
  void TearDown() override;

  // Starts the program and waits until its main window has the keyboard and the databases of the
  // last run are open.
  void StartProgram();

  // Waits until the program has processed all input.
  void Settle();

  // The exit code, once the program has ended by itself.
  int ExitCode() { return program->Wait(); }

  Screen Look() const { return Screen::Of(socket_); }

  // Polls the screen until the condition holds. Returns whether it did.
  bool WaitFor(const std::function<bool(const Screen&)>& condition) const;

  // Wait until a window with that title has the keyboard, or until there is none with that title.
  bool WaitForWindow(const std::string& title);
  bool WaitForNoWindow(const std::string& title);

  // Waits until the message box in front has that text, or begins with it, and has the keyboard.
  bool WaitForBox(const std::string& text);

  void Keys(const std::vector<std::string>& keys) { input.Keys(keys); }
  void Type(const std::string& text) { input.Type(text); }

  // Clicks from menu to menu, once each entry is there and on: {"File", "Open...", "Recipe
  // Database"}.
  void ChooseFromMenu(const std::vector<std::string>& captions);

  // Waits for the file dialog with that title, types the path and accepts it.
  void AnswerFileDialog(const std::string& title, const std::filesystem::path& path);

  // Exports the shown group as CSV, by the Export tab, and closes the box that reports it.
  void ExportTo(const std::filesystem::path& directory, const std::string& name);

  // Each clicks the center; the test fails if the target is not on the screen.
  void Click(const std::string& widget, int times = 1);
  void ClickItem(const std::string& caption);  // of a menu, a tab strip, a header
  void ClickButton(const std::string& caption);
  void ClickCell(const std::string& widget, int row, int column, int times = 1);
  void ClickCloseBox(const std::string& title);

  // The text of the widget; the test fails when it is not on the screen.
  std::string TextOf(const std::string& widget) const;

  VirtualDisplay display;
  Windows windows{display.Name()};
  Input input;
  std::unique_ptr<Program> program;

 private:
  bool HasOpenedRecent(const Screen& screen) const;
  void TakePicture() const;

  Environment display_name_{"DISPLAY", display.Name()};
  std::filesystem::path socket_ = folder / "probe";
  // Hides the real user's folder from file dialogs, and the machine's printers.
  Environment home_{"HOME", (folder / "home").string()};
  Environment printers_{"CUPS_SERVER", (folder / "no_printers").string()};
  Environment plugins_{"QT_PLUGIN_PATH", VRX_PROBE_DIR};
  Environment probe_{"QT_QPA_GENERIC_PLUGINS", "screenprobe"};
  Environment probe_socket_{"VRX_SCREEN_PROBE", socket_.string()};
  Program window_manager_;
};

}  // namespace vrx::testing
