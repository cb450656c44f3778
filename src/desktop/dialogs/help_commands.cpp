#include "desktop/dialogs/help_commands.h"

#include "desktop/dialogs/about_and_splash.h"
#include "presenter/documents.h"

namespace vrx {

void SetHelpHandlers(MainWindow& window, const SystemInfo& system, OperatingSystem& os,
                     Operator& op) {
  window.SetHandler(MainCommand::kManual, [&] { ShowDocument(kUsersManual, system, os, op); });
  window.SetHandler(MainCommand::kReadme, [&] { ShowDocument(kReadme, system, os, op); });
  window.SetHandler(MainCommand::kAbout, [&] { About(system, os, op, &window).exec(); });
}

}  // namespace vrx
