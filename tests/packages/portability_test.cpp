#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;

constexpr std::array<std::string_view, 13> kPosixHeaders = {
    "<unistd.h>", "<fcntl.h>", "<termios.h>", "<signal.h>", "<csignal>", "<poll.h>", "<pty.h>",
    "<pwd.h>",    "<grp.h>",   "<dlfcn.h>",   "<dirent.h>", "<sys/",     "<linux/"};

bool NamesPosix(const std::string& line) {
  return line.starts_with("#include ") &&
         std::any_of(kPosixHeaders.begin(), kPosixHeaders.end(),
                     [&](std::string_view header) { return line.find(header) != line.npos; });
}

// The library of the machine, sources that have a counterpart for Windows, one that Windows does
// not need, and the simulator, which makes pseudo-terminals.
bool MayBePosix(const fs::path& file) {
  const fs::path name = file.lexically_relative(fs::path(VRX_SOURCE_DIR) / "src");
  const std::string library = name.begin()->string();
  return library == "adapters" || library == "simulator" || name == "base/sync_posix.cpp" ||
         name == "central/socket_wait_posix.cpp" || name == "central/client_library_posix.cpp";
}

TEST(Sources, CallTheOperatingSystemInAdaptersAndTheSimulatorOnly) {
  int with_posix = 0;
  for (const auto& entry : fs::recursive_directory_iterator(fs::path(VRX_SOURCE_DIR) / "src")) {
    const fs::path& file = entry.path();
    if (file.extension() != ".cpp" && file.extension() != ".h") {
      continue;
    }
    std::ifstream in(file);
    for (std::string line; std::getline(in, line);) {
      if (NamesPosix(line)) {
        EXPECT_TRUE(MayBePosix(file)) << file << ": " << line;
        ++with_posix;
      }
    }
  }
  EXPECT_GT(with_posix, 10);
}

}  // namespace
}  // namespace vrx::testing
