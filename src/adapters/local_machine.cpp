#include "adapters/local_machine.h"

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <system_error>

namespace vrx {
namespace {

namespace fs = std::filesystem;

std::string Environment(const char* name) {
  const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): one thread
  return value != nullptr ? value : "";
}

}  // namespace

Date LocalCalendar::Today() const {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  constexpr int kFirstYear = 1900;
  return Date{std::chrono::year{local.tm_year + kFirstYear},
              std::chrono::month{static_cast<unsigned>(local.tm_mon + 1)},
              std::chrono::day{static_cast<unsigned>(local.tm_mday)}};
}

std::string LinuxSystemInfo::CommonAppDataFolder() const {
  std::string data_home = Environment("XDG_DATA_HOME");
  // A relative path is to be ignored.
  if (data_home.starts_with('/')) {
    return data_home;
  }
  const std::string home = Environment("HOME");
  return home.empty() ? "" : home + "/.local/share";
}

std::string LinuxSystemInfo::ProgramDirectory() const {
  std::error_code error;
  const fs::path program = fs::read_symlink("/proc/self/exe", error);
  return error ? "" : program.parent_path().string();
}

int LinuxSystemInfo::FindExecutable(const std::string& document, const std::string& directory,
                                    std::string& viewer) const {
  constexpr int kNoFile = 2;
  constexpr int kNoAssociation = 31;
  viewer.clear();
  std::error_code ignored;
  return fs::exists(fs::path(directory) / document, ignored) ? kNoAssociation : kNoFile;
}

}  // namespace vrx
