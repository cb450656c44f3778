#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "central/releases.h"
#include "ctl/central_command.h"
#include "ctl/options.h"
#include "ctl/output.h"
#include "ctl/session.h"

namespace vrx {
namespace {

constexpr const char* kRecipeFile = "A recipe database";

Json NullIfEmpty(const std::string& text) { return text.empty() ? Json() : Json(text); }

class CentralPublishCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command = app.add_subcommand(
        "publish", "Publish a recipe database for the yards; for the nutritionist");
    options_.RegisterServer(*command);
    command->add_option("rdb", file_, kRecipeFile)->required();
    command->add_option("--yards", yards_, "Names of the yards that it is for; else all yards")
        ->delimiter(',')
        ->type_name("A,B");
    command->add_option("--note", note_, "A word for the yards")->type_name("TEXT");
    output_.RegisterJson(*command);
    AddExamples(*command, {{"central publish --server service=company SITE.RDB --note Summer",
                            "Writes the number of the release."},
                           {"central publish --server service=company SITE.RDB --yards North,South",
                            "Only these two yards see it."}});
    return command;
  }

  [[nodiscard]] bool OnlyReads() const override { return true; }

  int Run(Session& session) override {
    if (!session.IsUserDatabase(file_, DatabaseKind::kRecipe)) {
      return kFailed;
    }
    const PublishOrder order{
        .file = file_, .yards = yards_, .note = note_, .lock_wait = session.Context().busy_timeout};
    return options_.Run(session, [&](CentralConnection& server) {
      const PublishOutcome outcome = Publish(server, order, ProgressOf(session));
      session.Progress().Clear();
      WriteObject(session.Out(), output_.Form(),
                  {{"release", outcome.release},
                   {"units", outcome.unit},
                   {"ingredients", outcome.ingredients},
                   {"recipes", outcome.recipes},
                   {"pens", outcome.pens}});
      return kDone;
    });
  }

 private:
  CentralOptions options_;
  std::string file_;
  std::vector<std::string> yards_;
  std::string note_;
  OutputOptions output_;
};

class CentralFetchCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command = app.add_subcommand(
        "fetch", "Make a new recipe database of the yard's and a published release");
    options_.RegisterServer(*command);
    options_.RegisterYard(*command);
    command->add_option("--compare", file_, "The yard's recipe database; it is only read")
        ->type_name("SITE.RDB")
        ->required();
    command
        ->add_option("--out", out_,
                     "The new file; an existing one is refused; without it only the differences")
        ->type_name("NEW.RDB");
    constexpr int kMostReleases = 1000000000;
    AddWholeNumber(*command, "--release", "Number of the release; else the newest one for the yard",
                   1, kMostReleases, release_);
    output_.RegisterCsv(*command);
    output_.RegisterJson(*command);
    AddExamples(*command,
                {{"central fetch --server service=company --yard North --compare SITE.RDB --out "
                  "SUMMER.RDB",
                  "Keeps the yard's pens, head counts, feed amounts and dry matter."},
                 {"central fetch --server service=company --yard North --compare SITE.RDB",
                  "What fetching would change."}});
    return command;
  }

  [[nodiscard]] bool OnlyReads() const override { return out_.empty(); }

  int Run(Session& session) override {
    FetchOrder order{.what = {.yard = options_.Yard(session),
                              .file = file_,
                              .release = release_ > 0 ? std::optional(release_) : std::nullopt,
                              .lock_wait = session.Context().busy_timeout},
                     .out = out_};
    if (!session.IsUserDatabase(file_, DatabaseKind::kRecipe)) {
      return kFailed;
    }
    return options_.Run(session, [&](CentralConnection& server) {
      ReleaseDifferences answer = DifferencesTo(server, order.what, ProgressOf(session));
      session.Progress().Clear();
      if (!out_.empty()) {
        if (!answer.renamed.empty() && !Confirmed(session, answer)) {
          return kFailed;
        }
        order.what.release = answer.release.number;
        order.accepted = answer.renamed;
        answer = Fetch(server, order, session.Context().calendar, ProgressOf(session));
        session.Progress().Clear();
      }
      Write(session, answer);
      return kDone;
    });
  }

 private:
  static bool Confirmed(Session& session, const ReleaseDifferences& answer) {
    std::string text = "Release " + std::to_string(answer.release.number) +
                       " gives records in use other names, which old batches in a data module "
                       "would get, too:";
    for (const RenamedRecord& renamed : answer.renamed) {
      text += " " + std::string(WordOf(renamed.record)) + " " + std::to_string(renamed.id) + " " +
              renamed.here + " becomes " + renamed.release + ".";
    }
    return session.Op().ShowMessage({.icon = Icon::kQuestion,
                                     .buttons = Buttons::kYesNo,
                                     .title = "Central Database",
                                     .text = text + " Do you want to fetch it?",
                                     .refuses_by_default = true}) == Answer::kYes;
  }

  void Write(Session& session, const ReleaseDifferences& answer) const {
    for (const std::string& recipe : answer.not_computed) {
      session.Op().ShowNote(recipe);
    }
    OutputTable table{.header = {"record", "id", "name", "place", "ingredient", "field", "here",
                                 "release", "kept"},
                      .rows = {}};
    for (const RecordDifference& one : answer.differences) {
      table.rows.push_back({WordOf(one.record), one.id, one.name,
                            one.place > 0 ? Json(one.place) : Json(), NullIfEmpty(one.ingredient),
                            one.field, one.here ? Json(*one.here) : Json(),
                            one.release ? Json(*one.release) : Json(), one.kept});
    }
    if (output_.Form() != OutputForm::kJson) {
      WriteTable(session.Out(), output_.Form(), table);
      return;
    }
    OutputTable renamed{.header = {"record", "id", "here", "release"}, .rows = {}};
    for (const RenamedRecord& one : answer.renamed) {
      renamed.rows.push_back({WordOf(one.record), one.id, one.here, one.release});
    }
    WriteObject(session.Out(), OutputForm::kJson,
                {{"release", answer.release.number},
                 {"units", answer.release.unit},
                 {"file", answer.release.file},
                 {"note", NullIfEmpty(answer.release.note)},
                 {"at", answer.release.at},
                 {"out", NullIfEmpty(out_)},
                 {"renamed", ToJson(renamed)},
                 {"differences", ToJson(table)},
                 {"notComputed", answer.not_computed}});
  }

  CentralOptions options_;
  std::string file_;
  std::string out_;
  int release_ = 0;
  OutputOptions output_;
};

}  // namespace

std::unique_ptr<Command> MakeCentralPublishCommand() {
  return std::make_unique<CentralPublishCommand>();
}

std::unique_ptr<Command> MakeCentralFetchCommand() {
  return std::make_unique<CentralFetchCommand>();
}

}  // namespace vrx
