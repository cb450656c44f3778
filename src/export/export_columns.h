#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "history/columns.h"

namespace vrx {

struct ExportedColumn {
  std::string field;    // of the table Transactions
  std::string caption;  // UTF-8
  bool operator==(const ExportedColumn&) const = default;
};

// The columns of an export in the order they are written; no field stands twice.
using ColumnDictionary = std::vector<ExportedColumn>;

// Decides which columns of a data group go out. Ingredient columns 33 and 51 to 100 have no caption
// in the ingredient table and are never exported, even where the grid shows them.
class ExportColumn {
 public:
  // The names outlive the object.
  explicit ExportColumn(const IngredientColumnNames& ingredients) : ingredients_(ingredients) {}

  // The group's fixed columns, then the visible ones by position (HistoryColumns'
  // GetVisibleColumnList). Nothing for group 4, which is written with the columns of group 3, and
  // for an index that is no group.
  std::optional<ColumnDictionary> IntializeExportColumn(
      int group, std::span<const std::string> visible_columns) const;

  // The field itself, or its caption; "" for the caption of a field that has none.
  std::string GetColumnName(std::string_view field, bool want_field) const;

 private:
  const IngredientColumnNames& ingredients_;
};

// The fields of a record: the dictionary's keys in order, but for those found anywhere in the
// exclude text. A field that is a part of another field's name would be taken for it.
std::vector<std::string> BuildFieldList(const ColumnDictionary& dictionary,
                                        std::string_view exclude);

}  // namespace vrx
