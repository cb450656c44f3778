#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/error.h"
#include "database/transactions.h"
#include "exchange/imported_data.h"

namespace SQLite {
class Database;
}

namespace vrx {

// A cell of an import that cannot be stored. what() names row, field, value and what was expected.
class StoreRowError : public Error {
 public:
  using Error::Error;
};

// The names of a recipe database in ID order; ID 1 is the first of each list. Records not in use
// have their place too.
struct RecordNames {
  std::vector<std::string> recipes;
  std::vector<std::string> ingredients;
  std::vector<std::string> pens;
};

RecordNames ReadRecordNames(SQLite::Database& recipe_database);

// Row `row` (from 1) of an import as it is stored, its transaction number raised by `base`. The sum
// has to fit: see CheckTransactionRange. Throws StoreRowError.
TransactionRecord ToTransactionRecord(const ImportedData& rows, std::size_t row,
                                      const RecordNames& names, std::int32_t base);

// Throws StoreRowError for the first row whose raised transaction number would not fit 32 bits.
// Numbers that cannot be read are left to ToTransactionRecord.
void CheckTransactionRange(const ImportedData& rows, std::int32_t base);

// The months within a date's final form, January first.
inline constexpr std::array<std::string_view, 12> kMonthMarks = {
    "-Jan-", "-Feb-", "-Mar-", "-Apr-", "-May-", "-Jun-",
    "-Jul-", "-Aug-", "-Sep-", "-Oct-", "-Nov-", "-Dec-"};

// The forms in which a transaction's time and date are stored; "" stays "". Neither checks: hours
// or months that are no number read as 0, and a text too short gives what there is.

// "1405" and "0205pm" to "02:05 pm" and "02:05 PM".
std::string FormatTransactionTime(std::string_view text);

// "01152009" to "15-Jan-2009"; a month outside 1 to 12 is "XXX".
std::string FormatTransactionDate(std::string_view text);

}  // namespace vrx
