#include "export/specified_totals.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <functional>

#include "base/number.h"
#include "history/data_group.h"

namespace vrx::testing {
namespace {

const std::array<SpecifiedGroup, 13>& SpecifiedGroups() {
  static const std::array<SpecifiedGroup, 13> groups{
      {{{}, {}},
       {{"Transaction", "Type"}, {"Target"}},
       {{"Date", "Transaction", "Type"}, {"Target"}},
       {{"Recipe", "Type"}, {"Target"}},
       {{"Recipe", "Type"}, {"Target"}},
       {{"Recipe", "Ingredient"}, {"ActualBatch"}},
       {{"Ingredient"}, {"ActualBatch", "Target"}},
       {{"Ingredient"}, {"ActualBatch", "Target"}},
       {{"Pen"}, {"ActualFeed", "Target"}},
       {{"Pen"}, {"ActualFeed", "Target"}},
       {{"Pen"}, {"ActualFeed", "Target"}},
       {{"UserID", "Transaction"}, {"ActualBatch", "ActualFeed"}},
       {{"UserID", "Type"}, {"Target"}}}};
  return groups;
}

std::string ValueOf(const SiteRow& row, const std::string& field) {
  if (field == "Transaction") {
    return std::to_string(row.transaction);
  }
  return field == "Type"     ? row.type
         : field == "Recipe" ? row.recipe
         : field == "Pen"    ? row.pen
         : field == "Date"   ? row.date
         : field == "UserID" ? (row.user.empty() ? "(none)" : row.user)
                             : row.ingredient;
}

double WeightOf(const SiteRow& row, const std::string& field) {
  return field == "Target" ? row.target : field == "ActualBatch" ? row.batch : row.feed;
}

Key KeyOf(int group, const SiteRow& row) {
  Key key;
  for (const std::string& level : Specified(group).levels) {
    key.push_back(ValueOf(row, level));
  }
  return key;
}

using Counts = std::function<bool(const SiteRow& row, const Key& key)>;

Totals SumUp(int group, const Rows& rows, const std::vector<Key>& keys, const Counts& counts) {
  Totals totals;
  for (const Key& key : keys) {
    Sums sums;
    for (const std::string& field : WeightsOf(group, key)) {
      long long tenths = 0;
      for (const SiteRow& row : rows) {
        tenths += counts(row, key) ? std::llround(WeightOf(row, field) * 10) : 0;
      }
      sums[field] = DefaultText(static_cast<double>(tenths) / 10);
    }
    totals.emplace_back(Compared(group, key), sums);
  }
  return Sorted(totals);
}

std::vector<Key> Distinct(std::vector<Key> keys) {
  std::sort(keys.begin(), keys.end());
  keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
  return keys;
}

bool IsNamed(int group, const SiteRow& row) {
  return NameOf(group).empty() || KeyOf(group, row).front() == NameOf(group);
}

}  // namespace

const SpecifiedGroup& Specified(int group) {
  return SpecifiedGroups().at(static_cast<std::size_t>(group));
}

std::vector<std::string> WeightsOf(int group, const Key& key) {
  std::vector<std::string> weights = Specified(group).weights;
  if (Specified(group).levels.back() == "Type") {
    weights.emplace_back(key.back() == "BATCH" ? "ActualBatch" : "ActualFeed");
  }
  return weights;
}

std::string NameOf(int group) {
  return group == 4 ? "STARTER" : group == 7 ? "CORN" : group == 9 ? "PEN 1" : "";
}

Key Compared(int group, Key key) {
  if (group == 2) {
    key.erase(key.begin());
  }
  return key;
}

Totals Sorted(Totals totals) {
  std::sort(totals.begin(), totals.end());
  return totals;
}

Totals ExpectedInGrid(int group, const Rows& all) {
  const std::string type(DataGroups()[static_cast<std::size_t>(group)].type);
  Rows rows;
  std::vector<Key> keys;
  for (const SiteRow& row : all) {
    if ((type.empty() || row.type == type) && IsNamed(group, row)) {
      rows.push_back(row);
      keys.push_back(KeyOf(group, row));
    }
  }
  return SumUp(group, rows, Distinct(keys),
               [&](const SiteRow& row, const Key& key) { return KeyOf(group, row) == key; });
}

Totals ExpectedInExport(int group, const Rows& rows) {
  std::vector<Key> keys;
  for (const SiteRow& row : rows) {
    const Key key = KeyOf(group, row);
    if (!IsNamed(group, row) || std::find(key.begin(), key.end(), "") != key.end()) {
      continue;
    }
    keys.push_back(key);
    for (const SiteRow& other : rows) {
      if (group == 2 && other.transaction == row.transaction) {
        keys.push_back({row.date, key[1], other.type});
      }
    }
  }
  return SumUp(group, rows, Distinct(keys), [&](const SiteRow& row, const Key& key) {
    const Key own = KeyOf(group, row);
    if (group == 2) {
      return own[1] == key[1] && own[2] == key[2];
    }
    if (group == 11 && key[0] == "(none)") {
      return own[1] == key[1];
    }
    if (group == 12) {
      return (key[0] != "(none)" && own[0] == key[0]) || own[1] == key[1];
    }
    return own == key;
  });
}

}  // namespace vrx::testing
