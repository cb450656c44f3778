#include <algorithm>
#include <array>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Transaction.h>

#include "base/files.h"
#include "base/number.h"
#include "base/translation.h"
#include "central/release_records.h"
#include "central/releases.h"
#include "central/server.h"
#include "central/server_source.h"
#include "database/connection.h"
#include "database/copy_database.h"
#include "database/identity.h"
#include "feed/ration.h"
#include "feed/recipe_comparison.h"
#include "feed/record_fields.h"

namespace vrx {
namespace {

template <typename Record>
const Record* FindRecord(const std::vector<Record>& records, int id) {
  const auto found = std::find_if(records.begin(), records.end(),
                                  [id](const Record& record) { return record.id == id; });
  return found == records.end() ? nullptr : &*found;
}

std::string YesOrNo(bool yes) { return yes ? "Yes" : "No"; }

std::array<FieldText, 4> FieldTexts(const IngredientRecord& record) {
  return {{{"Name", record.name},
           {"Description", record.description},
           {"DryMatter%", std::to_string(record.dry_matter_percent)},
           {"HandAdd", YesOrNo(record.hand_add)}}};
}

std::array<FieldText, 3> FieldTexts(const PenRecord& record) {
  return {{{"Name", record.name},
           {"Description", record.description},
           {"FeedAmount", record.feed_amount}}};
}

using LinesByRecipe = std::map<int, std::vector<RecipeLineRecord>>;

LinesByRecipe ByRecipe(const std::vector<RecipeLineRecord>& lines) {
  LinesByRecipe by_recipe;
  for (const RecipeLineRecord& line : lines) {
    by_recipe[TextToLong(line.recipe_id)].push_back(line);
  }
  return by_recipe;
}

// Lines of the same ID belong together, whatever its name. Recipes of a site and of a release have
// the same IDs.
ComparedRecipe ToCompare(const RecipeRecord& recipe, const std::vector<RecipeLineRecord>& lines) {
  ComparedRecipe compared{.head = recipe, .totals = {}, .lines = {}, .unit = {}};
  for (const RecipeLineRecord& line : lines) {
    compared.lines.push_back({.ingredient = line.ingredient,
                              .place = static_cast<int>(compared.lines.size()) + 1,
                              .cells = line});
  }
  return compared;
}

class ReleaseMerge {
 public:
  ReleaseMerge(const RecipeTables& yard, const RecipeTables& release, ReleaseDifferences& result)
      : yard_(yard), release_(release), result_(result), merged_(yard) {}

  RecipeTables Run() {
    for (IngredientRecord& ingredient : merged_.ingredients) {
      MergeIngredient(ingredient);
    }
    merged_.lines.clear();
    yard_lines_ = ByRecipe(yard_.lines);
    release_lines_ = ByRecipe(release_.lines);
    for (RecipeRecord& recipe : merged_.recipes) {
      MergeRecipe(recipe);
    }
    for (const PenRecord& pen : yard_.pens) {
      if (const PenRecord* const published = FindRecord(release_.pens, pen.id)) {
        CompareFields(ReleaseRecord::kPen, pen, *published, [](std::string_view) { return true; });
      }
    }
    return std::move(merged_);
  }

 private:
  void MergeIngredient(IngredientRecord& ingredient) {
    const IngredientRecord* const published = FindRecord(release_.ingredients, ingredient.id);
    if (published == nullptr) {
      return;
    }
    const IngredientRecord here = ingredient;
    ingredient = *published;
    if (IsActive(here)) {
      ingredient.dry_matter_percent = here.dry_matter_percent;
      NoteRename(ReleaseRecord::kIngredient, here, *published);
    }
    CompareFields(ReleaseRecord::kIngredient, here, *published,
                  [&](std::string_view field) { return IsActive(here) && field == "DryMatter%"; });
  }

