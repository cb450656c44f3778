#pragma once

#include <filesystem>
#include <string_view>

#include "platform/event_pump.h"

namespace vrx {

class KRMCOMM;
class PrivateINI;
class Session;
struct TransferState;

// Both write the listed files as NN.QXT, NN.RBU, NN.TXT into the folder, which is made if it is not
// there, and their paths to the output. A file that cannot be written does not keep the others from
// being written. False after a message when anything is missing.

// For a module, which still has its data: nothing is written where one of the names exists.
bool WriteDataFiles(Session& session, const KRMCOMM& krm, TransferState& transfer,
                    const PrivateINI& settings, const std::filesystem::path& folder);

// For an indicator, which does not send its data twice: what cannot be written, and a memory that
// is not cut whole, goes into a rescue file in the folder, in the data folder or in the temporary
// one.
bool WriteReceivedFiles(Session& session, const KRMCOMM& krm, TransferState& transfer,
                        const PrivateINI& settings, const std::filesystem::path& folder);

// Puts bytes of an indicator into a rescue file, and shows its path. An empty folder is
// skipped.
void KeepReceived(Session& session, std::string_view bytes, const std::filesystem::path& folder);

// True if every name of a data file is free in the folder, whatever the files turn out to be; else
// the operator is told. For a caller who cannot fetch the files a second time.
bool FolderTakesDataFiles(Session& session, const std::filesystem::path& folder);

// Dumps the module and writes its files. Returns kDone or kFailed.
int UploadModule(Session& session, KRMCOMM& krm, EventPump& pump, const PrivateINI& settings,
                 const std::filesystem::path& folder);

// Writes the files of a rescue file as if a module had just sent it. The line is not used.
int UploadRescued(Session& session, KRMCOMM& krm, EventPump& pump, const PrivateINI& settings,
                  const std::filesystem::path& file, const std::filesystem::path& folder);

}  // namespace vrx
