#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/error.h"
#include "database/schema.h"
#include "legacy/conversion_report.h"
#include "legacy/row_stream.h"
#include "platform/program_runner.h"
#include "platform/progress_display.h"

namespace vrx {

inline constexpr std::string_view kLegacyReaderName = "vrx2260jet";

struct LegacyConversion {
  std::filesystem::path old_file;
  std::filesystem::path new_file;           // must not exist
  std::filesystem::path program_directory;  // holds the templates and the reader
  std::string default_unit;                 // "LB" or "KG", for a file that says neither
  // A file of the other kind is refused.
  std::optional<DatabaseKind> kind = std::nullopt;
};

// Makes a database of an earlier installation's Jet file. The old file is only read. The new one is
// a copy of the blank template that one transaction fills; it takes its name when it is whole, and
// until then, and after a failure, the name stands for nothing. `go_on` is asked every 50 ms at
// least.
//
// Throws LegacyError, ConversionStopped, FileError, DatabaseError.
ConversionReport ConvertLegacyDatabase(
    const LegacyConversion& wanted, ProgramRunner& runner, ProgressDisplay& progress,
    const std::function<bool()>& go_on = [] { return true; });

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

// A file that is not converted; what() says why, and what can be done, as sentences.
class LegacyError : public Error {
 public:
  using Error::Error;
};

// The operator ended the conversion.
class ConversionStopped : public Error {
 public:
  using Error::Error;
};

}  // namespace vrx
