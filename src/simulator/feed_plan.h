#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vrx::simulator {

// A yard as an indicator knows it from the text of a download.
struct FeedPlan {
  struct Ingredient {
    int id;
    std::string name;
    bool hand_add;
  };
  struct Part {
    int ingredient;  // its ID
    std::string name;
    double amount;  // in proportion to the other parts
    bool hand_add;
  };
  struct Recipe {
    int id;
    std::string name;
    std::vector<Part> parts;
  };
  struct Pen {
    int id;
    std::string name;
    long feed_amount;
  };

  char unit = 'L';              // 'L' pounds, 'K' kilograms
  std::vector<Recipe> recipes;  // those with anything to weigh
  std::vector<Pen> pens;        // those with a feed amount
};

using Day = std::chrono::sys_days;

// One weighing of the scale.
struct Weighing {
  Day day;
  int load;            // counted from 1 within the records
  std::string recipe;  // name
  bool batched;        // into the mixer, otherwise fed out to a pen
  std::string what;    // the ingredient's or the pen's name
  int tenths;          // of the plan's unit
};

// Simulates the work of an indicator: batches the recipes of a plan, feeds each pen once a day, and
// keeps the records as a transaction file. Assigns the pens to the recipes in equal runs, in the
// order of both. The random behavior of people and scales depends only on the seed.
class FeedingWork {
 public:
  FeedingWork(FeedPlan plan, std::uint32_t seed) : plan_(std::move(plan)), random_(seed) {}

  // Feeds nothing and returns false if the records of the day would make the file larger than
  // `limit` bytes.
  [[nodiscard]] bool FeedDay(Day day, std::size_t limit);

  [[nodiscard]] std::string Records() const;
  [[nodiscard]] const std::vector<Weighing>& Weighings() const { return done_.weighings; }

 private:
  struct Load {
    const FeedPlan::Recipe* recipe;
    std::vector<const FeedPlan::Pen*> pens;
  };
  struct Log {
    std::string batches;
    std::string feeds;
    std::vector<Weighing> weighings;
    int loads = 0;
  };

  [[nodiscard]] std::vector<Load> LoadsOfDay() const;
  int Batch(const Load& load, Day day, Log& log);
  void FeedOut(const Load& load, Day day, int batched, Log& log);
  [[nodiscard]] std::string RecordsOf(const Log& log) const;
  std::string Clock();
  int Dice(int from, int to);

  FeedPlan plan_;
  std::mt19937 random_;
  int minute_ = 0;  // of the day
  Log done_;
};

[[nodiscard]] bool IsDownload(std::string_view memory);

// Throws std::invalid_argument with the malformed line.
FeedPlan ReadFeedPlan(std::string_view download);

// A line for each weighing, as "2026-01-05,1,STARTR,BATCH,CORN,1085.0" or with FEED and a pen.
[[nodiscard]] std::string LedgerOf(const std::vector<Weighing>& weighings);

}  // namespace vrx::simulator
