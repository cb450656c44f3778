#include "support/yard_generator.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/Transaction.h>

#include "base/application.h"
#include "base/date.h"
#include "base/error.h"
#include "base/files.h"
#include "base/number.h"
#include "database/connection.h"
#include "database/identity.h"
#include "database/records.h"
#include "database/transactions.h"
#include "support/yard.h"

namespace vrx::testing {

namespace {

namespace fs = std::filesystem;

constexpr int kPensOfALoad = 7;
constexpr double kFeedStep = 5;
constexpr std::array kRounds{0.4, 0.35, 0.25};  // of a day's feed
constexpr double kPensFedAtNoon = 0.5;          // the others get the second round's share later
constexpr double kNightLoads = 0.1;             // days whose last load is fed after midnight
constexpr double kWithoutUser = 0.03;
constexpr std::array kUsers{"1", "2", "3", "7", "12"};
constexpr int kDaysOfACrew = 400;

constexpr int kMinutesOfADay = 24 * 60;
constexpr int kFirstLoad = 4 * 60 + 30;
constexpr int kLastLoad = 20 * 60;
constexpr int kNightLoad = kMinutesOfADay - 11;
constexpr int kMinutesOfABatch = 10;

double ToStep(double weight, double step) { return std::round(weight / step) * step; }

std::string PenName(int number) {
  const std::string digits = std::to_string((number - 1) % 50 + 1);
  return std::string(1, static_cast<char>('A' + (number - 1) / 50)) +
         (digits.size() < 2 ? "0" : "") + digits;
}

struct Feed {
  int pen = 0;
  double target = 0;
};

struct Load {
  int recipe = 0;
  int start = 0;  // minute of the day
  std::vector<Feed> feeds = {};
};

// Makes up one day after the other.
class Yard {
 public:
  explicit Yard(const YardYears& years) : chance_(years.seed), date_(years.first_day) {
    for (int number = 1; number <= kPenCount; ++number) {
      pens_.emplace_back(number, chance_);
    }
  }

  // The records of the next day as they are stored.
  std::vector<TransactionRecord> NextDay();

 private:
  std::vector<Load> PlanLoads();
  void PlanRound(std::size_t round, std::vector<Load>& loads);
  std::optional<std::string> UserOf(std::size_t load);
  TransactionRecord Head(const Load& load, const std::optional<std::string>& user, int minute);
  std::vector<TransactionRecord> Batch(const Load& load, const std::optional<std::string>& user);
  void AppendFeeds(const Load& load, const std::vector<TransactionRecord>& batch,
                   std::vector<TransactionRecord>& feeds);

