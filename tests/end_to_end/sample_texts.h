#pragma once

#include <filesystem>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "support/program.h"

namespace vrx::testing {

// The texts of the sample site, read without the program's code.

inline std::filesystem::path SampleTexts() {
  return std::filesystem::path(VRX_SOURCE_DIR) / "data/sample_site";
}

inline std::vector<std::string> Split(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::istringstream stream(text);
  for (std::string part; std::getline(stream, part, separator);) {
    parts.push_back(part);
  }
  return parts;
}

// Without the heading.
inline std::vector<std::vector<std::string>> SampleTable(const std::string& name) {
  std::vector<std::vector<std::string>> rows;
  for (const std::string& line : Split(ReadAll(SampleTexts() / name), '\n')) {
    rows.push_back(Split(line, '\t'));
  }
  rows.erase(rows.begin());
  return rows;
}

// Names by ID.
inline std::map<std::string, std::string> SampleNames(const std::string& table) {
  std::map<std::string, std::string> names;
  for (const auto& row : SampleTable(table)) {
    names[row[0]] = row[1];
  }
  return names;
}

}  // namespace vrx::testing
