#include "legacy/field_value.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <type_traits>

#include "base/date.h"
#include "base/encoding.h"
#include "base/number.h"
#include "base/text.h"

namespace vrx {

namespace {

constexpr std::string_view kUnreadable = "\xEF\xBF\xBD";  // U+FFFD
constexpr int kSingleDigits = 7;
constexpr std::size_t kShownBytes = 60;

// The double nearest to the shortest decimal form of a single: 37.9 for 37.9000015.
double DecimalOf(float single) {
  std::array<char, 32> digits{};
  const auto written = std::to_chars(digits.data(), digits.data() + digits.size(), single,
                                     std::chars_format::general, kSingleDigits);
  double value = 0;
  std::from_chars(digits.data(), written.ptr, value);
  return value;
}

// Removes control characters and replaces unreadable characters by "?".
std::string Cleaned(std::string_view text) {
  std::string clean;
  for (std::size_t at = 0; at < text.size();) {
    if (text.substr(at).starts_with(kUnreadable)) {
      clean.push_back('?');
      at += kUnreadable.size();
      continue;
    }
    const auto code = static_cast<unsigned char>(text[at]);
    if (code >= ' ' && code != 0x7F) {
      clean.push_back(text[at]);
    }
    ++at;
  }
  return clean;
}

FieldValue FallbackOf(const FieldRule& rule) {
  if (!rule.fallback) {
    return {};
  }
  switch (rule.kind) {
    case FieldKind::kWhole:
    case FieldKind::kYesNo:
      return std::int64_t{TextToLong(*rule.fallback)};
    case FieldKind::kReal:
      return ParseNumber(*rule.fallback).value_or(0);
    default:
      return std::string(*rule.fallback);
  }
}

std::string ShownField(const FieldValue& value) {
  if (const auto* const text = std::get_if<std::string>(&value)) {
    return text->empty() ? "an empty text" : *text;
  }
  if (const auto* const number = std::get_if<std::int64_t>(&value)) {
    return std::to_string(*number);
  }
  const auto* const real = std::get_if<double>(&value);
  return real == nullptr ? "NULL" : DefaultText(*real);
}

// Replaces the value by the rule's fallback.
FieldValue Replace(const FieldRule& rule, const std::string& what, Repairs& repairs) {
  FieldValue stored = FallbackOf(rule);
  repairs.push_back(rule.column + " " + what + "; " + ShownField(stored) + " was stored");
  return stored;
}

FieldValue ConvertNull(const FieldRule& rule, const std::string& default_name, Repairs& repairs) {
  switch (rule.null) {
    case NullRule::kKept:
      return {};
    case NullRule::kDefault:
      return Replace(rule, "was NULL", repairs);
    case NullRule::kDefaultName:
      repairs.push_back(rule.column + " was NULL; the record's default name was stored");
      return default_name;
  }
  return {};
}

FieldValue ConvertWhole(const FieldRule& rule, const LegacyValue& value, Repairs& repairs) {
  const std::optional<double> number = NumberOf(value);
  const std::optional<std::int32_t> whole = number ? RoundToLong(*number) : std::nullopt;
  if (!whole) {
    return Replace(rule, "held " + Shown(value) + " in place of a whole number", repairs);
  }
  const std::int64_t stored = std::clamp<std::int64_t>(*whole, rule.smallest, rule.largest);
  if (static_cast<double>(stored) != *number) {
    repairs.push_back(rule.column + " held " + Shown(value) + "; " + std::to_string(stored) +
                      " was stored");
  }
  return stored;
}

FieldValue ConvertYesNo(const FieldRule& rule, const LegacyValue& value, Repairs& repairs) {
  const std::optional<double> number = NumberOf(value);
  if (!number) {
    return Replace(rule, "held " + Shown(value) + " in place of yes or no", repairs);
  }
  return std::int64_t{*number != 0 ? 1 : 0};
}

FieldValue ConvertReal(const FieldRule& rule, const LegacyValue& value, Repairs& repairs) {
  const std::optional<double> number = NumberOf(value);
  if (!number) {
    return Replace(rule, "held " + Shown(value) + " in place of a number", repairs);
  }
  return *number;
}

// A text, or a number in its default text form.
std::optional<std::string> TextOf(const LegacyValue& value) {
  if (const auto* const text = std::get_if<std::string>(&value)) {
    return *text;
  }
  const std::optional<double> number = NumberOf(value);
  return number ? std::optional(DefaultText(*number)) : std::nullopt;
}

FieldValue ConvertText(const FieldRule& rule, const LegacyValue& value, Repairs& repairs) {
  const std::optional<std::string> text = TextOf(value);
  if (!text) {
    return Replace(rule, "held " + Shown(value) + " in place of a text", repairs);
  }
  std::string stored = Cleaned(*text);
  if (rule.limit > 0) {
    stored = FirstCharacters(stored, rule.limit);
  }
  if (stored != *text) {
    repairs.push_back(rule.column + " held " + Shown(value) + "; \"" + stored + "\" was stored");
  }
  if (stored.empty() && rule.empty_is_null) {
    repairs.push_back(rule.column + " was an empty text; NULL was stored");
    return {};
  }
  return stored;
}

FieldValue ConvertChoice(const FieldRule& rule, const LegacyValue& value, Repairs& repairs) {
  const auto* const text = std::get_if<std::string>(&value);
  if (text == nullptr || std::ranges::find(rule.choices, *text) == rule.choices.end()) {
    return Replace(rule, "held " + Shown(value), repairs);
  }
  return *text;
}

FieldValue ConvertNumberText(const FieldRule& rule, const LegacyValue& value, Repairs& repairs) {
  const std::optional<std::string> text = TextOf(value);
  if (!text || (!text->empty() && !ParseNumber(*text))) {
    return Replace(rule, "held " + Shown(value) + " in place of a number", repairs);
  }
  return *text;
}

// The moment of a value that is not a text. A number is treated as a stored date.
std::optional<JetMoment> MomentOf(const LegacyValue& value) {
  if (const auto* const stored = std::get_if<JetDate>(&value)) {
    return ToMoment(*stored);
  }
  const std::optional<double> number = NumberOf(value);
  return number ? ToMoment({*number}) : std::nullopt;
}

FieldValue ConvertMoment(const FieldRule& rule, const LegacyValue& value, Repairs& repairs) {
  const bool date = rule.kind == FieldKind::kDate;
  if (const auto* const text = std::get_if<std::string>(&value)) {
    if (date ? ParseStoredDate(*text).has_value() : ParseStoredTime(*text).has_value()) {
      return *text;
    }
  } else if (const std::optional<JetMoment> moment = MomentOf(value)) {
    return date ? StoredText(moment->date) : StoredText(moment->time);
  }
  return Replace(rule, "held " + Shown(value) + " in place of a " + (date ? "date" : "time"),
                 repairs);
}

using namespace std::chrono_literals;

constexpr std::chrono::sys_days kDayZero = 1899y / 12 / 30;
constexpr std::chrono::sys_days kFirstDay = 100y / 1 / 1;
constexpr std::chrono::sys_days kLastDay = 9999y / 12 / 31;
constexpr double kSecondsOfDay = 86400;
constexpr double kFarDay = 4e6;

}  // namespace

std::optional<double> NumberOf(const LegacyValue& value) {
  const std::optional<double> number = std::visit(
      [](const auto& held) -> std::optional<double> {
        using Held = std::decay_t<decltype(held)>;
        if constexpr (std::is_same_v<Held, bool>) {
          return held ? 1 : 0;
        } else if constexpr (std::is_same_v<Held, std::int32_t> || std::is_same_v<Held, double>) {
          return held;
        } else if constexpr (std::is_same_v<Held, float>) {
          return std::isfinite(held) ? std::optional(DecimalOf(held)) : std::nullopt;
        } else if constexpr (std::is_same_v<Held, std::string>) {
          return ParseNumber(held);
        } else {
          return std::nullopt;
        }
      },
      value);
  return number && std::isfinite(*number) ? number : std::nullopt;
}

std::string Shown(const LegacyValue& value) {
  return std::visit(
      [&value](const auto& held) -> std::string {
        using Held = std::decay_t<decltype(held)>;
        if constexpr (std::is_same_v<Held, std::monostate>) {
          return "NULL";
        } else if constexpr (std::is_same_v<Held, std::string>) {
          const std::string clean = Cleaned(held);
          const std::string_view start = FirstCharacters(clean, kShownBytes);
          return "\"" + std::string(start) + (start.size() < clean.size() ? "..." : "") + "\"";
        } else if constexpr (std::is_same_v<Held, JetDate>) {
          const std::optional<JetMoment> moment = ToMoment(held);
          return moment ? StoredText(moment->date) + " " + StoredText(moment->time)
                        : "an impossible date";
        } else {
          const std::optional<double> number = NumberOf(value);
          return number ? DefaultText(*number) : "an impossible number";
        }
      },
      value);
}

std::optional<int> ReadId(const FieldRule& rule, const LegacyValue& value) {
  const std::optional<double> number = NumberOf(value);
  const std::optional<std::int32_t> whole = number ? RoundToLong(*number) : std::nullopt;
  const bool fits = whole && static_cast<double>(*whole) == *number && *whole >= rule.smallest &&
                    *whole <= rule.largest;
  return fits ? std::optional<int>(*whole) : std::nullopt;
}

FieldValue ConvertField(const FieldRule& rule, const LegacyValue& value,
                        const std::string& default_name, Repairs& repairs) {
  if (IsNull(value)) {
    return ConvertNull(rule, default_name, repairs);
  }
  switch (rule.kind) {
    case FieldKind::kId:
    case FieldKind::kWhole:
      return ConvertWhole(rule, value, repairs);
    case FieldKind::kIdText:
    case FieldKind::kText:
      return ConvertText(rule, value, repairs);
    case FieldKind::kYesNo:
      return ConvertYesNo(rule, value, repairs);
    case FieldKind::kReal:
      return ConvertReal(rule, value, repairs);
    case FieldKind::kChoice:
      return ConvertChoice(rule, value, repairs);
    case FieldKind::kNumberText:
      return ConvertNumberText(rule, value, repairs);
    case FieldKind::kDate:
    case FieldKind::kTime:
      return ConvertMoment(rule, value, repairs);
  }
  return {};
}

std::optional<JetMoment> ToMoment(JetDate stored) {
  if (!std::isfinite(stored.days) || std::abs(stored.days) > kFarDay) {
    return std::nullopt;
  }
  const double whole = std::trunc(stored.days);
  const double part = std::abs(stored.days - whole);
  auto second = static_cast<int>(std::lround(part * kSecondsOfDay));
  std::chrono::sys_days day = kDayZero + std::chrono::days(static_cast<int>(whole));
  if (second >= static_cast<int>(kSecondsOfDay)) {
    second = 0;
    day += std::chrono::days(1);
  }
  if (day < kFirstDay || day > kLastDay) {
    return std::nullopt;
  }
  return JetMoment{
      .date = day,
      .time = {.hour = second / 3600, .minute = second / 60 % 60, .second = second % 60}};
}

bool IsDayZero(const Date& date) { return std::chrono::sys_days(date) == kDayZero; }

}  // namespace vrx
