#include "exchange/store_row.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <limits>
#include <optional>
#include <string_view>
#include <utility>

#include "base/date.h"
#include "base/encoding.h"
#include "base/number.h"
#include "base/text.h"
#include "base/translation.h"
#include "database/records.h"
#include "exchange/imported_data.h"

namespace vrx {
namespace {

constexpr std::size_t kMaxShownValue = 40;  // bytes of an invalid value shown in a message

std::optional<int> Digits(std::string_view text) {
  int value = 0;
  const bool digits = std::all_of(text.begin(), text.end(), IsDigitChar);
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return digits && error == std::errc() ? std::optional(value) : std::nullopt;
}

// "02:05 pm", the form of FormatTransactionTime.
std::optional<TimeOfDay> ParseDisplayTime(std::string_view text) {
  if (text.size() != 8 || text[2] != ':' || text[5] != ' ') {
    return std::nullopt;
  }
  const std::optional<int> hour = Digits(text.substr(0, 2));
  const std::optional<int> minute = Digits(text.substr(3, 2));
  const bool afternoon = EqualsIgnoringCase(text.substr(6), "pm");
  if (!hour || *hour < 1 || *hour > 12 || !minute || *minute > 59 ||
      (!afternoon && !EqualsIgnoringCase(text.substr(6), "am"))) {
    return std::nullopt;
  }
  return TimeOfDay{*hour % 12 + (afternoon ? 12 : 0), *minute, 0};
}

// "15-Jan-2009", the form of FormatTransactionDate.
std::optional<Date> ParseDisplayDate(std::string_view text) {
  if (text.size() != 11) {
    return std::nullopt;
  }
  const auto* const month =
      std::find(kMonthMarks.begin(), kMonthMarks.end(), text.substr(2, kMonthMarks[0].size()));
  const std::optional<int> day = Digits(text.substr(0, 2));
  const std::optional<int> year = Digits(text.substr(7));
  if (month == kMonthMarks.end() || !day || !year || *year < 1) {
    return std::nullopt;
  }
  const Date date{std::chrono::year(*year),
                  std::chrono::month(static_cast<unsigned>(month - kMonthMarks.begin()) + 1),
                  std::chrono::day(static_cast<unsigned>(*day))};
  return date.ok() ? std::optional(date) : std::nullopt;
}

constexpr std::size_t kDateDigits = 8;

// One row of an import, read cell by cell.
class RowReader {
 public:
  RowReader(const ImportedData& rows, std::size_t row) : rows_(rows), row_(row) {}

  [[nodiscard]] std::string_view Cell(int column) const { return rows_.Cell(row_, column); }

  [[nodiscard]] std::string Text(int column) const { return Windows1252ToUtf8(Cell(column)); }

  [[nodiscard]] std::optional<std::string> TextOrNull(int column) const {
    return Cell(column).empty() ? std::nullopt : std::optional(Text(column));
  }

  [[nodiscard]] std::int32_t TransactionNumber() const {
    const std::optional<std::int32_t> number = ParseLong(Cell(kImportedTransactionNumber));
    if (!number || *number < 1) {
      Refuse(kImportedTransactionNumber, Tr("a whole number from 1"));
    }
    return *number;
  }

  [[nodiscard]] const std::string& Name(int column, const std::vector<std::string>& names) const {
    const std::optional<std::int32_t> id = ParseLong(Cell(column));
    if (!id || *id < 1 || static_cast<std::size_t>(*id) > names.size()) {
      Refuse(column, Tr("an ID from 1 to %1", {std::to_string(names.size())}));
    }
    return names[static_cast<std::size_t>(*id) - 1];
  }

  [[nodiscard]] std::optional<std::string> NameOrNull(int column,
                                                      const std::vector<std::string>& names) const {
    if (Cell(column).empty()) {
      return std::nullopt;
    }
    const std::string& name = Name(column, names);
    return name.empty() ? std::nullopt : std::optional(name);
  }

  [[nodiscard]] std::optional<double> NumberOrNull(int column) const {
    if (Cell(column).empty()) {
      return std::nullopt;
    }
    const std::optional<double> number = ParseNumber(Cell(column));
    if (!number) {
      Refuse(column, Tr("a number"));
    }
    return number;
  }

  [[nodiscard]] double NumberOrZero(int column) const { return NumberOrNull(column).value_or(0.0); }

  [[nodiscard]] std::optional<TimeOfDay> Time() const {
    if (Cell(kImportedTime).empty()) {
      return std::nullopt;
    }
    const std::optional<TimeOfDay> time =
        ParseDisplayTime(FormatTransactionTime(Cell(kImportedTime)));
    if (!time) {
      Refuse(kImportedTime, Tr("four digits, hours and minutes, or these with am or pm"));
    }
    return time;
  }

