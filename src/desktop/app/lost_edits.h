#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "desktop/records/edit_gate.h"

namespace vrx {

// Edits that could not be stored when the program was ended by a signal, where no answer can be
// waited for. They are kept in `UNSTORED.TXT` of the data folder until the next start shows them.
// UTF-8.

// Adds them to the file and to the standard error stream.
void KeepLostEdits(const std::vector<LostEdit>& edits, const std::filesystem::path& data_folder);

// Lines that end in CR LF; empty where nothing is kept. RemoveLostEdits ends the keeping.
std::string ReadLostEdits(const std::filesystem::path& data_folder);
void RemoveLostEdits(const std::filesystem::path& data_folder);

}  // namespace vrx
