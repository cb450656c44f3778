#include "desktop/app/lost_edits.h"

#include <fstream>
#include <iostream>
#include <iterator>
#include <system_error>

namespace vrx {
namespace {

namespace fs = std::filesystem;

constexpr const char* kFileName = "UNSTORED.TXT";

}  // namespace

void KeepLostEdits(const std::vector<LostEdit>& edits, const fs::path& data_folder) {
  if (edits.empty()) {
    return;
  }
  std::ofstream file(data_folder / kFileName, std::ios::binary | std::ios::app);
  for (const LostEdit& edit : edits) {
    const std::string line = edit.what + ": \"" + edit.text + "\" (" + edit.cause + ")";
    file << line << "\r\n";
    std::cerr << "not stored: " << line << '\n';
  }
}

std::string ReadLostEdits(const fs::path& data_folder) {
  std::ifstream file(data_folder / kFileName, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void RemoveLostEdits(const fs::path& data_folder) {
  std::error_code ignored;  // shown again at the next start
  fs::remove(data_folder / kFileName, ignored);
}

}  // namespace vrx
