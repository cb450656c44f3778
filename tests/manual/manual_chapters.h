#pragma once

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "make_manual/manual_text.h"
#include "support/temp_folder.h"

namespace vrx::testing {

// The chapters of the manual in their order, as the manual is made of them.
inline std::vector<manual::Chapter> ManualChapters() {
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(VRX_SOURCE_DIR "/docs/manual")) {
    files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  std::vector<manual::Chapter> chapters;
  chapters.reserve(files.size());
  for (const std::filesystem::path& file : files) {
    chapters.push_back(manual::ParseChapter(file.filename().string(), ReadAll(file)));
  }
  return chapters;
}

}  // namespace vrx::testing
