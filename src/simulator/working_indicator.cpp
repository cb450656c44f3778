#include "simulator/working_indicator.h"

#include <cerrno>
#include <charconv>
#include <fstream>
#include <stdexcept>
#include <system_error>

#include "simulator/feed_plan.h"

namespace vrx::simulator {
namespace {

constexpr std::size_t kLargestFile = 65535;  // bytes that a reader of transaction files takes

}  // namespace

std::optional<std::string> WorkingIndicator::Visit(const std::string& memory) {
  if (!IsDownload(memory)) {
    return std::nullopt;
  }
  try {
    FeedingWork work(ReadFeedPlan(memory),
                     static_cast<std::uint32_t>(day_.time_since_epoch().count()));
    int fed = 0;
    for (; fed < options_.days && work.FeedDay(day_, kLargestFile); ++fed) {
      day_ += std::chrono::days(1);
    }
    if (work.Weighings().empty()) {
      throw std::invalid_argument("no recipe or no pen to feed");
    }
    tell_("the indicator fed by the download: days " + std::to_string(fed) + ", weighings " +
          std::to_string(work.Weighings().size()));
    if (fed < options_.days) {
      tell_("memory is full, days not fed: " + std::to_string(options_.days - fed));
    }
    Enter(work);
    return work.Records();
  } catch (const std::invalid_argument& error) {
    tell_(std::string("the indicator cannot feed by the download: ") + error.what());
    return std::nullopt;
  }
}

void WorkingIndicator::Enter(const FeedingWork& work) const {
  if (!options_.ledger) {
    return;
  }
  std::ofstream ledger(*options_.ledger, std::ios::binary | std::ios::app);
  ledger << LedgerOf(work.Weighings());
  if (!ledger.flush()) {
    throw std::system_error(errno, std::generic_category(),
                            "cannot write " + options_.ledger->string());
  }
}

Day ReadDay(const std::string& text) {
  int year = 0;
  unsigned month = 0;
  unsigned day = 0;
  const char* const begin = text.data();
  const auto number = [&](std::size_t from, std::size_t length, auto& value) {
    const auto [end, error] = std::from_chars(begin + from, begin + from + length, value);
    return error == std::errc() && end == begin + from + length;
  };
  const bool read = text.size() == 10 && text[4] == '-' && text[7] == '-' && number(0, 4, year) &&
                    number(5, 2, month) && number(8, 2, day);
  const std::chrono::year_month_day date{std::chrono::year(year), std::chrono::month(month),
                                         std::chrono::day(day)};
  if (!read || !date.ok()) {
    throw std::invalid_argument("no date of the form 2026-01-05: " + text);
  }
  return date;
}

}  // namespace vrx::simulator
