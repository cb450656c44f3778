#pragma once

#include <functional>
#include <string>

#include "desktop/app/application_state.h"
#include "desktop/app/main_form_interface.h"
#include "platform/operator.h"
#include "platform/user_settings.h"

namespace vrx {

// The end of the program, by its three roads. None asks the operator anything: every change is in
// the database files already.
//
// A failure on a road beeps, shows its cause in the status line and ends the road on the spot; what
// was done by then stays done. Settings that cannot be written only cause a message, once all the
// rest is done.
class ProgramExit {
 public:
  ProgramExit(MainForm& main_form, ApplicationState& application, UserSettings& user_settings,
              Operator& op)
      : main_form_(main_form), application_(application), user_settings_(user_settings), op_(op) {}

  // Each gives whether the process ends. Only the close box can leave it running, on a failure.
  bool CloseBox();
  bool FileExit();
  bool SessionEnd();

 private:
  bool Trapped(const std::function<void()>& road);
  void Unload();
  void ExitSaveAndClose();
  std::string SaveUserSettings();  // gives why it failed; empty for success
  void SaveWindowPlace();
  void SaveRecent(DatabaseKind kind);
  void WriteSettings();

  MainForm& main_form_;
  ApplicationState& application_;
  UserSettings& user_settings_;
  Operator& op_;
};

}  // namespace vrx
