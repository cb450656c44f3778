#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "legacy/legacy_rows.h"
#include "platform/program_runner.h"

namespace vrx {

// A Jet file and who reads it.
struct LegacyFile {
  std::filesystem::path path;
  std::filesystem::path reader;  // vrx2260jet
  ProgramLimits limits;
};

// What reading a file of that size may take.
ProgramLimits LimitsForFile(std::uintmax_t size);

// Hands the rows of the tables to `sink`, in the order of `tables`. `go_on` is asked every 50 ms at
// least. Throws LegacyError when the file is damaged or not of the kind, ConversionStopped, and
// what `sink` throws. Memory does not grow with the file.
void ReadLegacyRows(ProgramRunner& runner, const LegacyFile& file,
                    const std::vector<std::string>& tables, LegacyRowSink& sink,
                    const std::function<bool()>& go_on);

}  // namespace vrx
