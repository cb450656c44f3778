#include "adapters/port_survey.h"

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

namespace fs = std::filesystem;

namespace {

// Where programs lock a serial device by a file of its name.
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
  std::error_code out_of_sight;  // another user's process
  for (fs::directory_iterator file(process / "fd", out_of_sight), end; file != end;
       file.increment(out_of_sight)) {
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

std::string WhatItIs(const std::string& device, const struct stat& status) {
  if (IsPseudoTerminal(status)) {
    return "pseudo-terminal";
  }
  return QSerialPortInfo(QString::fromStdString(device)).hasVendorIdentifier()
             ? "USB serial adapter"
             : "serial port";
}

[[noreturn]] void Refuse(const fs::path& path, const std::error_code& error) {
  throw SerialError(path.string() + ": " + error.message());
}

}  // namespace

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
  // Whoever makes a pseudo-terminal may hold both its ends.
  if (IsLocked(real) || (!IsPseudoTerminal(status) && IsHeldOpen(real))) {
    return "in use";
  }
  return WhatItIs(real.string(), status);
}

// A new link takes the place of the old one by its renaming: at no time is there none.
void PutDeviceBehindPort(const fs::path& data_folder, int number, const std::string& device) {
  if (number < 1) {
    throw SerialError("there is no serial port " + std::to_string(number));
  }
  const fs::path folder = data_folder / "Ports";
  const fs::path link = folder / ("COM" + std::to_string(number));
  std::error_code error;
  if (device.empty()) {
    fs::remove(link, error);
    if (error) {
      Refuse(link, error);
    }
    return;
  }
  fs::create_directories(folder, error);
  if (error) {
    Refuse(folder, error);
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
