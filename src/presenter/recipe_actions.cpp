#include "presenter/recipe_actions.h"

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <utility>

#include <SQLiteCpp/Transaction.h>

#include "base/files.h"
#include "base/number.h"
#include "base/translation.h"
#include "database/connection.h"
#include "database/identity.h"
#include "feed/batch_type.h"
#include "feed/recipe_columns.h"
#include "feed/recipe_copy.h"
#include "feed/record_fields.h"
#include "presenter/report_failure.h"

namespace vrx {
namespace {

constexpr std::string_view kCopyTitle = TrMark("Copy (Error)");
constexpr std::string_view kCompareTitle = TrMark("Compare Recipes");

constexpr std::string_view kDiffers = "≠ ";
constexpr std::string_view kOnlyHere = "+ ";
constexpr std::string_view kMissing = "\u2013";

FailureReport CopyFailure(const Error& failure) {
  return IsDatabaseError(failure)
             ? FailureReport{.title = kCopyTitle, .text = FailureText::kDatabaseWords}
             : FailureReport{
                   .title = kCopyTitle, .text = FailureText::kMessage, .icon = Icon::kWarning};
}

FailureReport CompareFailure(const Error& failure) {
  return {.title = kCompareTitle,
          .text = IsDatabaseError(failure) ? FailureText::kDatabaseWords : FailureText::kMessage,
          .icon = Icon::kWarning};
}

RecipeItem ItemOf(const RecipeRecord& recipe) {
  return {.id = recipe.id, .text = FormatIdPrefix(recipe.id) + recipe.name};
}

bool Contains(const std::vector<std::string_view>& names, std::string_view name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

ComparedText Text(std::string text, bool differs) {
  if (differs) {
    text.insert(0, kDiffers);
  }
  return {.text = std::move(text), .marked = differs};
}

std::string TypeText(const std::string& code) {
  const BatchType* const type = FindBatchType(code);
  return type == nullptr ? code : std::string(type->list_text);
}

std::array<ComparedText, 6> HeadOf(const RecipeRecord& recipe,
                                   const std::vector<std::string_view>& different) {
  return {{Text(recipe.name, Contains(different, "Name")),
           Text(recipe.description, Contains(different, "Description")),
           Text(TypeText(recipe.batch_type), Contains(different, "BatchType")),
           Text(std::to_string(recipe.head_count), Contains(different, "HeadCount")),
           Text(recipe.ration_target, Contains(different, "RationTarget")),
           Text(AdjustText(recipe.adjust_batch_index), Contains(different, "AdjBatTotIndex"))}};
}

LineEntry EntryOf(const RecipeRecord& recipe) {
  const BatchType* const type = FindBatchType(recipe.batch_type);
  return type == nullptr ? LineEntry::kNone : type->entry;
}

// All columns that one of the recipes shows; the entered ones after the ingredient.
std::vector<int> ColumnsOf(const RecipeRecord& a, const RecipeRecord& b) {
  std::vector<int> columns = ColumnsInSight(EntryOf(a));
  for (const int column : ColumnsInSight(EntryOf(b))) {
    if (std::find(columns.begin(), columns.end(), column) == columns.end()) {
      const bool entered = column == EnteredColumn(EntryOf(b));
      columns.insert(entered ? columns.begin() + 2 : columns.end(), column);
    }
  }
  return columns;
}

std::string PlaceAndName(const ComparedLine& line) {
  return std::to_string(line.place) + ". " + line.ingredient;
}

class ComparisonRows {
 public:
  ComparisonRows(const ComparedRecipe& a, const ComparedRecipe& b, bool one_database,
                 std::vector<int> columns)
      : a_(a), b_(b), one_database_(one_database), columns_(std::move(columns)) {}

  // Returns how many lines differ.
  std::size_t Fill(std::vector<std::vector<ComparedText>>& rows_a,
                   std::vector<std::vector<ComparedText>>& rows_b) const {
    std::size_t different = 0;
    for (const ComparedPair& pair : PairLines(a_, b_)) {
      rows_a.push_back(Row(pair.a, pair));
      rows_b.push_back(Row(pair.b, pair));
      different += std::any_of(rows_a.back().begin(), rows_a.back().end(),
                               [](const ComparedText& cell) { return cell.marked; }) ||
                           pair.a == nullptr
                       ? 1
                       : 0;
    }
    const std::vector<std::string_view> totals = DifferentTotals(a_.totals, b_.totals);
    rows_a.push_back(Totals(a_.totals, totals));
    rows_b.push_back(Totals(b_.totals, totals));
    return different;
  }

 private:
  [[nodiscard]] std::vector<ComparedText> Row(const ComparedLine* line,
                                              const ComparedPair& pair) const {
    std::vector<ComparedText> row(columns_.size());
    if (line == nullptr) {
      row.front() = {.text = std::string(kMissing)};
      return row;
    }
    const bool alone = pair.a == nullptr || pair.b == nullptr;
    const std::vector<std::string_view> names =
        alone ? std::vector<std::string_view>() : DifferentCells(pair, one_database_);
    const bool moved = !alone && pair.a->place != pair.b->place;
    for (std::size_t cell = 0; cell < columns_.size(); ++cell) {
      const int column = columns_[cell];
      const bool differs = Contains(names, RecipeColumns()[static_cast<std::size_t>(column)].key);
      row[cell] = column == kColumnIngredient ? Text(PlaceAndName(*line), differs || moved)
                                              : Text(CellText(line->cells, column), differs);
    }
    if (alone) {
      row.front() = {.text = std::string(kOnlyHere) + row.front().text, .marked = true};
    }
    return row;
  }

  [[nodiscard]] std::vector<ComparedText> Totals(
      const TotalsRow& totals, const std::vector<std::string_view>& different) const {
    std::vector<ComparedText> row;
    for (const int column : columns_) {
      const RecipeColumnRow& of = RecipeColumns()[static_cast<std::size_t>(column)];
      row.push_back(of.total == nullptr
                        ? ComparedText{.text = column == kColumnIngredient ? "Totals:" : ""}
                        : Text(totals.*of.total, Contains(different, of.total_label)));
    }
    return row;
  }

  const ComparedRecipe& a_;
  const ComparedRecipe& b_;
  bool one_database_;
  std::vector<int> columns_;
};

std::string Summary(std::size_t fields, std::size_t lines, std::size_t totals) {
  if (fields + lines + totals == 0) {
    return Tr("The recipes are the same.");
  }
  const auto count = [](std::size_t number, std::string_view one, std::string_view many) {
    return number == 1 ? Tr(one) : Tr(many, {std::to_string(number)});
  };
  return Tr("Different (≠): %1, %2, %3. A line with + is only in that recipe.",
            {count(fields, TrMark("1 field"), TrMark("%1 fields")),
             count(lines, TrMark("1 line"), TrMark("%1 lines")),
             count(totals, TrMark("1 total"), TrMark("%1 totals"))});
}

}  // namespace

std::string AdjustText(const std::string& index) {
  const std::int32_t item = TextToLong(index);
  if (item < 0 || item >= kAdjustItemCount) {
    return index;
  }
  const std::string text = AdjustItemText(item);
  return text.substr(text.find_first_not_of(' '));
}

std::optional<CopyOffer> OfferCopy(SQLite::Database& database, int from, Services& services) {
  CopyOffer offer;
  const bool offered = RunReported<Error>(services.op, CopyFailure, [&] {
    WithDatabaseErrors(database, [&] {
      const RecipeRecord recipe = ReadRecipe(database, from);
      const std::size_t lines = ReadRecipeLines(database, from).size();
      const std::string number = std::to_string(from);
      if (!IsActive(recipe) && lines == 0) {
        throw CopyRefusal(
            Tr("Recipe %1 (%2) cannot be copied: it has neither description nor lines.",
               {number, recipe.name}));
      }
      for (const RecipeRecord& free : FreeRecipes(database)) {
        offer.proposed += free.id < from ? 1 : 0;
        offer.free.push_back(ItemOf(free));
      }
      if (offer.free.empty()) {
        throw CopyRefusal(
            Tr("No recipe is free: each has a description or lines. Press Default on a recipe that "
               "is no longer used."));
      }
      offer.proposed %= offer.free.size();
      offer.question = lines == 1 ? Tr("Copy recipe %1 (%2) with 1 line to:", {number, recipe.name})
                                  : Tr("Copy recipe %1 (%2) with %3 lines to:",
                                       {number, recipe.name, std::to_string(lines)});
    });
  });
  return offered ? std::optional(std::move(offer)) : std::nullopt;
}

std::optional<RecipeRecord> StoreCopy(SQLite::Database& database, int from, int to,
                                      Services& services) {
  std::optional<RecipeRecord> copy;
  RunReported<Error>(services.op, CopyFailure,
                     [&] { copy = CopyRecipe(database, from, to, services.calendar).copy; });
  return copy;
}

std::optional<ComparedFile> OpenComparedFile(const std::filesystem::path& path,
                                             Services& services) {
  ComparedFile file{.path = path, .connection = nullptr, .items = {}};
  const bool opened = RunReported<Error>(services.op, CompareFailure, [&] {
    WithDatabaseErrors(path, [&] {
      file.connection = std::make_shared<SQLite::Database>(
          OpenDatabase(path, Access::kRead, services.identity.Wait()));
      const std::vector<RecipeRecord> free = FreeRecipes(*file.connection);
      for (const RecipeRecord& recipe : ReadRecipes(*file.connection)) {
        if (std::none_of(free.begin(), free.end(),
                         [&](const RecipeRecord& other) { return other.id == recipe.id; })) {
          file.items.push_back(ItemOf(recipe));
        }
      }
    });
    if (file.items.empty()) {
      throw Error(
          Tr("%1 has no recipe to compare: none has a description or lines.", {FileTitle(path)}));
    }
  });
  return opened ? std::optional(std::move(file)) : std::nullopt;
}

std::optional<ComparedFile> AskForComparedFile(Services& services) {
  const KindTexts& words = TextsOf(DatabaseKind::kRecipe);
  const FileChoice choice =
      services.files.ShowOpen({.title = Tr("Compare With Recipe Database"),
                               .filter = std::string(words.filter),
                               .default_extension = std::string(words.extension),
                               .start_folder = services.folder.DefaultAppPath().string(),
                               .flags = kFileMustExist | kHideReadOnly});
  if (choice.Cancelled() ||
      !services.identity.IsUserDatabase(DatabaseKind::kRecipe, choice.path, choice.title)) {
    return std::nullopt;
  }
  return OpenComparedFile(choice.path, services);
}

ComparedTexts ComparisonOf(const ComparedRecipe& a, const ComparedRecipe& b, bool one_database) {
  const std::vector<std::string_view> fields = DifferentFields(a.head, b.head);
  const std::vector<int> columns = ColumnsOf(a.head, b.head);
  ComparedTexts texts;
  auto& [side_a, side_b] = texts.sides;
  side_a.head = HeadOf(a.head, fields);
  side_b.head = HeadOf(b.head, fields);
  for (const int column : columns) {
    side_a.captions.push_back(ColumnCaption(column, a.unit));
    side_b.captions.push_back(ColumnCaption(column, b.unit));
  }
  const std::size_t lines =
      ComparisonRows(a, b, one_database, columns).Fill(side_a.rows, side_b.rows);
  texts.summary = Summary(fields.size(), lines, DifferentTotals(a.totals, b.totals).size());
  return texts;
}

std::optional<ComparedTexts> Compare(const ComparedFile& file_a, int a, const ComparedFile& file_b,
                                     int b, Services& services) {
  std::optional<ComparedTexts> texts;
  RunReported<Error>(services.op, CompareFailure, [&] {
    const auto read = [](const ComparedFile& file, int id) {
      return WithDatabaseErrors(*file.connection, [&] {
        const SQLite::Transaction snapshot(*file.connection);
        return ReadCompared(*file.connection, FileTitle(file.path), id);
      });
    };
    const ComparedRecipe recipe_a = read(file_a, a);
    const ComparedRecipe recipe_b = read(file_b, b);
    texts = ComparisonOf(recipe_a, recipe_b, file_a.path == file_b.path);
    texts->note = UnitsDiffer(recipe_a, FileTitle(file_a.path), recipe_b, FileTitle(file_b.path));
  });
  return texts;
}

}  // namespace vrx
