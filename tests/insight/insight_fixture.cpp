#include "insight/insight_fixture.h"

#include <array>
#include <cstdio>

namespace vrx::testing {

void InsightTest::Load(int number, const std::string& ingredient, double target, double actual,
                       const std::string& more) {
  Store("(" + std::to_string(number) + ", 'STEERS', 'BATCH', " + more.substr(0, more.find(',')) +
        ", '" + ingredient + "', NULL, " + std::to_string(target) + ", " + std::to_string(actual) +
        ", 0" + more.substr(more.find(',')) + ")");
}

std::string Shown(const std::optional<double>& figure) {
  if (!figure) {
    return "-";
  }
  std::array<char, 40> text{};
  std::snprintf(text.data(), text.size(), "%.17g", *figure + 0.0);
  return text.data();
}

std::string Shown(const std::optional<std::string>& text) { return text.value_or("-"); }

std::string Shown(const AccuracyFigures& figures) {
  std::string text = std::to_string(figures.n) + " notLoaded " +
                     std::to_string(figures.not_loaded.n) + ":" + Shown(figures.not_loaded.weight) +
                     " without " + std::to_string(figures.without_target.n) + ":" +
                     Shown(figures.without_target.weight);
  const std::vector<std::pair<const char*, std::optional<double>>> shares = {
      {"target", figures.target},
      {"actual", figures.actual},
      {"net", figures.net},
      {"net%", figures.net_percent},
      {"gross", figures.gross},
      {"gross%", figures.gross_percent},
      {"within", figures.within},
      {"weightWithin", figures.weight_within},
      {"withinWeight", figures.within_weight},
      {"beyond", figures.beyond},
      {"below", figures.below},
      {"q1", figures.q1},
      {"median", figures.median},
      {"q3", figures.q3},
      {"standardized", figures.standardized}};
  for (const auto& [name, share] : shares) {
    text += std::string(" ") + name + " " + Shown(share);
  }
  return text + " marked " + (figures.marked ? (*figures.marked ? "yes" : "no") : "-");
}

std::vector<std::string> Shown(const Accuracy& answer) {
  std::vector<std::string> lines;
  for (const AccuracyGroup& group : answer.groups) {
    std::string key;
    for (const auto& text : group.key) {
      key += Shown(text) + "/";
    }
    lines.push_back(key + ": " + Shown(group.figures));
  }
  lines.push_back("total: " + Shown(answer.total));
  return lines;
}

std::vector<std::string> Shown(const std::vector<CompositionLine>& composition) {
  std::vector<std::string> lines;
  for (const CompositionLine& line : composition) {
    lines.push_back((line.transaction ? std::to_string(*line.transaction) : "-") + " " +
                    Shown(line.recipe) + " " + Shown(line.ingredient) + " " + Shown(line.points));
  }
  return lines;
}

namespace {

std::string ShownBatch(const std::optional<std::int64_t>& transaction,
                       const std::optional<Date>& date, const std::optional<std::string>& recipe,
                       const std::optional<std::string>& operator_id) {
  return (transaction ? std::to_string(*transaction) : "-") + " " +
         (date ? StoredText(*date) : "-") + " " + Shown(recipe) + " " + Shown(operator_id);
}

std::string Range(const TimesFigures& figures) {
  return " [" + Shown(figures.q1) + " " + Shown(figures.median) + " " + Shown(figures.q3) + "]";
}

}  // namespace

std::vector<std::string> Shown(const Balance& answer) {
  std::vector<std::string> lines;
  for (const BalanceLine& line : answer.lines) {
    lines.push_back(ShownBatch(line.transaction, line.date, line.recipe, line.operator_id) + " " +
                    Shown(line.loaded) + " - " + Shown(line.fed) + " = " +
                    Shown(std::optional(line.left)) + " " + Shown(line.left_percent) + " % " +
                    std::string(TextOf(line.state)));
  }
  for (const BalanceDay& day : answer.days) {
    lines.push_back(StoredText(day.date) + " " + Shown(std::optional(day.loaded)) + " " +
                    Shown(std::optional(day.left)) + " " + Shown(day.left_percent) + " " +
                    Shown(day.median));
  }
  lines.push_back(std::to_string(answer.batches) + " batches, " + std::to_string(answer.out) +
                  " out, " + std::to_string(answer.never_fed) + " never fed, " +
                  std::to_string(answer.never_loaded) + " never loaded");
  return lines;
}

std::vector<std::string> Shown(const Times& answer) {
  std::vector<std::string> lines;
  for (const TimesGroup& group : answer.groups) {
    lines.push_back(Shown(group.key) + " " + std::to_string(group.batches) + "+" +
                    std::to_string(group.left_out) + Range(group.preparing) + Range(group.waiting) +
                    Range(group.feeding));
  }
  for (const BatchTimes& batch : answer.batches) {
    lines.push_back(ShownBatch(batch.transaction, batch.date, batch.recipe, batch.operator_id) +
                    (batch.left_out ? " left out" : "") + " " + Shown(batch.preparing) + " " +
                    Shown(batch.waiting) + " " + Shown(batch.feeding));
  }
  return lines;
}

std::vector<std::string> Shown(const Statement& answer) {
  std::vector<std::string> lines{
      std::to_string(answer.imports) + " imports, " + std::to_string(answer.batches) +
          " batches, " + std::to_string(answer.loads) + " loads " + Shown(answer.loaded) + ", " +
          std::to_string(answer.deliveries) + " deliveries " + Shown(answer.fed),
      "not read " + std::to_string(answer.not_read) + ", left out " +
          std::to_string(answer.left_out) + ", same " + std::to_string(answer.same) +
          ", continued " + std::to_string(answer.continued) + ", conflicts " +
          std::to_string(answer.conflicts),
      "never fed " + std::to_string(answer.never_fed) + ", out " + std::to_string(answer.out) +
          ", not recorded " + std::to_string(answer.not_recorded)};
  for (const MissingInFile& missing : answer.missing) {
    lines.push_back("missing in " + std::to_string(missing.import) + ": " + missing.numbers);
  }
  for (const ImportGap& gap : answer.gaps) {
    lines.push_back("gap " + std::to_string(gap.after) + "/" + std::to_string(gap.before) + ": " +
                    std::to_string(gap.first) + "-" + std::to_string(gap.last));
  }
  std::string days = std::to_string(answer.days_without) + " days without";
  for (const Date& day : answer.first_days_without) {
    days += " " + StoredText(day);
  }
  lines.push_back(days);
  for (const OddDate& odd : answer.odd_dates) {
    lines.push_back("odd in " + std::to_string(odd.import) + ": " + StoredText(odd.date) +
                    (odd.in_future ? " in the future" : ""));
  }
  for (const ImportInOtherUnit& import : answer.other_units) {
    lines.push_back("import " + std::to_string(import.import) + " in " + import.units + " " +
                    import.settled);
  }
  return lines;
}

std::vector<std::string> Shown(const std::vector<TraceLine>& trace) {
  std::vector<std::string> lines;
  for (const TraceLine& line : trace) {
    lines.push_back(ShownBatch(line.transaction, line.date, line.recipe, line.operator_id) + " " +
                    (line.stayed ? "stayed" : Shown(line.pen)) + " " + Shown(line.ingredient) +
                    " " + Shown(line.weight) + " " + Shown(line.share) + " %");
  }
  return lines;
}

std::vector<std::string> Shown(const std::vector<DeliveredLine>& delivered) {
  std::vector<std::string> lines;
  for (const DeliveredLine& line : delivered) {
    lines.push_back(Shown(line.pen) + " " + StoredText(line.date) + " " + Shown(line.called) + " " +
                    Shown(line.delivered) + " " + Shown(line.difference) + " x" +
                    std::to_string(line.feedings) + " mean " + Shown(line.mean7) + " " +
                    Shown(line.recipe) + (line.recipe_changed ? " changed" : "") + " " +
                    (line.first ? StoredText(*line.first) : "-") + " " + Shown(line.first_shift) +
                    (line.missed ? " missed" : "") + " head " + Shown(line.per_head));
  }
  return lines;
}

std::vector<std::string> Shown(const std::vector<HoldingLine>& holding) {
  const auto text = [](const std::optional<Moment>& moment) {
    return moment ? TextOf(*moment) : "-";
  };
  std::vector<std::string> lines;
  for (const HoldingLine& line : holding) {
    lines.push_back(Shown(line.pen) + " " + text(line.last) + " " + text(line.since) + " " +
                    text(line.until) + " " + std::string(TextOf(line.state)));
  }
  return lines;
}

std::vector<std::string> Shown(const std::vector<UseLine>& use) {
  std::vector<std::string> lines;
  for (const UseLine& line : use) {
    lines.push_back(Shown(line.ingredient) + " " + Shown(std::optional(line.used)) + " cost " +
                    Shown(line.cost) + " over " + Shown(line.over) + " under " + Shown(line.under) +
                    " net " + Shown(line.net) + " shrink " + Shown(line.shrink));
  }
  return lines;
}

}  // namespace vrx::testing
