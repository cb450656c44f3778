#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/date.h"
#include "insight/insight_model.h"

namespace vrx::testing {

std::vector<UseLine> Model::ReadUse(const UseQuestion& question) const {
  struct Costs {
    Wide sum = 0;
    bool known = true;
    bool any = false;
    std::optional<double> Value() const {
      return any && known ? std::optional(Nearest(sum, Wide{kBillion} * 1000)) : std::nullopt;
    }
  };
  struct Sums {
    Wide used = 0;
    Costs cost;
    Costs over;
    Costs under;
    Costs net;
  };
  std::map<std::optional<std::string>, Sums> ingredients;
  for (const ModelBatch& batch : Chosen(question.about)) {
    for (const std::size_t i : batch) {
      const ModelRow& row = rows_[i];
      if (!row.IsLoad() ||
          (question.about.ingredient && row.ingredient != question.about.ingredient)) {
        continue;
      }
      const IngredientPrice* price = nullptr;
      const std::optional<std::string> date = DayOf(batch);
      const auto day = date ? ParseStoredDate(*date) : std::nullopt;
      for (const IngredientPrice& other : question.prices) {
        if (day && row.ingredient == other.ingredient && other.from <= *day &&
            (price == nullptr || price->from <= other.from)) {
          price = &other;
        }
      }
      const auto add = [&](Costs& costs, Wide weight) {
        costs.any = true;
        costs.known = costs.known && price != nullptr;
        costs.sum += price == nullptr ? 0 : weight * static_cast<Wide>(price->price * 1000 + 0.5);
      };
      Sums& sums = ingredients[NameOr(row.ingredient)];
      sums.used += row.Actual();
      add(sums.cost, row.Actual());
      if (row.Target() > 0 && row.Actual() > 0) {
        const Wide difference = row.Actual() - row.Target();
        add(sums.net, difference);
        add(sums.over, difference > 0 ? difference : 0);
        add(sums.under, difference < 0 ? -difference : 0);
      }
    }
  }
  std::vector<UseLine> lines;
  for (const auto& [ingredient, sums] : ingredients) {
    UseLine line{.ingredient = ingredient,
                 .used = Weight(sums.used),
                 .cost = sums.cost.Value(),
                 .over = sums.over.Value(),
                 .under = sums.under.Value(),
                 .net = sums.net.Value()};
    std::vector<StockLine> stock;
    for (const StockLine& entry : question.stock) {
      if (ingredient == entry.ingredient &&
          (!question.about.from || entry.date >= *question.about.from) &&
          (!question.about.to || entry.date <= *question.about.to)) {
        stock.push_back(entry);
      }
    }
    if (!stock.empty()) {
      const auto wide = [](double whole) { return static_cast<Wide>(whole) * kBillion; };
      Wide available = wide(stock.front().opening);
      for (const StockLine& entry : stock) {
        available += wide(entry.received);
      }
      if (available > 0) {
        line.shrink =
            Nearest(100 * (available - sums.used - wide(stock.back().closing)), available);
      }
    }
    lines.push_back(line);
  }
  return lines;
}

}  // namespace vrx::testing
