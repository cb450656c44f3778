#include "ctl/history_commands.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>
#include <SQLiteCpp/Database.h>

#include "base/date.h"
#include "ctl/command.h"
#include "ctl/options.h"
#include "ctl/output.h"
#include "ctl/recipe_file.h"
#include "ctl/session.h"
#include "database/connection.h"
#include "database/records.h"
#include "export/export_driver.h"
#include "export/html_export.h"
#include "history/data_group.h"
#include "history/history_grid.h"
#include "history/period.h"
#include "presenter/export.h"
#include "presenter/history.h"
#include "presenter/report_failure.h"
#include "settings/data_folder.h"

namespace vrx {

namespace fs = std::filesystem;

namespace {

class GroupsCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command = app.add_subcommand("groups", "List the data groups by their index");
    output_.RegisterCsv(*command);
    output_.RegisterJson(*command);
    AddExamples(*command, {{"groups", "The numbers that --group takes."}});
    return command;
  }

  [[nodiscard]] bool OnlyReads() const override { return true; }

  int Run(Session& session) override {
    OutputTable table{.header = {"Index", "Data Group"}, .rows = {}};
    for (const DataGroup& group : DataGroups()) {
      table.rows.push_back({group.index, std::string(group.item)});
    }
    WriteTable(session.Out(), output_.Form(), table);
    return kDone;
  }

 private:
  OutputOptions output_;
};

std::string KindWord(HistoryRowKind kind) {
  switch (kind) {
    case HistoryRowKind::kGroup:
      return "group";
    case HistoryRowKind::kTotal:
      return "total";
    case HistoryRowKind::kRecord:
      break;
  }
  return "record";
}

std::vector<std::string> HeaderCells(const HistoryGrid& grid, const std::vector<int>& columns) {
  std::vector<std::string> cells{"kind", "depth", "caption"};
  for (const int column : columns) {
    cells.push_back(grid.Columns().Caption(column));
  }
  return cells;
}

std::vector<std::string> RowCells(ShownRow row, const std::vector<int>& columns) {
  std::vector<std::string> cells{KindWord(row.kind), std::to_string(row.depth), row.caption};
  row.cells.resize(kGridColumnCount);  // a group row has no cells
  for (const int column : columns) {
    cells.push_back(std::move(row.cells[static_cast<std::size_t>(column) - 1]));
  }
  return cells;
}

class ShowCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command =
        app.add_subcommand("show", "Show a data group's rows as the grid shows them");
    source_.Register(*command);
    command->add_flag("--collapsed", collapsed_, "All groups closed");
    command->add_option("--limit", limit_, "At most so many rows, of every kind")
        ->check(CLI::NonNegativeNumber);
    output_.RegisterCsv(*command);
    AddExamples(*command, {{"show JANUARY.TDB --group 3 --collapsed",
                            "A row for each recipe, with its total."},
                           {"show JANUARY.TDB --group 8 --from 2026-01-05 --to 2026-01-11",
                            "The feedings of one week."},
                           {"show JANUARY.TDB --group 3 --difference",
                            "How far each load and delivery was from its target."},
                           {"show JANUARY.TDB --group 4 --name STEERS --recipes SITE.RDB --csv",
                            "One recipe, for a spreadsheet."}});
    return command;
  }

  [[nodiscard]] bool OnlyReads() const override { return true; }

  int Run(Session& session) override {
    return source_.Run(session, [&](HistoryGrid& grid) {
      Write(session.Out(), grid);
      return kDone;
    });
  }

 private:
  // Writes row by row, because the grid never holds the whole table in memory.
  void Write(std::ostream& out, HistoryGrid& grid) const {
    if (!collapsed_) {
      grid.ExpandAll();
    }
    const std::vector<int> columns = grid.Columns().VisibleColumns();
    WriteLine(out, output_.Form(), HeaderCells(grid, columns));
    const std::int64_t rows = std::min(limit_, grid.RowCount());
    for (std::int64_t row = 1; row <= rows && out; ++row) {
      WriteLine(out, output_.Form(), RowCells(grid.Row(row), columns));
    }
  }

  HistorySource source_;
  bool collapsed_ = false;
  std::int64_t limit_ = std::numeric_limits<std::int64_t>::max();
  OutputOptions output_;
};

