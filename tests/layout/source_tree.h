#pragma once

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace vrx::testing {

// A header and the source of the same name, named without extension: "feed/ration".
using Unit = std::string;

struct SourceFile {
  std::string name;  // as it is included: "feed/ration.h"
  int lines = 0;
  std::vector<std::string> includes = {};  // of files of the tree, as they are written
  std::vector<std::string> structs = {};
};

// The files of src/, read as text: their includes between quotation marks and their sizes.
class SourceTree {
 public:
  explicit SourceTree(const std::filesystem::path& root);

  const std::vector<SourceFile>& Files() const { return files_; }

  // Headers that at most one file includes, the source of the same unit not counted.
  std::vector<std::string> SingleIncluderHeaders() const;

  // The groups of units that include each other, directly or through others, each group sorted.
  std::vector<std::set<Unit>> Cycles() const;

 private:
  std::set<Unit> Reachable(const Unit& from) const;

  std::vector<SourceFile> files_;
  std::map<Unit, std::set<Unit>> included_;
};

Unit UnitOf(const std::string& file);

}  // namespace vrx::testing
