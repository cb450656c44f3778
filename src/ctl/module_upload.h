#pragma once

#include <filesystem>

#include "platform/event_pump.h"

namespace vrx {

class KRMCOMM;
class PrivateINI;
class Session;

// Dumps the module and writes its files as NN.QXT, NN.RBU, NN.TXT into the folder, which is made if
// it is not there; their paths go to the output. Nothing is written where one of the names exists.
// Returns kDone or kFailed.
int UploadModule(Session& session, KRMCOMM& krm, EventPump& pump, const PrivateINI& settings,
                 const std::filesystem::path& folder);

}  // namespace vrx
