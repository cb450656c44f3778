#include "report/page_texts.h"

#include <array>
#include <initializer_list>
#include <span>
#include <vector>

#include "base/number.h"
#include "feed/recipe_columns.h"

namespace vrx {
namespace {

std::string Joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) {
    text += (text.empty() ? "" : "\r\n") + line;
  }
  return text;
}

std::string RecipeFile(const ReportFacts& facts) { return "Recipe File: " + facts.recipe_file; }

std::string WeightUnits(std::string_view unit) { return "Weight Units: " + std::string(unit); }

PageTexts Texts(const std::vector<std::string>& center, std::string right,
                const ReportFacts& facts) {
  return {.header_center = Joined(center),
          .header_right = std::move(right),
          .footer_center = DefaultText(facts.today)};
}

std::string_view ActiveOrAll(bool active_only) { return active_only ? "(active)" : "(all)"; }

// The columns whose totals are told, in this order.
std::span<const RecipeColumn> ToldTotals(LineEntry entry) {
  static constexpr std::array kByWeight = {kColumnTarget,           kColumnRationPercent,
                                           kColumnDryMatterPercent, kColumnDryMatter,
                                           kColumnBatchTarget,      kColumnHandAdd};
  static constexpr std::array kByPercent = {kColumnIngredientPercent, kColumnDryMatterPercent,
                                            kColumnDryMatter, kColumnBatchTarget, kColumnHandAdd};
  switch (entry) {
    case LineEntry::kWeight:
      return kByWeight;
    case LineEntry::kPercent:
      return kByPercent;
    case LineEntry::kNone:
      break;
  }
  return {};
}

std::string WithoutTrailingBlanks(std::string_view text) {
  const std::size_t last = text.find_last_not_of(' ');
  return std::string(last == std::string_view::npos ? "" : text.substr(0, last + 1));
}

}  // namespace

PageTexts SetPageHeadersIngredients(bool active_only, const ReportFacts& facts) {
  return Texts({"Report: Ingredients " + std::string(ActiveOrAll(active_only)), RecipeFile(facts)},
               {}, facts);
}

PageTexts SetPageHeadersRecipe(const RecipeOnShow& recipe, const ReportFacts& facts) {
  const RecipeRecord& record = recipe.ration.recipe;
  std::vector<std::string> center{"Report: Recipe (" + WithoutTrailingBlanks(record.name) + ")",
                                  "Description: " + record.description, RecipeFile(facts), "",
                                  "Totals:"};
  for (const RecipeColumn column : ToldTotals(recipe.Entry())) {
    center.push_back(ColumnCaption(column, facts.caption_unit) + " = " +
                     recipe.totals.*RecipeColumns()[column].total);
  }
  const BatchType* const type = FindBatchType(record.batch_type);
  const std::string batch_by(type == nullptr ? "" : type->list_text);
  return Texts(center, WeightUnits(facts.weight_unit) + "\r\nBatch By: " + batch_by + "\r\n",
               facts);
}

PageTexts SetPageHeadersPens(bool active_only, const ReportFacts& facts) {
  return Texts({"Report: Pens " + std::string(ActiveOrAll(active_only)), RecipeFile(facts)},
               WeightUnits(facts.weight_unit), facts);
}

PageTexts SetPageHeadersTransactions(std::string_view data_group, const ReportFacts& facts) {
  return Texts({"Report: " + std::string(data_group), "Transaction File: " + facts.transaction_file,
                RecipeFile(facts)},
               WeightUnits(facts.weight_unit), facts);
}

PageTexts SetPageHeadersImport(std::string_view file, std::string_view unit,
                               const ReportFacts& facts) {
  return Texts({"Report: Imported Transactions", "File: " + std::string(file)}, WeightUnits(unit),
               facts);
}

}  // namespace vrx
