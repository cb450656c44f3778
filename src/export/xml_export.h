#pragma once

#include <filesystem>
#include <span>
#include <string>
#include <string_view>

#include "database/lock_wait.h"
#include "export/html_export.h"
#include "history/columns.h"
#include "history/period.h"

namespace vrx {

// Writes a data group as an XML document: an element for each value of a group level, with the
// weights as attributes, and below the innermost level a `Record` for each transaction row. UTF-8,
// without line breaks; every element has a start and an end tag.
class XMLExport {
 public:
  // Both outlive the object.
  XMLExport(const IngredientColumnNames& ingredients, const StyleSheets& style_sheets)
      : ingredients_(ingredients), style_sheets_(style_sheets) {}

  // Like CSVExport::ExportData, but replaces the file atomically and copies the stylesheet into its
  // folder. Reports a missing stylesheet and still returns true.
  //
  // Throws DatabaseError, FileError, and Error for rows that the data group refuses; then an
  // existing file is unchanged.
  [[nodiscard]] bool ExportData(int group, const std::filesystem::path& file,
                                const std::filesystem::path& transaction_database,
                                std::span<const std::string> visible_columns,
                                std::string_view name = {}, LockWait wait = kBusyTimeout,
                                const Period& period = {}) const;

 private:
  const IngredientColumnNames& ingredients_;
  const StyleSheets& style_sheets_;
};

// Both append to an XML text and keep it well-formed: a character that XML does not allow (a
// control character, malformed UTF-8) becomes U+FFFD. An attribute is for double quotes; its line
// ends and tabs survive a parser's normalization.
void AppendXmlText(std::string_view utf8, std::string& xml);
void AppendXmlAttribute(std::string_view utf8, std::string& xml);

// The element name of a field: blanks become "_", "%" is removed.
[[nodiscard]] std::string XmlElementName(std::string_view field);

}  // namespace vrx
