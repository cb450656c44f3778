#include <algorithm>
#include <cstddef>
#include <map>
#include <set>
#include <utility>

#include "database/connection.h"
#include "insight/accuracy_figures.h"
#include "insight/names.h"
#include "insight/record_reader.h"
#include "insight/use.h"

namespace vrx {
namespace {

// A sum of costs that is nothing if one of them is unknown.
class CostSum {
 public:
  void Add(const std::optional<Exact>& price, const Exact& weight) {
    any_ = true;
    known_ = known_ && price;
    if (price) {
      sum_ += *price * weight;
    }
  }
  [[nodiscard]] std::optional<double> Value() const {
    return any_ && known_ ? std::optional(sum_.ToDouble()) : std::nullopt;
  }

 private:
  Exact sum_;
  bool any_ = false;
  bool known_ = true;
};

struct UsedIngredient {
  Exact used;
  CostSum cost;
  CostSum over;
  CostSum under;
  CostSum net;

  void Add(const Record& load, const std::optional<Exact>& price) {
    used += load.actual;
    cost.Add(price, load.actual);
    if (load.target.Sign() <= 0 || load.actual.Sign() <= 0) {
      return;
    }
    const Exact difference = load.actual - load.target;
    net.Add(price, difference);
    over.Add(price, difference.Sign() > 0 ? difference : Exact());
    under.Add(price, difference.Sign() < 0 ? -difference : Exact());
  }
};

// The prices of each ingredient by the day from which they count.
class Prices {
 public:
  Prices(const std::vector<IngredientPrice>& prices, RecordReader& reader) {
    for (const IngredientPrice& price : prices) {
      const NameId ingredient = reader.IdOf(price.ingredient, NameKind::kIngredient);
      prices_[ingredient][ToDayNumber(price.from)] = Exact::Of(price.price);
    }
  }

  [[nodiscard]] std::optional<Exact> Of(NameId ingredient, DayNumber day) const {
    const auto of_ingredient = prices_.find(ingredient);
    if (of_ingredient == prices_.end() || day == kNoDay) {
      return std::nullopt;
    }
    const auto after = of_ingredient->second.upper_bound(day);
    return after == of_ingredient->second.begin() ? std::nullopt
                                                  : std::optional(std::prev(after)->second);
  }

 private:
  std::map<NameId, std::map<DayNumber, Exact>> prices_;
};

std::optional<double> ShrinkOf(const UseQuestion& question, const std::string& ingredient,
                               const Exact& used) {
  std::vector<StockLine> lines;
  for (const StockLine& line : question.stock) {
    const Question& about = question.about;
    if (line.ingredient == ingredient && (!about.from || line.date >= *about.from) &&
        (!about.to || line.date <= *about.to)) {
      lines.push_back(line);
    }
  }
  std::stable_sort(lines.begin(), lines.end(),
                   [](const auto& one, const auto& other) { return one.date < other.date; });
  if (lines.empty()) {
    return std::nullopt;
  }
  Exact available = Exact::Of(lines.front().opening);
  for (const StockLine& line : lines) {
    available += Exact::Of(line.received);
  }
  const Exact gone = available - used - Exact::Of(lines.back().closing);
  return available.Sign() > 0 ? std::optional(Percent(gone, available)) : std::nullopt;
}

void AddUnknown(const UseQuestion& question, const std::set<std::string>& known, Use& answer) {
  std::set<std::string> names;
  for (const IngredientPrice& price : question.prices) {
    names.insert(price.ingredient);
  }
  for (const StockLine& line : question.stock) {
    names.insert(line.ingredient);
  }
  std::set_difference(names.begin(), names.end(), known.begin(), known.end(),
                      std::back_inserter(answer.unknown));
}

}  // namespace

Use ReadUse(SQLite::Database& database, const UseQuestion& question,
            const InsightProgress& progress) {
  return WithDatabaseErrors(database, [&] {
    RecordReader reader(database, question.about, progress);
    const Prices prices(question.prices, reader);
    const NameId wanted = reader.IdOf(question.about.ingredient, NameKind::kIngredient);
    std::map<NameId, UsedIngredient> used;
    reader.Read(kReadLoads | kReadBatch | kReadIngredient | kReadWeights | kReadDate,
                [&](const Record& load) {
                  if (wanted == kNoName || load.ingredient == wanted) {
                    const DayNumber day = reader.Batches()[load.batch].day;
                    used[load.ingredient].Add(load, prices.Of(load.ingredient, day));
                  }
                });
    Use answer;
    std::set<std::string> known;
    for (const auto& [ingredient, figures] : used) {
      const std::string& name = reader.NamesOf(NameKind::kIngredient).Text(ingredient);
      known.insert(name);
      answer.lines.push_back({.ingredient = reader.NamesOf(NameKind::kIngredient).Name(ingredient),
                              .used = figures.used.ToDouble(),
                              .cost = figures.cost.Value(),
                              .over = figures.over.Value(),
                              .under = figures.under.Value(),
                              .net = figures.net.Value(),
                              .shrink = ShrinkOf(question, name, figures.used)});
    }
    std::sort(answer.lines.begin(), answer.lines.end(),
              [](const auto& one, const auto& other) { return one.ingredient < other.ingredient; });
    if (wanted == kNoName) {
      AddUnknown(question, known, answer);
    }
    answer.notes = reader.Notes();
    return answer;
  });
}

}  // namespace vrx
