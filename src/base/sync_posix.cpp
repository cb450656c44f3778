#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

#include "base/sync.h"

namespace vrx {

std::error_code SyncToDisk(const std::filesystem::path& path) {
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (file < 0) {
    return {errno, std::generic_category()};
  }
  const int error = fsync(file) == 0 || errno == EINVAL ? 0 : errno;
  close(file);
  return {error, std::generic_category()};
}

}  // namespace vrx
