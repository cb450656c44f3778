#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "base/encoding.h"
#include "ctl/command.h"
#include "ctl/examples.h"
#include "ctl/import_road.h"
#include "ctl/output.h"
#include "ctl/session.h"

namespace vrx {
namespace {

// Row by row: a damaged file can count many more rows than it fills.
void WriteRows(std::ostream& out, const ImportedData& rows) {
  std::vector<std::string> cells;
  for (int column = 1; column <= kImportColumns; ++column) {
    cells.push_back(ImportColumnKey(column));
  }
  WriteLine(out, OutputForm::kCsv, cells);
  for (std::size_t row = 1; row <= rows.RowCount(); ++row) {
    for (int column = 1; column <= kImportColumns; ++column) {
      cells[static_cast<std::size_t>(column) - 1] = Windows1252ToUtf8(rows.Cell(row, column));
    }
    WriteLine(out, OutputForm::kCsv, cells);
  }
}

class ImportCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command = app.add_subcommand("import", "Parse a transaction file");
    command->add_option("file", file_, "A transaction file (.QXT)")->required();
    output_.RegisterCsv(*command);
    output_.RegisterJson(*command);
    AddExamples(*command, {{"import 01.QXT", "Tells unit, batches and rows."},
                           {"import 01.QXT --csv > rows.csv", "Every row with its 112 columns."}});
    return command;
  }

  bool OnlyReads() const override { return true; }

  int Run(Session& session) override {
    ImportRoad road(session, {});
    if (!road.Import(file_)) {
      return kFailed;
    }
    session.Progress().Clear();
    if (output_.Form() == OutputForm::kCsv) {
      WriteRows(session.Out(), road.File().Imported());
    } else {
      WriteObject(session.Out(), output_.Form(),
                  {{"units", road.File().FileUnits()},
                   {"batches", road.File().FileTransactionCount()},
                   {"rows", road.File().FileRecordCount()},
                   {"notRead", road.File().Imported().UnreadFeeds().size()}});
    }
    return kDone;
  }

 private:
  std::string file_;
  OutputOptions output_;
};

}  // namespace

std::unique_ptr<Command> MakeImportCommand() { return std::make_unique<ImportCommand>(); }

}  // namespace vrx
