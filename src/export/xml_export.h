#pragma once

#include <filesystem>
#include <span>
#include <string>
#include <string_view>

#include "database/lock_wait.h"
#include "export/style_sheet.h"
#include "history/ingredient_column_names.h"

namespace vrx {

// Writes a data group to an XML document: an element for each value of a group level, with the
// weights as attributes, and below the last level a `Record` for each transaction row. UTF-8,
// without line breaks; every element has an open and a close tag.
class XMLExport {
 public:
  // Both outlive the object.
  XMLExport(const IngredientColumnNames& ingredients, const StyleSheets& style_sheets)
      : ingredients_(ingredients), style_sheets_(style_sheets) {}

  // As CSVExport's, but the file appears whole or not at all, and its stylesheet is copied beside
  // it. True also when the stylesheet was missing, which the operator is told.
  //
  // Throws DatabaseError, FileError, and Error for what the data group refuses; the path then holds
  // what it held before.
  bool ExportData(int group, const std::filesystem::path& file,
                  const std::filesystem::path& transaction_database,
                  std::span<const std::string> visible_columns, std::string_view name = {},
                  LockWait wait = kBusyTimeout) const;

 private:
  const IngredientColumnNames& ingredients_;
  const StyleSheets& style_sheets_;
};

}  // namespace vrx
