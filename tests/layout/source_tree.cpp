#include "layout/source_tree.h"

#include <algorithm>
#include <fstream>
#include <regex>

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;

SourceFile ReadSource(const fs::path& file, const fs::path& root) {
  static const std::regex include(R"(^#include "([^"]+)\".*)");
  static const std::regex structure(R"(^\s*struct (\w+).*)");
  SourceFile source{.name = file.lexically_relative(root).generic_string()};
  std::ifstream in(file);
  std::smatch found;
  for (std::string line; std::getline(in, line); ++source.lines) {
    if (std::regex_match(line, found, include)) {
      source.includes.push_back(found[1]);
    } else if (std::regex_match(line, found, structure)) {
      source.structs.push_back(found[1]);
    }
  }
  return source;
}

}  // namespace

Unit UnitOf(const std::string& file) { return fs::path(file).replace_extension().generic_string(); }

SourceTree::SourceTree(const fs::path& root) {
  for (const auto& entry : fs::recursive_directory_iterator(root)) {
    const std::string extension = entry.path().extension().string();
    if (extension == ".cpp" || extension == ".h") {
      files_.push_back(ReadSource(entry.path(), root));
    }
  }
  std::ranges::sort(files_, {}, &SourceFile::name);
  for (const SourceFile& file : files_) {
    for (const std::string& include : file.includes) {
      if (UnitOf(include) != UnitOf(file.name)) {
        included_[UnitOf(file.name)].insert(UnitOf(include));
      }
    }
  }
}

std::vector<std::string> SourceTree::SingleIncluderHeaders() const {
  std::map<std::string, int> includers;
  for (const SourceFile& file : files_) {
    if (file.name.ends_with(".h")) {
      includers.try_emplace(file.name, 0);
    }
  }
  for (const SourceFile& file : files_) {
    for (const std::string& include : file.includes) {
      const auto header = includers.find(include);
      if (header != includers.end() && UnitOf(include) != UnitOf(file.name)) {
        ++header->second;
      }
    }
  }
  std::vector<std::string> single;
  for (const auto& [header, count] : includers) {
    if (count <= 1) {
      single.push_back(header);
    }
  }
  return single;
}

std::set<Unit> SourceTree::Reachable(const Unit& from) const {
  std::set<Unit> reached;
  std::vector<Unit> open{from};
  while (!open.empty()) {
    const Unit unit = open.back();
    open.pop_back();
    const auto next = included_.find(unit);
    if (next == included_.end()) {
      continue;
    }
    for (const Unit& other : next->second) {
      if (reached.insert(other).second) {
        open.push_back(other);
      }
    }
  }
  return reached;
}

std::vector<std::set<Unit>> SourceTree::Cycles() const {
  std::map<Unit, std::set<Unit>> reachable;
  for (const auto& [unit, others] : included_) {
    reachable[unit] = Reachable(unit);
  }
  std::vector<std::set<Unit>> cycles;
  std::set<Unit> grouped;
  for (const auto& [unit, others] : reachable) {
    if (!others.contains(unit) || grouped.contains(unit)) {
      continue;
    }
    std::set<Unit> cycle;
    for (const Unit& other : others) {
      const auto back = reachable.find(other);
      if (back != reachable.end() && back->second.contains(unit)) {
        cycle.insert(other);
      }
    }
    grouped.insert(cycle.begin(), cycle.end());
    cycles.push_back(cycle);
  }
  return cycles;
}

}  // namespace vrx::testing
