#include <memory>
#include <string>

#include <CLI/CLI.hpp>

#include "ctl/command.h"
#include "ctl/examples.h"
#include "ctl/output.h"
#include "ctl/session.h"
#include "history/data_group.h"

namespace vrx {
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

  bool OnlyReads() const override { return true; }

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

}  // namespace

std::unique_ptr<Command> MakeGroupsCommand() { return std::make_unique<GroupsCommand>(); }

}  // namespace vrx
