#include <algorithm>
#include <array>
#include <chrono>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "base/date.h"
#include "insight/insight_model.h"

namespace vrx::testing {
namespace {

class YardMaker {
 public:
  explicit YardMaker(std::uint64_t seed) : engine_(seed) {
    // A yard weighs in its own steps; a few have weights of nine decimals.
    step_ =
        std::array<std::int64_t, 5>{kBillion, kBillion / 2, kBillion / 10, kBillion / 1000, 7}.at(
            Below(5));
    odd_ = Below(3) == 0 ? 0 : Below(12);
    bias_ = Below(4) == 0 ? -1 : 0;
    units_ = Chance(2) ? "KG" : "LB";
    imported_ = !Chance(4);
    first_day_ =
        std::chrono::sys_days(*ParseStoredDate("2025-12-26")) + std::chrono::days(Below(8));
  }

  Model Make() {
    const std::size_t batches = 1 + Below(40);
    std::vector<ModelRow> waiting;  // deliveries that are stored later
    for (std::size_t i = 0; i < batches; ++i) {
      Batch(waiting);
      if (Chance(3)) {
        Store(waiting);
      }
    }
    Store(waiting);
    if (imported_) {
      MakeImports();
    }
    return {rows_, imports_, units_};
  }

 private:
  std::size_t Below(std::size_t limit) { return engine_() % limit; }
  bool Chance(std::size_t in) { return Below(in) == 0; }
  bool Odd() { return Below(100) < odd_; }

  // Each store has rows in a row; what was stored before the first one is not recorded.
  void MakeImports() {
    const bool faulty = Chance(2);
    std::size_t row = Chance(5) ? Below(rows_.size() + 1) : 0;
    while (row < rows_.size()) {
      const std::size_t end = std::min(rows_.size(), row + 1 + Below(60));
      ModelImport import{.units = units_};
      if (faulty && Chance(6)) {
        const bool exact = units_ == "KG" && step_ % (kBillion / 10) == 0;
        import.units = units_ == "KG" ? "LB" : "KG";
        import.settled = Pick({"", "keep", exact ? "convert" : "keep"});
      }
      for (; row < end; ++row) {
        rows_[row].import = static_cast<int>(imports_.size()) + 1;
        if (const auto& date = rows_[row].date; date && ParseStoredDate(*date)) {
          import.first_date = std::min(import.first_date.value_or(*date), *date);
          import.last_date = std::max(import.last_date.value_or(*date), *date);
        }
      }
      const auto stored = ParseStoredDate(import.last_date.value_or("2026-01-03"));
      const int after = Chance(9) ? -1 : static_cast<int>(Below(3));
      import.at = StoredText(Date(std::chrono::sys_days(*stored) + std::chrono::days(after))) +
                  "T06:30:00+01:00";
      if (faulty && Chance(4)) {
        import.not_read = static_cast<std::int64_t>(Below(2));
        import.left_out = static_cast<std::int64_t>(Below(2));
        import.missing = Chance(3) ? "3-5,9" : "";
      }
      if (!Chance(4)) {
        import.low = static_cast<std::int64_t>(Below(20));
        import.high = *import.low + static_cast<std::int64_t>(Below(9));
      }
      imports_.push_back(import);
    }
  }

  void Store(std::vector<ModelRow>& waiting) {
    if (Chance(4)) {
      std::shuffle(waiting.begin(), waiting.end(), engine_);
    }
    rows_.insert(rows_.end(), waiting.begin(), waiting.end());
    waiting.clear();
  }

  std::int64_t Weight(std::int64_t whole) {
    std::int64_t weight = whole * kBillion / step_ * step_;
    if (Odd()) {
      weight = Chance(2) ? 0 : -weight / step_ * step_;
    }
    return weight;
  }

  std::int64_t Actual(std::int64_t target) {
    const auto percent = static_cast<std::int64_t>(Below(9)) - 4 + bias_ * 3;
    const auto steps = static_cast<std::int64_t>(Below(7)) - 3;
    std::int64_t actual = target + target / 100 * percent / step_ * step_ + steps * step_;
    if (Chance(9)) {
      actual = target;
    }
    return Odd() ? Weight(static_cast<std::int64_t>(Below(300))) : actual;
  }

