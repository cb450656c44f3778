#include "adapters/local_machine.h"

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <system_error>

#include "adapters/document_opener.h"

namespace vrx {
namespace {

namespace fs = std::filesystem;

std::string Environment(const char* name) {
  const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): one thread
  return value != nullptr ? value : "";
}

}  // namespace

LocalTime LocalNow() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  constexpr int kFirstYear = 1900;
  return {.date = Date{std::chrono::year{local.tm_year + kFirstYear},
                       std::chrono::month{static_cast<unsigned>(local.tm_mon + 1)},
                       std::chrono::day{static_cast<unsigned>(local.tm_mday)}},
          .time_of_day = std::chrono::hours{local.tm_hour} + std::chrono::minutes{local.tm_min} +
                         std::chrono::seconds{local.tm_sec}};
}

Date LocalCalendar::Today() const { return LocalNow().date; }

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
  constexpr int kNoPath = 3;
  viewer.clear();
  std::error_code ignored;
  if (!fs::is_directory(directory, ignored)) {
    return kNoPath;
  }
  const fs::path path = fs::path(directory) / document;
  const DocumentOpener opener = FindDocumentOpener(QString::fromStdString(path.string()));
  viewer = opener.call.program.toStdString();
  return opener.code;
}

}  // namespace vrx
