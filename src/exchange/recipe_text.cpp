#include "exchange/recipe_text.h"

#include <cstddef>
#include <map>
#include <span>
#include <utility>

#include <SQLiteCpp/Transaction.h>

#include "base/date.h"
#include "base/encoding.h"
#include "base/files.h"
#include "base/number.h"
#include "base/text.h"
#include "base/translation.h"
#include "database/connection.h"
#include "database/identity.h"
#include "feed/batch_type.h"
#include "feed/ration.h"
#include "feed/record_fields.h"
#include "link/krmcomm.h"

namespace vrx {
namespace {

constexpr std::string_view kLineEnd = "\r\n";

// "Recipe 7 (STEERS)", for messages.
std::string Named(std::string_view kind, int id, const std::string& name) {
  return std::string(kind) + " " + std::to_string(id) + " (" + name + ")";
}

std::string Encoded(const std::string& text, const std::string& record) {
  std::string bytes = Utf8ToWindows1252(text);
  if (Windows1252ToUtf8(bytes) != text) {
    throw RecipeTextError(
        Tr("%1 has a character that cannot be sent: \"%2\" is not of the character set "
           "Windows-1252.",
           {record, text}));
  }
  return bytes;
}

// Which weight of its lines a recipe sends.
struct SentWeights {
  std::string TotalsRow::*target;
  std::string RecipeLineRecord::*amount;
};

SentWeights WeightsOf(const BatchType& type, bool batch_target) {
  if (type.scale == BatchScale::kHeadCount) {
    return {&TotalsRow::dry_matter, &RecipeLineRecord::dry_matter};
  }
  return batch_target ? SentWeights{&TotalsRow::batch_target, &RecipeLineRecord::batch_target}
                      : SentWeights{&TotalsRow::target, &RecipeLineRecord::target};
}

class TextBuilder {
 public:
  TextBuilder(const RecipeTables& tables, bool batch_target)
      : tables_(tables), batch_target_(batch_target) {
    for (const IngredientRecord& ingredient : tables.ingredients) {
      ingredients_.emplace(std::to_string(ingredient.id), &ingredient);
    }
    for (const RecipeLineRecord& line : tables.lines) {
      lines_[line.recipe_id].push_back(line);
    }
  }

  void AddIdentifier() {
    Add(kRecipeMark, ",", tables_.unit == "LB" ? "L" : "K", kLineEnd, kLineEnd);
  }

  void AddIngredients() {
    BeginSection("[ING]");
    int number = 0;
    for (const IngredientRecord& ingredient : tables_.ingredients) {
      ++number;
      if (IsActive(ingredient)) {
        Add(std::to_string(number), ",", EncodedName(ingredient), ",",
            ingredient.hand_add ? "1" : "0", kLineEnd);
      }
    }
    EndSection();
  }

  void AddRecipes() {
    BeginSection("[REC]");
    int number = 0;
    for (const RecipeRecord& recipe : tables_.recipes) {
      ++number;
      if (!IsActive(recipe)) {
        continue;
      }
      result_.highest_in_use = recipe.id;
      const BatchType* type = FindBatchType(recipe.batch_type);
      if (type != nullptr && type->entry != LineEntry::kNone) {
        AddRecipe(number, recipe, *type);
      }
    }
    EndSection();
  }

  void AddPens() {
    BeginSection("[PEN]");
    int number = 0;
    for (const PenRecord& pen : tables_.pens) {
      ++number;
      if (TextToLong(pen.feed_amount) > 0 || pen.name != DefaultName(RecordKind::kPen, number)) {
        const std::string record = Named("Pen", pen.id, pen.name);
        const std::string amount = Encoded(pen.feed_amount, record);
        Add(std::to_string(number), ",", Encoded(pen.name, record), ",",
            amount.empty() ? "0" : amount, kLineEnd);
      }
    }
    EndSection();
  }

  RecipeDownload TakeResult() { return std::move(result_); }

 private:
  template <typename... Texts>
  void Add(const Texts&... texts) {
    (result_.text.append(texts), ...);
  }

  void BeginSection(std::string_view header) { Add(header, kLineEnd, kLineEnd); }
  void EndSection() { Add(kLineEnd); }

  static std::string EncodedName(const IngredientRecord& ingredient) {
    return Encoded(ingredient.name, Named("Ingredient", ingredient.id, ingredient.name));
  }

  // A recipe line refers to its ingredient by name; the name of an unknown ingredient is empty.
  [[nodiscard]] std::string IngredientName(const RecipeLineRecord& line) const {
    const auto known = ingredients_.find(line.ingredient);
    return known == ingredients_.end() ? std::string() : EncodedName(*known->second);
  }

