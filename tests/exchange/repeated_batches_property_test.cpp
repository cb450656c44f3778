// Random lives of a data module: readings in the middle of a feeding, uploads without clearing,
// clears, files that are imported again, stores that are undone.

#include <algorithm>
#include <filesystem>
#include <map>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "exchange/store_fixture.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;

constexpr unsigned kSequences = 200;
constexpr int kSteps = 10;

// What was weighed, as texts: by load, its deliveries.
using Ledger = std::map<std::string, std::vector<std::string>>;

struct WeighedBatch {
  std::string load;
  std::vector<std::string> feeds;
};

class ModuleLife {
 public:
  // Works on the databases of `site`, whose transaction database is empty.
  ModuleLife(StoreFixture& site, unsigned seed) : site_(site), random_(seed) {}

  void Run() {
    for (int step = 0; step < kSteps; ++step) {
      Step(Pick(0, 9));
    }
    readings_.push_back(memory_);
    std::shuffle(readings_.begin(), readings_.end(), random_);
    // Every file is still there. Twice, because an older reading may come after a newer one.
    for (int pass = 0; pass < 2; ++pass) {
      for (const auto& reading : readings_) {
        Store(reading);
      }
    }
  }

  // The deliveries of each load in the database; a load that is stored twice gets a mark.
  Ledger Stored() const {
    Ledger ledger;
    std::map<std::string, std::string> load_of;
    for (const StoredRow& row : site_.Stored()) {
      if (row[kType] == "BATCH") {
        const std::string load =
            row[kActualBatch] + (ledger.contains(row[kActualBatch]) ? "!" : "");
        ledger[load];
        load_of[row[kTransaction]] = load;
      }
    }
    for (const StoredRow& row : site_.Stored()) {
      if (row[kType] == "FEED") {
        ledger[load_of[row[kTransaction]]].push_back(row[kActualFeed]);
      }
    }
    return Sorted(ledger);
  }

  Ledger Weighed() const { return Sorted(weighed_); }

 private:
  enum Column : std::size_t { kTransaction = 0, kType = 2, kActualBatch = 7, kActualFeed = 10 };

  static Ledger Sorted(Ledger ledger) {
    for (auto& [load, feeds] : ledger) {
      std::sort(feeds.begin(), feeds.end());
    }
    return ledger;
  }

  int Pick(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random_); }

  void Step(int action) {
    switch (action) {
      case 0:
      case 1:
        memory_.push_back({.load = std::to_string(++loads_) + ".5", .feeds = {}});
        weighed_[memory_.back().load];
        break;
      case 2:
      case 3:
      case 4:
        Feed();
        break;
      case 5:
      case 6:
        readings_.push_back(memory_);
        Store(memory_);
        break;
      case 7:  // the file is kept
        readings_.push_back(memory_);
        memory_.clear();
        break;
      case 8:
        if (!readings_.empty()) {
          Store(
              readings_[static_cast<std::size_t>(Pick(0, static_cast<int>(readings_.size()) - 1))]);
        }
        break;
      default:
        UndoOrForget();
    }
  }

  void Feed() {
    if (memory_.empty()) {
      return;
    }
    WeighedBatch& batch =
        memory_[static_cast<std::size_t>(Pick(0, static_cast<int>(memory_.size()) - 1))];
    batch.feeds.push_back(std::to_string(Pick(100, 103)) + ".0");
    weighed_[batch.load].push_back(batch.feeds.back());
  }

  void UndoOrForget() {
    if (Pick(0, 2) > 0) {
      site_.op.answers = {Answer::kYes};
      site_.store.UndoLastStore(site_.databases);
    } else {
      Execute(site_.databases.trans_db_path,
              "DROP TABLE IF EXISTS Imports; DROP TABLE IF EXISTS ImportedBatches");
    }
  }

  void Store(const std::vector<WeighedBatch>& reading) {
    std::vector<RowCells> rows;
    int number = 0;
    for (const WeighedBatch& batch : reading) {
      rows.push_back(BatchCells(++number, 3, 4, batch.load));
      for (const std::string& feed : batch.feeds) {
        rows.push_back(FeedCells(number, 3, 12, feed));
      }
    }
    site_.op.answers = {Answer::kStoreNew};
    site_.stored_flag = false;
    EXPECT_TRUE(site_.Store(MakeImport(rows)).complete);
  }

  StoreFixture& site_;
  std::mt19937 random_;
  std::vector<WeighedBatch> memory_;
  std::vector<std::vector<WeighedBatch>> readings_;
  Ledger weighed_;
  int loads_ = 1000;
};

TEST(RepeatedBatchesProperty, EveryBatchAndDeliveryIsStoredExactlyOnce) {
  StoreFixture site;
  const fs::path empty = site.folder / "EMPTY.TDB";
  fs::copy_file(site.databases.trans_db_path, empty);
  for (unsigned seed = 1; seed <= kSequences; ++seed) {
    fs::copy_file(empty, site.databases.trans_db_path, fs::copy_options::overwrite_existing);
    ModuleLife life(site, seed);
    life.Run();
    ASSERT_EQ(life.Stored(), life.Weighed()) << "seed " << seed;
  }
}

}  // namespace
}  // namespace vrx::testing
