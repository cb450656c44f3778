#include "desktop/app/program_exit.h"

#include <exception>
#include <optional>
#include <string>
#include <string_view>

#include "database/identity.h"

namespace vrx {

bool ProgramExit::CloseBox() {
  main_form_.CloseSerialPort();
  main_form_.UnloadSetup();
  return Trapped([this] {
    Unload();
    main_form_.Unload();
  });
}

bool ProgramExit::FileExit() {
  main_form_.CloseSerialPort();
  main_form_.UnloadSetup();
  return SessionEnd();
}

bool ProgramExit::SessionEnd() {
  Trapped([this] { Unload(); });
  main_form_.Unload();
  return true;
}

bool ProgramExit::Trapped(const std::function<void()>& road) {
  try {
    road();
    return true;
  } catch (const std::exception& failure) {
    op_.Beep();
    op_.SetStatusColor(StatusColor::kRed);
    op_.SetStatusLine("Error: " + std::string(failure.what()));
    return false;
  }
}

void ProgramExit::Unload() {
  ExitSaveAndClose();
  main_form_.UnloadOpenForms();
}

void ProgramExit::ExitSaveAndClose() {
  const std::string not_saved = SaveUserSettings();
  main_form_.CloseRecipeDatabase();
  main_form_.CloseTransactionDatabase();
  main_form_.ReleaseDataControls();
  main_form_.ClearIngredientDropDown();
  WriteSettings();
  if (!not_saved.empty()) {
    op_.ShowMessage({.icon = Icon::kWarning,
                     .title = "User Settings Error",
                     .text = "Unable to save the place of the window and the names of the open "
                             "databases. The next start does not open them by itself.",
                     .cause = not_saved});
  }
}

// A store that cannot be written must not keep the databases open or the INI file unwritten.
std::string ProgramExit::SaveUserSettings() {
  try {
    SaveWindowPlace();
    SaveRecent(DatabaseKind::kRecipe);
    SaveRecent(DatabaseKind::kTransaction);
    return {};
  } catch (const std::exception& failure) {
    return failure.what();
  }
}

void ProgramExit::SaveWindowPlace() {
  const std::optional<WindowPlace> place = main_form_.Place();
  if (!place) {
    return;
  }
  user_settings_.SaveSetting("MainLeft", std::to_string(place->left));
  user_settings_.SaveSetting("MainTop", std::to_string(place->top));
  user_settings_.SaveSetting("MainWidth", std::to_string(place->width));
  user_settings_.SaveSetting("MainHeight", std::to_string(place->height));
}

void ProgramExit::SaveRecent(DatabaseKind kind) {
  const PrivateINI& settings = application_.settings;
  const bool keep =
      kind == DatabaseKind::kRecipe ? settings.AutoloadRecipeDBOn() : settings.AutoloadTransDBOn();
  const KindTexts& words = TextsOf(kind);
  const RecentFile recent = keep ? main_form_.Recent(kind) : RecentFile{};
  user_settings_.SaveSetting(words.recent_path_key, recent.path);
  user_settings_.SaveSetting(words.recent_name_key, recent.name);
}

void ProgramExit::WriteSettings() {
  PrivateINI& settings = application_.settings;
  if (settings.WriteIniSettings(*application_.ini)) {
    return;
  }
  op_.ShowMessage({.icon = Icon::kWarning,
                   .title = "INI File Error",
                   .text = "Unable to save some or all of the application settings to the "
                           "applications INI file. Please check all settings next time you run the "
                           "program.",
                   .cause = settings.FailureCause()});
}

}  // namespace vrx
