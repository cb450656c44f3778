#include <algorithm>
#include <cstddef>
#include <map>
#include <utility>

#include "database/connection.h"
#include "insight/names.h"
#include "insight/pens.h"
#include "insight/record_parts.h"
#include "insight/record_reader.h"

namespace vrx {
namespace {

// The first day from a number on.
DaysOfPen::const_iterator DayFrom(const DaysOfPen& days, DayNumber day) {
  return std::ranges::lower_bound(days, day, {}, &DayOfPen::day);
}

// Nothing before the seventh day.
std::optional<double> MeanOf(const DaysOfPen& days, DayNumber day) {
  if (day - days.front().day + 1 < kMeanDays) {
    return std::nullopt;
  }
  Exact sum;
  for (auto found = DayFrom(days, day - kMeanDays + 1); found != days.end() && found->day <= day;
       ++found) {
    sum += found->delivered;
  }
  return Quotient(sum, Exact::Whole(kMeanDays));
}

// Minutes after the median of the days before.
std::optional<double> ShiftOf(const DaysOfPen& days, const DayOfPen& day) {
  std::vector<std::int32_t> times;  // seconds
  for (auto found = DayFrom(days, day.day - kShiftDays); found->day < day.day; ++found) {
    if (found->first != kNoTime) {
      times.push_back(found->first);
    }
  }
  if (day.first == kNoTime || times.empty()) {
    return std::nullopt;
  }
  std::ranges::sort(times);
  const std::int32_t twice = times[(times.size() - 1) / 2] + times[times.size() / 2];
  return (2 * day.first - twice) / (2.0 * kSecondsAMinute);
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

  void AddPen(NameId pen, const DaysOfPen& days, const TakeLine<DeliveredLine>& take) const {
    const DayNumber first =
        question_.from ? std::max(ToDayNumber(question_.from), days.front().day) : days.front().day;
    const DayNumber last =
        question_.to ? std::min(ToDayNumber(question_.to), days.back().day) : days.back().day;
    for (DayNumber day = first; day <= last; ++day) {
      DeliveredLine line{.pen = reader_.NamesOf(NameKind::kPen).Name(pen),
                         .date = *ToDate(day),
                         .mean7 = MeanOf(days, day)};
      if (const auto found = DayFrom(days, day); found->day == day) {
        Fill(line, pen, days, *found);
      } else {
        line.missed = true;
      }
      take(std::move(line));
    }
  }

 private:
  void Fill(DeliveredLine& line, NameId pen, const DaysOfPen& days, const DayOfPen& day) const {
    line.called = day.called.ToDouble();
    line.delivered = day.delivered.ToDouble();
    line.difference = (day.delivered - day.called).ToDouble();
    line.feedings = day.feedings;
    line.recipe = reader_.NamesOf(NameKind::kRecipe).Name(day.recipe);
    line.recipe_changed = day.recipe_changed;
    line.first = ToTime(day.first);
    line.first_shift = ShiftOf(days, day);
    line.per_head =
        PerHead(heads_, reader_.NamesOf(NameKind::kPen).Text(pen), day.day, day.delivered);
  }

  const RecordReader& reader_;
  const Question& question_;
  const Heads& heads_;
};

// Adds up lines. The weights of a line are sums of stored weights, whose decimals they keep.
class PenSum {
 public:
  void Add(const DeliveredLine& line) {
    if (line.missed) {
      ++total_.missed_days;
      return;
    }
    called_ += Exact::Of(line.called.value_or(0));
    delivered_ += Exact::Of(line.delivered.value_or(0));
    ++total_.days;
    total_.feedings += line.feedings;
    total_.recipe_changes += line.recipe_changed ? 1 : 0;
  }

  [[nodiscard]] PenTotal Total() const {
    PenTotal total = total_;
    if (total.days > 0) {
      const Exact difference = delivered_ - called_;
      total.called = called_.ToDouble();
      total.delivered = delivered_.ToDouble();
      total.difference = difference.ToDouble();
      if (called_.Sign() > 0) {
        total.difference_percent = Quotient(Exact::Whole(100) * difference, called_);
      }
    }
    return total;
  }

 private:
  PenTotal total_ = {};
  Exact called_ = {};
  Exact delivered_ = {};
};

}  // namespace

Delivered StreamDelivered(SQLite::Database& database, const Question& question,
                          const std::vector<HeadCount>& heads, const TakeLine<DeliveredLine>& take,
                          const InsightProgress& progress) {
  CheckPeriod(question);
  CheckNames(database, question);
  return WithDatabaseErrors(database, [&] {
    Question deliveries = question;
    deliveries.from = deliveries.to = std::nullopt;
    deliveries.pen = std::nullopt;
    RecordReader reader(database, deliveries, progress);
    const DaysOfPens days = PenDaysReader(database, reader, question).Read();
    Heads heads_of;
    for (const HeadCount& count : heads) {
      heads_of[count.pen][ToDayNumber(count.from)] = count.heads;
    }
    std::map<std::string, NameId> pens;
    for (const auto& [pen, of_pen] : days) {
      pens.emplace(reader.NamesOf(NameKind::kPen).Text(pen), pen);
    }
    const DeliveredAnswer maker(reader, question, heads_of);
    for (const auto& [name, pen] : pens) {
      reader.Report(100);
      maker.AddPen(pen, days.at(pen), take);
    }
    Delivered answer;
    for (const auto& [pen, counts] : heads_of) {
      if (!pens.contains(pen) && !question.pen && !HasName(database, NameKind::kPen, pen)) {
        answer.unknown_pens.push_back(pen);
      }
    }
    answer.notes = reader.Notes();
    return answer;
  });
}

Delivered ReadDelivered(SQLite::Database& database, const Question& question,
                        const std::vector<HeadCount>& heads, const InsightProgress& progress) {
  std::vector<DeliveredLine> lines;
  Delivered answer = StreamDelivered(
      database, question, heads, [&](DeliveredLine&& line) { lines.push_back(std::move(line)); },
      progress);
  answer.lines = std::move(lines);
  return answer;
}

PenTotals TotalsOf(const Delivered& delivered) {
  PenTotals totals;
  PenSum all;
  PenSum of_pen;
  for (std::size_t i = 0; i < delivered.lines.size(); ++i) {
    const DeliveredLine& line = delivered.lines[i];
    of_pen.Add(line);
    all.Add(line);
    if (i + 1 == delivered.lines.size() || delivered.lines[i + 1].pen != line.pen) {
      totals.pens.push_back(of_pen.Total());
      totals.pens.back().pen = line.pen;
      of_pen = {};
    }
  }
  totals.all = all.Total();
  return totals;
}

}  // namespace vrx
