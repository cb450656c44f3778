#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "history/columns.h"

namespace vrx {

struct ExportedColumn {
  std::string field;    // of the table Transactions, or of a difference
  std::string caption;  // UTF-8
  bool operator==(const ExportedColumn&) const = default;
};

// The columns of an export in output order; no field occurs twice.
using ColumnDictionary = std::vector<ExportedColumn>;

// Selects the exported columns of a data group. Ingredient columns 33 and 51 to 100 have no caption
// in the ingredient table and are never exported, even if the grid shows them.
class ExportColumn {
 public:
  // The names outlive the object.
  explicit ExportColumn(const IngredientColumnNames& ingredients) : ingredients_(ingredients) {}

  // The group's fixed columns, then the visible ones by position (HistoryColumns'
  // GetVisibleColumnList). Empty for group 4, which uses the columns of group 3, and for an index
  // that is not a group.
  [[nodiscard]] std::optional<ColumnDictionary> IntializeExportColumn(
      int group, std::span<const std::string> visible_columns) const;

  // The field itself, or its caption; empty if the field has no caption.
  [[nodiscard]] std::string GetColumnName(std::string_view field, bool want_field) const;

 private:
  const IngredientColumnNames& ingredients_;
};

// The fields of a record: the dictionary's fields in order, except those found anywhere in the
// exclude text. A field whose name is part of an excluded name is excluded too.
[[nodiscard]] std::vector<std::string> BuildFieldList(const ColumnDictionary& dictionary,
                                                      std::string_view exclude);

}  // namespace vrx
