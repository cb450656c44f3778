#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "database/records.h"
#include "feed/ration.h"

namespace vrx {

struct ComparedLine {
  std::string ingredient;  // its name in its own database
  int place = 0;           // in the recipe, from 1
  RecipeLineRecord cells;
};

// A recipe of a database, recomputed in memory.
struct ComparedRecipe {
  RecipeRecord head;
  TotalsRow totals;
  std::vector<ComparedLine> lines;
  std::string unit;  // of the weights of its database
};

// Lines of the same ingredient; nullptr for a line that only one recipe has.
struct ComparedPair {
  const ComparedLine* a;
  const ComparedLine* b;

  [[nodiscard]] const ComparedLine& Any() const { return a != nullptr ? *a : *b; }
};

// A stored value by the name of its column.
struct FieldText {
  std::string_view name;
  std::string text;
};

// Without the number of the recipe and the rowid of the line; percentages of ingredients as shown.
[[nodiscard]] std::array<FieldText, 6> FieldTexts(const RecipeRecord& recipe);
[[nodiscard]] std::array<FieldText, 9> CellTexts(const RecipeLineRecord& line);

// An ingredient that the database does not have is named by its number. Throws DatabaseError, and
// Error for figures that cannot be computed, which names the recipe and the file's title.
ComparedRecipe ReadCompared(SQLite::Database& database, std::string_view file_title, int id);

// The lines of `a` in their order, then those that only `b` has. The pairs refer to the recipes.
std::vector<ComparedPair> PairLines(const ComparedRecipe& a, const ComparedRecipe& b);

// The names of the fields, labels of totals and names of cells that differ, in the order of their
// table. The numbers of the recipes are not compared, and those of ingredients only within one
// database. All cells of a line that only one recipe has differ, except these numbers.
std::vector<std::string_view> DifferentFields(const RecipeRecord& a, const RecipeRecord& b);
std::vector<std::string_view> DifferentTotals(const TotalsRow& a, const TotalsRow& b);
std::vector<std::string_view> DifferentCells(const ComparedPair& pair, bool one_database);

// Why the weights of two recipes cannot be compared as they are; empty for the same unit.
std::string UnitsDiffer(const ComparedRecipe& a, std::string_view title_of_a,
                        const ComparedRecipe& b, std::string_view title_of_b);

}  // namespace vrx
