#include "adapters/linux_operating_system.h"

#include <QProcess>
#include <QStandardPaths>
#include <array>
#include <charconv>
#include <csignal>
#include <string_view>

#include <sys/utsname.h>

#include "adapters/document_opener.h"

namespace vrx {
namespace {

constexpr int kUnix = 4;
constexpr int kBadProgram = 11;
constexpr int kLargestFailure = 32;

// What desktops show a machine's facts with; those that tell more come first.
constexpr std::array kSystemInformationTools = std::to_array<const char*>(
    {"kinfocenter", "hardinfo2", "hardinfo", "lshw-gtk", "plasma-systemmonitor",
     "gnome-system-monitor", "mate-system-monitor", "xfce4-taskmanager"});

QString SystemInformationTool() {
  for (const char* const name : kSystemInformationTools) {
    QString path = QStandardPaths::findExecutable(QString::fromLatin1(name));
    if (!path.isEmpty()) {
      return path;
    }
  }
  return {};
}

// In the root folder and with no signal held back, as this program may hold some.
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

bool LinuxOperatingSystem::StartProgram(const std::filesystem::path& program) {
  const QString path = program.filename() == "MSINFO32.exe"
                           ? SystemInformationTool()
                           : QString::fromStdString(program.string());
  return !path.isEmpty() && Start({.program = path, .arguments = {}});
}

int LinuxOperatingSystem::OpenDocument(const std::filesystem::path& document) {
  const auto [code, call] = FindDocumentOpener(QString::fromStdString(document.string()));
  return code > kLargestFailure && !Start(call) ? kBadProgram : code;
}

}  // namespace vrx