  Chance chance_;
  Date date_;
  int day_ = 0;
  std::int32_t transaction_ = 0;
  std::vector<YardPen> pens_;
};

std::vector<TransactionRecord> Yard::NextDay() {
  std::vector<TransactionRecord> batches;
  std::vector<TransactionRecord> feeds;
  const std::vector<Load> loads = PlanLoads();
  for (std::size_t number = 0; number < loads.size(); ++number) {
    ++transaction_;
    const std::vector<TransactionRecord> batch = Batch(loads[number], UserOf(number));
    batches.insert(batches.end(), batch.begin(), batch.end());
    AppendFeeds(loads[number], batch, feeds);
  }
  batches.insert(batches.end(), feeds.begin(), feeds.end());
  for (YardPen& pen : pens_) {
    pen.NextDay(chance_);
  }
  date_ = std::chrono::sys_days(date_) + std::chrono::days(1);
  ++day_;
  return batches;
}

std::vector<Load> Yard::PlanLoads() {
  std::vector<Load> loads;
  for (std::size_t round = 0; round < kRounds.size(); ++round) {
    PlanRound(round, loads);
  }
  const auto count = static_cast<int>(loads.size());
  for (int number = 0; number < count; ++number) {
    loads[static_cast<std::size_t>(number)].start =
        kFirstLoad + (kLastLoad - kFirstLoad) * number / count;
  }
  if (chance_.Happens(kNightLoads)) {
    loads.back().start = kNightLoad;
  }
  return loads;
}

void Yard::PlanRound(std::size_t round, std::vector<Load>& loads) {
  std::vector<Load> open(YardRecipes().size());
  for (int pen = 0; pen < kPenCount; ++pen) {
    const YardPen& cattle = pens_[static_cast<std::size_t>(pen)];
    if (round == 1 && !chance_.Happens(kPensFedAtNoon)) {
      continue;
    }
    const auto recipe = static_cast<std::size_t>(cattle.Recipe()) - 1;
    Load& load = open[recipe];
    load.recipe = cattle.Recipe();
    const double pounds = cattle.HeadCount() * YardRecipes()[recipe].pounds_a_head *
                          kRounds[round] * (1 + 0.03 * chance_.Scatter());
    load.feeds.push_back({pen + 1, std::max(kFeedStep, ToStep(pounds, kFeedStep))});
    if (load.feeds.size() == kPensOfALoad) {
      loads.push_back(std::exchange(load, {}));
    }
  }
  for (Load& load : open) {
    if (!load.feeds.empty()) {
      loads.push_back(std::move(load));
    }
  }
}

// A crew of three drives, one of whom is followed by another after a year or so.
std::optional<std::string> Yard::UserOf(std::size_t load) {
  if (chance_.Happens(kWithoutUser)) {
    return std::nullopt;
  }
  const auto crew = static_cast<std::size_t>(day_ / kDaysOfACrew);
  return kUsers[(crew + load % 3) % kUsers.size()];
}

TransactionRecord Yard::Head(const Load& load, const std::optional<std::string>& user, int minute) {
  const int of_day = minute % kMinutesOfADay;
  TransactionRecord record;
  record.transaction = transaction_;
  record.recipe = std::string(YardRecipes()[static_cast<std::size_t>(load.recipe) - 1].name);
  record.user_id = user;
  record.time = TimeOfDay{of_day / 60, of_day % 60, 0};
  record.date = std::chrono::sys_days(date_) + std::chrono::days(minute / kMinutesOfADay);
  return record;
}

// Percentages of whole pounds, as the import computes them.
std::vector<TransactionRecord> Yard::Batch(const Load& load,
                                           const std::optional<std::string>& user) {
  double wanted = 0;
  for (const Feed& feed : load.feeds) {
    wanted += feed.target;
  }
  const YardRecipe& recipe = YardRecipes()[static_cast<std::size_t>(load.recipe) - 1];
  std::vector<TransactionRecord> batch;
  std::int32_t total = 0;
  for (const RationPart& part : recipe.parts) {
    const YardIngredient& ingredient =
        YardIngredients()[static_cast<std::size_t>(part.ingredient) - 1];
    const int place = static_cast<int>(batch.size());
    TransactionRecord record = Head(
        load, user, load.start + kMinutesOfABatch * place / static_cast<int>(recipe.parts.size()));
    record.type = "BATCH";
    record.ingredient = std::string(ingredient.name);
    record.target = ToStep(wanted * part.percent / 100, ingredient.step);
    const double weighed =
        record.target * (1 + 0.004 * chance_.Scatter()) + ingredient.step * chance_.Scatter();
    record.actual_batch = std::max(0.0, ToStep(weighed, ingredient.step));
    total += RoundToLong(record.actual_batch).value();
    batch.push_back(std::move(record));
  }
  for (TransactionRecord& record : batch) {
    const std::int32_t weight = RoundToLong(record.actual_batch).value();
    const auto quotient = static_cast<float>(static_cast<double>(weight) / total);
    record.ing_percent = ParseNumber(Format(quotient * 100.0F, "0.0000"));
  }
  return batch;
}

void Yard::AppendFeeds(const Load& load, const std::vector<TransactionRecord>& batch,
                       std::vector<TransactionRecord>& feeds) {
  const YardRecipe& recipe = YardRecipes()[static_cast<std::size_t>(load.recipe) - 1];
  int minute = load.start + kMinutesOfABatch + chance_.Whole(1, 3);
  for (const Feed& feed : load.feeds) {
    TransactionRecord record = Head(load, batch.front().user_id, minute);
    minute += chance_.Whole(1, 2);
    record.type = "FEED";
    record.pen = PenName(feed.pen);
    record.target = feed.target;
    record.actual_feed =
        std::max(kFeedStep, ToStep(feed.target + 3 * kFeedStep * chance_.Scatter(), kFeedStep));
    for (std::size_t part = 0; part < batch.size(); ++part) {
      const auto percent = static_cast<float>(batch[part].ing_percent.value());
      if (percent > 0) {
        const float share = static_cast<float>(record.actual_feed) * (percent / 100.0F);
        const auto column = static_cast<std::size_t>(recipe.parts[part].ingredient) - 1;
        record.ingredient_weights[column] = ParseNumber(Format(share, "0.0"));
      }
    }
    feeds.push_back(std::move(record));
  }
}

// Drops the indexes of the table while many rows are inserted, and creates them again afterwards.
class WithoutIndexes {
 public:
  explicit WithoutIndexes(SQLite::Database& database) : database_(database) {
    SQLite::Statement query(database,
                            "SELECT name, sql FROM sqlite_schema WHERE type = 'index' AND "
                            "tbl_name = 'Transactions' ORDER BY rowid");
    std::vector<std::string> names;
    while (query.executeStep()) {
      names.push_back(query.getColumn(0).getString());
      texts_.push_back(query.getColumn(1).getString());
    }
    query.reset();
    for (const std::string& name : names) {
      database.exec("DROP INDEX " + Bracketed(name));
    }
  }

