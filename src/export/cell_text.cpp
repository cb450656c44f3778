#include "export/cell_text.h"

#include <array>
#include <charconv>
#include <cmath>
#include <concepts>
#include <cstdint>
#include <string_view>

#include "base/date.h"
#include "base/number.h"

namespace vrx {
namespace {

// The texts below are those of DefaultText, without a string of their own for each of the hundreds
// of millions of cells that an export may have.

// Numbers with at most 3 decimals, as weights are, within the 15 digits that DefaultText writes.
constexpr std::int64_t kScale = 1000;
constexpr double kLargestScaled = 1e14;
constexpr std::int64_t kLargestWhole = 999'999'999'999'999;

void AppendWhole(std::integral auto value, std::string& text) {
  std::array<char, 20> digits{};
  const auto written = std::to_chars(digits.data(), digits.data() + digits.size(), value);
  text.append(digits.data(), written.ptr);
}

void AppendTwoDigits(int value, std::string& text) {
  text += static_cast<char>('0' + value / 10);
  text += static_cast<char>('0' + value % 10);
}

void AppendNumber(std::int64_t value, std::string& text) {
  if (value < -kLargestWhole || value > kLargestWhole) {
    text += DefaultText(value);
    return;
  }
  AppendWhole(value, text);
}

void AppendNumber(double value, std::string& text) {
  const double scaled = std::abs(value) * static_cast<double>(kScale);
  if (!(scaled < kLargestScaled)) {
    text += DefaultText(value);
    return;
  }
  const auto thousandths = static_cast<std::int64_t>(std::nearbyint(scaled));
  // The division is rounded correctly, so equality says that these digits are the value's own.
  if (static_cast<double>(thousandths) / static_cast<double>(kScale) != std::abs(value)) {
    text += DefaultText(value);
    return;
  }
  if (value < 0) {
    text += '-';
  }
  AppendWhole(thousandths / kScale, text);
  std::int64_t rest = thousandths % kScale;
  if (rest == 0) {
    return;
  }
  text += '.';
  for (std::int64_t place = kScale / 10; rest != 0; place /= 10) {
    text += static_cast<char>('0' + rest / place);
    rest %= place;
  }
}

void AppendText(std::string_view value, ColumnContent content, std::string& text) {
  if (content == ColumnContent::kDate) {
    if (const auto date = ParseStoredDate(value)) {
      AppendWhole(static_cast<unsigned>(date->month()), text);
      text += '/';
      AppendWhole(static_cast<unsigned>(date->day()), text);
      text += '/';
      text += value.substr(0, 4);
      return;
    }
  }
  if (content == ColumnContent::kTime) {
    if (const auto time = ParseStoredTime(value)) {
      AppendWhole(time->hour % 12 == 0 ? 12 : time->hour % 12, text);
      text += ':';
      AppendTwoDigits(time->minute, text);
      text += ':';
      AppendTwoDigits(time->second, text);
      text += time->hour < 12 ? " AM" : " PM";
      return;
    }
  }
  text += value;
}

}  // namespace

void AppendCellText(const CellView& value, ColumnContent content, std::string& text) {
  if (const auto* const stored = std::get_if<std::string_view>(&value)) {
    AppendText(*stored, content, text);
  } else if (const auto* const number = std::get_if<double>(&value)) {
    AppendNumber(*number, text);
  } else if (const auto* const whole = std::get_if<std::int64_t>(&value)) {
    AppendNumber(*whole, text);
  }
}

}  // namespace vrx
