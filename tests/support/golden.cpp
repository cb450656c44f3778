#include "support/golden.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kShown = 200;  // bytes from the first difference on

std::string Excerpt(std::string_view bytes, std::size_t from) {
  return ::testing::PrintToString(std::string(bytes.substr(std::min(from, bytes.size()), kShown)));
}

}  // namespace

::testing::AssertionResult IsGolden(std::string_view bytes, const std::string& path) {
  const fs::path file = fs::path(VRX_SOURCE_DIR) / "tests" / path;
  if (std::getenv("VRX_REWRITE_GOLDEN") != nullptr) {
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << bytes;
    return ::testing::AssertionFailure() << file << " is rewritten";
  }
  if (!fs::exists(file)) {
    return ::testing::AssertionFailure() << file << " is missing";
  }
  const std::string golden = ReadAll(file);
  if (bytes == golden) {
    return ::testing::AssertionSuccess();
  }
  const auto [mine, theirs] =
      std::mismatch(bytes.begin(), bytes.end(), golden.begin(), golden.end());
  const auto from = static_cast<std::size_t>(mine - bytes.begin());
  const std::size_t line = 1 + static_cast<std::size_t>(std::count(bytes.begin(), mine, '\n'));
  return ::testing::AssertionFailure()
         << "differs from " << file << " in line " << line << ", byte " << from
         << "\n  golden: " << Excerpt(golden, from) << "\n  actual: " << Excerpt(bytes, from);
}

}  // namespace vrx::testing