// A format has the name of its file name extension.
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

  [[nodiscard]] bool OnlyReads() const override { return true; }

  int Run(Session& session) override {
    return source_.Run(session, [&](const HistoryGrid& grid) {
      const bool done = RunReported(session.Op(), ExportFailure(session.Settings()),
                                    [&] { return Export(session, grid); });
      return done ? kDone : kFailed;
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
    ReportExportOutcome(session.Op(), outcome);
    return outcome.done;
  }

  HistorySource source_;
  std::string format_;
  std::string out_;
};

}  // namespace

void HistorySource::Register(CLI::App& app, Recipes recipes) {
  app.add_option("tdb", transactions_, "A transaction database")->required();
  AddWholeNumber(app, "--group", "Index of the data group; see groups", 0, kDataGroupCount - 1,
                 group_)
      ->required();
  app.add_option("--name", name_, "The recipe, ingredient or pen of groups 4, 7 and 9");
  app.add_option("--recipes", recipes_, "The recipe database that names the ingredient columns")
      ->type_name("RDB")
      ->required(recipes == Recipes::kRequired);
  AddDay(app, "--from", "Only records from this day on", from_);
  AddDay(app, "--to", "Only records up to this day, included", to_);
  app.add_flag("--difference", differences_,
               "With the differences of batched and fed weights from their targets");
}

Period HistorySource::ShownPeriod() const {
  const Period period{.from = ParseStoredDate(from_), .to = ParseStoredDate(to_)};
  if (!period.IsPossible()) {
    throw CLI::ValidationError("--to", to_ + " is before " + from_ + ", the first day");
  }
  return period;
}

int HistorySource::Run(Session& session, const std::function<int(HistoryGrid&)>& work) const {
  CheckUsage();
  const Period period = ShownPeriod();
  if (!session.IsUserDatabase(transactions_, DatabaseKind::kTransaction)) {
    return kFailed;
  }
  std::vector<IngredientRecord> ingredients;
  if (!recipes_.empty()) {
    const int read = ReadRecipeFile(session, recipes_, [&](SQLite::Database& recipes) {
      ingredients = ReadIngredients(recipes);
    });
    if (read != kDone) {
      return read;
    }
  }
  return session.OnDatabase(transactions_, DatabaseKind::kTransaction, [&] {
    SQLite::Database database =
        OpenDatabase(transactions_, Access::kRead, session.Context().busy_timeout);
    HistoryGrid grid(database);
    grid.RefreshIngredientColumns(ingredients);
    grid.SetUp(*FindDataGroup(group_), name_);
    grid.ShowPeriod(period);
    grid.ShowDifferences(differences_);
    grid.SetTolerance(session.Settings().DifferenceTolerance());
    if (const std::string left_out = LeftOutText(grid.UndatedCount()); !left_out.empty()) {
      session.Context().err << left_out << '\n';
    }
    return work(grid);
  });
}

OpenDatabases HistorySource::Databases(const Session& session) const {
  return {.recipe_db_path = recipes_,
          .trans_db_path = transactions_,
          .lock_wait = session.Context().busy_timeout};
}

void HistorySource::CheckUsage() const {
  const DataGroup& group = *FindDataGroup(group_);
  const std::string words = std::to_string(group_) + ", " + std::string(group.item) + ",";
  if (group.named_column.empty()) {
    if (!name_.empty()) {
      throw CLI::ValidationError("--name", "group " + words + " takes no name");
    }
  } else if (name_.empty() || recipes_.empty()) {
    throw CLI::ValidationError(name_.empty() ? "--name" : "--recipes",
                               "group " + words + " needs --name and --recipes");
  }
}

std::unique_ptr<Command> MakeGroupsCommand() { return std::make_unique<GroupsCommand>(); }

std::unique_ptr<Command> MakeShowCommand() { return std::make_unique<ShowCommand>(); }

std::unique_ptr<Command> MakeExportCommand() { return std::make_unique<ExportCommand>(); }

}  // namespace vrx
