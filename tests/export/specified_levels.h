#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "export/level_walk.h"

namespace vrx::testing {

// Records a walk, one line per call: "open 0 Transaction 17", "open 1 Type BATCH
// Batch_Weight=500.5 Target_Weight=500", "record STARTER|500.5|NULL", "close 1".
class WalkLog : public LevelVisitor {
 public:
  void OpenGroup(const WalkedGroup& group) override;
  void Record(std::span<const CellView> cells) override;
  void CloseGroup(const WalkedGroup& group) override;

  const std::vector<std::string>& Lines() const { return lines_; }

 private:
  std::vector<std::string> lines_;
};

// The same lines from the specified queries: one for each value of each level, one for its records
// and one for each sum.
std::vector<std::string> SpecifiedWalk(const std::filesystem::path& database, int group,
                                       const std::vector<std::string>& fields,
                                       std::string_view name);

}  // namespace vrx::testing
