#pragma once

#include "desktop/main_window/main_window.h"
#include "platform/operating_system.h"
#include "platform/operator.h"
#include "platform/system_info.h"

namespace vrx {

// The work of the Help menu: both documents and the About box. Everything outlives the window.
void SetHelpHandlers(MainWindow& window, const SystemInfo& system, OperatingSystem& os,
                     Operator& op);

}  // namespace vrx