  void MergeRecipe(RecipeRecord& recipe) {
    std::vector<RecipeLineRecord> here_lines = yard_lines_[recipe.id];
    const RecipeRecord* const published = FindRecord(release_.recipes, recipe.id);
    if (published == nullptr) {
      merged_.lines.insert(merged_.lines.end(), here_lines.begin(), here_lines.end());
      return;
    }
    const RecipeRecord here = recipe;
    recipe = *published;
    if (IsActive(here)) {
      recipe.head_count = here.head_count;
      NoteRename(ReleaseRecord::kRecipe, here, *published);
    }
    CompareFields(ReleaseRecord::kRecipe, here, *published,
                  [&](std::string_view field) { return IsActive(here) && field == "HeadCount"; });
    std::vector<RecipeLineRecord> lines = WithOwnDryMatter(release_lines_[recipe.id]);
    if (const std::string failure = Recompute(recipe, lines); !failure.empty()) {
      result_.not_computed.push_back(
          Tr("Recipe %1 %2: %3", {std::to_string(recipe.id), recipe.name, failure}));
    }
    Recompute(here, here_lines);
    CompareLines(ToCompare(here, here_lines), ToCompare(recipe, lines));
    merged_.lines.insert(merged_.lines.end(), lines.begin(), lines.end());
  }

  // A recipe that is not in use keeps its stored cells, and so does one that cannot be computed.
  static std::string Recompute(const RecipeRecord& recipe, std::vector<RecipeLineRecord>& lines) {
    if (!IsActive(recipe)) {
      return {};
    }
    Ration ration{.recipe = recipe, .lines = lines};
    std::string failure = RecalcFailure(ration);
    if (failure.empty()) {
      lines = std::move(ration.lines);
    }
    return failure;
  }

  [[nodiscard]] std::vector<RecipeLineRecord> WithOwnDryMatter(
      std::vector<RecipeLineRecord> lines) const {
    for (RecipeLineRecord& line : lines) {
      const int id = TextToLong(line.ingredient);
      const IngredientRecord* const merged = FindRecord(merged_.ingredients, id);
      const IngredientRecord* const published = FindRecord(release_.ingredients, id);
      if (merged != nullptr && published != nullptr &&
          merged->dry_matter_percent != published->dry_matter_percent) {
        line.dry_matter_percent = std::to_string(merged->dry_matter_percent);
      }
      line.row = 0;
    }
    return lines;
  }

  template <typename Record>
  void NoteRename(ReleaseRecord record, const Record& here, const Record& published) {
    if (here.name != published.name) {
      result_.renamed.push_back(
          {.record = record, .id = here.id, .here = here.name, .release = published.name});
    }
  }

  template <typename Record, typename Kept>
  void CompareFields(ReleaseRecord record, const Record& here, const Record& published,
                     const Kept& kept) {
    const auto texts = FieldTexts(here);
    const auto others = FieldTexts(published);
    for (std::size_t field = 0; field < texts.size(); ++field) {
      if (texts.at(field).text != others.at(field).text) {
        result_.differences.push_back({.record = record,
                                       .id = here.id,
                                       .name = IsActive(here) ? here.name : published.name,
                                       .field = std::string(texts.at(field).name),
                                       .here = texts.at(field).text,
                                       .release = others.at(field).text,
                                       .kept = kept(texts.at(field).name)});
      }
    }
  }

  void CompareLines(const ComparedRecipe& here, const ComparedRecipe& published) {
    for (const ComparedPair& pair : PairLines(here, published)) {
      for (const std::string_view field : DifferentCells(pair, true)) {
        AddCell(IsActive(here.head) ? here.head : published.head, pair, field);
      }
    }
  }

  void AddCell(const RecipeRecord& recipe, const ComparedPair& pair, std::string_view field) {
    const int ingredient = TextToLong(pair.Any().cells.ingredient);
    const IngredientRecord* const named =
        FindRecord(pair.b == nullptr ? yard_.ingredients : release_.ingredients, ingredient);
    result_.differences.push_back(
        {.record = ReleaseRecord::kLine,
         .id = recipe.id,
         .name = recipe.name,
         .place = pair.Any().place,
         .ingredient = named == nullptr ? pair.Any().cells.ingredient : named->name,
         .field = std::string(field),
         .here = CellText(pair.a, field),
         .release = CellText(pair.b, field)});
  }

  static std::optional<std::string> CellText(const ComparedLine* line, std::string_view field) {
    if (line == nullptr) {
      return std::nullopt;
    }
    const auto cells = CellTexts(line->cells);
    return std::find_if(cells.begin(), cells.end(),
                        [field](const FieldText& cell) { return cell.name == field; })
        ->text;
  }

