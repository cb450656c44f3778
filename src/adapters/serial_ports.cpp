#include "adapters/serial_ports.h"

#include <QLockFile>
#include <QSerialPortInfo>
#include <QString>
#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include "platform/serial_control.h"

namespace vrx {
namespace {

namespace fs = std::filesystem;

// The folders in which programs lock a serial device by a file with its name.
constexpr std::array<const char*, 4> kLockFolders{"/var/lock", "/run/lock", "/var/spool/locks",
                                                  "/tmp"};

bool IsPseudoTerminal(const struct stat& status) {
  constexpr unsigned kFirstMajor = 136;
  constexpr unsigned kLastMajor = 143;
  const unsigned number = major(status.st_rdev);
  return number >= kFirstMajor && number <= kLastMajor;
}

bool RunsElsewhere(qint64 process) {
  return process > 0 && process != getpid() &&
         (kill(static_cast<pid_t>(process), 0) == 0 || errno == EPERM);
}

bool IsLocked(const fs::path& device) {
  std::string name = device.lexically_relative("/dev").string();
  std::replace(name.begin(), name.end(), '/', '_');
  return std::any_of(kLockFolders.begin(), kLockFolders.end(), [&](const char* folder) {
    const fs::path path = fs::path(folder) / ("LCK.." + name);
    qint64 process = 0;
    QString host;
    QString program;
    return QLockFile(QString::fromStdString(path.string()))
               .getLockInfo(&process, &host, &program) &&
           RunsElsewhere(process);
  });
}

bool HoldsOpen(const fs::path& process, const fs::path& device) {
  std::error_code denied;  // another user's process
  for (fs::directory_iterator file(process / "fd", denied), end; file != end;
       file.increment(denied)) {
    std::error_code closed;
    if (fs::read_symlink(file->path(), closed) == device) {
      return true;
    }
  }
  return false;
}

bool IsHeldOpen(const fs::path& device) {
  const std::string own = std::to_string(getpid());
  std::error_code ended;
  for (fs::directory_iterator process("/proc", ended), end; process != end;
       process.increment(ended)) {
    const std::string name = process->path().filename().string();
    if (name.find_first_not_of("0123456789") == std::string::npos && name != own &&
        HoldsOpen(process->path(), device)) {
      return true;
    }
  }
  return false;
}

std::string KindOf(const std::string& device, const struct stat& status) {
  if (IsPseudoTerminal(status)) {
    return "pseudo-terminal";
  }
  return QSerialPortInfo(QString::fromStdString(device)).hasVendorIdentifier()
             ? "USB serial adapter"
             : "serial port";
}

void CheckPortNumber(int number) {
  if (number < 1) {
    throw SerialError("there is no serial port " + std::to_string(number));
  }
}

fs::path PortLink(const fs::path& data_folder, int number) {
  return data_folder / "Ports" / ("COM" + std::to_string(number));
}

[[noreturn]] void Refuse(const fs::path& path, const std::error_code& error) {
  throw SerialError(path.string() + ": " + error.message());
}

}  // namespace

std::string BuiltInPortDevice(int number) {
  CheckPortNumber(number);
  return "/dev/ttyS" + std::to_string(number - 1);
}

std::string LinuxPortDevice(const fs::path& data_folder, int number) {
  std::string built_in = BuiltInPortDevice(number);
  const fs::path link = PortLink(data_folder, number);
  std::error_code no_link;
  const fs::path target = fs::read_symlink(link, no_link);
  return no_link ? built_in : (link.parent_path() / target).lexically_normal().string();
}

std::vector<std::string> SerialDevices() {
  std::vector<std::string> devices;
  for (const QSerialPortInfo& port : QSerialPortInfo::availablePorts()) {
    devices.push_back(port.systemLocation().toStdString());
  }
  std::sort(devices.begin(), devices.end());
  return devices;
}

std::string DescribeDevice(const std::string& device) {
  struct stat status {};
  if (stat(device.c_str(), &status) != 0) {
    return "no such device";
  }
  if (!S_ISCHR(status.st_mode)) {
    return "no serial device";
  }
  if (faccessat(AT_FDCWD, device.c_str(), R_OK | W_OK, AT_EACCESS) != 0) {
    return "no access";
  }
  std::error_code unresolved;
  const fs::path real = fs::canonical(device, unresolved);
  // The program that makes a pseudo-terminal may hold both ends.
  if (IsLocked(real) || (!IsPseudoTerminal(status) && IsHeldOpen(real))) {
    return "in use";
  }
  return KindOf(real.string(), status);
}

// The new link is renamed over the old one, so that there is always one.
void PutDeviceBehindPort(const fs::path& data_folder, int number, const std::string& device) {
  CheckPortNumber(number);
  const fs::path link = PortLink(data_folder, number);
  std::error_code error;
  if (device.empty()) {
    fs::remove(link, error);
    if (error) {
      Refuse(link, error);
    }
    return;
  }
  fs::create_directories(link.parent_path(), error);
  if (error) {
    Refuse(link.parent_path(), error);
  }
  const fs::path made = link.string() + ".new";
  fs::remove(made, error);
  fs::create_symlink(device, made, error);
  if (!error) {
    fs::rename(made, link, error);
  }
  if (error) {
    Refuse(link, error);
  }
}

}  // namespace vrx
