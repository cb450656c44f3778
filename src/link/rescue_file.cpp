#include "link/rescue_file.h"

#include <array>
#include <cstddef>
#include <cstdio>
#include <system_error>

#include "base/files.h"
#include "base/text.h"
#include "base/translation.h"

namespace vrx {
namespace {

namespace fs = std::filesystem;
using std::chrono::seconds;

constexpr std::size_t kMostRescued = std::size_t{16} * 1024 * 1024;  // bytes
constexpr std::string_view kTitle = "Rescue File";

std::string NameAt(std::chrono::local_seconds moment) {
  const auto midnight = std::chrono::floor<std::chrono::days>(moment);
  const Date date{midnight};
  const std::chrono::hh_mm_ss time{moment - midnight};
  std::array<char, 64> name{};
  std::snprintf(name.data(), name.size(), "RESCUE-%04d%02u%02u-%02d%02d%02d.KRM",
                static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                static_cast<unsigned>(date.day()), static_cast<int>(time.hours().count()),
                static_cast<int>(time.minutes().count()), static_cast<int>(time.seconds().count()));
  return name.data();
}

fs::path WriteInto(const fs::path& folder, std::string_view bytes, const LocalTime& now) {
  std::error_code error;
  fs::create_directories(folder, error);
  if (error && !fs::is_directory(folder)) {
    throw FileError(Tr("cannot make the folder %1: %2", {folder.string(), error.message()}));
  }
  std::chrono::local_seconds moment = std::chrono::local_days{now.date} + now.time_of_day;
  while (FileExists(folder / NameAt(moment))) {
    moment += seconds{1};
  }
  fs::path path = fs::absolute(folder) / NameAt(moment);
  WriteFileBytes(path, bytes);
  return path;
}

std::vector<fs::path> WithTemporaryFolder(std::vector<fs::path> folders) {
  std::error_code none;
  folders.push_back(fs::temp_directory_path(none));
  return folders;
}

}  // namespace

bool IsRescueFile(const fs::path& path) {
  return EqualsIgnoringCase(path.extension().string(), ".KRM");
}

std::string ReadRescueFile(const fs::path& path) {
  std::string bytes = ReadFileBytes(path, kMostRescued);
  if (bytes.size() > kMostRescued) {
    throw FileError(path.string() + " is longer than any rescue file");
  }
  return bytes;
}

fs::path WriteRescueFile(std::string_view bytes, const std::vector<fs::path>& folders,
                         const LocalTime& now) {
  std::string reasons;
  for (const fs::path& folder : WithTemporaryFolder(folders)) {
    if (folder.empty()) {
      continue;
    }
    try {
      return WriteInto(folder, bytes, now);
    } catch (const std::exception& failure) {
      reasons += (reasons.empty() ? "" : "; ") + std::string(failure.what());
    }
  }
  throw FileError(reasons);
}

bool RescueReceived(std::string_view bytes, const std::vector<fs::path>& folders,
                    const LocalTime& now, Operator& op) {
  try {
    const fs::path path = WriteRescueFile(bytes, folders, now);
    op.ShowMessage({.icon = Icon::kWarning,
                    .title = std::string(kTitle),
                    .text = "What the indicator sent is kept in the file " + path.string() + "."});
    return true;
  } catch (const FileError& failure) {
    op.ShowMessage({.icon = Icon::kCritical,
                    .title = std::string(kTitle),
                    .text = "What the indicator sent could not be written to any folder.",
                    .cause = failure.what()});
    return false;
  }
}

}  // namespace vrx
