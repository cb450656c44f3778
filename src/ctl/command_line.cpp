#include "ctl/command_line.h"

#include <exception>
#include <memory>
#include <ostream>
#include <utility>

#include <CLI/CLI.hpp>

#include "ctl/command.h"
#include "ctl/options.h"
#include "ctl/session.h"

namespace vrx {
namespace {

struct Entry {
  std::unique_ptr<Command> command;
  CLI::App* app;
};

// The parser of one run, with its commands.
struct CommandTree {
  CommandTree();

  CLI::App app{"VRX-2260 Transfer Data Software on the command line", "vrx2260ctl"};
  GlobalOptions options;
  std::vector<Entry> entries;
};

CommandTree::CommandTree() {
  app.fallthrough();
  app.require_subcommand(1);
  app.set_version_flag("--version", std::string("vrx2260ctl ") + VRX_VERSION);
  app.add_flag("--yes", options.yes, "Answer every question with its going-on button");
  app.add_option("--data-dir", options.data_dir, "Folder in place of the application data folder")
      ->type_name("DIR");
  for (auto& command : MakeCommands()) {
    CLI::App* subcommand = command->Register(app);
    entries.push_back({std::move(command), subcommand});
  }
  AddExamples(app, {{"module upload --out today --port 2", "Fetches the files of the data module."},
                    {"store today/01.QXT --into JANUARY.TDB --recipes SITE.RDB",
                     "Puts one into a transaction database."},
                    {"show --help", "The options and examples of a command."}});
}

int RunChosen(const std::vector<Entry>& entries, Session& session) {
  for (const Entry& entry : entries) {
    if (entry.app->parsed()) {
      if (entry.command->OnlyReads()) {
        session.OnlyRead();
      }
      return entry.command->Run(session);
    }
  }
  return kWrongUsage;
}

}  // namespace

std::vector<std::unique_ptr<Command>> MakeCommands() {
  std::vector<std::unique_ptr<Command>> commands;
  commands.push_back(MakeNewCommand());
  commands.push_back(MakeInfoCommand());
  commands.push_back(MakeSettingsCommand());
  commands.push_back(MakeListCommand());
  commands.push_back(MakeSetCommand());
  commands.push_back(MakeLineCommand());
  commands.push_back(MakeRecipeCommand());
  commands.push_back(MakeWhereUsedCommand());
  commands.push_back(MakeResetCommand());
  commands.push_back(MakeDownloadTextCommand());
  commands.push_back(MakeModuleCommand());
  commands.push_back(MakeDirectCommand());
  commands.push_back(MakeImportCommand());
  commands.push_back(MakeStoreCommand());
  commands.push_back(MakeGroupsCommand());
  commands.push_back(MakeShowCommand());
  commands.push_back(MakeExportCommand());
  commands.push_back(MakePrintCommand());
  commands.push_back(MakeConvertCommand());
  commands.push_back(MakeAccuracyCommand());
  commands.push_back(MakeCompositionCommand());
  commands.push_back(MakeBalanceCommand());
  commands.push_back(MakeTimesCommand());
  commands.push_back(MakeDeliveredCommand());
  commands.push_back(MakeTraceCommand());
  commands.push_back(MakeHoldingCommand());
  commands.push_back(MakeCompletenessCommand());
  commands.push_back(MakeImportsCommand());
  commands.push_back(MakeUseCommand());
  commands.push_back(MakeReportCommand());
  commands.push_back(MakeCentralCommand());
  return commands;
}

void LookAtCommands(const std::function<void(const CLI::App&)>& look) { look(CommandTree().app); }

int RunCommandLine(const std::vector<std::string>& args, const CommandContext& context) {
  CommandTree tree;
  CLI::App& app = tree.app;
  try {
    app.parse(std::vector<std::string>(args.rbegin(), args.rend()));
    Session session(context, tree.options);
    const int code = RunChosen(tree.entries, session);
    context.out.flush();
    if (!context.out) {
      context.err << "Error: the standard output could not be written\n";
      return kFailed;
    }
    return code;
  } catch (const CLI::ParseError& error) {
    if (app.get_subcommands().empty() && app.remaining_size() > 0) {
      context.err << app.remaining().front() << " is no command\n";
    }
    return app.exit(error, context.out, context.err) == 0 ? kDone : kWrongUsage;
  } catch (const std::exception& error) {
    context.err << "Error: " << error.what() << '\n';
    return kFailed;
  }
}

}  // namespace vrx
