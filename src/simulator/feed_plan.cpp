#include "simulator/feed_plan.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <map>
#include <stdexcept>

namespace vrx::simulator {

namespace {

constexpr std::string_view kMark = "{DATA_IN},";
constexpr std::string_view kLineEnd = "\r\n";

using Ingredients = std::map<std::string, FeedPlan::Ingredient, std::less<>>;

std::vector<std::string_view> Split(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  while (true) {
    const std::size_t end = text.find(separator);
    parts.push_back(text.substr(0, end));
    if (end == std::string_view::npos) {
      return parts;
    }
    text.remove_prefix(end + 1);
  }
}

template <typename Number>
Number ToNumber(std::string_view text) {
  Number number{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) {
    throw std::invalid_argument("no number: " + std::string(text));
  }
  return number;
}

FeedPlan::Ingredient ReadIngredient(std::string_view line) {
  const auto fields = Split(line, ',');
  if (fields.size() != 3) {
    throw std::invalid_argument("no ingredient: " + std::string(line));
  }
  return {ToNumber<int>(fields[0]), std::string(fields[1]), fields[2] == "1"};
}

// Number, name, type, target, head count and the names; the amounts follow the semicolon.
FeedPlan::Recipe ReadRecipe(std::string_view line, const Ingredients& ingredients) {
  constexpr std::size_t kFirstName = 5;
  const auto halves = Split(line, ';');
  const auto fields = Split(halves.front(), ',');
  if (halves.size() != 2 || fields.size() <= kFirstName) {
    throw std::invalid_argument("no recipe: " + std::string(line));
  }
  const auto amounts = Split(halves.back(), ',');
  if (amounts.size() != fields.size() - kFirstName) {
    throw std::invalid_argument("not an amount for each ingredient: " + std::string(line));
  }
  FeedPlan::Recipe recipe{ToNumber<int>(fields[0]), std::string(fields[1]), {}};
  for (std::size_t part = 0; part < amounts.size(); ++part) {
    const auto found = ingredients.find(fields[kFirstName + part]);
    if (found == ingredients.end()) {
      throw std::invalid_argument("an ingredient that is not listed: " + std::string(line));
    }
    const auto amount = ToNumber<double>(amounts[part]);
    if (amount > 0) {
      recipe.parts.push_back({found->second.id, found->first, amount, found->second.hand_add});
    }
  }
  return recipe;
}

FeedPlan::Pen ReadPen(std::string_view line) {
  const auto fields = Split(line, ',');
  if (fields.size() != 3) {
    throw std::invalid_argument("no pen: " + std::string(line));
  }
  return {ToNumber<int>(fields[0]), std::string(fields[1]), ToNumber<long>(fields[2])};
}

constexpr std::size_t kListLength = 34;  // entries of a list in a batch record, padding included
constexpr std::string_view kUser = "1";
constexpr int kStart = 6 * 60 + 10;  // minute of the day
constexpr int kLastMinute = 24 * 60 - 1;

// The capacity of the mixer and the divisions of the scale, in tenths of the unit.
struct Scale {
  long mixer;
  int division;
  int hand_division;
};

const Scale& ScaleOf(char unit) {
  static constexpr Scale kPounds{110'000, 50, 5};
  static constexpr Scale kKilograms{50'000, 20, 2};
  return unit == 'L' ? kPounds : kKilograms;
}

template <typename... Values>
std::string Format(const char* form, Values... values) {
  constexpr std::size_t kLongest = 64;
  std::string text(kLongest, '\0');
  text.resize(static_cast<std::size_t>(std::snprintf(text.data(), kLongest, form, values...)));
  return text;
}

std::string Weight(int tenths) { return Format("%d.%d", tenths / 10, tenths % 10); }

std::string DateOf(Day day, const char* form, bool year_first) {
  const std::chrono::year_month_day date(day);
  const auto month = static_cast<unsigned>(date.month());
  const auto of_month = static_cast<unsigned>(date.day());
  const int year = static_cast<int>(date.year());
  return year_first ? Format(form, year, month, of_month) : Format(form, month, of_month, year);
}

std::string RecordDate(Day day) { return DateOf(day, "%02u%02u%04d", false); }

int RoundTo(double tenths, int division) {
  return std::max(1, static_cast<int>(std::lround(tenths / division))) * division;
}

void Append(std::string& list, const std::string& entry) {
  list += (list.empty() ? "" : ",") + entry;
}

std::string Padded(std::string list, std::size_t entries) {
  for (; entries < kListLength; ++entries) {
    Append(list, "0");
  }
  return list;
}

}  // namespace

bool IsDownload(std::string_view memory) { return memory.substr(0, kMark.size()) == kMark; }

FeedPlan ReadFeedPlan(std::string_view download) {
  if (!IsDownload(download) || download.size() == kMark.size()) {
    throw std::invalid_argument("no download");
  }
  FeedPlan plan;
  plan.unit = download[kMark.size()];
  Ingredients ingredients;
  std::string_view section;
  while (!download.empty()) {
    const std::size_t end = std::min(download.find(kLineEnd), download.size());
    const std::string_view line = download.substr(0, end);
    download.remove_prefix(std::min(end + kLineEnd.size(), download.size()));
    if (line.empty()) {
      continue;
    }
    if (line.front() == '[') {
      section = line;
    } else if (section == "[ING]") {
      FeedPlan::Ingredient ingredient = ReadIngredient(line);
      ingredients.insert_or_assign(ingredient.name, ingredient);
    } else if (section == "[REC]") {
      FeedPlan::Recipe recipe = ReadRecipe(line, ingredients);
      if (!recipe.parts.empty()) {
        plan.recipes.push_back(std::move(recipe));
      }
    } else if (section == "[PEN]") {
      FeedPlan::Pen pen = ReadPen(line);
      if (pen.feed_amount > 0) {
        plan.pens.push_back(std::move(pen));
      }
    }
  }
  return plan;
}

bool FeedingWork::FeedDay(Day day, std::size_t limit) {
  Log log = done_;
  minute_ = kStart;
  for (const Load& load : LoadsOfDay()) {
    ++log.loads;
    FeedOut(load, day, Batch(load, day, log), log);
  }
  if (RecordsOf(log).size() > limit) {
    return false;
  }
  done_ = std::move(log);
  return true;
}

std::string FeedingWork::Records() const { return RecordsOf(done_); }

std::vector<FeedingWork::Load> FeedingWork::LoadsOfDay() const {
  std::vector<Load> loads;
  const std::size_t recipes = plan_.recipes.size();
  long held = 0;
  for (std::size_t pen = 0; recipes > 0 && pen < plan_.pens.size(); ++pen) {
    const FeedPlan::Recipe& recipe = plan_.recipes[pen * recipes / plan_.pens.size()];
    const long amount = plan_.pens[pen].feed_amount * 10;
    if (loads.empty() || loads.back().recipe != &recipe ||
        held + amount > ScaleOf(plan_.unit).mixer) {
      loads.push_back({&recipe, {}});
      held = 0;
    }
    loads.back().pens.push_back(&plan_.pens[pen]);
    held += amount;
  }
  return loads;
}

// Returns the weight in the mixer afterwards.
int FeedingWork::Batch(const Load& load, Day day, Log& log) {
  double wanted = 0;
  for (const FeedPlan::Pen* pen : load.pens) {
    wanted += static_cast<double>(pen->feed_amount) * 10;
  }
  double whole = 0;
  for (const FeedPlan::Part& part : load.recipe->parts) {
    whole += part.amount;
  }
  std::string ingredients;
  std::string times;
  std::string targets;
  std::string actuals;
  int batched = 0;
  const Scale& scale = ScaleOf(plan_.unit);
  for (const FeedPlan::Part& part : load.recipe->parts) {
    const int division = part.hand_add ? scale.hand_division : scale.division;
    const int target = RoundTo(wanted * part.amount / whole, division);
    const int off = part.hand_add ? Dice(-1, 1) : Dice(-2, 4);
    const int actual = std::max(division, target + off * division);
    minute_ += Dice(1, 2);
    Append(ingredients, std::to_string(part.ingredient));
    Append(times, Clock());
    Append(targets, Weight(target));
    Append(actuals, Weight(actual));
    log.weighings.push_back({day, log.loads, load.recipe->name, true, part.name, actual});
    batched += actual;
  }
  const std::size_t parts = load.recipe->parts.size();
  log.batches += "B," + std::to_string(log.loads) + "," + std::to_string(load.recipe->id) + "," +
                 RecordDate(day) + "," + std::string(kUser) + "," + Padded(ingredients, parts) +
                 ";" + Padded(times, parts) + ";" + Padded(targets, parts) + ";" +
                 Padded(actuals, parts) + "\r\n";
  return batched;
}

// The last pen gets the rest, except a little that sticks to the mixer.
void FeedingWork::FeedOut(const Load& load, Day day, int batched, Log& log) {
  const int division = ScaleOf(plan_.unit).division;
  for (const FeedPlan::Pen* pen : load.pens) {
    const int target = static_cast<int>(pen->feed_amount) * 10;
    int actual = RoundTo(target, division) + Dice(-2, 2) * division;
    if (pen == load.pens.back()) {
      actual = batched - Dice(0, 2) * division;
    }
    actual = std::clamp(actual, 0, batched);
    batched -= actual;
    minute_ += Dice(1, 2);
    log.feeds += "B," + std::to_string(log.loads) + "," + std::to_string(pen->id) + "," +
                 std::string(kUser) + "," + Clock() + "," + RecordDate(day) + "," + Weight(target) +
                 "," + Weight(actual) + "\r\n";
    log.weighings.push_back({day, log.loads, load.recipe->name, false, pen->name, actual});
  }
}

std::string FeedingWork::RecordsOf(const Log& log) const {
  return std::string("{BAT/FED},") + plan_.unit + "\r\n[BAT]," + log.batches + "\r\n[FED]," +
         log.feeds + "\r\n";
}

std::string FeedingWork::Clock() {
  minute_ = std::min(minute_, kLastMinute);
  return Format("%02d%02d", minute_ / 60, minute_ % 60);
}

int FeedingWork::Dice(int from, int to) {
  return from + static_cast<int>(random_() % static_cast<unsigned>(to - from + 1));
}

std::string LedgerOf(const std::vector<Weighing>& weighings) {
  std::string ledger;
  for (const Weighing& weighing : weighings) {
    ledger += DateOf(weighing.day, "%04d-%02u-%02u", true) + "," + std::to_string(weighing.load) +
              "," + weighing.recipe + "," + (weighing.batched ? "BATCH" : "FEED") + "," +
              weighing.what + "," + Weight(weighing.tenths) + "\n";
  }
  return ledger;
}

}  // namespace vrx::simulator
