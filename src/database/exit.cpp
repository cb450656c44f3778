#include "database/exit.h"

#include <array>
#include <exception>
#include <string_view>
#include <utility>

#include "frame/number.h"

namespace vrx {
namespace {

void KeepPlace(UserSettings& store, const WindowPlace& place) {
  const std::array<std::pair<std::string_view, std::int32_t>, 4> values{{
      {"MainLeft", place.left},
      {"MainTop", place.top},
      {"MainWidth", place.width},
      {"MainHeight", place.height},
  }};
  for (const auto& [key, value] : values) {
    store.SaveSetting(key, DefaultText(value));
  }
}

void SaveAndClose(const ExitPorts& ports, const std::optional<WindowPlace>& place) {
  if (place) {
    KeepPlace(ports.store, *place);
  }
  ports.recent.Save();
  ports.databases.CloseRecipeDatabase();
  ports.databases.CloseTransactionDatabase();
  ports.databases.Release();
  if (!ports.settings.WriteIniSettings(ports.ini)) {
    ports.op.ShowMessage(
        {.icon = Icon::kWarning,
         .title = "INI File Error",
         .text = "Unable to save some or all of the application settings to the applications INI "
                 "file. Please check all settings next time you run the program.",
         .cause = ports.settings.FailureCause()});
  }
}

}  // namespace

bool ExitSaveAndClose(const ExitPorts& ports, const std::optional<WindowPlace>& place) {
  try {
    SaveAndClose(ports, place);
    return true;
  } catch (const std::exception&) {
    ports.op.Beep();
    return false;
  }
}

}  // namespace vrx
