#include "insight/insight_model.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <set>
#include <utility>

#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/Transaction.h>

#include "base/date.h"
#include "database/imports.h"

namespace vrx::testing {
namespace {

std::string DigitsOf(Wide number) {
  std::string digits;
  for (; number > 0; number /= 10) {
    digits.insert(digits.begin(), static_cast<char>('0' + static_cast<int>(number % 10)));
  }
  return digits.empty() ? "0" : digits;
}

Wide Amount(Wide number) { return number < 0 ? -number : number; }

void BindBillionths(SQLite::Statement& insert, int index,
                    const std::optional<std::int64_t>& weight) {
  if (weight) {
    insert.bind(index, Weight(*weight));
  } else {
    insert.bind(index);
  }
}

void BindText(SQLite::Statement& insert, int index, const std::optional<std::string>& text) {
  if (text) {
    insert.bind(index, *text);
  } else {
    insert.bind(index);
  }
}

}  // namespace

double Weight(Wide billionths) { return Nearest(billionths, kBillion); }

std::optional<std::string> UserOf(const ModelRow& row) {
  return row.user && *row.user != "-1" && !row.user->empty() ? row.user : std::nullopt;
}

std::optional<std::string> NameOr(const std::optional<std::string>& name) {
  return name && !name->empty() ? name : std::nullopt;
}

// Interpolates in fourths of the gap to the next one.
ModelQuotient Quantile(const std::vector<ModelQuotient>& sorted, std::size_t quarter) {
  const std::size_t fourths = (sorted.size() - 1) * quarter;
  const ModelQuotient& one = sorted[fourths / 4];
  const ModelQuotient& two = sorted[std::min(fourths / 4 + 1, sorted.size() - 1)];
  const auto part = static_cast<Wide>(fourths % 4);
  return {one.dividend * two.divisor * (4 - part) + two.dividend * one.divisor * part,
          4 * one.divisor * two.divisor};
}

void SortQuotients(std::vector<ModelQuotient>& quotients) {
  std::sort(quotients.begin(), quotients.end(), [](const auto& left, const auto& right) {
    return left.dividend * right.divisor < right.dividend * left.divisor;
  });
}

int LimitAgainst(const WeightLimit& limit, const std::string& units, Wide weight) {
  const auto billionths = static_cast<Wide>(limit.weight * 1000 + 0.5) * (kBillion / 1000);
  const Wide one = billionths * (limit.unit == WeightUnit::kKilograms ? 100'000'000 : 45'359'237);
  const Wide other = weight * (units == "KG" ? 100'000'000 : 45'359'237);
  return one > other ? 1 : (one < other ? -1 : 0);
}

double Nearest(Wide dividend, Wide divisor) {
  const bool negative = (dividend < 0) != (divisor < 0);
  dividend = Amount(dividend);
  divisor = Amount(divisor);
  std::string text = DigitsOf(dividend / divisor) + ".";
  Wide rest = dividend % divisor;
  for (int digit = 0; digit < 40; ++digit) {
    // Times ten in two steps: the rest may fill nearly all bits.
    int next = 0;
    Wide tenfold = 0;
    for (int i = 0; i < 10; ++i) {
      tenfold += rest;
      if (tenfold >= divisor) {
        tenfold -= divisor;
        ++next;
      }
    }
    text += static_cast<char>('0' + next);
    rest = tenfold;
  }
  text += rest > 0 ? "1" : "0";
  const double value = std::strtod(text.c_str(), nullptr);
  return negative && value != 0 ? -value : value;
}

// Rows of a store in another unit do not count, or are converted.
Model::Model(std::vector<ModelRow> rows, std::vector<ModelImport> imports, std::string units)
    : stored_(std::move(rows)), imports_(std::move(imports)), units_(std::move(units)) {
  for (ModelRow row : stored_) {
    const ModelImport* const import = row.import == 0 || !row.number
                                          ? nullptr
                                          : &imports_[static_cast<std::size_t>(row.import) - 1];
    if (import != nullptr && import->units != units_ && import->settled.empty()) {
      continue;
    }
    if (import != nullptr && import->units != units_ && import->settled == "convert") {
      for (auto* const weight : {&row.target, &row.actual_batch, &row.actual_feed}) {
        if (*weight) {  // from pounds; the random yards have no other case
          *weight = static_cast<std::int64_t>(Wide{**weight} * 45'359'237 / 100'000'000);
        }
      }
    }
    rows_.push_back(row);
  }
}

void WriteImports(SQLite::Database& database, const std::vector<ModelRow>& rows,
                  const std::vector<ModelImport>& imports) {
  MakeImportTables(database);
  database.exec("DELETE FROM Imports; DELETE FROM ImportedBatches; DELETE FROM sqlite_sequence");
  int number = 0;
  for (const ModelImport& import : imports) {
    ++number;
    ImportRecord record{.at = import.at,
                        .file = std::to_string(number) + ".QXT",
                        .units = import.units,
                        .left_out = import.left_out,
                        .not_read = import.not_read,
                        .file_low = import.low,
                        .file_high = import.high,
                        .missing = import.missing};
    if (import.first_date) {
      record.first_date = ParseStoredDate(*import.first_date);
      record.last_date = ParseStoredDate(*import.last_date);
    }
    AddImport(database, record);
    database.exec("UPDATE Imports SET Settled = nullif('" + import.settled +
                  "', '') WHERE Number = " + std::to_string(number));
    std::map<std::int64_t, int> counts;
    for (const ModelRow& row : rows) {
      if (row.import == number && row.number) {
        ++counts[*row.number];
      }
    }
    for (const auto& [transaction, count] : counts) {
      AddImportedBatches(database, {{.import = number,
                                     .transaction = static_cast<std::int32_t>(transaction),
                                     .rows = count}});
    }
  }
}

void Model::WriteTo(SQLite::Database& database) const {
  SQLite::Transaction transaction(database);
  database.exec("DELETE FROM Transactions");
  database.exec("UPDATE UnitsOfMeasure SET UoM = '" + units_ + "'");
  SQLite::Statement insert(
      database,
      "INSERT INTO Transactions ([Transaction], Type, Recipe, UserID, Ingredient, Pen, Target, "
      "ActualBatch, ActualFeed, Date, Time) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
  for (const ModelRow& row : stored_) {
    insert.reset();
    if (row.number) {
      insert.bind(1, *row.number);
    } else {
      insert.bind(1);
    }
    insert.bind(2, row.type);
    BindText(insert, 3, row.recipe);
    BindText(insert, 4, row.user);
    BindText(insert, 5, row.ingredient);
    BindText(insert, 6, row.pen);
    BindBillionths(insert, 7, row.target);
    BindBillionths(insert, 8, row.actual_batch);
    BindBillionths(insert, 9, row.actual_feed);
    BindText(insert, 10, row.date);
    BindText(insert, 11, row.time);
    insert.exec();
  }
  WriteImports(database, stored_, imports_);
  transaction.commit();
}

std::vector<ModelBatch> Model::Batches() const {
  std::vector<ModelBatch> batches;
  std::map<std::int64_t, std::size_t> known;
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    const ModelRow& row = rows_[i];
    if (!row.IsLoad() && !row.IsDelivery()) {
      continue;
    }
    if (!row.number) {
      batches.push_back({i});
    } else if (known.contains(*row.number)) {
      batches[known[*row.number]].push_back(i);
    } else {
      known[*row.number] = batches.size();
      batches.push_back({i});
    }
  }
  return batches;
}

std::optional<std::string> Model::DayOf(const ModelBatch& batch) const {
  const ModelRow* decides = nullptr;
  for (const std::size_t i : batch) {
    if (rows_[i].IsLoad()) {
      decides = &rows_[i];
      break;
    }
  }
  if (decides == nullptr) {
    decides = &rows_[batch.front()];
  }
  return decides->date && ParseStoredDate(*decides->date) ? decides->date : std::nullopt;
}

std::vector<ModelBatch> Model::Chosen(const Question& question) const {
  std::vector<ModelBatch> chosen;
  for (const ModelBatch& batch : Batches()) {
    const auto day = DayOf(batch);
    const ModelRow& first = rows_[batch.front()];
    bool fits = (!question.from || (day && *day >= StoredText(*question.from))) &&
                (!question.to || (day && *day <= StoredText(*question.to))) &&
                (!question.recipe || first.recipe == question.recipe) &&
                (!question.operator_id || UserOf(first) == question.operator_id);
    const auto any = [&](auto test) {
      return std::any_of(batch.begin(), batch.end(), [&](std::size_t i) { return test(rows_[i]); });
    };
    fits = fits && (!question.ingredient || any([&](const ModelRow& row) {
             return row.IsLoad() && row.ingredient == question.ingredient;
           })) &&
           (!question.pen ||
            any([&](const ModelRow& row) { return row.IsDelivery() && row.pen == question.pen; }));
    if (fits) {
      chosen.push_back(batch);
    }
  }
  std::stable_sort(chosen.begin(), chosen.end(), [&](const auto& left, const auto& right) {
    return std::pair(DayOf(left), rows_[left.front()].number) <
           std::pair(DayOf(right), rows_[right.front()].number);
  });
  return chosen;
}

// What sorts as the group does: none first, users as numbers.
std::string Model::KeyOf(AccuracyKey key, const ModelRow& row, const ModelBatch& batch) const {
  std::optional<std::string> text;
  switch (key) {
    case AccuracyKey::kIngredient:
      text = NameOr(row.ingredient);
      break;
    case AccuracyKey::kRecipe:
      text = NameOr(row.recipe);
      break;
    case AccuracyKey::kPen:
      text = NameOr(row.pen);
      break;
    case AccuracyKey::kOperator:
      text = UserOf(row);
      if (text) {
        return "1" + std::string(10 - text->size(), ' ') + *text;
      }
      break;
    case AccuracyKey::kDay:
    case AccuracyKey::kMonth:
      text = DayOf(batch);
      if (text && key == AccuracyKey::kMonth) {
        text->resize(7);
      }
      break;
    case AccuracyKey::kWeek:
      text = DayOf(batch);
      if (text) {
        // Counts the days from a Monday that begins the first week of its year.
        const auto days = std::chrono::sys_days(*ParseStoredDate(*text)) -
                          std::chrono::sys_days(*ParseStoredDate("2024-01-01"));
        int week = static_cast<int>(days.count() / 7) + 1;
        int year = 2024;
        for (const int weeks : {52, 52, 53}) {
          if (week > weeks) {
            week -= weeks;
            ++year;
          }
        }
        text = std::to_string(year) + "-W" + (week < 10 ? "0" : "") + std::to_string(week);
      }
      break;
  }
  return text ? "1" + *text : "0";
}

AccuracyFigures Model::Figures(std::vector<ModelRow> loads,
                               const AccuracyQuestion& question) const {
  AccuracyFigures figures;
  Wide not_loaded = 0;
  Wide without = 0;
  Wide target = 0;
  Wide actual = 0;
  Wide gross = 0;
  Wide target_within = 0;
  std::int64_t within = 0;
  std::int64_t within_weight = 0;
  std::int64_t beyond = 0;
  std::int64_t below = 0;
  std::int64_t well_below = 0;
  std::vector<ModelQuotient> deviations;
  const auto division =
      static_cast<Wide>(question.limits.division * 1000 + 0.5) * (kBillion / 1000);
  const auto percent = static_cast<Wide>(question.limits.percent * 1000 + 0.5);
  for (const ModelRow& load : loads) {
    const Wide t = load.Target();
    const Wide a = load.Actual();
    if (t <= 0) {
      ++figures.without_target.n;
      without += a;
    } else if (a <= 0) {
      ++figures.not_loaded.n;
      not_loaded += t;
    } else {
      const Wide amount = Amount(a - t);
      const bool is_within = amount <= division || amount * 100'000 < percent * t;
      ++figures.n;
      target += t;
      actual += a;
      gross += amount;
      within += is_within ? 1 : 0;
      target_within += is_within ? t : 0;
      within_weight +=
          amount <= division || LimitAgainst(question.limits.weight, units_, amount) > 0 ? 1 : 0;
      beyond += LimitAgainst(question.limits.beyond, units_, amount) < 0 ? 1 : 0;
      below += a < t ? 1 : 0;
      well_below += t - a > division ? 1 : 0;
      deviations.push_back({100 * (a - t), t});
    }
  }
  if (figures.not_loaded.n > 0) {
    figures.not_loaded.weight = Weight(not_loaded);
  }
  if (figures.without_target.n > 0) {
    figures.without_target.weight = Weight(without);
  }
  if (figures.n == 0) {
    return figures;
  }
  SortQuotients(deviations);
  const std::int64_t n = figures.n;
  figures.target = Weight(target);
  figures.actual = Weight(actual);
  figures.net = Weight(actual - target);
  figures.net_percent = Nearest(100 * (actual - target), target);
  figures.gross = Weight(gross);
  figures.gross_percent = Nearest(100 * gross, target);
  figures.within = Nearest(100 * within, n);
  figures.weight_within = Nearest(100 * target_within, target);
  figures.within_weight = Nearest(100 * within_weight, n);
  figures.beyond = Nearest(100 * beyond, n);
  figures.below = Nearest(100 * below, n);
  const auto quantile = [&](std::size_t quarter) {
    const ModelQuotient place = Quantile(deviations, quarter);
    return Nearest(place.dividend, place.divisor);
  };
  figures.q1 = quantile(1);
  figures.median = quantile(2);
  figures.q3 = quantile(3);
  if (!question.deliveries && n >= 40) {
    const ModelQuotient median = Quantile(deviations, 2);
    figures.marked = 2 * median.dividend <= -median.divisor && 4 * well_below >= 3 * n;
  }
  return figures;
}

Accuracy Model::ReadAccuracy(const AccuracyQuestion& question) const {
  Accuracy answer;
  std::vector<ModelRow> all;
  std::map<std::vector<std::string>, std::vector<ModelRow>> groups;
  for (const ModelBatch& batch : Chosen(question.about)) {
    for (const std::size_t i : batch) {
      const ModelRow& row = rows_[i];
      if (question.deliveries != row.IsDelivery() ||
          (row.IsLoad() && question.about.ingredient &&
           row.ingredient != question.about.ingredient) ||
          (row.IsDelivery() && question.about.pen && row.pen != question.about.pen)) {
        continue;
      }
      std::vector<std::string> key;
      for (const AccuracyKey by : question.by) {
        key.push_back(KeyOf(by, row, batch));
      }
      groups[key].push_back(row);
      all.push_back(row);
    }
  }
  const bool operators =
      std::count(question.by.begin(), question.by.end(), AccuracyKey::kOperator) > 0;
  for (const auto& [key, loads] : groups) {
    AccuracyGroup group;
    for (std::string text : key) {
      const bool none = text == "0";
      text.erase(0, 1);
      text.erase(0, text.find_first_not_of(' '));
      group.key.push_back(none ? std::nullopt : std::optional(text));
    }
    group.figures = Figures(loads, question);
    AccuracyFigures& figures = group.figures;
    if (question.by.size() == 1 && operators && !question.deliveries && figures.n > 0) {
      std::set<std::optional<std::string>> ingredients;
      for (const ModelRow& load : loads) {
        if (load.Target() > 0 && load.Actual() > 0) {
          ingredients.insert(NameOr(load.ingredient));
        }
      }
      Wide dividend = 0;
      Wide common = 1;
      Wide weights = 0;
      for (const auto& ingredient : ingredients) {
        Wide mine = 0;
        Wide within = 0;
        Wide weight = 0;
        for (const ModelRow& load : all) {
          if (NameOr(load.ingredient) == ingredient && load.Target() > 0 && load.Actual() > 0) {
            weight += load.Target();
          }
        }
        for (const ModelRow& load : loads) {
          if (NameOr(load.ingredient) == ingredient) {
            const AccuracyFigures one = Figures({load}, question);
            mine += one.n;
            within += one.n == 1 && *one.within > 50 ? 1 : 0;
          }
        }
        dividend = dividend * mine + common * weight * within;
        common *= mine;
        weights += weight;
      }
      figures.standardized = Nearest(100 * dividend, common * weights);
    }
    if (operators && !question.deliveries && figures.n < 20) {
      for (auto* const share : {&figures.within, &figures.weight_within, &figures.within_weight,
                                &figures.beyond, &figures.below, &figures.standardized}) {
        *share = std::nullopt;
      }
    }
    answer.groups.push_back(group);
  }
  answer.total = Figures(all, question);
  return answer;
}

std::vector<CompositionLine> Model::ReadComposition(const Question& question) const {
  std::vector<CompositionLine> lines;
  for (const ModelBatch& batch : Chosen(question)) {
    std::map<std::optional<std::string>, std::pair<Wide, Wide>> sums;
    Wide target = 0;
    Wide actual = 0;
    for (const std::size_t i : batch) {
      const ModelRow& row = rows_[i];
      if (row.IsLoad()) {
        auto& [t, a] = sums[NameOr(row.ingredient)];
        t += row.Target();
        a += row.Actual();
        target += row.Target();
        actual += row.Actual();
      }
    }
    for (const auto& [ingredient, sum] : sums) {
      CompositionLine line{rows_[batch.front()].number, NameOr(rows_[batch.front()].recipe),
                           ingredient, std::nullopt};
      if (target > 0 && actual > 0) {
        line.points = Nearest(100 * (sum.second * target - sum.first * actual), actual * target);
      }
      lines.push_back(line);
    }
  }
  return lines;
}

}  // namespace vrx::testing
