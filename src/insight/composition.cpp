#include <algorithm>
#include <cstddef>
#include <map>
#include <utility>

#include "insight/accuracy.h"
#include "insight/exact.h"
#include "insight/names.h"
#include "insight/record_parts.h"
#include "insight/record_reader.h"

namespace vrx {
namespace {

struct IngredientSums {
  Exact target;
  Exact actual;
};

// Ingredients of a batch in the order in which they were loaded first.
struct LoadedBatch {
  Exact target;
  Exact actual;
  std::vector<std::pair<NameId, IngredientSums>> ingredients;

  void Add(const Record& record) {
    target += record.target;
    actual += record.actual;
    auto found = std::find_if(ingredients.begin(), ingredients.end(),
                              [&](const auto& entry) { return entry.first == record.ingredient; });
    if (found == ingredients.end()) {
      found = ingredients.insert(ingredients.end(), {record.ingredient, {}});
    }
    found->second.target += record.target;
    found->second.actual += record.actual;
  }

  // A / L - T / sum of T, over their common denominator.
  [[nodiscard]] std::optional<double> Points(const IngredientSums& sums) const {
    if (actual.Sign() <= 0 || target.Sign() <= 0) {
      return std::nullopt;
    }
    return Quotient((sums.actual * target - sums.target * actual) * Exact::Whole(100),
                    actual * target);
  }
};

void TakePart(RecordReader& reader, const TakeLine<CompositionLine>& take) {
  std::vector<LoadedBatch> loaded;
  reader.Read(kReadBoth | kReadBatch | kReadRecipe | kReadIngredient | kReadWeights | kReadDate,
              [&](const Record& record) {
                loaded.resize(reader.Batches().size());
                if (record.is_load) {
                  loaded[record.batch].Add(record);
                }
              });
  const Names& ingredients = reader.NamesOf(NameKind::kIngredient);
  for (const std::uint32_t index : reader.BatchesInOrder()) {
    if (index >= loaded.size()) {
      continue;
    }
    LoadedBatch& batch = loaded[index];
    std::sort(batch.ingredients.begin(), batch.ingredients.end(),
              [&](const auto& left, const auto& right) {
                return ingredients.Text(left.first) < ingredients.Text(right.first);
              });
    const Batch& known = reader.Batches()[index];
    for (const auto& [ingredient, sums] : batch.ingredients) {
      take({.transaction = known.Number(),
            .recipe = reader.NamesOf(NameKind::kRecipe).Name(known.recipe),
            .ingredient = ingredients.Name(ingredient),
            .points = batch.Points(sums)});
    }
  }
}

}  // namespace

InsightNotes StreamComposition(SQLite::Database& database, const Question& question,
                               const TakeLine<CompositionLine>& take,
                               const InsightProgress& progress) {
  return BatchParts(database, question, progress).Read([&](RecordReader& reader) {
    TakePart(reader, take);
  });
}

Composition ReadComposition(SQLite::Database& database, const Question& question,
                            const InsightProgress& progress) {
  Composition answer;
  answer.notes = StreamComposition(
      database, question, [&](CompositionLine&& line) { answer.lines.push_back(std::move(line)); },
      progress);
  return answer;
}

}  // namespace vrx
