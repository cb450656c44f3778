// What a download should make the operator think of.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <SQLiteCpp/Transaction.h>

#include "base/encoding.h"
#include "base/error.h"
#include "base/number.h"
#include "base/translation.h"
#include "database/connection.h"
#include "exchange/recipe_text.h"
#include "feed/batch_type.h"
#include "feed/ration.h"
#include "feed/record_fields.h"

namespace vrx {
namespace {

constexpr std::size_t kMostListed = 5;  // records of one kind

constexpr std::string_view kEmpty = TrMark("Recipes without ingredients: %1");
constexpr std::string_view kNoTarget = TrMark("Recipes without ration target: %1");

// "Recipes without ration target: 3 (STEERS), 7 (HEIFERS) and 12 more"
class OddList {
 public:
  explicit OddList(std::string_view caption) : caption_(caption) {}

  void Add(int id, const std::string& name, const std::string& detail = {}) {
    if (count_++ < kMostListed) {
      records_ += (count_ == 1 ? "" : ", ") + std::to_string(id) + " (" + name + ")" + detail;
    }
  }
  void AppendTo(std::vector<std::string>& lines) const {
    if (count_ > 0) {
      const std::string records =
          count_ > kMostListed
              ? Tr("%1 and %2 more", {records_, std::to_string(count_ - kMostListed)})
              : records_;
      lines.push_back(Tr(caption_, {records}));
    }
  }

 private:
  std::string_view caption_;
  std::string records_;
  std::size_t count_ = 0;
};

// "99.50"; nothing if it is 100 or cannot be computed, which the download itself reports.
std::optional<std::string> WrongPercentTotal(Ration ration) {
  try {
    const std::string total = RecalcRecipe(ration).row.ingredient_percent;
    return Totals100Percent(total) ? std::nullopt : std::optional(total);
  } catch (const Error&) {
    return std::nullopt;
  }
}

void AddRecipes(const RecipeTables& tables, std::vector<std::string>& lines) {
  std::map<std::string, std::vector<RecipeLineRecord>> recipe_lines;
  for (const RecipeLineRecord& line : tables.lines) {
    recipe_lines[line.recipe_id].push_back(line);
  }
  OddList empty(kEmpty);
  OddList percent(TrMark("Recipes whose percentages do not total 100: %1"));
  OddList target(kNoTarget);
  for (const RecipeRecord& recipe : tables.recipes) {
    const BatchType* const type = FindBatchType(recipe.batch_type);
    if (!IsActive(recipe) || type == nullptr || type->entry == LineEntry::kNone) {
      continue;
    }
    const Ration ration{.recipe = recipe, .lines = recipe_lines[std::to_string(recipe.id)]};
    if (ration.lines.empty()) {
      empty.Add(recipe.id, recipe.name);
      continue;
    }
    if (type->entry == LineEntry::kPercent) {
      if (const auto total = WrongPercentTotal(ration)) {
        percent.Add(recipe.id, recipe.name, " " + *total);
      }
    }
    if (type->scale == BatchScale::kRationTarget && TextToLong(recipe.ration_target) < 1) {
      target.Add(recipe.id, recipe.name);
    }
  }
  target.AppendTo(lines);
  percent.AppendTo(lines);
  empty.AppendTo(lines);
}

void AddPenCapacity(std::optional<int> size, std::vector<std::string>& lines) {
  constexpr int kStep = 100;
  if (size) {
    lines.push_back(
        Tr("Pens above %1 have a feed amount: the indicator needs its %2-pen capacity "
           "option",
           {std::to_string(*size - kStep), std::to_string(*size)}));
  }
}

// Calls `take` with the fields of each line of a section.
template <typename Take>
void ForEachLine(std::string_view text, std::string_view section, const Take& take) {
  const std::size_t begin = text.find(section);
  if (begin == std::string_view::npos) {
    return;
  }
  text.remove_prefix(begin + section.size());
  text = text.substr(0, text.find("\r\n["));
  while (!text.empty()) {
    const std::string_view line = text.substr(0, text.find("\r\n"));
    text.remove_prefix(std::min(text.size(), line.size() + 2));
    std::vector<std::string> fields(1);
    for (const char character : line) {
      if (character == ',') {
        fields.emplace_back();
      } else {
        fields.back() += character;
      }
    }
    if (fields.size() > 2) {
      take(fields, line);
    }
  }
}

}  // namespace

std::vector<std::string> FindOddities(const RecipeTables& tables) {
  std::vector<std::string> lines;
  AddRecipes(tables, lines);
  OddList dry_matter(TrMark("Ingredients without dry matter: %1"));
  for (const IngredientRecord& ingredient : tables.ingredients) {
    if (IsActive(ingredient) && ingredient.dry_matter_percent < 1) {
      dry_matter.Add(ingredient.id, ingredient.name);
    }
  }
  dry_matter.AppendTo(lines);
  AddPenCapacity(CheckPenCapacity(tables.pens), lines);
  return lines;
}

// A recipe line is number, name, type, target, head count, then two lists with ";" between them.
std::vector<std::string> FindOdditiesOfBackup(std::string_view text) {
  constexpr std::size_t kTarget = 3;
  OddList empty(kEmpty);
  OddList target(kNoTarget);
  ForEachLine(text, "[REC]", [&](const std::vector<std::string>& fields, std::string_view line) {
    const std::string name = Windows1252ToUtf8(fields[1]);
    if (line.find(';') == std::string_view::npos) {
      empty.Add(TextToLong(fields[0]), name);
    } else if (fields.size() > kTarget && TextToLong(fields[kTarget]) < 1) {
      target.Add(TextToLong(fields[0]), name);
    }
  });
  std::vector<PenRecord> pens(kPenCount);
  ForEachLine(text, "[PEN]",
              [&](const std::vector<std::string>& fields, std::string_view /*line*/) {
                const std::int32_t number = TextToLong(fields[0]);
                if (number >= 1 && number <= kPenCount) {
                  pens[static_cast<std::size_t>(number) - 1].feed_amount = fields[2];
                }
              });
  std::vector<std::string> lines;
  target.AppendTo(lines);
  empty.AppendTo(lines);
  AddPenCapacity(CheckPenCapacity(pens), lines);
  return lines;
}

std::vector<std::string> FindOddities(const std::filesystem::path& recipe_db_path, LockWait wait) {
  SQLite::Database database = OpenDatabase(recipe_db_path, Access::kRead, wait);
  return WithDatabaseErrors(database, [&] {
    const SQLite::Transaction reading(database);
    return FindOddities(ReadRecipeTables(database));
  });
}

}  // namespace vrx
