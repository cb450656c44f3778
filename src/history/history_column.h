#pragma once

#include <span>
#include <string>
#include <string_view>

namespace vrx {

// The 112 columns of `grdTRANS`, which are the fields of a transaction in stored order. An index
// counts from 1 and never changes; positions and captions do (history_columns.h).
inline constexpr int kHistoryColumnCount = 112;
inline constexpr int kTargetColumn = 7;
inline constexpr int kActualBatchColumn = 8;
inline constexpr int kActualFeedColumn = 11;
inline constexpr int kIngPercentColumn = 12;
inline constexpr int kFirstIngredientColumn = 13;

// What a column's values are; it decides how they sort and how they read.
enum class ColumnContent { kText, kNumber, kWeight, kTime, kDate };

struct HistoryColumn {
  int index;
  std::string key;
  std::string field;    // of the table Transactions
  std::string caption;  // at design
  std::string group_prefix;
  bool right_aligned;
  bool summed;
  ColumnContent content;
};

// All of them, by index.
std::span<const HistoryColumn> HistoryColumnTable();

// Throws std::out_of_range for an index that is none.
const HistoryColumn& HistoryColumnAt(int index);

// 0 for a key, or a field, that no column has. Case does not count.
int HistoryColumnOfKey(std::string_view key);
int HistoryColumnOfField(std::string_view field);

// The slot of an ingredient column, 1 to 100; 0 for another column.
int IngredientSlot(int column);

}  // namespace vrx
