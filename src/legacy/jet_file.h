#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace vrx {

// The kind of a file, determined by its size and first page. Only kJet4 can be converted.
enum class JetFileKind {
  kJet4 = 0,  // the Access 2000 file format, readable
  kEmpty,
  kText,
  kPresentFormat,  // a database of this program
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
[[nodiscard]] JetFileKind ClassifyJetFile(std::string_view head, std::uintmax_t size);

// Throws FileError.
[[nodiscard]] JetFileKind InspectJetFile(const std::filesystem::path& path);

// Whether the file is an Access database, convertible or not.
[[nodiscard]] bool IsJetFile(JetFileKind kind);

// The reason why such a file is not converted, and a remedy, in whole sentences; empty for kJet4.
[[nodiscard]] std::string JetFileRefusal(JetFileKind kind, std::string_view name);

// The exit codes of vrx2260jet. 0: standard output holds a complete row stream.
inline constexpr int kReaderFailed = 1;  // file or pipe
inline constexpr int kReaderWrongUsage = 2;
inline constexpr int kReaderFoundNoTables = 3;  // damaged
inline constexpr int kReaderRefused = 16;       // plus the number of the file's kind

[[nodiscard]] constexpr int ReaderExitOf(JetFileKind kind) {
  return kReaderRefused + static_cast<int>(kind);
}

[[nodiscard]] constexpr std::optional<JetFileKind> RefusedKindOf(int code) {
  const int kind = code - kReaderRefused;
  return kind > 0 && kind < kJetFileKinds ? std::optional(static_cast<JetFileKind>(kind))
                                          : std::nullopt;
}

}  // namespace vrx