  std::optional<std::int64_t> OrNull(std::int64_t weight) {
    return Odd() ? std::nullopt : std::optional(weight);
  }

  std::string Pick(const std::vector<std::string>& texts) { return texts[Below(texts.size())]; }

  std::optional<std::string> Name(const std::vector<std::string>& texts) {
    if (Odd()) {
      return Chance(2) ? std::nullopt : std::optional<std::string>("");
    }
    return Pick(texts);
  }

  std::string Clock(int minutes) const {
    const int of_day = ((minutes % 1440) + 1440) % 1440;
    return StoredText(TimeOfDay{of_day / 60, of_day % 60, 0});
  }

  // A batch has one date, and a time that may pass midnight.
  void Batch(std::vector<ModelRow>& waiting) {
    std::optional<std::int64_t> number = ++number_;
    if (Chance(6)) {
      number_ += static_cast<std::int64_t>(Below(3));
    }
    if (Odd()) {
      number = Chance(3) ? std::nullopt : std::optional<std::int64_t>(1 + Below(20));
    }
    std::string date = StoredText(Date(first_day_ + std::chrono::days(Below(10))));
    if (Odd()) {
      date = Chance(2) ? "2026-02-30" : "";
    }
    ModelRow row;
    row.number = number;
    row.recipe = Name({"STEERS", "HEIFER", "Steers"});
    row.user = Name({"1", "2", "10", "-1"});
    row.date = date.empty() ? std::nullopt : std::optional(date);
    int minutes = static_cast<int>(Below(1440));
    const std::size_t loads = Below(9);
    const std::size_t deliveries = Below(5);
    std::int64_t total = 0;
    for (std::size_t i = 0; i < loads; ++i) {
      minutes += static_cast<int>(Below(9)) - (Odd() ? 30 : 0);
      rows_.push_back(Load(row, minutes));
      total += rows_.back().actual_batch.value_or(0) / kBillion;
    }
    minutes += static_cast<int>(Below(40));
    for (std::size_t i = 0; i < deliveries; ++i) {
      minutes += static_cast<int>(Below(9));
      const auto share = total / static_cast<std::int64_t>(deliveries) + (Chance(5) ? 20 : 0);
      auto& place = Odd() || Chance(3) ? rows_ : waiting;
      place.push_back(Delivery(row, minutes, share));
    }
  }

  ModelRow Load(ModelRow row, int minutes) {
    row.type = Odd() && !imported_ ? "OTHER" : "BATCH";
    row.ingredient = Name({"CORN", "HAY", "Corn", "MINERAL", "MEDICATED"});
    const std::int64_t target = Weight(1 + static_cast<std::int64_t>(Below(900)));
    row.target = OrNull(target);
    row.actual_batch = OrNull(Actual(target));
    row.actual_feed = OrNull(0);
    row.time = Odd() ? std::nullopt : std::optional(Clock(minutes));
    if (Odd()) {
      row.user = Name({"1", "2"});
      row.recipe = Name({"HEIFER"});
    }
    return row;
  }

  ModelRow Delivery(ModelRow row, int minutes, std::int64_t share) {
    row.type = "FEED";
    row.pen = Name({"A01", "A02", "B1", "b1"});
    const std::int64_t target = Weight(share);
    row.target = OrNull(target);
    row.actual_feed = OrNull(Actual(target));
    row.actual_batch = OrNull(0);
    row.time = Odd() ? std::nullopt : std::optional(Clock(minutes));
    // A delivery of the next day has its own date.
    if (row.date && ParseStoredDate(*row.date) && Chance(7)) {
      row.date = StoredText(
          Date(std::chrono::sys_days(*ParseStoredDate(*row.date)) + std::chrono::days(1)));
    }
    return row;
  }

  std::mt19937_64 engine_;
  std::int64_t step_ = kBillion;
  std::size_t odd_ = 0;  // percent
  std::int64_t bias_ = 0;
  std::chrono::sys_days first_day_;
  std::int64_t number_ = 0;
  std::vector<ModelRow> rows_;
  std::vector<ModelImport> imports_;
  std::string units_;
  bool imported_ = false;
};

}  // namespace

Model RandomYard(std::uint64_t seed) { return YardMaker(seed).Make(); }

}  // namespace vrx::testing
