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
  std::error_code ignored;  // reported when the next level is made
  if (!common.empty()) {
    std::filesystem::create_directories(common, ignored);
  }
}

// The routines that prepare the application: false, the process must end, and the operator was
// told.

bool IsOnlyInstance(SingleInstance& instance, Operator& op) {
  try {
    if (instance.Claim()) {
      return true;
    }
    ReportAlreadyRunning(op);
  } catch (const Error& failure) {
    ReportFailure(op, failure.what());
  }
  return false;
}

bool MakeFolders(const Services& services, Folder& app_folder) {
  MakeCommonFolder(services.system);
  try {
    return app_folder.CheckAppDefaultDir();
  } catch (const FileError& failure) {
    ReportFailure(services.op, failure.what());
    return false;
  }
}

bool OpenIniFile(const Services& services, ApplicationState& application) {
  try {
    application.ini.emplace(application.app_folder.IniFilePath(), services.system, services.op);
  } catch (const Error&) {
    return false;  // reported where it was thrown
  }
  return PrivateINI::EnsureIniFile(*application.ini, services.op);
}

bool PrepareApplication(SingleInstance& instance, const Services& services,
                        ApplicationState& application) {
  if (!IsOnlyInstance(instance, services.op) || !MakeFolders(services, application.app_folder) ||
      !CheckSupportFiles(services.system, services.op) || !OpenIniFile(services, application)) {
    return false;
  }
  application.settings.ReadIniSettings(*application.ini);
  return true;
}

}  // namespace

std::unique_ptr<MainForm> Main(SingleInstance& instance, SplashForm& splash, Services& services,
                               ApplicationState& application, const LoadMainForm& load_main_form,
                               const std::function<void(MainForm&)>& ended_early) {
  if (!PrepareApplication(instance, services, application)) {
    return nullptr;
  }
  splash.Show();
  std::unique_ptr<MainForm> main_form = load_main_form();
  const bool stays = GeneralDelay(services.pump).Wait(kSplashTime);
  splash.Unload();
  if (!stays) {
    ended_early(*main_form);
    return nullptr;
  }
  main_form->Show();
  return main_form;
}

}  // namespace vrx
