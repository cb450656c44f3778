#include "feed/recipe_columns.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <optional>

#include "base/number.h"
#include "base/text.h"
#include "base/translation.h"
#include "feed/key_filters.h"
#include "feed/record_fields.h"

namespace vrx {
namespace {

struct LineCell {
  std::string_view name;
  std::string_view takes;
};

constexpr std::array<LineCell, 3> kLineCells = {{
    {"Ingredient", "an ingredient from the list"},
    {"Target", "digits, at most 6"},
    {"Ingredient%", "a percentage from 0 to 100 with at most two decimals"},
}};

constexpr std::size_t kTargetLimit = 6;

// Why a percentage with that text drops a key.
std::string_view PercentRefusal(std::string_view text, int key) {
  if (FilterDecimalKey(key) == 0) {
    return TrMark("Only digits and a decimal point");
  }
  const std::size_t point = text.find('.');
  if (key == '.') {
    return point == std::string_view::npos ? TrMark("A digit comes before the decimal point")
                                           : TrMark("Only one decimal point");
  }
  return point != std::string_view::npos && text.size() - point > 2 ? TrMark("At most two decimals")
                                                                    : TrMark("At most 100 %");
}

const LineCell& CellOf(LineColumn column) {
  return kLineCells.at(static_cast<std::size_t>(column));
}

using enum CellRole;

constexpr std::array<RecipeColumnRow, kRecipeColumnCount> kColumns{{
    {.key = "Ingredient",
     .caption = "Ingredient",
     .has_unit = false,
     .role = kEntered,
     .cell = &RecipeLineRecord::ingredient,
     .entered_as = LineColumn::kIngredient},
    {.key = "Target",
     .caption = "Dry Matter",
     .has_unit = true,
     .role = kEntered,
     .cell = &RecipeLineRecord::target,
     .total_label = "lblTargetTotal",
     .total = &TotalsRow::target,
     .entered_as = LineColumn::kTarget},
    {.key = "Ration%",
     .caption = "Ration (%) DM",
     .has_unit = false,
     .role = kComputed,
     .cell = &RecipeLineRecord::ration_percent,
     .total_label = "lblRationPctTotal",
     .total = &TotalsRow::ration_percent},
    {.key = "DryMatter%",
     .caption = "Dry Matter (%)",
     .has_unit = false,
     .role = kReadOnly,
     .cell = &RecipeLineRecord::dry_matter_percent,
     .total_label = "lblDryMatPercent",
     .total = &TotalsRow::dry_matter_percent},
    {.key = "DryMatter",
     .caption = "Target",
     .has_unit = true,
     .role = kComputed,
     .cell = &RecipeLineRecord::dry_matter,
     .total_label = "lblDryMatTotal",
     .total = &TotalsRow::dry_matter},
    {.key = "BatchTarget",
     .caption = "Batch Target",
     .has_unit = false,
     .role = kComputed,
     .cell = &RecipeLineRecord::batch_target,
     .total_label = "lblBatchTargetTotal",
     .total = &TotalsRow::batch_target},
    {.key = "HandAdd",
     .caption = "Hand-Add",
     .has_unit = false,
     .role = kReadOnly,
     .cell = nullptr,
     .total_label = "lblHandAddTotal",
     .total = &TotalsRow::hand_add},
    {.key = "Ingredient%",
     .caption = "Ingredient (%)",
     .has_unit = false,
     .role = kEntered,
     .cell = &RecipeLineRecord::ingredient_percent,
     .total_label = "lblIngPctTotal",
     .total = &TotalsRow::ingredient_percent,
     .entered_as = LineColumn::kIngredientPercent},
}};

std::string LowerCase(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
  return lower;
}

}  // namespace

std::string_view LineColumnName(LineColumn column) { return CellOf(column).name; }

int FilterLineKey(LineColumn column, std::string_view text, int key) {
  if (column == LineColumn::kIngredient) {
    return 0;
  }
  if (key == kBackspaceKey) {
    return key;
  }
  if (column == LineColumn::kTarget) {
    return text.size() < kTargetLimit ? FilterDigitKey2(key) : 0;
  }
  const int passed = FilterDecimalKey(key);
  const bool valid = passed != 0 && ValidPercentText(std::string(text) + static_cast<char>(passed));
  return valid ? passed : 0;
}

LineKey TypeLineKey(LineColumn column, std::string_view text, int key) {
  const bool percent = column == LineColumn::kIngredientPercent;
  const int typed = percent && IsDecimalKey(key) ? '.' : key;
  if (const int code = FilterLineKey(column, text, typed); code != 0) {
    return {.code = code};
  }
  if (!percent) {
    return {.refusal =
                text.size() >= kTargetLimit ? TrMark("Full: at most 6 digits") : DigitRefusal(key)};
  }
  return {.refusal = PercentRefusal(text, typed)};
}

std::string PercentText(std::string_view cell) {
  const std::optional<double> percent = ParseNumber(cell);
  return percent ? Format(*percent, "0.00") : std::string(cell);
}

std::string EnterLineCell(LineColumn column, std::string_view typed) {
  std::string cell;
  for (const char character : typed) {
    const int key = static_cast<unsigned char>(character);
    const int passed = key == kBackspaceKey ? 0 : FilterLineKey(column, cell, key);
    if (passed == 0) {
      throw FieldRefusal("The '" + std::string(LineColumnName(column)) + "' field takes " +
                         std::string(CellOf(column).takes) + ": not '" + std::string(typed) + "'.");
    }
    cell.push_back(static_cast<char>(passed));
  }
  return column == LineColumn::kIngredientPercent ? PercentText(cell) : cell;
}

std::span<const RecipeColumnRow> RecipeColumns() { return kColumns; }

bool IsColumnShown(int column, LineEntry entry) {
  if (column == kColumnIngredientPercent) {
    return entry == LineEntry::kPercent;
  }
  const bool by_weight_only = column == kColumnTarget || column == kColumnRationPercent;
  return !by_weight_only || entry != LineEntry::kPercent;
}

int EnteredColumn(LineEntry entry) {
  return entry == LineEntry::kPercent ? kColumnIngredientPercent : kColumnTarget;
}

std::string CellText(const RecipeLineRecord& line, int column) {
  const auto cell = kColumns.at(static_cast<std::size_t>(column)).cell;
  if (cell == nullptr) {
    return line.hand_add ? "Yes" : "No";
  }
  return column == kColumnIngredientPercent ? PercentText(line.*cell) : line.*cell;
}

std::string_view WhyClosed(int column) {
  switch (kColumns.at(static_cast<std::size_t>(column)).role) {
    case kComputed:
      return TrMark("Computed from the other columns");
    case kReadOnly:
      return TrMark("Edited on the Ingredients tab");
    case kEntered:
      break;
  }
  return {};
}

std::vector<int> ColumnsInSight(LineEntry entry) {
  std::vector<int> columns{kColumnIngredient, EnteredColumn(entry)};
  for (int column = 0; column < kRecipeColumnCount; ++column) {
    if (IsColumnShown(column, entry) && column != columns[0] && column != columns[1]) {
      columns.push_back(column);
    }
  }
  return columns;
}

std::string WithUnit(std::string_view caption, std::string_view unit) {
  return std::string(caption) + (unit.empty() ? "" : " (" + LowerCase(unit) + ")");
}

std::string ColumnCaption(int column, std::string_view unit) {
  const RecipeColumnRow& row = kColumns.at(static_cast<std::size_t>(column));
  return WithUnit(row.caption, row.has_unit ? unit : "");
}

}  // namespace vrx
