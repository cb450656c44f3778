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

// Of the files of that format, with its dot.
std::string_view ExtensionOf(ExportFormat format);

// What an export takes from the `Batched/Fed` tab: the data group chosen there and the columns as
// they stand. Valid until another event runs.
struct ExportSource {
  const HistoryGrid& grid;
  int index;              // of `lstGroupBy`
  std::string_view text;  // of its selected item
  std::string name;       // the text of `cboColName`
};

struct ExportOutcome {
  bool done = false;
  std::string error_text = {};  // why not; empty where there is no more to say
};

// Leads an export: what is on show goes to a writer, which reads the records from the open
// transaction database itself.
class ExportDriver {
 public:
  // The stylesheets outlive the object.
  explicit ExportDriver(const StyleSheets& style_sheets) : style_sheets_(style_sheets) {}

  // Writes the file, over one of that name, in a folder that is there. Not done, with nothing
  // written, for a group by name without a name and for an index that is no group; HTML also
  // without the group's stylesheet, which the operator is told.
  //
  // Throws what the writers throw, and Error where the file is a database, open or not, where it
  // lies in the folder of the program's stylesheets, and for an XML file that is named as its
  // stylesheet.
  ExportOutcome ExportGroup(const ExportSource& shown, ExportFormat format,
                            const std::filesystem::path& file,
                            const OpenDatabases& databases) const;

 private:
  bool ExportPage(int group, const std::filesystem::path& file,
                  const std::function<bool(const std::filesystem::path&)>& write_xml) const;

  const StyleSheets& style_sheets_;
};

}  // namespace vrx
