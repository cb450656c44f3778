#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "desktop/records/edit_gate.h"

namespace vrx {

// Edits that could not be stored when a signal ended the program, where no answer can be waited
// for. The file `UNSTORED.TXT` of the data folder keeps them until the next start shows them.
// UTF-8.

// Appends them to the file and to the standard error stream.
void KeepLostEdits(const std::vector<LostEdit>& edits, const std::filesystem::path& data_folder);

// Lines that end in CR LF; empty if nothing is kept.
std::string ReadLostEdits(const std::filesystem::path& data_folder);
void RemoveLostEdits(const std::filesystem::path& data_folder);

}  // namespace vrx
