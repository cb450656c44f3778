#include "legacy/field_rule.h"

#include <algorithm>
#include <limits>

#include "base/text.h"
#include "database/records.h"
#include "feed/record_fields.h"

namespace vrx {
namespace {

constexpr int kSmallestWhole = std::numeric_limits<std::int32_t>::min();
constexpr int kLargestWhole = std::numeric_limits<std::int32_t>::max();
constexpr int kMostHead = 1000;
constexpr int kPercent = 100;

constexpr std::array<std::string_view, 5> kBatchTypes = {"!", "W", "H", "%", "P"};

FieldRule Id(int largest) {
  return {.column = "ID", .kind = FieldKind::kId, .smallest = 1, .largest = largest};
}

FieldRule IdText(std::string_view column, int largest) {
  return {
      .column = std::string(column), .kind = FieldKind::kIdText, .smallest = 1, .largest = largest};
}

FieldRule Name(RecordKind kind) {
  return {.column = "Name",
          .kind = FieldKind::kText,
          .null = NullRule::kDefaultName,
          .limit = FieldOf(kind, "Name").limit};
}

FieldRule Description() {
  return {.column = "Description",
          .kind = FieldKind::kText,
          .null = NullRule::kDefault,
          .fallback = "",
          .limit = kDescriptionLimit};
}

FieldRule Whole(std::string_view column, std::string_view fallback, int smallest, int largest) {
  return {.column = std::string(column),
          .kind = FieldKind::kWhole,
          .null = NullRule::kDefault,
          .fallback = fallback,
          .smallest = smallest,
          .largest = largest};
}

FieldRule YesNo(std::string_view column) {
  return {.column = std::string(column),
          .kind = FieldKind::kYesNo,
          .null = NullRule::kDefault,
          .fallback = "0"};
}

// The fallback replaces a NULL as well as a text that is not a number.
FieldRule NumberText(std::string_view column, std::string_view fallback) {
  return {.column = std::string(column),
          .kind = FieldKind::kNumberText,
          .null = NullRule::kDefault,
          .fallback = fallback};
}

// A line's number may be missing.
FieldRule LineNumber(std::string_view column) {
  FieldRule rule = NumberText(column, "0");
  rule.null = NullRule::kKept;
  return rule;
}

FieldRule Weight(std::string_view column) {
  return {.column = std::string(column),
          .kind = FieldKind::kReal,
          .null = NullRule::kDefault,
          .fallback = "0"};
}

FieldRule Plain(std::string_view column, FieldKind kind) {
  return {.column = std::string(column), .kind = kind};
}

FieldRule TextOrNothing(std::string_view column) {
  return {.column = std::string(column), .kind = FieldKind::kText, .empty_is_null = true};
}

TableRule IngredientRule() {
  return {.name = kIngredientTable,
          .kind = DatabaseKind::kRecipe,
          .fields = {Id(kIngredientCount), Name(RecordKind::kIngredient), Description(),
                     Whole("DryMatter%", "100", 0, kPercent), YesNo("HandAdd")},
          .default_name = TraitsOf(RecordKind::kIngredient).default_name_prefix,
          .records = kIngredientCount};
}

TableRule RecipeRule() {
  return {.name = kRecipeTable,
          .kind = DatabaseKind::kRecipe,
          .fields = {Id(kRecipeCount), Name(RecordKind::kRecipe), Description(),
                     FieldRule{.column = "BatchType",
                               .kind = FieldKind::kChoice,
                               .null = NullRule::kDefault,
                               .fallback = "!",
                               .choices = kBatchTypes},
                     Whole("HeadCount", "0", 0, kMostHead), NumberText("RationTarget", ""),
                     NumberText("AdjBatTotIndex", "20")},
          .default_name = TraitsOf(RecordKind::kRecipe).default_name_prefix,
          .records = kRecipeCount};
}

TableRule RecipeRationRule() {
  return {.name = kRecipeRationTable,
          .kind = DatabaseKind::kRecipe,
          .fields = {IdText("RecipeID", kRecipeCount), IdText("Ingredient", kIngredientCount),
                     LineNumber("Target"), LineNumber("Ration%"), LineNumber("DryMatter%"),
                     LineNumber("DryMatter"), LineNumber("BatchTarget"),
                     Whole("Sequence", "0", 0, kLargestWhole), YesNo("HandAdd"),
                     LineNumber("Ingredient%")},
          .default_name = {}};
}

TableRule PenRule() {
  return {.name = kPenTable,
          .kind = DatabaseKind::kRecipe,
          .fields = {Id(kPenCount), Name(RecordKind::kPen), Description(),
                     NumberText("FeedAmount", "0")},
          .default_name = TraitsOf(RecordKind::kPen).default_name_prefix,
          .records = kPenCount};
}

TableRule TransactionsRule() {
  FieldRule transaction = Plain("Transaction", FieldKind::kWhole);
  transaction.smallest = kSmallestWhole;
  transaction.largest = kLargestWhole;
  TableRule rule{
      .name = kTransactionsTable,
      .kind = DatabaseKind::kTransaction,
      .fields = {transaction, Plain("Recipe", FieldKind::kText), Plain("Type", FieldKind::kText),
                 TextOrNothing("UserID"), TextOrNothing("Ingredient"), TextOrNothing("Pen"),
                 Weight("Target"), Weight("ActualBatch"), Plain("Time", FieldKind::kTime),
                 Plain("Date", FieldKind::kDate), Weight("ActualFeed"),
                 Plain("IngPercent", FieldKind::kReal)},
      .default_name = {}};
  for (int id = 1; id <= kWeightColumnCount; ++id) {
    rule.fields.push_back(Plain(IngredientWeightColumn(id), FieldKind::kReal));
  }
  return rule;
}

}  // namespace

std::span<const TableRule> TableRules() {
  static const std::array all_rules = {IngredientRule(), RecipeRule(), RecipeRationRule(),
                                       PenRule(), TransactionsRule()};
  return all_rules;
}

const TableRule* FindTableRule(std::string_view table) {
  const std::span<const TableRule> rules = TableRules();
  const auto found = std::ranges::find_if(
      rules, [table](const TableRule& rule) { return EqualsIgnoringCase(rule.name, table); });
  return found == rules.end() ? nullptr : &*found;
}

}  // namespace vrx
