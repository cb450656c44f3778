#pragma once

#include <filesystem>

namespace vrx::testing {

// A disk of a few megabytes mounted at a folder, visible to this process and its children. Creates
// a mount namespace for the process, which needs root or user namespaces; throws without them.
class SmallDisk {
 public:
  explicit SmallDisk(std::filesystem::path folder);
  ~SmallDisk();
  SmallDisk(const SmallDisk&) = delete;
  SmallDisk& operator=(const SmallDisk&) = delete;

 private:
  std::filesystem::path folder_;
};

}  // namespace vrx::testing
