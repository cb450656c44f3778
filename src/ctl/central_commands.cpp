#include <filesystem>
#include <memory>
#include <ostream>
#include <string>

#include <CLI/CLI.hpp>

#include "adapters/linux_machine.h"
#include "central/transfer.h"
#include "ctl/central_command.h"
#include "ctl/options.h"
#include "ctl/output.h"
#include "ctl/session.h"

namespace vrx {
namespace {

constexpr const char* kTransactionFile = "A transaction database";

Json TextOrNull(const std::string& text) { return text.empty() ? Json() : Json(text); }

std::string HexText(const std::string& bytes) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text;
  for (const char byte : bytes) {
    const auto code = static_cast<unsigned char>(byte);
    text += kDigits[code >> 4U];
    text += kDigits[code & 0x0FU];
  }
  return text;
}

void AddProof(Json& object, const RowProof& proof) {
  object["rows"] = proof.rows;
  object["target"] = proof.target.ToDouble();
  object["actualBatch"] = proof.actual_batch.ToDouble();
  object["actualFeed"] = proof.actual_feed.ToDouble();
  object["digest"] = HexText(proof.digest);
}

class CentralPushCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command =
        app.add_subcommand("push", "Take the records that the central database lacks there");
    options_.RegisterServer(*command);
    options_.RegisterYard(*command);
    command->add_option("tdb", file_, kTransactionFile)->required();
    command->add_flag("--as-new-source", as_new_source_,
                      "A copy of another file goes on as a source of its own");
    output_.RegisterJson(*command);
    AddExamples(*command, {{"central push --server service=company --yard North JANUARY.TDB",
                            "Every batch goes there once, however often this is done."}});
    return command;
  }

  int Run(Session& session) override {
    PushOrder order{.file = file_,
                    .yard = options_.Yard(session),
                    .machine = MachineId(),
                    .as_new_source = as_new_source_,
                    .lock_wait = session.Context().busy_timeout};
    if (!session.IsUserDatabase(file_, DatabaseKind::kTransaction)) {
      return kFailed;
    }
    return options_.Run(session, [&](CentralConnection& server) {
      const PushOutcome outcome = Push(server, order, ProgressOf(session));
      session.Progress().Clear();
      WriteObject(session.Out(), output_.Form(),
                  {{"source", outcome.source},
                   {"rows", outcome.rows},
                   {"skipped", outcome.skipped},
                   {"imports", outcome.imports},
                   {"lastRow", outcome.last_row},
                   {"at", TextOrNull(outcome.at)}});
      return kDone;
    });
  }

 private:
  CentralOptions options_;
  std::string file_;
  bool as_new_source_ = false;
  OutputOptions output_;
};

class CentralStatusCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command = app.add_subcommand(
        "status", "What the central database has, and what of a file waits to be pushed");
    options_.RegisterServer(*command);
    options_.RegisterYard(*command);
    command->add_option("tdb", file_, kTransactionFile);
    output_.RegisterJson(*command);
    AddExamples(*command, {{"central status --server service=company", "The sources of all yards."},
                           {"central status --server service=company --yard North JANUARY.TDB",
                            "What of a file waits."}});
    return command;
  }

  [[nodiscard]] bool OnlyReads() const override { return true; }

  int Run(Session& session) override {
    const std::string yard = options_.YardIfNamed(session);
    return options_.Run(session, [&](CentralConnection& server) {
      Json answer{{"server", server.Target()},
                  {"login", server.Login()},
                  {"protection", server.Protection()},
                  {"sources", Json::array()}};
      OutputTable table{
          .header = {"yard", "source", "file", "units", "rows", "lastRow", "pushedAt", "parent"},
          .rows = {}};
      for (const YardSource& one : ReadYardSources(server, yard)) {
        const ServerSource& source = one.source;
        table.rows.push_back({one.yard, source.source, source.file, source.unit, one.rows,
                              source.pushes > 0 ? Json(source.last_row) : Json(),
                              TextOrNull(source.pushed_at), TextOrNull(source.parent)});
      }
      if (!file_.empty()) {
        answer["file"] = FileObject(ReadFileStatus(file_, session.Context().busy_timeout));
      }
      if (output_.Form() == OutputForm::kJson) {
        answer["sources"] = ToJson(table);
        WriteObject(session.Out(), OutputForm::kJson, answer);
      } else if (file_.empty()) {
        WriteTable(session.Out(), output_.Form(), table);
      } else {
        WriteObject(session.Out(), output_.Form(), answer["file"]);
      }
      return kDone;
    });
  }

 private:
  static Json FileObject(const FileStatus& status) {
    return {{"source", TextOrNull(status.source)}, {"rows", status.rows},
            {"waiting", status.waiting},           {"changed", status.changes},
            {"pushedTo", status.pushed_to},        {"pushedAt", TextOrNull(status.pushed_at)}};
  }

  CentralOptions options_;
  std::string file_;
  OutputOptions output_;
};

class CentralVerifyCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command = app.add_subcommand(
        "verify", "Compare all pushed records of a file with those of the central database");
    options_.RegisterServer(*command);
    options_.RegisterYard(*command);
    command->add_option("tdb", file_, kTransactionFile)->required();
    output_.RegisterJson(*command);
    AddExamples(*command, {{"central verify --server service=company --yard North JANUARY.TDB",
                            "Exits 1 and names the rows that differ."}});
    return command;
  }

  [[nodiscard]] bool OnlyReads() const override { return true; }

  int Run(Session& session) override {
    const std::string yard = options_.Yard(session);
    return options_.Run(session, [&](CentralConnection& server) {
      const VerifyOutcome outcome =
          Verify(server, file_, yard, session.Context().busy_timeout, ProgressOf(session));
      session.Progress().Clear();
      Write(session, outcome);
      if (!outcome.difference) {
        return kDone;
      }
      session.Op().ShowMessage({.icon = Icon::kCritical,
                                .title = "Central Database",
                                .text = "The file and the central database differ, first in rows " +
                                        std::to_string(outcome.difference->first_row) + " to " +
                                        std::to_string(outcome.difference->last_row) + "."});
      return kFailed;
    });
  }

 private:
  void Write(Session& session, const VerifyOutcome& outcome) const {
    Json answer{{"source", outcome.source}, {"equal", !outcome.difference.has_value()}};
    if (outcome.difference) {
      answer["firstRow"] = outcome.difference->first_row;
      answer["lastRow"] = outcome.difference->last_row;
      answer["changed"] = outcome.difference->changed;
      answer["missingHere"] = outcome.difference->missing_here;
      answer["missingThere"] = outcome.difference->missing_there;
    } else {
      AddProof(answer, outcome.proof);
      answer["erased"] = outcome.erased;
      answer["waiting"] = outcome.waiting;
    }
    answer["asOf"] = TextOrNull(outcome.as_of);
    WriteObject(session.Out(), output_.Form(), answer);
  }

  CentralOptions options_;
  std::string file_;
  OutputOptions output_;
};

class CentralRestoreCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command = app.add_subcommand(
        "restore", "Make a new transaction database of what the central database has");
    options_.RegisterServer(*command);
    options_.RegisterYard(*command);
    command->add_option("--source", source_, "ID of the source, where the yard has several")
        ->type_name("UUID");
    command->add_option("--out", out_, "The new file; an existing one is refused")
        ->type_name("NEW.TDB")
        ->required();
    output_.RegisterJson(*command);
    AddExamples(*command, {{"central restore --server service=company --yard North --out NORTH.TDB",
                            "A new file with all that was pushed of a lost one."}});
    return command;
  }

  int Run(Session& session) override {
    const RestoreOrder order{
        .yard = options_.Yard(session), .source = source_, .out = out_, .machine = MachineId()};
    return options_.Run(session, [&](CentralConnection& server) {
      const RestoreOutcome outcome =
          Restore(server, order, session.Context().calendar, ProgressOf(session));
      session.Progress().Clear();
      Json answer{{"source", outcome.source}};
      AddProof(answer, outcome.proof);
      answer["imports"] = outcome.imports;
      answer["asOf"] = TextOrNull(outcome.as_of);
      WriteObject(session.Out(), output_.Form(), answer);
      return kDone;
    });
  }

 private:
  CentralOptions options_;
  std::string source_;
  std::string out_;
  OutputOptions output_;
};

}  // namespace

std::unique_ptr<Command> MakeCentralPushCommand() { return std::make_unique<CentralPushCommand>(); }

std::unique_ptr<Command> MakeCentralStatusCommand() {
  return std::make_unique<CentralStatusCommand>();
}

std::unique_ptr<Command> MakeCentralVerifyCommand() {
  return std::make_unique<CentralVerifyCommand>();
}

std::unique_ptr<Command> MakeCentralRestoreCommand() {
  return std::make_unique<CentralRestoreCommand>();
}

}  // namespace vrx
