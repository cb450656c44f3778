#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "export/export_fixture.h"

namespace vrx::testing {

using Key = std::vector<std::string>;             // the values of the levels, from the outside in
using Sums = std::map<std::string, std::string>;  // text by field
using Totals = std::vector<std::pair<Key, Sums>>;
using Rows = std::vector<SiteRow>;

// A data group as specified: its levels, and the weights of the last level in an export. If the
// last level is "Type", the type decides between batch and feed weight.
struct SpecifiedGroup {
  Key levels;
  std::vector<std::string> weights;
};

// The groups 1 to 12.
const SpecifiedGroup& Specified(int group);

// The fields that are summed for a value of the last level.
std::vector<std::string> WeightsOf(int group, const Key& key);

// The name for a group by name, which some row must have; "" for another group.
std::string NameOf(int group);

// A key for comparison, without the date, which the grid and an export write differently.
Key Compared(int group, Key key);

Totals Sorted(Totals totals);

// The totals of the grid: the rows of the group's own type, each summed once. Both functions expect
// weights in whole tenths and add them without rounding errors.
Totals ExpectedInGrid(int group, const Rows& all);

// The totals that exports write by their own rules: by date a transaction is whole under each of
// its dates, the groups of a type sum rows of any type, no user means the whole transaction, and a
// user's type means the rows of either.
Totals ExpectedInExport(int group, const Rows& rows);

}  // namespace vrx::testing
