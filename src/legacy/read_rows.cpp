#include <algorithm>
#include <cerrno>
#include <system_error>

#include "base/encoding.h"
#include "legacy/convert.h"
#include "legacy/jet_file.h"
#include "legacy/row_stream.h"

namespace vrx {
namespace {

constexpr std::uintmax_t kBytesOfASecond = std::uintmax_t{1} << 20U;
constexpr std::chrono::seconds kShortest{10};
constexpr std::chrono::seconds kLongest{3600};

constexpr std::string_view kRemedy =
    " Copy it again from where it was made, or take an older backup.";

[[noreturn]] void Damaged(const LegacyFile& file, const std::string& how) {
  throw LegacyError(file.path.filename().string() + " is damaged: " + how + "." +
                    std::string(kRemedy));
}

[[noreturn]] void NotRun(const LegacyFile& file, const std::string& how) {
  throw LegacyError("The program " + file.reader.string() + ", which reads such files, " + how +
                    ". Install the program again.");
}

[[noreturn]] void ReportExit(const LegacyFile& file, int code) {
  const std::string name = file.path.filename().string();
  if (const std::optional<JetFileKind> kind = RefusedKindOf(code)) {
    throw LegacyError(JetFileRefusal(*kind, name));
  }
  switch (code) {
    case kReaderFoundNoTables:
      Damaged(file, "its list of tables cannot be read");
    case kReaderFailed:
      throw LegacyError(name + " cannot be read.");
    default:
      NotRun(file, "is not the right one (it ended with code " + std::to_string(code) + ")");
  }
}

}  // namespace

ProgramLimits LimitsForFile(std::uintmax_t size) {
  const auto seconds = kShortest + std::chrono::seconds(size / kBytesOfASecond);
  return {.processor = std::min<std::chrono::seconds>(seconds, kLongest)};
}

void ReadLegacyRows(ProgramRunner& runner, const LegacyFile& file,
                    const std::vector<std::string>& tables, LegacyRowSink& sink,
                    const std::function<bool()>& go_on) {
  RowStreamReader rows(sink);
  // Arguments are UTF-8, the name of an old file may be anything: its bytes become characters.
  std::vector<std::string> arguments{
      Windows1252ToUtf8(std::filesystem::absolute(file.path).string())};
  arguments.insert(arguments.end(), tables.begin(), tables.end());
  ProgramOutcome outcome;
  try {
    outcome =
        runner.Run({.path = file.reader, .arguments = std::move(arguments), .limits = file.limits},
                   [&](std::string_view bytes) {
                     rows.Take(bytes);
                     return go_on();
                   });
  } catch (const RowStreamError& failure) {
    NotRun(file, std::string("is not the right one: ") + failure.what());
  }
  switch (outcome.end) {
    case ProgramEnd::kStopped:
      throw ConversionStopped("the conversion was stopped");
    case ProgramEnd::kNotStarted:
      NotRun(file, "cannot be started: " +
                       std::error_code(outcome.code, std::generic_category()).message());
    case ProgramEnd::kOutOfTime:
      Damaged(file, "reading it does not come to an end");
    case ProgramEnd::kCrashed:
      Damaged(file, "its reader was ended by signal " + std::to_string(outcome.code));
    case ProgramEnd::kExited:
      break;
  }
  if (outcome.code != 0) {
    ReportExit(file, outcome.code);
  }
  if (!rows.Ended()) {
    NotRun(file, "is not the right one: its rows have no end");
  }
}

}  // namespace vrx
