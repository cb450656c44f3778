#include <memory>
#include <ostream>
#include <string>

#include <CLI/CLI.hpp>
#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Transaction.h>

#include "ctl/command.h"
#include "ctl/examples.h"
#include "ctl/recipe_file.h"
#include "ctl/session.h"
#include "exchange/recipe_text.h"

namespace vrx {
namespace {

class DownloadTextCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command = app.add_subcommand(
        "download-text", "Print the recipe file that a download would send; nothing is stored");
    command->add_option("rdb", file_, "A recipe database")->required();
    AddExamples(*command, {{"download-text SITE.RDB > SITE.RBU",
                            "Writes the recipe file as a backup, byte for byte."}});
    return command;
  }

  bool OnlyReads() const override { return true; }

  int Run(Session& session) override {
    const bool batch_target = session.Settings().BatchTargetWtIsRecTargetOn();
    return ReadRecipeFile(session, file_, [&](SQLite::Database& database) {
      const SQLite::Transaction snapshot(database);
      session.Out() << BuildRecipeDownload(ReadRecipeTables(database), batch_target).text;
    });
  }

 private:
  std::string file_;
};

}  // namespace

std::unique_ptr<Command> MakeDownloadTextCommand() {
  return std::make_unique<DownloadTextCommand>();
}

}  // namespace vrx