  void AddRecipe(int number, const RecipeRecord& recipe, const BatchType& type) {
    const std::string record = Named("Recipe", recipe.id, recipe.name);
    Ration ration{.recipe = recipe, .lines = lines_[std::to_string(recipe.id)]};
    const TotalsRow totals = Recompute(ration, record);
    const SentWeights weights = WeightsOf(type, batch_target_);
    const int type_code = static_cast<int>(&type - BatchTypes().data()) - 1;
    const int head_count = type.scale == BatchScale::kHeadCount ? recipe.head_count : 0;
    if (head_count != recipe.head_count) {
      RecipeRecord& emptied = result_.emptied_head_counts.emplace_back(recipe);
      emptied.head_count = head_count;
    }
    Add(std::to_string(number), ",", Encoded(recipe.name, record), ",", std::to_string(type_code),
        ",", totals.*weights.target, ",", std::to_string(head_count), ",");
    AddLines(ration.lines, weights.amount, record);
  }

  TotalsRow Recompute(Ration& ration, const std::string& record) {
    const std::vector<RecipeLineRecord> stored = ration.lines;
    try {
      TotalsRow totals = RecalcRecipe(ration).row;
      for (std::size_t line = 0; line < stored.size(); ++line) {
        if (ration.lines[line] != stored[line]) {
          result_.recomputed_lines.push_back(ration.lines[line]);
        }
      }
      return totals;
    } catch (const Error& error) {
      throw RecipeTextError(Tr("%1 cannot be computed. %2", {record, error.what()}));
    }
  }

  // Two lists. Without lines their end marks are missing, and the next recipe follows in the same
  // line.
  void AddLines(std::span<const RecipeLineRecord> lines, std::string RecipeLineRecord::*amount,
                const std::string& record) {
    std::size_t left = lines.size();
    for (const RecipeLineRecord& line : lines) {
      Add(IngredientName(line), --left > 0 ? "," : ";");
    }
    left = lines.size();
    for (const RecipeLineRecord& line : lines) {
      Add(Encoded(line.*amount, record), --left > 0 ? "," : kLineEnd);
    }
  }

  const RecipeTables& tables_;
  bool batch_target_;
  std::map<std::string, const IngredientRecord*> ingredients_;  // by ID as text, as in the lines
  std::map<std::string, std::vector<RecipeLineRecord>> lines_;  // by recipe ID
  RecipeDownload result_;
};

void Store(SQLite::Database& database, const RecipeDownload& download, const Calendar& calendar) {
  WriteStoredLines(database, download.recomputed_lines);
  for (const RecipeRecord& recipe : download.emptied_head_counts) {
    WriteRecipe(database, recipe);
  }
  if (!download.emptied_head_counts.empty()) {
    WriteField(database, DateField(DateSelector::kModified), StoredText(calendar.Today()));
  }
}

constexpr std::size_t kMostBackup = std::size_t{16} * 1024 * 1024;  // bytes; no backup is as long

}  // namespace

RecipeTables ReadRecipeTables(SQLite::Database& database) {
  return {.unit = ReadField(database, kUnitField).value_or(""),
          .ingredients = ReadIngredients(database),
          .recipes = ReadRecipes(database),
          .lines = ReadAllRecipeLines(database),
          .pens = ReadPens(database)};
}

RecipeDownload BuildRecipeDownload(const RecipeTables& tables, bool batch_target,
                                   const ReportProgress& report) {
  const auto say = [&report](std::string_view line) {
    if (report) {
      report(line);
    }
  };
  TextBuilder builder(tables, batch_target);
  builder.AddIdentifier();
  say("Formatting ingredient data...");
  builder.AddIngredients();
  say("done!");
  say("Formatting recipe data...");
  builder.AddRecipes();
  say("done!");
  say("Formatting pen data...");
  builder.AddPens();
  say("pen formatting done!");
  say("Recipe file complete!");
  return builder.TakeResult();
}

RecipeDownload TakeRecipeDownload(const std::filesystem::path& recipe_db_path, bool batch_target,
                                  const Calendar& calendar, const ReportProgress& report,
                                  LockWait wait) {
  SQLite::Database database = OpenDatabase(recipe_db_path, Access::kWrite, wait);
  return WithDatabaseErrors(database, [&] {
    SQLite::Transaction transaction(database, SQLite::TransactionBehavior::IMMEDIATE);
    RecipeDownload download = BuildRecipeDownload(ReadRecipeTables(database), batch_target, report);
    Store(database, download, calendar);
    transaction.commit();
    return download;
  });
}

std::string ReadRecipeBackup(const std::filesystem::path& path) {
  std::string text = ReadFileBytes(path, kMostBackup);
  if (text.size() > kMostBackup) {
    throw FileError(Tr("%1 is longer than any recipe backup", {path.string()}));
  }
  return text;
}

bool HasBackupHeader(std::string_view text, Operator& op, const PrivateINI& settings) {
  if (text.starts_with(kRecipeMark)) {
    return true;
  }
  BeepIfEnabled(op, settings);
  op.ShowMessage({.icon = Icon::kWarning,
                  .title = "File-Header Error",
                  .text = "The Recipe backup-file has an invalid file header and cannot be "
                          "downloaded."});
  return false;
}

}  // namespace vrx
