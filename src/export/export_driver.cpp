#include "export/export_driver.h"

#include <array>
#include <filesystem>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "base/error.h"
#include "base/files.h"
#include "base/text.h"
#include "base/translation.h"
#include "database/keep_database.h"
#include "export/csv_export.h"
#include "export/html_export.h"
#include "export/work_folder.h"
#include "export/xml_export.h"
#include "history/columns.h"
#include "history/data_group.h"

namespace vrx {

namespace fs = std::filesystem;

namespace {

struct MissingName {
  int group;
  std::string_view text;
};

constexpr std::array<MissingName, 3> kMissingNames{
    {{4, "Please select recipe name in Batched/Fed tab."},
     {7, "Please select ingredient name in Batched/Fed tab."},
     {9, "Please select pen name in Batched/Fed tab."}}};

// Empty if the group has the name it needs, or needs none. The name need not be in the list: even
// the combo's "Select..." is accepted and selects no rows.
std::string_view MissingNameText(const ExportSource& shown) {
  for (const MissingName& missing : kMissingNames) {
    if (missing.group == shown.index && TrimBlanks(shown.name).empty()) {
      return missing.text;
    }
  }
  return {};
}

IngredientColumnNames ScanDynamicGridColumn(const HistoryGrid& grid) {
  IngredientColumnNames names;
  for (const auto& [field, caption] : grid.FieldCaptions()) {
    names.SetIngredientColumnName(field, caption);
  }
  return names;
}

// An export replaces a file without asking; a database must not be lost that way.
void RefuseOpenDatabase(const fs::path& file, const OpenDatabases& databases) {
  const std::array<std::pair<const fs::path&, std::string_view>, 2> kinds{
      {{databases.recipe_db_path, TrMark("cannot write %1: it is the open recipe database")},
       {databases.trans_db_path, TrMark("cannot write %1: it is the open transaction database")}}};
  for (const auto& [database, reason] : kinds) {
    std::error_code not_both_there;
    if (fs::equivalent(file, database, not_both_there)) {
      throw Error(Tr(reason, {file.string()}));
    }
  }
}

// The stylesheet is copied into the folder of an XML file and replaces a file of its name. The
// program's own stylesheets must never be overwritten.
void RefuseStyleSheet(const fs::path& file, ExportFormat format, const StyleSheets& style_sheets,
                      int group) {
  std::error_code ignored;
  const fs::path target = fs::weakly_canonical(fs::absolute(file, ignored), ignored);
  if (fs::equivalent(target.parent_path(), style_sheets.SourceFolder(), ignored)) {
    throw Error(
        Tr("cannot write %1: its folder holds the program's own stylesheets. Choose another "
           "folder.",
           {file.string()}));
  }
  const std::string name = file.filename().string();
  if (format == ExportFormat::kXml &&
      EqualsIgnoringCase(name, style_sheets.SourceOf(group).filename().string())) {
    throw Error(
        Tr("cannot write %1: the stylesheet beside it takes that name. Choose another name.",
           {file.string()}));
  }
}

}  // namespace

std::string_view ExtensionOf(ExportFormat format) {
  switch (format) {
    case ExportFormat::kXml:
      return ".xml";
    case ExportFormat::kHtml:
      return ".html";
    case ExportFormat::kCsv:
      break;
  }
  return ".csv";
}

ExportOutcome ExportDriver::ExportGroup(const ExportSource& shown, ExportFormat format,
                                        const fs::path& file,
                                        const OpenDatabases& databases) const {
  const IngredientColumnNames names = ScanDynamicGridColumn(shown.grid);
  const std::vector<std::string> visible = shown.grid.Columns().GetVisibleColumnList();
  if (FindDataGroup(shown.index) == nullptr) {
    return {};
  }
  if (const std::string_view missing = MissingNameText(shown); !missing.empty()) {
    return {.done = false, .error_text = std::string(missing)};
  }
  RefuseOpenDatabase(file, databases);
  KeepDatabase(file);
  RefuseStyleSheet(file, format, style_sheets_, shown.index);
  if (format == ExportFormat::kCsv) {
    return {.done = CSVExport(names).ExportData(shown.index, file, databases.trans_db_path, visible,
                                                shown.name, databases.lock_wait,
                                                shown.grid.ShownPeriod())};
  }
  const auto write_xml = [&](const fs::path& xml) {
    return XMLExport(names, style_sheets_)
        .ExportData(shown.index, xml, databases.trans_db_path, visible, shown.name,
                    databases.lock_wait, shown.grid.ShownPeriod());
  };
  return {.done =
              format == ExportFormat::kHtml ? ExportPage(shown, file, write_xml) : write_xml(file)};
}

bool ExportDriver::ExportPage(const ExportSource& shown, const fs::path& file,
                              const std::function<bool(const fs::path&)>& write_xml) const {
  // Report a missing stylesheet before anything is written; afterwards the export reports it twice.
  if (style_sheets_.PresentSourceOf(shown.index).empty()) {
    return false;
  }
  const WorkFolder work;
  const fs::path xml = work.Path() / "group.xml";
  return write_xml(xml) &&
         WriteHtmlPage(style_sheets_, shown.index, xml, file, shown.grid.ShownPeriod());
}

}  // namespace vrx
