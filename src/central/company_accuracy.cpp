#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <map>

#include <nlohmann/json.hpp>

#include "central/company_figures.h"
#include "central/server.h"

namespace vrx {
namespace {

using Json = nlohmann::json;
using KeyTexts = std::vector<std::optional<std::string>>;

constexpr const char* kFigures =
    "SELECT array_to_json(key), n, not_loaded, not_loaded_target, without_target, "
    "without_target_actual, target, actual, net, net_percent, gross, gross_percent, within, "
    "weight_within, within_weight, beyond, below, median, q1, q3, marked FROM "
    "vrx.accuracy($1, $2, $3::text[], $4, $5, vrx.in_unit($6, $7, 'KG'), vrx.in_unit($8, $9, "
    "'KG'), $10, $11)";

constexpr std::array<AnswerColumn, 9> kKeyColumns{
    {{"key.yard", "Yard", CellKind::kName},
     {"key.ingredient", "Ingredient", CellKind::kName},
     {"key.own-ingredient", "Own ingredient", CellKind::kName},
     {"key.recipe", "Recipe", CellKind::kName},
     {"key.operator", "Operator", CellKind::kName},
     {"key.pen", "Pen", CellKind::kName},
     {"key.day", "Day", CellKind::kName},
     {"key.week", "Week", CellKind::kName},
     {"key.month", "Month", CellKind::kName}}};

std::string ShortestText(double number) {
  std::array<char, 32> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
  return {digits.data(), end};
}

std::optional<std::string> TextOrNull(const std::optional<Date>& day) {
  return day ? std::optional(StoredText(*day)) : std::nullopt;
}

// "{yard,own_ingredient}"; keys have no character that has to be quoted.
std::string KeyArray(const std::vector<std::string>& keys) {
  std::string text;
  for (const std::string& key : keys) {
    text += (text.empty() ? "" : ",") + key;
  }
  std::ranges::replace(text, '-', '_');
  return "{" + text + "}";
}

std::optional<double> RealOrNull(const CentralRows& rows, int row, int column) {
  return rows.IsNull(row, column)
             ? std::nullopt
             : std::optional(std::strtod(rows.Text(row, column).c_str(), nullptr));
}

AccuracyFigures FiguresOf(const CentralRows& rows, int row) {
  int column = 1;  // after the keys
  const auto real = [&] { return RealOrNull(rows, row, column++); };
  AccuracyFigures figures;
  figures.n = rows.Number(row, column++);
  figures.not_loaded.n = rows.Number(row, column++);
  figures.not_loaded.weight = real();
  figures.without_target.n = rows.Number(row, column++);
  figures.without_target.weight = real();
  for (auto* const figure :
       {&figures.target, &figures.actual, &figures.net, &figures.net_percent, &figures.gross,
        &figures.gross_percent, &figures.within, &figures.weight_within, &figures.within_weight,
        &figures.beyond, &figures.below, &figures.median, &figures.q1, &figures.q3}) {
    *figure = real();
  }
  if (!rows.IsNull(row, column)) {
    figures.marked = rows.Text(row, column) == "t";
  }
  return figures;
}

KeyTexts KeyTextsOf(const std::string& json) {
  KeyTexts texts;
  for (const Json& text : Json::parse(json)) {
    texts.push_back(text.is_null() ? std::nullopt : std::optional(text.get<std::string>()));
  }
  return texts;
}

std::vector<AccuracyGroup> ReadGroups(CentralConnection& server, const CompanyQuestion& question,
                                      const std::vector<std::string>& keys) {
  const AccuracyLimits& limits = question.limits;
  const CentralRows rows = server.Query(
      kFigures,
      {TextOrNull(question.from), TextOrNull(question.to), KeyArray(keys), question.unit,
       ShortestText(limits.percent), ShortestText(limits.weight.weight), TextOf(limits.weight.unit),
       ShortestText(limits.beyond.weight), TextOf(limits.beyond.unit),
       ShortestText(limits.division), question.deliveries ? "true" : "false"});
  std::vector<AccuracyGroup> groups;
  for (int row = 0; row < rows.Count(); ++row) {
    groups.push_back({.key = KeyTextsOf(rows.Text(row, 0)), .figures = FiguresOf(rows, row)});
  }
  return groups;
}

bool IsByOperatorOnly(const CompanyQuestion& question) {
  std::vector<std::string> keys = question.by;
  std::ranges::sort(keys);
  return !question.deliveries && keys == std::vector<std::string>{"operator", "yard"};
}

void AddStandardized(CentralConnection& server, const CompanyQuestion& question,
                     std::vector<AccuracyGroup>& groups) {
  const CentralRows rows =
      server.Query("SELECT yard, operator, standardized FROM vrx.standardized($1, $2, $3, $4)",
                   {TextOrNull(question.from), TextOrNull(question.to),
                    ShortestText(question.limits.percent), ShortestText(question.limits.division)});
  std::map<KeyTexts, std::optional<double>> shares;
  for (int row = 0; row < rows.Count(); ++row) {
    KeyTexts key{rows.TextOrNull(row, 0), rows.TextOrNull(row, 1)};
    if (question.by.front() == "operator") {
      std::ranges::reverse(key);
    }
    shares[key] = RealOrNull(rows, row, 2);
  }
  for (AccuracyGroup& group : groups) {
    const auto share = shares.find(group.key);
    group.figures.standardized = share == shares.end() ? std::nullopt : share->second;
  }
}

}  // namespace

AnswerTable ReadCompanyAccuracy(CentralConnection& server, const CompanyQuestion& question) {
  Accuracy answer{.groups = ReadGroups(server, question, question.by)};
  if (IsByOperatorOnly(question)) {
    AddStandardized(server, question, answer.groups);
  }
  for (const AccuracyGroup& total : ReadGroups(server, question, {})) {
    answer.total = total.figures;
  }
  std::vector<KeyTexts> keys;
  for (AccuracyGroup& group : answer.groups) {
    keys.push_back(std::move(group.key));
    group.key.clear();
  }
  // The keys go before the figures.
  AnswerTable table = TableOf(answer, {.deliveries = question.deliveries, .by = {}});
  for (std::size_t key = question.by.size(); key-- > 0;) {
    table.columns.insert(
        table.columns.begin(),
        *std::ranges::find(kKeyColumns, "key." + question.by[key], &AnswerColumn::key));
    for (std::size_t row = 0; row < keys.size(); ++row) {
      const std::optional<std::string>& text = keys[row].at(key);
      table.rows[row].insert(table.rows[row].begin(), text ? AnswerCell(*text) : AnswerCell());
    }
    table.total.insert(table.total.begin(), std::string(key == 0 ? "Total" : ""));
  }
  return table;
}

}  // namespace vrx
