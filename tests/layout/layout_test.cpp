#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "layout/source_tree.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;

// Each limit is a count of the tree as it is. A change may lower it and then lowers the limit.
constexpr std::size_t kSingleIncluderHeaders = 40;
constexpr std::size_t kUnitsInCycles = 0;
constexpr std::size_t kPortsStructs = 0;
constexpr int kLongestSource = 500;  // lines

const SourceTree& Sources() {
  static const SourceTree kTree(fs::path(VRX_SOURCE_DIR) / "src");
  return kTree;
}

std::string Listed(const std::set<Unit>& units) {
  std::string text;
  for (const Unit& unit : units) {
    text += ' ' + unit;
  }
  return text;
}

TEST(Layout, NoSourceIsLongerThanTheLimit) {
  ASSERT_GT(Sources().Files().size(), 100U);
  for (const SourceFile& file : Sources().Files()) {
    EXPECT_LE(file.lines, kLongestSource) << file.name;
  }
}

TEST(Layout, NoMoreUnitsIncludeEachOther) {
  std::size_t units = 0;
  std::string listed;
  for (const auto& cycle : Sources().Cycles()) {
    units += cycle.size();
    listed += Listed(cycle) + '\n';
  }
  EXPECT_LE(units, kUnitsInCycles) << listed;
}

TEST(Layout, HeadersWithOneIncluderDoNotBecomeMore) {
  const auto headers = Sources().SingleIncluderHeaders();
  std::string listed;
  for (const std::string& header : headers) {
    listed += header + '\n';
  }
  EXPECT_LE(headers.size(), kSingleIncluderHeaders) << listed;
}

TEST(Layout, StructsOfServicesDoNotBecomeMore) {
  std::vector<std::string> found;
  for (const SourceFile& file : Sources().Files()) {
    for (const std::string& name : file.structs) {
      if (name.ends_with("Ports")) {
        found.push_back(file.name + ": " + name);
      }
    }
  }
  EXPECT_LE(found.size(), kPortsStructs) << ::testing::PrintToString(found);
}

}  // namespace
}  // namespace vrx::testing
