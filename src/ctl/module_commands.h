#pragma once

#include <filesystem>
#include <string_view>

#include "platform/event_pump.h"

namespace vrx {

class KRMCOMM;
class PrivateINI;
class Session;
struct TransferState;

// Both write the listed files as NN.QXT, NN.RBU, NN.TXT into the folder, which is created if
// necessary, and write their paths to the output. A failure of one file does not stop the others.
// They report everything that is missing and then return false.

// For a module, which still has its data: writes nothing if one of the names exists.
bool WriteDataFiles(Session& session, const KRMCOMM& krm, TransferState& transfer,
                    const PrivateINI& settings, const std::filesystem::path& folder);

// For an indicator, which does not send its data twice: data that cannot be written or cut into
// files goes into a rescue file, in the folder, the data folder or the temporary folder.
bool WriteReceivedFiles(Session& session, const KRMCOMM& krm, TransferState& transfer,
                        const PrivateINI& settings, const std::filesystem::path& folder);

// Writes bytes of an indicator to a rescue file and shows its path. Skips an empty `folder`.
void KeepReceived(Session& session, std::string_view bytes, const std::filesystem::path& folder);

// Whether every possible name of a data file is free in the folder; otherwise reports the taken
// one. For a caller that cannot fetch the files a second time.
[[nodiscard]] bool FolderTakesDataFiles(Session& session, const std::filesystem::path& folder);

// Dumps the module and writes its files. Returns kDone or kFailed.
int UploadModule(Session& session, KRMCOMM& krm, EventPump& pump, const PrivateINI& settings,
                 const std::filesystem::path& folder);

// Writes the files of a rescue file as if a module had sent it. Does not use the line.
int UploadRescued(Session& session, KRMCOMM& krm, EventPump& pump, const PrivateINI& settings,
                  const std::filesystem::path& file, const std::filesystem::path& folder);

}  // namespace vrx
