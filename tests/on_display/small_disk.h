#pragma once

#include <filesystem>

namespace vrx::testing {

// A disk of a few megabytes at a folder, which this process and those that it starts see. The
// process gets mounts of its own for it; that needs root or user namespaces. Throws without them.
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
