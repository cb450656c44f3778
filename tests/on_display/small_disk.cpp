#include "on_display/small_disk.h"

#include <cerrno>
#include <fstream>
#include <string>
#include <system_error>
#include <utility>

#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

namespace vrx::testing {
namespace {

constexpr const char* kSize = "size=3m,mode=700";

// The same user has the right to mount in a user namespace of its own.
bool TakeOwnNamespaces() {
  if (geteuid() == 0) {
    return unshare(CLONE_NEWNS) == 0;
  }
  const std::string user = std::to_string(geteuid());
  const std::string group = std::to_string(getegid());
  if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) {
    return false;
  }
  std::ofstream("/proc/self/setgroups") << "deny";
  std::ofstream("/proc/self/uid_map") << user << ' ' << user << " 1";
  std::ofstream("/proc/self/gid_map") << group << ' ' << group << " 1";
  return true;
}

}  // namespace

SmallDisk::SmallDisk(std::filesystem::path folder) : folder_(std::move(folder)) {
  if (!TakeOwnNamespaces() || mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
      mount("tmpfs", folder_.c_str(), "tmpfs", 0, kSize) != 0) {
    throw std::system_error(errno, std::generic_category(), "cannot mount a small disk");
  }
}

SmallDisk::~SmallDisk() { umount2(folder_.c_str(), MNT_DETACH); }

}  // namespace vrx::testing