  const RecipeTables& yard_;
  const RecipeTables& release_;
  ReleaseDifferences& result_;
  RecipeTables merged_;
  LinesByRecipe yard_lines_;
  LinesByRecipe release_lines_;
};

Release ChooseRelease(CentralConnection& server, const ReleaseQuestion& question) {
  const std::vector<Release> releases = ListReleases(server, question.yard);
  if (!question.release) {
    if (releases.empty()) {
      throw CentralRefused(Tr("there is no release for the yard %1", {question.yard}));
    }
    return releases.front();
  }
  const auto found = std::find_if(releases.begin(), releases.end(), [&](const Release& release) {
    return release.number == *question.release;
  });
  if (found == releases.end()) {
    throw CentralRefused(Tr("there is no release %1 for the yard %2",
                            {std::to_string(*question.release), question.yard}));
  }
  return *found;
}

// The records of a yard after fetching a release, and what differs.
struct Merge {
  RecipeTables records;
  ReleaseDifferences differences;
};

Merge MergeWith(CentralConnection& server, SQLite::Database& database,
                const ReleaseQuestion& question, const CentralProgress& progress) {
  progress.Report(Tr("Comparing the recipes"), 0, 0);
  Merge merge{.records = {}, .differences = {.release = ChooseRelease(server, question)}};
  const Release& release = merge.differences.release;
  const RecipeTables yard = ReadSnapshot(database);
  if (yard.unit != release.unit) {
    throw CentralRefused(
        Tr("release %1 is in %2 and %3 in %4: it cannot be fetched",
           {std::to_string(release.number), release.unit, FileTitle(question.file), yard.unit}));
  }
  const RecipeTables published = ReadReleaseRecords(server, release.number, release.unit);
  merge.records = ReleaseMerge(yard, published, merge.differences).Run();
  progress.Check();
  return merge;
}

void RequireAccepted(const ReleaseDifferences& differences,
                     const std::vector<RenamedRecord>& accepted) {
  for (const RenamedRecord& renamed : differences.renamed) {
    if (std::find(accepted.begin(), accepted.end(), renamed) == accepted.end()) {
      throw CentralRefused(
          Tr("release %1 calls %2 %3 \"%4\" in place of \"%5\", which was not accepted",
             {std::to_string(differences.release.number), std::string(WordOf(renamed.record)),
              std::to_string(renamed.id), renamed.release, renamed.here}));
    }
  }
}

void WriteMerged(SQLite::Database& database, RecipeTables& records, const Calendar& calendar) {
  SQLite::Transaction transaction(database, SQLite::TransactionBehavior::IMMEDIATE);
  for (const IngredientRecord& ingredient : records.ingredients) {
    WriteIngredient(database, ingredient);
  }
  for (const RecipeRecord& recipe : records.recipes) {
    WriteRecipe(database, recipe);
  }
  database.exec("DELETE FROM RecipeRation");
  for (RecipeLineRecord& line : records.lines) {
    line.row = 0;
    WriteRecipeLine(database, line);
  }
  TouchDatabase(database, calendar);
  transaction.commit();
}

}  // namespace

ReleaseDifferences DifferencesTo(CentralConnection& server, const ReleaseQuestion& question,
                                 const CentralProgress& progress) {
  SQLite::Database database = OpenDatabase(question.file, Access::kRead, question.lock_wait);
  return MergeWith(server, database, question, progress).differences;
}

ReleaseDifferences Fetch(CentralConnection& server, const FetchOrder& order,
                         const Calendar& calendar, const CentralProgress& progress) {
  NewFile file(order.out);
  // A file that cannot be read is named in the error, not its copy.
  OpenDatabase(order.what.file, Access::kRead, order.what.lock_wait);
  CopyDatabaseFile(order.what.file, file.Path(), order.what.lock_wait);
  return WithDatabaseErrors(order.out, [&] {
    Merge merge;
    {
      SQLite::Database database = OpenDatabase(file.Path(), Access::kWrite);
      merge = MergeWith(server, database, order.what, progress);
      RequireAccepted(merge.differences, order.accepted);
      WriteMerged(database, merge.records, calendar);
    }
    // Noted before the file takes its name: a file without a note could be in use unseen.
    server.Query(
        "INSERT INTO vrx.fetch (yard, release) VALUES ($1, $2)",
        {FindYard(server, order.what.yard), std::to_string(merge.differences.release.number)});
    file.TakeName();
    return std::move(merge.differences);
  });
}

}  // namespace vrx
