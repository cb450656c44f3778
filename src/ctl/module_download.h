#pragma once

#include <filesystem>

#include "platform/event_pump.h"

namespace vrx {

class KRMCOMM;
class PrivateINI;
class Session;

// Sends a recipe database or a recipe backup to the module, after the question. Sending a database
// stores what it recomputes. Returns kDone or kFailed.
int DownloadModule(Session& session, KRMCOMM& krm, EventPump& pump, const PrivateINI& settings,
                   const std::filesystem::path& file);

}  // namespace vrx
