#include "export/export_columns.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/text.h"

namespace vrx {
namespace {

struct Caption {
  std::string_view field;
  std::string_view caption;
};

constexpr std::array<Caption, 16> kCaptions{{{"Transaction", "Transaction"},
                                             {"Recipe", "Recipe"},
                                             {"IngPercent", "Ing% Of Batch"},
                                             {"Date", "Date"},
                                             {"Time", "Time"},
                                             {"UserID", "User ID"},
                                             {"Target", "Target Wt"},
                                             {"Pen", "Pen"},
                                             {"Ingredient", "Ingredient"},
                                             {"ActualFeed", "Feed Wt"},
                                             {"ActualBatch", "Batch Wt"},
                                             {"Type", "Type"},
                                             {"BatchDifference", "Batch Diff"},
                                             {"BatchDiffPercent", "Batch Diff %"},
                                             {"FeedDifference", "Feed Diff"},
                                             {"FeedDiffPercent", "Feed Diff %"}}};

struct FixedColumns {
  int group;
  std::array<std::string_view, 3> fields;  // padded with empty names
};

// Columns that the grid hides because it groups by them, but that the export needs.
constexpr std::array<FixedColumns, 12> kFixedColumns{{{0, {}},
                                                      {1, {"Transaction", "Type"}},
                                                      {2, {"Date", "Transaction", "Type"}},
                                                      {3, {"Recipe", "Type"}},
                                                      {5, {"Recipe"}},
                                                      {6, {"Ingredient"}},
                                                      {7, {"Ingredient"}},
                                                      {8, {"Pen"}},
                                                      {9, {"Pen"}},
                                                      {10, {}},
                                                      {11, {"UserID", "Transaction"}},
                                                      {12, {"UserID", "Type"}}}};

// Skips a field or caption that is blank.
void Add(ColumnDictionary& dictionary, ExportedColumn column) {
  if (TrimBlanks(column.field).empty() || TrimBlanks(column.caption).empty()) {
    return;
  }
  if (std::none_of(dictionary.begin(), dictionary.end(),
                   [&](const ExportedColumn& entry) { return entry.field == column.field; })) {
    dictionary.push_back(std::move(column));
  }
}

}  // namespace

std::optional<ColumnDictionary> ExportColumn::IntializeExportColumn(
    int group, std::span<const std::string> visible_columns) const {
  const auto* const fixed =
      std::find_if(kFixedColumns.begin(), kFixedColumns.end(),
                   [&](const FixedColumns& entry) { return entry.group == group; });
  if (fixed == kFixedColumns.end()) {
    return std::nullopt;
  }
  ColumnDictionary dictionary;
  const auto add = [&](std::string_view field) {
    Add(dictionary, {GetColumnName(field, true), GetColumnName(field, false)});
  };
  std::for_each(fixed->fields.begin(), fixed->fields.end(), add);
  std::for_each(visible_columns.begin(), visible_columns.end(), add);
  return dictionary;
}

std::string ExportColumn::GetColumnName(std::string_view field, bool want_field) const {
  if (want_field) {
    return std::string(field);
  }
  const auto* const found =
      std::find_if(kCaptions.begin(), kCaptions.end(),
                   [&](const Caption& entry) { return entry.field == field; });
  return found != kCaptions.end() ? std::string(found->caption)
                                  : ingredients_.GetIngredientColumnName(field);
}

std::vector<std::string> BuildFieldList(const ColumnDictionary& dictionary,
                                        std::string_view exclude) {
  std::vector<std::string> fields;
  for (const ExportedColumn& column : dictionary) {
    if (exclude.find(column.field) == std::string_view::npos) {
      fields.push_back(column.field);
    }
  }
  return fields;
}

}  // namespace vrx
