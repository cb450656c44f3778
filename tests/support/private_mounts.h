#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace vrx::testing {

// Runs a shell script in a mount namespace of its own, where it may mount: small disks, and disks
// that cannot be written. The arguments are $1 on. Gives what it printed on both streams.
std::string RunWithMounts(const std::string& script, const std::vector<std::string>& args);

}  // namespace vrx::testing
