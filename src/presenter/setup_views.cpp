#include "presenter/setup_views.h"

#include <algorithm>
#include <cstddef>

#include "base/files.h"

namespace vrx {
namespace {

constexpr std::string_view kProgramFile = "vrx2260";
constexpr std::size_t kMostIniFile = std::size_t{1024} * 1024;  // no larger one is read as settings

}  // namespace

std::string ApplicationPath(const SystemInfo& system) {
  return (std::filesystem::path(system.ProgramDirectory()) / kProgramFile).string();
}

std::string IniFileText(const std::filesystem::path& ini_file) {
  const std::string bytes = ReadFileBytes(ini_file, kMostIniFile);
  std::string text;
  std::size_t start = 0;
  while (start < bytes.size()) {
    const std::size_t end = std::min(bytes.find('\n', start), bytes.size());
    std::string_view line = std::string_view(bytes).substr(start, end - start);
    if (line.ends_with('\r')) {
      line.remove_suffix(1);
    }
    text.append(line).append("\r\n");
    start = end + 1;
  }
  return text;
}

std::string TransactionFileText(std::string_view text) {
  std::string shown;
  for (std::size_t comma = text.find(','); comma != std::string_view::npos;
       comma = text.find(',')) {
    shown.append(text.substr(0, comma + 1)).append("\r\n");
    text.remove_prefix(comma + 1);
  }
  return shown;
}

}  // namespace vrx