  void MakeAgain() {
    for (const std::string& text : texts_) {
      database_.exec(text);
    }
  }

 private:
  SQLite::Database& database_;
  std::vector<std::string> texts_;
};

void CopyTemplate(const fs::path& source, const fs::path& target) {
  if (!CopyFileNoOverwrite(source, target)) {
    throw Error("cannot copy " + source.string() + " to " + target.string() +
                "; is it there already?");
  }
}

void SayWhatItIs(SQLite::Database& database, std::string_view type, const Date& created,
                 const std::optional<std::string>& modified) {
  WriteField(database, kTypeField, type);
  WriteField(database, kUnitField, "LB");
  WriteField(database, kCreatedField, StoredText(created));
  if (modified) {
    WriteField(database, kModifiedField, *modified);
  }
}

std::int64_t FillTransactions(const YardYears& years, SQLite::Database& database) {
  Yard yard(years);
  TransactionAppender appender(database);
  std::int64_t rows = 0;
  const auto wanted = [&](int day) {
    return years.rows > 0 ? rows < years.rows : day < years.days;
  };
  for (int day = 0; wanted(day); ++day) {
    for (const TransactionRecord& record : yard.NextDay()) {
      if (years.rows > 0 && rows == years.rows) {
        break;
      }
      appender.Append(record);
      ++rows;
    }
  }
  return rows;
}

std::int64_t MakeTransactions(const YardYears& years, const YardFiles& files) {
  CopyTemplate(files.program_directory / kTransactionTemplateName, files.transactions);
  SQLite::Database database = OpenDatabase(files.transactions, Access::kWrite);
  // A file of a benchmark may be lost with the machine's power.
  database.exec("PRAGMA synchronous=OFF; PRAGMA cache_size=-200000");
  SQLite::Transaction transaction(database);
  WithoutIndexes indexes(database);
  const std::int64_t rows = FillTransactions(years, database);
  indexes.MakeAgain();
  const std::string last = database.execAndGet("SELECT max(Date) FROM Transactions").getString();
  SayWhatItIs(database, kUserTransDb, years.first_day,
              rows > 0 ? std::optional(last) : std::nullopt);
  transaction.commit();
  return rows;
}

void MakeRecipes(const YardYears& years, const YardFiles& files) {
  CopyTemplate(files.program_directory / kRecipeTemplateName, files.recipes);
  SQLite::Database database = OpenDatabase(files.recipes, Access::kWrite);
  SQLite::Transaction transaction(database);
  int id = 0;
  for (const YardIngredient& ingredient : YardIngredients()) {
    WriteIngredient(database, {.id = ++id,
                               .name = std::string(ingredient.name),
                               .description = std::string(ingredient.description)});
  }
  id = 0;
  for (const YardRecipe& recipe : YardRecipes()) {
    WriteRecipe(database, {.id = ++id,
                           .name = std::string(recipe.name),
                           .description = std::string(recipe.description),
                           .batch_type = "P",
                           .ration_target = "12000",
                           .adjust_batch_index = "20"});
  }
  for (int pen = 1; pen <= kPenCount; ++pen) {
    WritePen(database,
             {.id = pen, .name = PenName(pen), .description = "Pen " + std::to_string(pen)});
  }
  SayWhatItIs(database, kUserRecipeDb, years.first_day, std::nullopt);
  transaction.commit();
}

}  // namespace

std::int64_t MakeYears(const YardYears& years, const YardFiles& files) {
  if (!files.recipes.empty()) {
    MakeRecipes(years, files);
  }
  return MakeTransactions(years, files);
}

}  // namespace vrx::testing
