#include "support/private_mounts.h"

#include <array>
#include <cstdio>
#include <stdexcept>

#include "support/temp_folder.h"

namespace vrx::testing {

std::string RunWithMounts(const std::string& script, const std::vector<std::string>& args) {
  TempFolder scripts;
  const std::filesystem::path path = scripts.Write("script.sh", "set -e\n" + script);
  // As root, as root in a changed root, or as a user.
  std::string command =
      "for own in 'unshare --mount' 'unshare --mount --propagation unchanged' "
      "'unshare --user --map-root-user --mount'; do $own true 2>/dev/null && break; done; $own sh "
      "'" +
      path.string() + "'";
  for (const std::string& arg : args) {
    command += " '" + arg + "'";
  }
  FILE* const pipe = popen((command + " 2>&1").c_str(), "r");
  if (pipe == nullptr) {
    throw std::runtime_error("no shell");
  }
  std::string output;
  std::array<char, 4096> buffer{};
  while (const std::size_t count = fread(buffer.data(), 1, buffer.size(), pipe)) {
    output.append(buffer.data(), count);
  }
  pclose(pipe);
  return output;
}

}  // namespace vrx::testing
