#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "base/date.h"
#include "insight/accuracy.h"
#include "insight/batches.h"
#include "insight/loads.h"
#include "insight/pens.h"
#include "insight/question.h"
#include "insight/tables.h"
#include "insight/use.h"
#include "insight/weight_limit.h"
#include "presenter/background_work.h"
#include "settings/settings.h"

namespace vrx {

// The questions of the `Insight` tab, in the order of its list.
enum class InsightTopic {
  kLoading,
  kDelivery,
  kBalance,
  kTimes,
  kDelivered,
  kTrace,
  kHolding,
  kCompleteness,
  kUse,
};
inline constexpr int kInsightTopics = 9;

enum class InsightPicture {
  kNone,
  kDeviations,
  kDistribution,
  kOperators,
  kWeights,
  kBalance,
  kDelivered,
};

// What the rows of a table are.
enum class InsightRows {
  kGroups,     // of `keys`
  kNotLoaded,  // loads
  kLargest,    // deviations
  kOutOfBalance,
  kBatches,
  kDays,
  kRecipes,
  kOperators,
  kOfIngredient,
  kOfPen,
  kOnly,  // the topic has one table
};

struct InsightTableChoice {
  std::string_view caption;
  InsightRows rows = InsightRows::kOnly;
  std::array<AccuracyKey, 2> keys = {};
  std::size_t key_count = 0;
};

struct InsightPictureChoice {
  std::string_view caption;
  InsightPicture picture;
  std::string_view how;  // how it is made, and how to read it
};

constexpr unsigned FlagOf(NameKind kind) { return 1U << static_cast<unsigned>(kind); }
inline constexpr unsigned kAllNameKinds = (1U << static_cast<unsigned>(kNameKinds)) - 1;

struct InsightTopicRow {
  std::string_view title;
  std::string_view sentence;  // what the question is, for a first-time user
  std::string_view section;   // of the manual's chapter
  unsigned names;             // flags of the filters
  bool has_period;
  std::span<const InsightTableChoice> tables;
  std::span<const InsightPictureChoice> pictures;
};
[[nodiscard]] const InsightTopicRow& RowOf(InsightTopic topic);

// The defaults are those of the definitions; the division is in the database's unit.
struct InsightLimits {
  double percent = 2;
  WeightLimit weight = {5, WeightUnit::kKilograms};
  WeightLimit beyond = {62.5, WeightUnit::kKilograms};
  double division = 0;
  double balance_percent = 2;
  WeightLimit balance_weight = {50, WeightUnit::kKilograms};

  bool operator==(const InsightLimits&) const = default;
};
[[nodiscard]] InsightLimits LimitsOf(const PrivateINI& settings);

struct InsightAsked {
  InsightTopic topic = InsightTopic::kLoading;
  int table = 0;
  int picture = 0;
  Question about = {};  // holding has its ingredient and pen here
  int days = 0;         // of holding
  Date on = {};
  InsightLimits limits = {};

  [[nodiscard]] const InsightTableChoice& Table() const;
  [[nodiscard]] InsightPicture Picture() const;
};

struct InsightAnswer {
  InsightAsked asked = {};
  AnswerTable table = {};
  std::string units = {};               // of the weights
  std::vector<std::string> notes = {};  // sentences
  // What the picture is made of; the others are empty.
  std::optional<Loads> loads = {};
  std::optional<Accuracy> accuracy = {};
  std::optional<Balance> balance = {};
  std::optional<Delivered> delivered = {};
};

// Throws QuestionError, QuestionCancelled and DatabaseError.
[[nodiscard]] InsightAnswer AnswerInsight(SQLite::Database& database, const InsightAsked& asked,
                                          const InsightProgress& progress);

// The names of each kind that the records have, in the order of the answers. Throws DatabaseError.
using InsightNames = std::array<std::vector<std::string>, kNameKinds>;
[[nodiscard]] InsightNames ReadInsightNames(SQLite::Database& database);

// Reads a database in a thread with a connection of its own, so that the window and a transfer go
// on meanwhile. The end of the object cancels it and waits for it, which takes a few milliseconds;
// no lock remains then.
class BackgroundRead {
 public:
  // `work` runs in the thread and must share nothing that another thread uses. Its progress
  // function returns false after a cancel.
  using Work = std::function<void(SQLite::Database&, const InsightProgress&)>;
  BackgroundRead(std::filesystem::path path, Work work);

  [[nodiscard]] bool Ended() const { return work_.Ended(); }
  [[nodiscard]] int Percent() const { return static_cast<int>(work_.Shown().done); }
  // Only after the end: throws what the work threw.
  void Rethrow() const { work_.Rethrow(); }

 private:
  BackgroundWork work_;
};

}  // namespace vrx
