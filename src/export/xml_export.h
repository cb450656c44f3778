#pragma once

#include <filesystem>
#include <span>
#include <string>
#include <string_view>

#include "database/lock_wait.h"
#include "export/html_export.h"
#include "history/columns.h"

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

// Append to an XML text. Whatever the bytes, the text stays well-formed: a character that XML does
// not know (a control character, a byte that is no UTF-8) becomes U+FFFD.
void AppendXmlText(std::string_view utf8, std::string& xml);
// For between double quotes; line ends and tabs survive a reader's normalising.
void AppendXmlAttribute(std::string_view utf8, std::string& xml);

// The name of a field as an element: each blank an "_", each "%" gone.
std::string XmlElementName(std::string_view field);

}  // namespace vrx
