#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "central/company_figures.h"
#include "ctl/central_command.h"
#include "ctl/insight_command.h"
#include "ctl/options.h"
#include "ctl/output.h"
#include "ctl/session.h"

namespace vrx {
namespace {

struct FigureTexts {
  const char* name;
  const char* help;
  const char* example;
  const char* does;
};

constexpr FigureTexts TextsOf(CompanyFigure figure) {
  switch (figure) {
    case CompanyFigure::kAccuracy:
      return {"accuracy", "How far loads or deliveries of all yards were from their targets",
              "central accuracy --server service=company --by yard,ingredient --from 2026-01-01 "
              "--to 2026-01-31",
              "The company's accuracy in January."};
    case CompanyFigure::kBalance:
      return {"balance",
              "Batches of all yards that were never fed or loaded, or are out of balance",
              "central balance --server service=company --by yard,month --units LB",
              "Counts and weights by yard and month; without --by the batches."};
    case CompanyFigure::kDelivered:
      return {"delivered", "What the pens of all yards were called for and were fed",
              "central delivered --server service=company --by yard,day --csv",
              "A line for each yard and day, for a spreadsheet."};
    case CompanyFigure::kUse:
      return {"use", "What all yards used of each ingredient",
              "central use --server service=company --from 2026-01-01 --to 2026-01-31",
              "What the company used in January."};
    case CompanyFigure::kCompleteness:
      break;
  }
  return {"completeness",
          "What is stored of a period at each yard, and what is known to be missing",
          "central completeness --server service=company --from 2026-01-01 --json",
          "The statement of each yard."};
}

std::string Listed(const std::vector<std::string_view>& words) {
  std::string text;
  for (const std::string_view word : words) {
    text += (text.empty() ? "" : ", ") + std::string(word);
  }
  return text;
}

class CentralFigureCommand : public Command {
 public:
  explicit CentralFigureCommand(CompanyFigure figure) : question_{.figure = figure} {}

  CLI::App* Register(CLI::App& app) override {
    const FigureTexts texts = TextsOf(question_.figure);
    CLI::App* command = app.add_subcommand(texts.name, texts.help);
    options_.RegisterServer(*command);
    AddDay(*command, "--from", "Only from this day on", from_);
    AddDay(*command, "--to", "Only up to this day, included", to_);
    RegisterKeys(*command);
    command->add_option("--units", question_.unit, "Unit of all weights, LB or KG; else KG")
        ->check(CLI::IsMember({"LB", "KG"}))
        ->type_name("UNIT");
    if (question_.figure == CompanyFigure::kAccuracy) {
      RegisterAccuracy(*command);
    } else if (question_.figure == CompanyFigure::kBalance) {
      command->add_flag("--all", question_.all, "Balanced batches too");
    }
    output_.RegisterCsv(*command);
    output_.RegisterJson(*command);
    AddExamples(*command, {{texts.example, texts.does}});
    return command;
  }

  [[nodiscard]] bool OnlyReads() const override { return true; }

  int Run(Session& session) override {
    Complete();
    return options_.Run(session, [&](CentralConnection& server) {
      const CompanyAnswer answer = ReadCompany(server, question_, ProgressOf(session));
      session.Progress().Clear();
      if (output_.Form() == OutputForm::kJson) {
        WriteObject(session.Out(), OutputForm::kJson, Document(answer));
      } else {
        WriteAnswer(session, output_.Form(), answer.table);
        WriteCompanyNotes(session.Context().err, answer);
      }
      return kDone;
    });
  }

 private:
  void RegisterKeys(CLI::App& command) {
    CompanyKeys keys = KeysOf(question_.figure);
    std::string help = "Keys of " + Listed(keys.all);
    if (question_.figure == CompanyFigure::kAccuracy) {
      help += ", of deliveries pen";
    }
    keys.all.resize(keys.usual);
    help += keys.usual > 0 ? "; else " + Listed(keys.all) : "; else each batch";
    command.add_option("--by", question_.by, help)->delimiter(',')->type_name("KEYS");
  }

  void RegisterAccuracy(CLI::App& command) {
    command.add_flag("--deliveries", question_.deliveries, "Deliveries to pens in place of loads");
    AddAmount(command, "--within-percent", "Limit in percent of the target; else 2", percent_);
    AddAmount(command, "--within-weight", "Limit as a weight; else 5 kg", weight_);
    AddAmount(command, "--beyond", "Limit of large deviations; else 62.5 kg", beyond_);
    AddAmount(command, "--division",
              "The scale's division in the unit of each yard, which is always within; else 0",
              division_);
  }

