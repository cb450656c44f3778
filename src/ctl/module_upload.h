#pragma once

#include <filesystem>

#include "platform/event_pump.h"

namespace vrx {

class KRMCOMM;
class PrivateINI;
class Session;
struct DataTransfer;

// Writes the listed files as NN.QXT, NN.RBU, NN.TXT into the folder, which is made if it is not
// there; their paths go to the output. Nothing is written where one of the names exists. False when
// a file was not written, the operator told.
bool WriteDataFiles(Session& session, const KRMCOMM& krm, DataTransfer& transfer,
                    const PrivateINI& settings, const std::filesystem::path& folder);

// True if WriteDataFiles would find every one of its names free in the folder, whatever the files
// turn out to be; else the operator is told. For whoever cannot fetch the files a second time.
bool FolderTakesDataFiles(Session& session, const std::filesystem::path& folder);

// Dumps the module and writes its files. Returns kDone or kFailed.
int UploadModule(Session& session, KRMCOMM& krm, EventPump& pump, const PrivateINI& settings,
                 const std::filesystem::path& folder);

}  // namespace vrx