  [[nodiscard]] std::optional<Date> Day() const {
    if (Cell(kImportedDate).empty()) {
      return std::nullopt;
    }
    // A text of another length could still be read as a date of another century: "011509" as 1509.
    const std::string_view cell = Cell(kImportedDate);
    const std::optional<Date> date = ParseTransactionDate(cell);
    if (!date) {
      Refuse(kImportedDate, Tr("eight digits: month, day and year"));
    }
    return date;
  }

 private:
  [[noreturn]] void Refuse(int column, const std::string& expected) const {
    const std::string_view cell = Cell(column);
    std::string value = Windows1252ToUtf8(cell.substr(0, kMaxShownValue));
    if (cell.size() > kMaxShownValue) {
      value += "...";
    }
    throw StoreRowError(Tr("Row %1, %2: found '%3', expected %4.",
                           {std::to_string(row_), DesignImportCaption(column), value, expected}));
  }

  const ImportedData& rows_;
  std::size_t row_;
};

// Two characters from index `from`; fewer at the end of the text.
std::string_view Pair(std::string_view text, std::size_t from) {
  return text.substr(std::min(from, text.size()), 2);
}

std::string_view Last(std::string_view text, std::size_t count) {
  return text.substr(text.size() - std::min(count, text.size()));
}

std::string Assemble(std::string_view hours, std::string_view minutes, std::string_view suffix) {
  return std::string(hours).append(":").append(minutes).append(" ").append(suffix);
}

}  // namespace

RecordNames ReadRecordNames(SQLite::Database& recipe_database) {
  RecordNames names;
  for (IngredientRecord& record : ReadIngredients(recipe_database)) {
    names.ingredients.push_back(std::move(record.name));
  }
  for (RecipeRecord& record : ReadRecipes(recipe_database)) {
    names.recipes.push_back(std::move(record.name));
  }
  for (PenRecord& record : ReadPens(recipe_database)) {
    names.pens.push_back(std::move(record.name));
  }
  return names;
}

TransactionRecord ToTransactionRecord(const ImportedData& rows, std::size_t row,
                                      const RecordNames& names, std::int32_t base) {
  const RowReader reader(rows, row);
  TransactionRecord record;
  record.transaction = reader.TransactionNumber() + base;
  record.recipe = reader.Name(kImportedRecipeID, names.recipes);
  record.type = reader.Text(kImportedType);
  record.user_id = reader.TextOrNull(kImportedUserID);
  record.ingredient = reader.NameOrNull(kImportedIngredientID, names.ingredients);
  record.pen = reader.NameOrNull(kImportedPenID, names.pens);
  record.target = reader.NumberOrZero(kImportedTarget);
  record.actual_batch = reader.NumberOrZero(kImportedActualBatch);
  record.time = reader.Time();
  record.date = reader.Day();
  record.actual_feed = reader.NumberOrZero(kImportedActualFeed);
  record.ing_percent = reader.NumberOrNull(kCalculatedIngPercentOfBatch);
  int column = kFirstIngredientWeight;
  for (std::optional<double>& weight : record.ingredient_weights) {
    weight = reader.NumberOrNull(column++);
  }
  return record;
}

void CheckTransactionNumber(const ImportedData& rows, std::size_t row, std::int32_t base) {
  constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();
  const std::optional<std::int32_t> number = ParseLong(rows.Cell(row, kImportedTransactionNumber));
  if (number && std::int64_t{*number} + base > kHighest) {
    throw StoreRowError(
        Tr("Row %1, %2: %3 after the database's highest number %4 is beyond %5.",
           {std::to_string(row), DesignImportCaption(kImportedTransactionNumber),
            std::to_string(*number), std::to_string(base), std::to_string(kHighest)}));
  }
}

std::string FormatTransactionTime(std::string_view text) {
  constexpr std::size_t kTwentyFourHourForm = 4;
  if (text.empty()) {
    return {};
  }
  if (text.size() > kTwentyFourHourForm) {
    return Assemble(Pair(text, 0), Pair(text, 2), UpperCase(Last(text, 2)));
  }
  const std::string_view minutes = Last(text, 2);
  const int hour = TextToLong(Pair(text, 0));
  if (hour < 0 || hour > 23) {
    return Assemble("", minutes, "");
  }
  const int twelve_hour = hour % 12 == 0 ? 12 : hour % 12;
  return Assemble(Format(static_cast<double>(twelve_hour), "00"), minutes, hour < 12 ? "am" : "pm");
}

std::optional<Date> ParseTransactionDate(std::string_view text) {
  return text.size() == kDateDigits ? ParseDisplayDate(FormatTransactionDate(text)) : std::nullopt;
}

std::string FormatTransactionDate(std::string_view text) {
  if (text.empty()) {
    return {};
  }
  const int month = TextToLong(Pair(text, 0));
  const std::string_view name =
      month >= 1 && month <= 12 ? kMonthMarks[static_cast<std::size_t>(month - 1)] : "-XXX-";
  return std::string(Pair(text, 2)).append(name).append(Last(text, 4));
}

}  // namespace vrx