  // Typed weights are in the unit of the answer.
  void Complete() {
    question_.from = ParseStoredDate(from_);
    question_.to = ParseStoredDate(to_);
    if (question_.from && question_.to && *question_.to < *question_.from) {
      throw CLI::ValidationError("--to", to_ + " is before " + from_ + ", the first day");
    }
    const CompanyKeys keys = KeysOf(question_.figure, question_.deliveries);
    if (question_.by.empty()) {
      question_.by.assign(keys.all.begin(),
                          keys.all.begin() + static_cast<std::ptrdiff_t>(keys.usual));
    }
    if (const std::string why = WrongKeys(question_); !why.empty()) {
      throw CLI::ValidationError("--by", why);
    }
    const WeightUnit unit = UnitOf(question_.unit);
    AccuracyLimits& limits = question_.limits;
    limits.percent = percent_.value_or(limits.percent);
    limits.weight = weight_ ? WeightLimit{*weight_, unit} : limits.weight;
    limits.beyond = beyond_ ? WeightLimit{*beyond_, unit} : limits.beyond;
    limits.division = division_.value_or(limits.division);
  }

  [[nodiscard]] Json Document(const CompanyAnswer& answer) const {
    Json document{{"units", question_.unit},
                  {"from", OrNull(question_.from)},
                  {"to", OrNull(question_.to)},
                  {"yards", Json::array()},
                  {"openImports", Json::array()}};
    for (const YardAsOf& yard : answer.yards) {
      document["yards"].push_back({{"yard", yard.yard},
                                   {"asOf", yard.at.empty() ? Json() : Json(yard.at)},
                                   {"lastDay", OrNull(yard.last_day)},
                                   {"behind", yard.behind}});
    }
    for (const OpenImport& import : answer.open_imports) {
      document["openImports"].push_back({{"yard", import.yard},
                                         {"source", import.source},
                                         {"import", import.import},
                                         {"file", import.file},
                                         {"units", import.units},
                                         {"rows", import.rows}});
    }
    if (question_.figure != CompanyFigure::kAccuracy) {
      document["lines"] = ToJson(answer.table);
      return document;
    }
    const WeightUnit unit = UnitOf(question_.unit);
    document["limits"] = {{"percent", question_.limits.percent},
                          {"weight", question_.limits.weight.In(unit)},
                          {"beyond", question_.limits.beyond.In(unit)},
                          {"division", question_.limits.division}};
    document["groups"] = ToJson(answer.table);
    AnswerTable total = answer.table;
    total.rows = {answer.table.total};
    document["total"] = ToJson(total)[0];
    document["total"]["key"] = Json::object();
    return document;
  }

  static void WriteCompanyNotes(std::ostream& err, const CompanyAnswer& answer) {
    for (const YardAsOf& yard : answer.yards) {
      err << yard.yard
          << (yard.at.empty()
                  ? " has pushed nothing yet"
                  : " is as of " + yard.at +
                        (yard.last_day ? ", its last record of " + StoredText(*yard.last_day) : ""))
          << (yard.behind ? ": it is behind.\n" : ".\n");
    }
    for (const OpenImport& import : answer.open_imports) {
      err << "Import " << import.import << " of " << import.yard << " (" << import.file
          << ") is in " << import.units << " and not settled: its " << import.rows
          << " rows are left out.\n";
    }
  }

  CentralOptions options_;
  CompanyQuestion question_;
  std::string from_;
  std::string to_;
  std::optional<double> percent_;
  std::optional<double> weight_;
  std::optional<double> beyond_;
  std::optional<double> division_;
  OutputOptions output_;
};

}  // namespace

std::unique_ptr<Command> MakeCentralAccuracyCommand() {
  return std::make_unique<CentralFigureCommand>(CompanyFigure::kAccuracy);
}

std::unique_ptr<Command> MakeCentralBalanceCommand() {
  return std::make_unique<CentralFigureCommand>(CompanyFigure::kBalance);
}

std::unique_ptr<Command> MakeCentralDeliveredCommand() {
  return std::make_unique<CentralFigureCommand>(CompanyFigure::kDelivered);
}

std::unique_ptr<Command> MakeCentralUseCommand() {
  return std::make_unique<CentralFigureCommand>(CompanyFigure::kUse);
}

std::unique_ptr<Command> MakeCentralCompletenessCommand() {
  return std::make_unique<CentralFigureCommand>(CompanyFigure::kCompleteness);
}

}  // namespace vrx
