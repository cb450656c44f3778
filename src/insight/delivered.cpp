#include <algorithm>
#include <cstddef>
#include <map>
#include <set>
#include <utility>

#include "database/connection.h"
#include "insight/deviations.h"
#include "insight/pens.h"
#include "insight/record_reader.h"

namespace vrx {
namespace {

constexpr DayNumber kMeanDays = 7;
constexpr DayNumber kShiftDays = 14;

struct DayOfPen {
  Exact called = {};
  Exact delivered = {};
  std::int64_t feedings = 0;
  NameId recipe = kNoName;
  bool recipe_changed = false;
  std::int32_t first = kNoTime;  // seconds
};

struct PenDelivery {
  DayNumber day;
  std::int32_t seconds;
  NameId recipe;
  Exact called;
  Exact delivered;
};

using DaysOfPen = std::map<DayNumber, DayOfPen>;

// In order of date and time; equal times stay in stored order.
DaysOfPen DaysOf(std::vector<PenDelivery>& deliveries) {
  std::stable_sort(deliveries.begin(), deliveries.end(), [](const auto& one, const auto& other) {
    return std::pair(one.day, one.seconds) < std::pair(other.day, other.seconds);
  });
  DaysOfPen days;
  const PenDelivery* before = nullptr;
  for (const PenDelivery& delivery : deliveries) {
    DayOfPen& day = days[delivery.day];
    day.called += delivery.called;
    day.delivered += delivery.delivered;
    ++day.feedings;
    day.recipe = delivery.recipe;
    day.recipe_changed =
        day.recipe_changed || (before != nullptr && before->recipe != delivery.recipe);
    day.first = day.first == kNoTime ? delivery.seconds : day.first;
    before = &delivery;
  }
  return days;
}

// Nothing before the seventh day.
std::optional<double> MeanOf(const DaysOfPen& days, DayNumber day) {
  if (day - days.begin()->first + 1 < kMeanDays) {
    return std::nullopt;
  }
  Exact sum;
  for (auto found = days.upper_bound(day - kMeanDays); found != days.end() && found->first <= day;
       ++found) {
    sum += found->second.delivered;
  }
  return Quotient(sum, Exact::Whole(kMeanDays));
}

// Minutes after the median of the days before.
std::optional<double> ShiftOf(const DaysOfPen& days, DayNumber day) {
  const std::int32_t first = days.at(day).first;
  Deviations shifts;  // of the first time from those of the days before
  for (auto found = days.lower_bound(day - kShiftDays); found->first < day; ++found) {
    if (found->second.first != kNoTime) {
      shifts.Add(Exact::Whole(first - found->second.first), Exact::Whole(100 * kSecondsAMinute));
    }
  }
  const auto quartiles = shifts.FindQuartiles(Exact());
  return first == kNoTime || !quartiles ? std::nullopt : std::optional(quartiles->median);
}

// The heads of each pen by the day from which they count.
using Heads = std::map<std::string, std::map<DayNumber, double>, std::less<>>;

std::optional<double> PerHead(const Heads& heads, const std::string& pen, DayNumber day,
                              const Exact& delivered) {
  const auto of_pen = heads.find(pen);
  if (of_pen == heads.end()) {
    return std::nullopt;
  }
  const auto after = of_pen->second.upper_bound(day);
  if (after == of_pen->second.begin() || std::prev(after)->second <= 0) {
    return std::nullopt;
  }
  return Quotient(delivered, Exact::Of(std::prev(after)->second));
}

class DeliveredAnswer {
 public:
  DeliveredAnswer(const RecordReader& reader, const Question& question, const Heads& heads)
      : reader_(reader), question_(question), heads_(heads) {}

  void AddPen(NameId pen, const DaysOfPen& days, std::vector<DeliveredLine>& lines) const {
    const DayNumber first = question_.from
                                ? std::max(ToDayNumber(question_.from), days.begin()->first)
                                : days.begin()->first;
    const DayNumber last = question_.to ? std::min(ToDayNumber(question_.to), days.rbegin()->first)
                                        : days.rbegin()->first;
    for (DayNumber day = first; day <= last; ++day) {
      DeliveredLine line{.pen = reader_.NamesOf(NameKind::kPen).Name(pen),
                         .date = *ToDate(day),
                         .mean7 = MeanOf(days, day)};
      if (const auto found = days.find(day); found != days.end()) {
        Fill(line, pen, days, found->second);
      } else {
        line.missed = true;
      }
      lines.push_back(std::move(line));
    }
  }

 private:
  void Fill(DeliveredLine& line, NameId pen, const DaysOfPen& days, const DayOfPen& day) const {
    const DayNumber number = ToDayNumber(line.date);
    line.called = day.called.ToDouble();
    line.delivered = day.delivered.ToDouble();
    line.difference = (day.delivered - day.called).ToDouble();
    line.feedings = day.feedings;
    line.recipe = reader_.NamesOf(NameKind::kRecipe).Name(day.recipe);
    line.recipe_changed = day.recipe_changed;
    line.first = ToTime(day.first);
    line.first_shift = ShiftOf(days, number);
    line.per_head =
        PerHead(heads_, reader_.NamesOf(NameKind::kPen).Text(pen), number, day.delivered);
  }

  const RecordReader& reader_;
  const Question& question_;
  const Heads& heads_;
};

}  // namespace

Delivered ReadDelivered(SQLite::Database& database, const Question& question,
                        const std::vector<HeadCount>& heads, const InsightProgress& progress) {
  CheckPeriod(question);
  return WithDatabaseErrors(database, [&] {
    Question without_period = question;
    without_period.from = without_period.to = std::nullopt;
    RecordReader reader(database, without_period, progress);
    const NameId wanted = reader.IdOf(question.pen, NameKind::kPen);
    std::map<NameId, std::vector<PenDelivery>> deliveries;
    reader.Read(kReadDeliveries | kReadRecipe | kReadPen | kReadWeights | kReadDate | kReadTime,
                [&](const Record& record) {
                  if (record.day != kNoDay && (wanted == kNoName || record.pen == wanted)) {
                    deliveries[record.pen].push_back(
                        {record.day, record.seconds, record.recipe, record.target, record.actual});
                  }
                });
    Heads heads_of;
    for (const HeadCount& count : heads) {
      heads_of[count.pen][ToDayNumber(count.from)] = count.heads;
    }
    Delivered answer;
    const DeliveredAnswer maker(reader, question, heads_of);
    std::set<std::string> pens;
    for (auto& [pen, of_pen] : deliveries) {
      reader.Report(100);
      pens.insert(reader.NamesOf(NameKind::kPen).Text(pen));
      maker.AddPen(pen, DaysOf(of_pen), answer.lines);
      of_pen = {};
    }
    std::stable_sort(answer.lines.begin(), answer.lines.end(),
                     [](const auto& left, const auto& right) { return left.pen < right.pen; });
    for (const auto& [pen, counts] : heads_of) {
      if (!pens.contains(pen) && wanted == kNoName) {
        answer.unknown_pens.push_back(pen);
      }
    }
    answer.notes = reader.Notes();
    return answer;
  });
}

}  // namespace vrx
