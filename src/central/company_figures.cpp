#include "central/company_figures.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <span>

#include "base/translation.h"
#include "central/administration.h"
#include "central/server.h"
#include "insight/names.h"
#include "insight/question.h"

namespace vrx {
namespace {

struct Key {
  std::string_view word;
  std::string_view column;  // of the view
};

struct Measure {
  AnswerColumn column;
  std::string_view sql;
  bool is_sum = false;  // of weights: made for each unit and then converted
};

// A view by day whose lines are added up by keys.
struct GroupedView {
  std::string_view view;
  std::span<const Key> keys;
  std::size_t usual;
  std::span<const Measure> measures;
};

constexpr std::string_view kDay = "to_char(v.day, 'YYYY-MM-DD')";
constexpr std::string_view kWeek = "to_char(v.day, 'IYYY-\"W\"IW')";
constexpr std::string_view kMonth = "to_char(v.day, 'YYYY-MM')";

constexpr std::array<Key, 6> kUseKeys{{{"ingredient", "v.company_ingredient"},
                                       {"yard", "v.yard"},
                                       {"own-ingredient", "v.ingredient"},
                                       {"day", kDay},
                                       {"week", kWeek},
                                       {"month", kMonth}}};
constexpr std::array<Measure, 2> kUseMeasures{
    {{{"loads", "Loads", CellKind::kCount}, "sum(v.loads)"},
     {{"used", "Used", CellKind::kWeight}, "v.used", true}}};

constexpr std::array<Key, 5> kDeliveredKeys{
    {{"yard", "v.yard"}, {"pen", "v.pen"}, {"day", kDay}, {"week", kWeek}, {"month", kMonth}}};
constexpr std::array<Measure, 4> kDeliveredMeasures{
    {{{"called", "Called", CellKind::kWeight}, "v.target", true},
     {{"delivered", "Delivered", CellKind::kWeight}, "v.actual", true},
     {{"difference", "Difference", CellKind::kWeight}, "v.difference", true},
     {{"feedings", "Feedings", CellKind::kCount}, "sum(v.deliveries)"}}};

constexpr std::array<Key, 6> kBalanceKeys{{{"yard", "v.yard"},
                                           {"recipe", "v.recipe"},
                                           {"operator", "v.operator"},
                                           {"day", kDay},
                                           {"week", kWeek},
                                           {"month", kMonth}}};
constexpr std::array<Measure, 7> kBalanceMeasures{
    {{{"batches", "Batches", CellKind::kCount}, "count(*)"},
     {{"out", "Out of balance", CellKind::kCount}, "count(*) FILTER (WHERE v.state = 'out')"},
     {{"neverFed", "Never fed", CellKind::kCount}, "count(*) FILTER (WHERE v.state = 'never fed')"},
     {{"neverLoaded", "Never loaded", CellKind::kCount},
      "count(*) FILTER (WHERE v.state = 'never loaded')"},
     {{"loaded", "Loaded", CellKind::kWeight}, "vrx.exact(v.loaded)", true},
     {{"fed", "Fed", CellKind::kWeight}, "vrx.exact(v.fed)", true},
     {{"left", "Left", CellKind::kWeight}, "vrx.exact(v.\"left\")", true}}};

constexpr GroupedView kUse{"vrx.used_by_ingredient_day", kUseKeys, 1, kUseMeasures};
constexpr GroupedView kDelivered{"vrx.delivered_by_pen_day", kDeliveredKeys, 3, kDeliveredMeasures};
constexpr GroupedView kBalance{"vrx.batch_balance", kBalanceKeys, 0, kBalanceMeasures};

const GroupedView& ViewOf(CompanyFigure figure) {
  return figure == CompanyFigure::kUse         ? kUse
         : figure == CompanyFigure::kDelivered ? kDelivered
                                               : kBalance;
}

std::optional<std::string> DayText(const std::optional<Date>& day) {
  return day ? std::optional(StoredText(*day)) : std::nullopt;
}

constexpr std::string_view kPeriod =
    "($2::date IS NULL OR v.day >= $2) AND ($3::date IS NULL OR v.day <= $3)";

std::string MeasureText(const Measure& measure) {
  const std::string sql(measure.sql);
  if (!measure.is_sum) {
    return sql;
  }
  return "(coalesce(vrx.in_unit(sum(" + sql +
         ") FILTER (WHERE v.unit = 'LB'), 'LB', $1), 0) + coalesce(vrx.in_unit(sum(" + sql +
         ") FILTER (WHERE v.unit = 'KG'), 'KG', $1), 0))::float8";
}

AnswerCell CellOf(const CentralRows& rows, int row, int column, CellKind kind) {
  if (rows.IsNull(row, column)) {
    return {};
  }
  switch (kind) {
    case CellKind::kCount:
      return rows.Number(row, column);
    case CellKind::kWeight:
    case CellKind::kPercent:
      return std::strtod(rows.Text(row, column).c_str(), nullptr);
    default:
      return rows.Text(row, column);
  }
}

void AddRows(const CentralRows& rows, AnswerTable& table) {
  for (int row = 0; row < rows.Count(); ++row) {
    AnswerRow& cells = table.rows.emplace_back();
    for (int column = 0; column < rows.Columns(); ++column) {
      const CellKind kind = table.columns.at(static_cast<std::size_t>(column)).kind;
      cells.push_back(CellOf(rows, row, column, kind));
    }
  }
}

AnswerTable ReadGrouped(CentralConnection& server, const CompanyQuestion& question) {
  const GroupedView& view = ViewOf(question.figure);
  AnswerTable table;
  std::string columns;
  std::string keys;
  for (const std::string& word : question.by) {
    const Key& key = *std::ranges::find(view.keys, word, &Key::word);
    table.columns.push_back({key.word, key.word, CellKind::kName});
    columns += (columns.empty() ? "" : ", ") + std::string(key.column);
    keys += (keys.empty() ? "" : ", ") + std::to_string(table.columns.size());
  }
  for (const Measure& measure : view.measures) {
    table.columns.push_back(measure.column);
    columns += (columns.empty() ? "" : ", ") + MeasureText(measure);
  }
  std::string query =
      "SELECT " + columns + " FROM " + std::string(view.view) + " v WHERE " + std::string(kPeriod);
  if (!keys.empty()) {
    query += " GROUP BY " + keys;
  }
  AddRows(server.Query(query, {question.unit, DayText(question.from), DayText(question.to)}),
          table);
  return table;
}

AnswerTable ListBatches(CentralConnection& server, const CompanyQuestion& question) {
  AnswerTable table{.columns = {{"yard", "Yard", CellKind::kName},
                                {"transaction", "Batch", CellKind::kCount},
                                {"date", "Date", CellKind::kDay},
                                {"recipe", "Recipe", CellKind::kName},
                                {"operator", "Operator", CellKind::kName},
                                {"loaded", "Loaded", CellKind::kWeight},
                                {"fed", "Fed", CellKind::kWeight},
                                {"left", "Left", CellKind::kWeight},
                                {"leftPercent", "Left %", CellKind::kPercent},
                                {"state", "State", CellKind::kText}}};
  const auto weight = [](const std::string& column) {
    return "CASE WHEN v.unit = $1 OR " + column + " IS NULL THEN " + column +
           " ELSE vrx.in_unit(vrx.exact(" + column + "), v.unit, $1)::float8 END";
  };
  AddRows(
      server.Query(
          "SELECT v.yard, v.number, v.day, v.recipe, v.operator, " + weight("v.loaded") + ", " +
              weight("v.fed") + ", " + weight("v.\"left\"") +
              ", v.left_percent, v.state FROM vrx.batch_balance v WHERE " + std::string(kPeriod) +
              " AND ($4::boolean OR v.state <> 'balanced') ORDER BY v.yard, v.day NULLS FIRST, "
              "v.number NULLS FIRST, v.batch",
          {question.unit, DayText(question.from), DayText(question.to),
           question.all ? "true" : "false"}),
      table);
  return table;
}

// Names ascending, none first; operators as numbers.
void SortByKeys(const std::vector<std::string>& keys, AnswerTable& table) {
  const auto text = [](const AnswerCell& cell) {
    const auto* const name = std::get_if<std::string>(&cell);
    return name == nullptr ? std::nullopt : std::optional(*name);
  };
  std::ranges::stable_sort(table.rows, [&](const AnswerRow& one, const AnswerRow& other) {
    for (std::size_t key = 0; key < keys.size(); ++key) {
      const NameKind kind = keys[key] == "operator" ? NameKind::kOperator : NameKind::kRecipe;
      if (one[key] != other[key]) {
        return NameIsBefore(kind, text(one[key]), text(other[key]));
      }
    }
    return false;
  });
}

std::vector<YardAsOf> ReadYards(CentralConnection& server) {
  const CentralRows rows = server.Query(
      "SELECT yard, coalesce(to_char(as_of AT TIME ZONE 'UTC', 'YYYY-MM-DD\"T\"HH24:MI:SS\"Z\"'), "
      "''), coalesce(last_day::text, ''), behind FROM vrx.yard_as_of ORDER BY yard");
  std::vector<YardAsOf> yards;
  for (int row = 0; row < rows.Count(); ++row) {
    yards.push_back({.yard = rows.Text(row, 0),
                     .at = rows.Text(row, 1),
                     .last_day = ParseStoredDate(rows.Text(row, 2)),
                     .behind = rows.Text(row, 3) == "t"});
  }
  return yards;
}

std::vector<OpenImport> ReadOpenImports(CentralConnection& server) {
  const CentralRows rows = server.Query(
      "SELECT yard, source, import, file, import_unit, rows FROM vrx.import_in_other_unit WHERE "
      "use = 'open' ORDER BY yard, source, import");
  std::vector<OpenImport> imports;
  for (int row = 0; row < rows.Count(); ++row) {
    imports.push_back({.yard = rows.Text(row, 0),
                       .source = rows.Text(row, 1),
                       .import = rows.Number(row, 2),
                       .file = rows.Text(row, 3),
                       .units = rows.Text(row, 4),
                       .rows = rows.Number(row, 5)});
  }
  return imports;
}

AnswerTable ReadTable(CentralConnection& server, const CompanyQuestion& question) {
  switch (question.figure) {
    case CompanyFigure::kAccuracy:
      return ReadCompanyAccuracy(server, question);
    case CompanyFigure::kCompleteness:
      return ReadCompanyCompleteness(server, question);
    case CompanyFigure::kBalance:
      return question.by.empty() ? ListBatches(server, question) : ReadGrouped(server, question);
    default:
      return ReadGrouped(server, question);
  }
}

}  // namespace

CompanyKeys KeysOf(CompanyFigure figure, bool deliveries) {
  if (figure == CompanyFigure::kAccuracy) {
    return deliveries
               ? CompanyKeys{{"yard", "pen", "recipe", "operator", "day", "week", "month"}, 2}
               : CompanyKeys{{"yard", "ingredient", "own-ingredient", "recipe", "operator", "day",
                              "week", "month"},
                             2};
  }
  if (figure == CompanyFigure::kCompleteness) {
    return {{"yard"}, 1};
  }
  const GroupedView& view = ViewOf(figure);
  CompanyKeys keys{.usual = view.usual};
  for (const Key& key : view.keys) {
    keys.all.push_back(key.word);
  }
  return keys;
}

std::string WrongKeys(const CompanyQuestion& question) {
  const CompanyKeys known = KeysOf(question.figure, question.deliveries);
  bool has_yard = false;
  bool needs_yard = false;
  for (auto key = question.by.begin(); key != question.by.end(); ++key) {
    if (std::ranges::find(known.all, *key) == known.all.end()) {
      return "'" + *key + "' is not a key of it";
    }
    if (std::find(question.by.begin(), key, *key) != key) {
      return "'" + *key + "' is there twice";
    }
    has_yard = has_yard || *key == "yard";
    needs_yard = needs_yard || *key == "operator" || *key == "pen";
  }
  return needs_yard && !has_yard ? "operators and pens go with their yard: add the key yard" : "";
}

CompanyAnswer ReadCompany(CentralConnection& server, const CompanyQuestion& question,
                          const CentralProgress& progress) {
  CheckCentralSchema(server);
  if (const std::string why = WrongKeys(question); !why.empty()) {
    throw QuestionError(why);
  }
  progress.Report(Tr("Asking the central database"), 0, 0);
  CentralTransaction transaction(server);
  server.Query("SET TRANSACTION ISOLATION LEVEL REPEATABLE READ READ ONLY");
  CompanyAnswer answer{.table = ReadTable(server, question),
                       .yards = ReadYards(server),
                       .open_imports = ReadOpenImports(server)};
  transaction.Commit();
  SortByKeys(question.by, answer.table);
  return answer;
}

}  // namespace vrx
