#pragma once

#include <optional>

#include "legacy/jet_file.h"

// The exit codes of vrx2260jet; 0 with a whole row stream on standard output.
namespace vrx {

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
