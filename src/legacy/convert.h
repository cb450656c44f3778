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
  std::string default_unit;                 // "LB" or "KG", for a file that specifies neither
  // If set, a file of the other kind is refused.
  std::optional<DatabaseKind> kind = std::nullopt;
};

// A Jet file and the program that reads it.
struct LegacyFile {
  std::filesystem::path path;
  std::filesystem::path reader;  // vrx2260jet
  ProgramLimits limits;
};

// A file cannot be converted. what() gives the reason and a remedy in whole sentences.
class LegacyError : public Error {
 public:
  using Error::Error;
};

// `go_on` returned false.
class ConversionStopped : public Error {
 public:
  using Error::Error;
};

// Makes a database of an earlier installation's Jet file, which is only read. The new file is a
// copy of the blank template that one transaction fills; it is renamed to its path when it is
// complete. Until then, and after a failure, the path does not exist. `go_on` is called at least
// every 50 ms; false stops.
//
// Throws LegacyError, ConversionStopped, FileError, DatabaseError.
[[nodiscard]] ConversionReport ConvertLegacyDatabase(
    const LegacyConversion& wanted, ProgramRunner& runner, ProgressDisplay& progress,
    const std::function<bool()>& go_on = [] { return true; });

// The limits for reading a file of `size` bytes.
[[nodiscard]] ProgramLimits LimitsForFile(std::uintmax_t size);

// Passes the rows of the tables to `sink`, in the order of `tables`. Memory does not grow with the
// file. Calls `go_on` at least every 50 ms. Throws LegacyError if the file is damaged or not a Jet
// 4 file, ConversionStopped, and what `sink` throws.
void ReadLegacyRows(ProgramRunner& runner, const LegacyFile& file,
                    const std::vector<std::string>& tables, LegacyRowSink& sink,
                    const std::function<bool()>& go_on);

}  // namespace vrx
