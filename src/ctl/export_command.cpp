#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include <CLI/CLI.hpp>

#include "ctl/command.h"
#include "ctl/examples.h"
#include "ctl/history_commands.h"
#include "ctl/session.h"
#include "export/export_driver.h"
#include "export/style_sheet.h"
#include "history/data_group.h"
#include "presenter/export_messages.h"
#include "settings/data_folder.h"

namespace vrx {
namespace {

namespace fs = std::filesystem;

// A format is named as its files are.
ExportFormat FormatOf(std::string_view name) {
  for (const ExportFormat format : {ExportFormat::kXml, ExportFormat::kHtml}) {
    if (ExtensionOf(format).substr(1) == name) {
      return format;
    }
  }
  return ExportFormat::kCsv;
}

class ExportCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command =
        app.add_subcommand("export", "Write a data group to a file, as the Export tab does");
    source_.Register(*command, HistorySource::Recipes::kRequired);
    command->add_option("--format", format_, "Form of the file; html is one page for a browser")
        ->required()
        ->check(CLI::IsMember({"csv", "xml", "html"}));
    command
        ->add_option("--out", out_,
                     "The file; an older one is replaced, its folder is made if missing")
        ->required()
        ->type_name("FILE");
    AddExamples(
        *command,
        {{"export JANUARY.TDB --group 8 --recipes SITE.RDB --format csv --out pens.csv",
          "The feed of every pen, for a spreadsheet."},
         {"export JANUARY.TDB --group 3 --recipes SITE.RDB --format html --out recipes.html",
          "The recipes as a page for a browser."}});
    return command;
  }

  bool OnlyReads() const override { return true; }

  int Run(Session& session) override {
    return source_.Run(session, [&](const HistoryGrid& grid) {
      return TrapExportError(session.Op(), session.Settings(),
                             [&] { return Export(session, grid); })
                 ? kDone
                 : kFailed;
    });
  }

 private:
  bool Export(Session& session, const HistoryGrid& grid) const {
    if (!HasDataToExport(session.Op(), grid)) {
      return false;
    }
    if (const fs::path folder = fs::path(out_).parent_path(); !folder.empty()) {
      Folder::CheckPathAndCreate(folder);
    }
    const DataGroup& group = grid.Group();
    session.Progress().SetProgressMessage("Exporting " + std::string(group.item));
    const StyleSheets style_sheets(session.DataFolder(), session.Context().system, session.Op());
    const ExportOutcome outcome =
        ExportDriver(style_sheets)
            .ExportGroup(
                {.grid = grid, .index = group.index, .text = group.item, .name = source_.Name()},
                FormatOf(format_), out_, source_.Databases(session));
    TellExportOutcome(session.Op(), outcome);
    return outcome.done;
  }

  HistorySource source_;
  std::string format_;
  std::string out_;
};

}  // namespace

std::unique_ptr<Command> MakeExportCommand() { return std::make_unique<ExportCommand>(); }

}  // namespace vrx
