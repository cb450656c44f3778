#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

// The exit codes of vrx2260jet; 0 with a whole row stream on standard output.

namespace vrx {

// What a file is, by its size and first page alone. Only the first kind can be converted.
enum class JetFileKind {
  kJet4 = 0,  // the Access 2000 file format, readable
  kEmpty,
  kText,
  kPresentFormat,  // the storage engine of this program
  kJet3,
  kAccess2007,  // or later
  kPassword,
  kEncrypted,
  kCutOff,
  kOther,
};
inline constexpr int kJetFileKinds = 10;

inline constexpr std::size_t kJetPageSize = 4096;

// `head` is the first page, or the whole of a shorter file.
JetFileKind ClassifyJetFile(std::string_view head, std::uintmax_t size);

// Only reads. Throws FileError.
JetFileKind InspectJetFile(const std::filesystem::path& path);

// Whether the file was made by a program of the same origin, convertible or not.
bool IsJetFile(JetFileKind kind);

// Why a file of that kind is not converted and what can be done, as sentences; empty for kJet4.
std::string JetFileRefusal(JetFileKind kind, std::string_view name);

inline constexpr int kReaderFailed = 1;  // the file or the pipe
inline constexpr int kReaderWrongUsage = 2;
inline constexpr int kReaderFoundNoTables = 3;  // damaged
inline constexpr int kReaderRefused = 16;       // and the number of the file's kind on top

constexpr int ReaderExitOf(JetFileKind kind) { return kReaderRefused + static_cast<int>(kind); }

constexpr std::optional<JetFileKind> RefusedKindOf(int code) {
  const int kind = code - kReaderRefused;
  return kind > 0 && kind < kJetFileKinds ? std::optional(static_cast<JetFileKind>(kind))
                                          : std::nullopt;
}

}  // namespace vrx
