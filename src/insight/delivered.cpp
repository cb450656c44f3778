#include <algorithm>
#include <cstddef>
#include <map>
#include <set>
#include <tuple>
#include <utility>

#include "database/connection.h"
#include "insight/names.h"
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
  std::int64_t rowid;
  NameId recipe;
  Exact called;
  Exact delivered;
};

using DaysOfPen = std::map<DayNumber, DayOfPen>;

// In order of date and time; equal times are in stored order.
bool IsBefore(const PenDelivery& one, const PenDelivery& other) {
  return std::tie(one.day, one.seconds, one.rowid) <
         std::tie(other.day, other.seconds, other.rowid);
}

DaysOfPen DaysOf(std::vector<PenDelivery>& deliveries) {
  std::sort(deliveries.begin(), deliveries.end(), IsBefore);
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
  std::vector<std::int32_t> times;  // seconds
  for (auto found = days.lower_bound(day - kShiftDays); found->first < day; ++found) {
    if (found->second.first != kNoTime) {
      times.push_back(found->second.first);
    }
  }
  if (first == kNoTime || times.empty()) {
    return std::nullopt;
  }
  std::ranges::sort(times);
  const std::int32_t twice = times[(times.size() - 1) / 2] + times[times.size() / 2];
  return (2 * first - twice) / (2.0 * kSecondsAMinute);
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

using DeliveriesOfPens = std::map<NameId, std::vector<PenDelivery>>;

// Reads the deliveries that the lines of a question need.
class DeliveryReader {
 public:
  DeliveryReader(SQLite::Database& database, RecordReader& reader, const Question& question)
      : database_(database),
        reader_(reader),
        question_(question),
        wanted_(reader.IdOf(question.pen, NameKind::kPen)) {}

  DeliveriesOfPens Read() {
    const std::optional<Date> first = DayOf("min");
    const std::optional<Date> last = DayOf("max");
    const bool whole_batches = question_.recipe || question_.ingredient || question_.operator_id;
    if (question_.from && first && last && !whole_batches &&
        (!question_.to || *last <= *question_.to)) {
      ReadLastDays(ToDayNumber(first), *last);
    } else {
      reader_.Read(kColumns, [this](const Record& record) { Take(record); });
    }
    return std::move(deliveries_);
  }

 private:
  static constexpr unsigned kColumns =
      kReadDeliveries | kReadRecipe | kReadPen | kReadWeights | kReadDate | kReadTime;
  static constexpr int kFirstStep = 32;  // days

  void Take(const Record& record) {
    if (record.day != kNoDay && (wanted_ == kNoName || record.pen == wanted_)) {
      deliveries_[record.pen].push_back(
          {record.day, record.seconds, record.rowid, record.recipe, record.target, record.actual});
    }
  }

  // Nothing if it is no date.
  [[nodiscard]] std::optional<Date> DayOf(const std::string& function) const {
    return ParseStoredDate(database_
                               .execAndGet("SELECT ifnull(" + function +
                                           "([Date]), '') FROM Transactions WHERE [Date] > ''")
                               .getString());
  }

  // After the last day of the question nothing was delivered: the days that means and medians reach
  // back to are enough, and of a pen that was not fed on them its last delivery before.
  void ReadLastDays(DayNumber first, const Date& last) {
    const DayNumber from = ToDayNumber(question_.from);
    DayNumber start = from - kShiftDays;
    reader_.ReadDates(kColumns, *ToDate(start), last,
                      [this](const Record& record) { Take(record); });
    std::set<NameId> open;
    for (const auto& [pen, of_pen] : deliveries_) {
      if (std::ranges::min_element(of_pen, IsBefore)->day > from - kMeanDays + 1) {
        open.insert(pen);
      }
    }
    for (int step = kFirstStep; !open.empty() && first < start; step *= 2) {
      const DayNumber before = start - 1;
      start = std::max(first, start - step);
      std::map<NameId, PenDelivery> found;
      reader_.ReadDates(kColumns, *ToDate(start), *ToDate(before), [&](const Record& record) {
        if (!open.contains(record.pen)) {
          return;
        }
        const PenDelivery delivery{record.day,    record.seconds, record.rowid,
                                   record.recipe, record.target,  record.actual};
        const auto [known, is_new] = found.try_emplace(record.pen, delivery);
        if (!is_new && IsBefore(known->second, delivery)) {
          known->second = delivery;
        }
      });
      for (auto& [pen, delivery] : found) {
        deliveries_[pen].push_back(delivery);
        open.erase(pen);
      }
    }
  }

  SQLite::Database& database_;
  RecordReader& reader_;
  const Question& question_;
  NameId wanted_;
  DeliveriesOfPens deliveries_;
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

Delivered ReadDelivered(SQLite::Database& database, const Question& question,
                        const std::vector<HeadCount>& heads, const InsightProgress& progress) {
  CheckPeriod(question);
  return WithDatabaseErrors(database, [&] {
    Question without_period = question;
    without_period.from = without_period.to = std::nullopt;
    RecordReader reader(database, without_period, progress);
    const NameId wanted = reader.IdOf(question.pen, NameKind::kPen);
    DeliveriesOfPens deliveries = DeliveryReader(database, reader, question).Read();
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
      if (!pens.contains(pen) && wanted == kNoName && !HasName(database, NameKind::kPen, pen)) {
        answer.unknown_pens.push_back(pen);
      }
    }
    answer.notes = reader.Notes();
    return answer;
  });
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
