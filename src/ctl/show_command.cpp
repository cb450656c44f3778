#include <algorithm>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "ctl/command.h"
#include "ctl/examples.h"
#include "ctl/history_commands.h"
#include "ctl/output.h"
#include "ctl/session.h"
#include "history/history_grid.h"

namespace vrx {
namespace {

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
  row.cells.resize(kHistoryColumnCount);  // a group row has none
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
                           {"show JANUARY.TDB --group 4 --name STEERS --recipes SITE.RDB --csv",
                            "One recipe, for a spreadsheet."}});
    return command;
  }

  bool OnlyReads() const override { return true; }

  int Run(Session& session) override {
    return source_.Run(session, [&](HistoryGrid& grid) {
      Write(session.Out(), grid);
      return kDone;
    });
  }

 private:
  // A row at a time: the grid holds a page of the table, never all of it.
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

}  // namespace

std::unique_ptr<Command> MakeShowCommand() { return std::make_unique<ShowCommand>(); }

}  // namespace vrx
