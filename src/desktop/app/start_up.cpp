#include "desktop/app/start_up.h"

#include <filesystem>
#include <string>
#include <system_error>

#include "base/application.h"
#include "base/error.h"
#include "base/files.h"
#include "presenter/command_states.h"

namespace vrx {
namespace {

void ReportAlreadyRunning(Operator& op) {
  op.Beep();
  op.ShowMessage({.icon = Icon::kInformation,
                  .title = {},
                  .text = "The " + std::string(kApplicationTitle) +
                          " application is already running."
                          "It might be minimized or hidden by another window."});
}

// The words that the design has for any failure without words of its own.
void ReportFailure(Operator& op, const std::string& cause) {
  op.ShowMessage({.icon = Icon::kCritical, .title = {}, .text = "Error: " + cause});
}

// A user's first program of all may have to make the common folder.
void MakeCommonFolder(const SystemInfo& system) {
  const std::string common = system.CommonAppDataFolder();
  std::error_code ignored;  // what cannot be made is told when the next level is
  if (!common.empty()) {
    std::filesystem::create_directories(common, ignored);
  }
}

// The routines that prepare the application: false, the process must end, and the operator was
// told.

bool IsOnlyInstance(const StartUpPorts& ports) {
  try {
    if (ports.instance.Claim()) {
      return true;
    }
    ReportAlreadyRunning(ports.op);
  } catch (const Error& failure) {
    ReportFailure(ports.op, failure.what());
  }
  return false;
}

bool MakeFolders(const StartUpPorts& ports, Folder& app_folder) {
  MakeCommonFolder(ports.system);
  try {
    return app_folder.CheckAppDefaultDir();
  } catch (const FileError& failure) {
    ReportFailure(ports.op, failure.what());
    return false;
  }
}

bool OpenIniFile(const StartUpPorts& ports, ApplicationState& application) {
  try {
    application.ini.emplace(application.app_folder.IniFilePath(), ports.system, ports.op);
  } catch (const Error&) {
    return false;  // told where it was thrown
  }
  return PrivateINI::EnsureIniFile(*application.ini, ports.op);
}

bool PrepareApplication(const StartUpPorts& ports, ApplicationState& application) {
  if (!IsOnlyInstance(ports) || !MakeFolders(ports, application.app_folder) ||
      !CheckSupportFiles(ports.system, ports.op) || !OpenIniFile(ports, application)) {
    return false;
  }
  application.settings.ReadIniSettings(*application.ini);
  return true;
}

}  // namespace

std::unique_ptr<MainForm> Main(const StartUpPorts& ports, ApplicationState& application,
                               const LoadMainForm& load_main_form,
                               const std::function<void(MainForm&)>& ended_early) {
  if (!PrepareApplication(ports, application)) {
    return nullptr;
  }
  ports.splash.Show();
  std::unique_ptr<MainForm> main_form = load_main_form();
  const bool stays = GeneralDelay(ports.pump).Wait(kSplashTime);
  ports.splash.Unload();
  if (!stays) {
    ended_early(*main_form);
    return nullptr;
  }
  main_form->Show();
  return main_form;
}

}  // namespace vrx
