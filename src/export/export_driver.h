#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

#include "database/open_databases.h"
#include "export/html_export.h"
#include "history/history_grid.h"

namespace vrx {

enum class ExportFormat { kCsv, kXml, kHtml };

// What an export takes from the `Batched/Fed` tab: the selected data group, its current columns and
// the shown period.
// Valid until another event runs.
struct ExportSource {
  const HistoryGrid& grid;
  int index;              // of `lstGroupBy`
  std::string_view text;  // of its selected item
  std::string name;       // the text of `cboColName`
};

struct ExportOutcome {
  bool done = false;
  std::string error_text = {};  // the reason if not done; empty if it was already reported
};

// The file name extension of a format, with its dot.
[[nodiscard]] std::string_view ExtensionOf(ExportFormat format);

// Runs an export: passes the shown data group to the writer of the format, which reads the records
// from the open transaction database.
class ExportDriver {
 public:
  // The stylesheets outlive the object.
  explicit ExportDriver(const StyleSheets& style_sheets) : style_sheets_(style_sheets) {}

  // Writes the file in an existing folder and replaces one of that name. Not done, with nothing
  // written, for a group by name without a name, for an index that is not a group and, with HTML,
  // without the group's stylesheet, which is reported.
  //
  // Throws the writers' exceptions, and Error if the file is a database (open or not), is in the
  // folder of the program's stylesheets, or is an XML file with the name of its stylesheet.
  [[nodiscard]] ExportOutcome ExportGroup(const ExportSource& shown, ExportFormat format,
                                          const std::filesystem::path& file,
                                          const OpenDatabases& databases) const;

 private:
  bool ExportPage(const ExportSource& shown, const std::filesystem::path& file,
                  const std::function<bool(const std::filesystem::path&)>& write_xml) const;

  const StyleSheets& style_sheets_;
};

}  // namespace vrx
