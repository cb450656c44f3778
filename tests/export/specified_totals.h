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

// A data group as the design tells it: its levels, and the weights that the last one bears in an
// export. "Type" as the last level chooses between batch and feed.
struct SpecifiedGroup {
  Key levels;
  std::vector<std::string> weights;
};

// The groups 1 to 12.
const SpecifiedGroup& Specified(int group);

// The fields that are summed for a value of the last level.
std::vector<std::string> WeightsOf(int group, const Key& key);

// The name that the groups by name are made for, which some row has to have; else "".
std::string NameOf(int group);

// A key as it is compared, without the date, which the grid and an export write differently.
Key Compared(int group, Key key);

Totals Sorted(Totals totals);

// What the grid shows: the rows of the group's own type, each summed once. Both take weights in
// whole tenths, and add them without an error of rounding.
Totals ExpectedInGrid(int group, const Rows& all);

// The totals that exports write by their own rules: by date a transaction is whole under each of
// its dates, the groups of a type sum rows of any type, no user means the whole transaction, and a
// user's type means the rows of either.
Totals ExpectedInExport(int group, const Rows& rows);

}  // namespace vrx::testing
