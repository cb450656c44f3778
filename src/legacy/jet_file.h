#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

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

}  // namespace vrx
