#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/date.h"
#include "base/error.h"
#include "database/transactions.h"
#include "exchange/imported_data.h"

namespace SQLite {
class Database;
}

namespace vrx {

// A cell of an import cannot be stored. what() gives row, field, value and the expected form.
class StoreRowError : public Error {
 public:
  using Error::Error;
};

// Names of all records of a recipe database, in use or not, in ID order starting with ID 1.
struct RecordNames {
  std::vector<std::string> recipes;
  std::vector<std::string> ingredients;
  std::vector<std::string> pens;
};

[[nodiscard]] RecordNames ReadRecordNames(SQLite::Database& recipe_database);

// Converts row `row` (from 1) of an import to a record and adds `base` to its transaction number.
// The sum must fit 32 bits: see CheckTransactionNumber. Throws StoreRowError.
TransactionRecord ToTransactionRecord(const ImportedData& rows, std::size_t row,
                                      const RecordNames& names, std::int32_t base);

// Throws StoreRowError if the transaction number of the row plus `base` does not fit 32 bits.
// Ignores an invalid number, which ToTransactionRecord reports.
void CheckTransactionNumber(const ImportedData& rows, std::size_t row, std::int32_t base);

// The months in the stored form of a date, January first.
inline constexpr std::array<std::string_view, 12> kMonthMarks = {
    "-Jan-", "-Feb-", "-Mar-", "-Apr-", "-May-", "-Jun-",
    "-Jul-", "-Aug-", "-Sep-", "-Oct-", "-Nov-", "-Dec-"};

// Convert time and date of the file to their shown form. "" stays "". They do not validate: hours
// or months that are not numbers are read as 0, and a short text gives a short result.

// "1405" and "0205pm" become "02:05 pm" and "02:05 PM".
[[nodiscard]] std::string FormatTransactionTime(std::string_view text);

// "01152009" is 15 January 2009. Nothing for any other form and for a date that does not exist.
[[nodiscard]] std::optional<Date> ParseTransactionDate(std::string_view text);

// "01152009" becomes "15-Jan-2009"; a month outside 1 to 12 becomes "XXX".
[[nodiscard]] std::string FormatTransactionDate(std::string_view text);

}  // namespace vrx
