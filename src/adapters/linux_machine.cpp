#include "adapters/linux_machine.h"

#include <QProcess>
#include <QStandardPaths>
#include <QSysInfo>
#include <array>
#include <charconv>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <string_view>
#include <system_error>

#include <sys/utsname.h>
#include <unistd.h>

#include "adapters/document_opener.h"
#include "base/files.h"

namespace vrx {
namespace {

namespace fs = std::filesystem;

constexpr int kUnix = 4;
constexpr int kNoPath = 3;
constexpr int kProgramNotStarted = 11;
constexpr int kLargestFailure = 32;

// Programs that show a machine's properties, the most detailed first.
constexpr std::array kSystemInformationTools = std::to_array<const char*>(
    {"kinfocenter", "hardinfo2", "hardinfo", "lshw-gtk", "plasma-systemmonitor",
     "gnome-system-monitor", "mate-system-monitor", "xfce4-taskmanager"});

std::string Environment(const char* name) {
  const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): one thread
  return value != nullptr ? value : "";
}

QString SystemInformationTool() {
  for (const char* const name : kSystemInformationTools) {
    QString path = QStandardPaths::findExecutable(QString::fromLatin1(name));
    if (!path.isEmpty()) {
      return path;
    }
  }
  return {};
}

// Starts it in the root folder and with no signal blocked, as this program may block some.
bool Start(const ProgramCall& call) {
  QProcess process;
  process.setProgram(call.program);
  process.setArguments(call.arguments);
  process.setWorkingDirectory(QStringLiteral("/"));
  process.setChildProcessModifier([] {
    sigset_t none{};
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
  });
  return process.startDetached();
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
                         std::chrono::seconds{local.tm_sec},
          .offset = std::chrono::duration_cast<std::chrono::minutes>(
              std::chrono::seconds{local.tm_gmtoff})};
}

LocalTime LocalCalendar::Now() const { return LocalNow(); }

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

OsVersion LinuxOperatingSystem::Version() const {
  OsVersion version{.platform = kUnix};
  utsname names{};
  if (uname(&names) == 0) {
    const std::string_view release(std::begin(names.release));
    const char* const end = release.data() + release.size();
    const auto major = std::from_chars(release.data(), end, version.major);
    if (major.ptr != end) {
      std::from_chars(major.ptr + 1, end, version.minor);
    }
  }
  return version;
}

bool LinuxOperatingSystem::StartProgram(const fs::path& program) {
  const QString path = program.filename() == "MSINFO32.exe"
                           ? SystemInformationTool()
                           : QString::fromStdString(program.string());
  return !path.isEmpty() && Start({.program = path, .arguments = {}});
}

int LinuxOperatingSystem::OpenDocument(const fs::path& document) {
  const auto [code, call] = FindDocumentOpener(QString::fromStdString(document.string()));
  return code > kLargestFailure && !Start(call) ? kProgramNotStarted : code;
}

std::string MachineId() {
  constexpr std::size_t kDigits = 16;
  const QByteArray id = QSysInfo::machineUniqueId();
  return id.isEmpty() ? std::string() : Sha256("VRX-2260 " + id.toStdString()).substr(0, kDigits);
}

bool InputIsTerminal() { return isatty(STDIN_FILENO) != 0; }

bool ErrorIsTerminal() { return isatty(STDERR_FILENO) != 0; }

}  // namespace vrx
