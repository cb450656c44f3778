#include "history/difference.h"

#include <cmath>
#include <exception>

#include <sqlite3.h>

#include "base/number.h"
#include "database/connection.h"

namespace vrx {
namespace {

constexpr double kHundred = 100;
// Above it a number is written with an exponent instead of decimals.
constexpr double kLongest = 1e12;

std::string ActualOf(ComparedKind kind) {
  return kind == ComparedKind::kBatch ? "[ActualBatch]" : "[ActualFeed]";
}

// Removes what binary numbers add to a difference of decimals: 602.1 - 600.3 is 1.8. Nothing if a
// weight is missing.
std::optional<double> DifferenceOf(const Comparison& weights) {
  if (!weights.target || !weights.actual) {
    return std::nullopt;
  }
  const double difference = *weights.actual - *weights.target;
  if (!std::isfinite(difference)) {
    return std::nullopt;
  }
  return std::abs(difference) < kLongest ? ParseNumber(Format(difference, "0.000000")) : difference;
}

std::optional<double> PercentOf(const Comparison& weights) {
  const std::optional<double> difference = DifferenceOf(weights);
  if (!difference || !(*weights.target > 0)) {
    return std::nullopt;
  }
  const double percent = *difference * kHundred / *weights.target;
  return std::isfinite(percent) ? std::optional(percent) : std::nullopt;
}

std::string Rounded(double value, std::string_view pattern) {
  return std::abs(value) < kLongest ? Format(value, pattern) : DefaultText(value);
}

bool IsZero(std::string_view text) {
  return text.find_first_of("123456789") == std::string_view::npos;
}

std::string Signed(std::string text) {
  return IsZero(text) || text.starts_with('-') ? text : "+" + text;
}

std::string WithoutZerosAtTheEnd(std::string text) {
  if (text.find('.') != std::string::npos && text.find('E') == std::string::npos) {
    text.resize(text.find_last_not_of('0') + 1);
    if (text.back() == '.') {
      text.pop_back();
    }
  }
  return text;
}

std::optional<double> WeightArgument(sqlite3_value* value) {
  const int type = sqlite3_value_type(value);
  return type == SQLITE_INTEGER || type == SQLITE_FLOAT ? std::optional(sqlite3_value_double(value))
                                                        : std::nullopt;
}

// Called from C code, which no exception may cross.
template <std::string (&Text)(const Comparison&)>
void GiveText(sqlite3_context* context, int /*count*/, sqlite3_value** values) {
  try {
    const std::string text =
        Text({.target = WeightArgument(values[0]), .actual = WeightArgument(values[1])});
    if (!text.empty()) {
      sqlite3_result_text(context, text.c_str(), -1, SQLITE_TRANSIENT);
    }
  } catch (const std::exception&) {
    sqlite3_result_error_nomem(context);
  }
}

}  // namespace

std::array<std::string, kComparisonTerms> ComparisonTerms() {
  using enum ComparedKind;
  return {OfKind(kBatch, "[Target]"), OfKind(kBatch, ActualOf(kBatch)), OfKind(kFeed, "[Target]"),
          OfKind(kFeed, ActualOf(kFeed))};
}

std::string OfKind(ComparedKind kind, std::string_view expression) {
  return "CASE WHEN [Type] " + std::string(kind == ComparedKind::kBatch ? "=" : "<>") + " '" +
         std::string(kBatchType) + "' THEN " + std::string(expression) + " END";
}

std::string DifferenceOrder(ComparedKind kind, bool percent) {
  const std::string difference = "(" + ActualOf(kind) + " - [Target])";
  // Rounded, so that equal differences of decimals are equal.
  return OfKind(kind, percent ? "CASE WHEN [Target] > 0 THEN round(" + difference +
                                    " * 100.0 / [Target], 9) END"
                              : "round(" + difference + ", 6)");
}

std::string DifferenceText(const Comparison& weights) {
  const std::optional<double> difference = DifferenceOf(weights);
  return difference ? Signed(WithoutZerosAtTheEnd(Rounded(*difference, "0.000"))) : std::string();
}

std::string DifferencePercentText(const Comparison& weights) {
  const std::optional<double> percent = PercentOf(weights);
  return percent ? Signed(Rounded(*percent, "0.0")) : std::string();
}

void RegisterDifferences(SQLite::Database& database) {
  constexpr int kFlags = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS;
  WithDatabaseErrors(database, [&] {
    const auto define = [&](std::string_view name, auto* function) {
      database.check(sqlite3_create_function_v2(database.getHandle(), std::string(name).c_str(), 2,
                                                kFlags, nullptr, function, nullptr, nullptr,
                                                nullptr));
    };
    define(kDifferenceFunction, &GiveText<DifferenceText>);
    define(kDifferencePercentFunction, &GiveText<DifferencePercentText>);
  });
}

bool IsBeyond(const Comparison& weights, double tolerance) {
  // Allows for decimals that binary numbers do not hold exactly.
  constexpr double kSlack = 1e-9;
  const std::optional<double> percent = PercentOf(weights);
  return percent && std::abs(*percent) > tolerance * (1 + kSlack) + kSlack;
}

}  // namespace vrx
