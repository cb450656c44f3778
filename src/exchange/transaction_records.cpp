#include "exchange/transaction_records.h"

#include <limits>
#include <optional>
#include <string>

#include "exchange/parse_error.h"
#include "frame/number.h"

namespace vrx {

std::int32_t TransactionNumber(std::string_view text) {
  const std::optional<std::int32_t> number = ParseLong(text);
  if (!number || *number < 1 || *number == std::numeric_limits<std::int32_t>::max()) {
    throw ParseError("Invalid transaction number detected.");
  }
  return *number;
}

void RecordExtractor::ExtractBatch() {
  BatchRecord record;
  NextInRecord();  // the record mark
  record.transaction = NextInRecord();
  record.recipe = NextInRecord();
  record.date = NextInRecord();
  record.user = NextInRecord();
  TransactionNumber(record.transaction);

  ReadIngredients(record);
  ReadList(record, kTimes);
  ReadList(record, kTargets);
  ReadList(record, kActuals);

  WriteBatchRows(record);
  if (has_feeds_) {
    ReadFeeds(record);
  }
}

std::string_view RecordExtractor::NextInRecord() {
  if (batches_.PastEnd()) {
    throw ParseError("Incomplete batch record detected.");
  }
  return batches_.NextBatchField();
}

// An entry that more of its list must follow: without that padding the skip behind it would take
// the next list for the rest of this one.
std::string_view RecordExtractor::TakeEntry() {
  const std::string_view entry = NextInRecord();
  if (batches_.AtListEnd()) {
    throw ParseError("Invalid list padding detected.");
  }
  return entry;
}

void RecordExtractor::SkipPadding() {
  do {
    NextInRecord();
  } while (!batches_.AtListEnd());
}

// The ingredients end ahead of the first "0"; an entry is taken before the next one is looked at,
// so a list has at least one.
void RecordExtractor::ReadIngredients(BatchRecord& record) {
  do {
    if (record.ingredients == kMaxBatchIngredients) {
      throw ParseError("Too many ingredients in a batch detected.");
    }
    record.lists[kIngredients][record.ingredients] = TakeEntry();
    ++record.ingredients;
  } while (batches_.PeekBatchField() != "0");
  SkipPadding();
}

void RecordExtractor::ReadList(BatchRecord& record, List list) {
  for (std::size_t entry = 0; entry < record.ingredients; ++entry) {
    record.lists[list][entry] = TakeEntry();
  }
  TakeEntry();  // the first padding, whatever it holds
  SkipPadding();
}

void RecordExtractor::WriteBatchRows(const BatchRecord& record) {
  for (std::size_t entry = 0; entry < record.ingredients; ++entry) {
    const std::size_t row = TakeRow();
    Write(row, kImportedTransactionNumber, record.transaction);
    Write(row, kImportedRecipeID, record.recipe);
    Write(row, kImportedType, "BATCH");
    Write(row, kImportedTarget, record.lists[kTargets][entry]);
    Write(row, kImportedIngredientID, record.lists[kIngredients][entry]);
    Write(row, kImportedActualBatch, record.lists[kActuals][entry]);
    Write(row, kImportedTime, record.lists[kTimes][entry]);
    Write(row, kImportedDate, record.date);
    Write(row, kImportedUserID, record.user);
  }
}

void RecordExtractor::ReadFeeds(const BatchRecord& record) {
  constexpr std::array kFieldsBehindTransaction = {
      kImportedPenID, kImportedUserID, kImportedTime,
      kImportedDate,  kImportedTarget, kImportedActualFeed,
  };
  while (feeds_.PeekFeedTransaction() == record.transaction) {
    const std::size_t row = TakeRow();
    Write(row, kImportedTransactionNumber, record.transaction);
    Write(row, kImportedRecipeID, record.recipe);
    Write(row, kImportedType, "FEED");
    feeds_.NextFeedField();  // the record mark
    feeds_.NextFeedField();  // the transaction, looked at already
    for (const ImportColumn column : kFieldsBehindTransaction) {
      Write(row, column, feeds_.NextFeedField());
    }
  }
}

std::size_t RecordExtractor::TakeRow() {
  if (next_row_ > table_.RowCount()) {
    throw ParseError("Too many records detected.");
  }
  return next_row_++;
}

void RecordExtractor::Write(std::size_t row, ImportColumn column, std::string_view text) {
  table_.SetCell(row, column, std::string(text));
}

}  // namespace vrx
