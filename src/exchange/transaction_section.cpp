#include "exchange/transaction_section.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <string>

#include "base/number.h"
#include "base/translation.h"

namespace vrx {

std::string_view SectionCursor::Next() {
  if (PastEnd()) {
    return {};
  }
  const std::size_t end = section_.find_first_of(",;\r", position_);
  if (end == std::string_view::npos) {
    position_ = section_.size();
    return {};
  }
  const std::string_view field = section_.substr(position_, end - position_);
  position_ = end + 1;
  if (section_[end] == ',') {
    last_delimiter_ = Delimiter::kComma;
  } else if (section_[end] == ';') {
    last_delimiter_ = Delimiter::kSemicolon;
  } else if (!PastEnd() && section_[position_] == '\n') {
    last_delimiter_ = Delimiter::kCrLf;
    ++position_;
  } else {
    last_delimiter_ = Delimiter::kCr;
  }
  return field;
}

std::string_view SectionCursor::Peek() const {
  const std::string_view rest = section_.substr(position_);
  return rest.substr(0, rest.find_first_of(",;\r"));
}

std::string_view SectionCursor::NextLine() {
  const std::string_view rest = section_.substr(std::min(position_, section_.size()));
  const std::string_view line = rest.substr(0, rest.find('\r'));
  position_ += line.size() + 1;
  if (!PastEnd() && section_[position_] == '\n') {
    ++position_;
  }
  return line;
}

std::string_view FeedSection::NextFeedLine() {
  next_transaction_.reset();
  return cursor_.NextLine();
}

std::string_view FeedSection::NextFeedField() {
  next_transaction_.reset();
  return cursor_.Next();
}

std::string_view FeedSection::PeekFeedTransaction() {
  if (!next_transaction_) {
    SectionCursor lookahead = cursor_;
    lookahead.Next();
    next_transaction_ = lookahead.Next();
  }
  return *next_transaction_;
}

std::int32_t TransactionNumber(std::string_view text) {
  const std::optional<std::int32_t> number = ParseLong(text);
  if (!number || *number < 1 || *number == std::numeric_limits<std::int32_t>::max()) {
    throw ParseError(Tr("Invalid transaction number detected."));
  }
  return *number;
}

BatchRecord BatchReader::Next() {
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
  return record;
}

std::string_view BatchReader::NextInRecord() {
  if (batches_.PastEnd()) {
    throw ParseError(Tr("Incomplete batch record detected."));
  }
  return batches_.NextBatchField();
}

// Takes an entry that must not be the last of its list: without padding, the following skip would
// read the next list as the rest of this one.
std::string_view BatchReader::TakeEntry() {
  const std::string_view entry = NextInRecord();
  if (batches_.AtListEnd()) {
    throw ParseError(Tr("Invalid list padding detected."));
  }
  return entry;
}

void BatchReader::SkipPadding() {
  do {
    NextInRecord();
  } while (!batches_.AtListEnd());
}

// The ingredients end before the first "0". The first entry is not checked, so a list has at least
// one.
void BatchReader::ReadIngredients(BatchRecord& record) {
  do {
    if (record.ingredients == kMaxBatchIngredients) {
      throw ParseError(Tr("Too many ingredients in a batch detected."));
    }
    record.lists[kIngredients][record.ingredients] = TakeEntry();
    ++record.ingredients;
  } while (batches_.PeekBatchField() != "0");
  SkipPadding();
}

void BatchReader::ReadList(BatchRecord& record, BatchList list) {
  for (std::size_t entry = 0; entry < record.ingredients; ++entry) {
    record.lists[list][entry] = TakeEntry();
  }
  TakeEntry();  // the first padding entry, with any content
  SkipPadding();
}

RecordExtractor::RecordExtractor(BatchSection batches, FeedSection feeds, bool has_feeds,
                                 ImportedData& table)
    : batches_(batches), feeds_(feeds), has_feeds_(has_feeds), table_(table) {
  try {
    BatchReader lookahead = batches_;
    do {
      ++later_batches_[lookahead.Next().transaction];
    } while (!lookahead.AtEnd());
  } catch (const ParseError&) {
    // ExtractBatch will end the parse at the same record.
  }
}

void RecordExtractor::ExtractBatch() {
  const BatchRecord record = batches_.Next();
  --later_batches_[record.transaction];
  WriteBatchRows(record);
  if (has_feeds_) {
    ReadFeeds(record);
  }
}

bool RecordExtractor::IsOfLaterBatch(std::string_view transaction) const {
  const auto found = later_batches_.find(transaction);
  return found != later_batches_.end() && found->second > 0;
}

void RecordExtractor::WriteBatchRows(const BatchRecord& record) {
  for (std::size_t entry = 0; entry < record.ingredients; ++entry) {
    const std::size_t row = TakeRow();
    table_.SetCell(row, kImportedTransactionNumber, record.transaction);
    table_.SetCell(row, kImportedRecipeID, record.recipe);
    table_.SetCell(row, kImportedType, "BATCH");
    table_.SetCell(row, kImportedTarget, record.lists[kTargets][entry]);
    table_.SetCell(row, kImportedIngredientID, record.lists[kIngredients][entry]);
    table_.SetCell(row, kImportedActualBatch, record.lists[kActuals][entry]);
    table_.SetCell(row, kImportedTime, record.lists[kTimes][entry]);
    table_.SetCell(row, kImportedDate, record.date);
    table_.SetCell(row, kImportedUserID, record.user);
  }
}

void RecordExtractor::ReadFeeds(const BatchRecord& record) {
  while (!feeds_.AtFeedSectionEnd()) {
    const std::string_view transaction = feeds_.PeekFeedTransaction();
    if (transaction == record.transaction) {
      WriteFeedRow(record);
    } else if (IsOfLaterBatch(transaction)) {
      return;
    } else {
      LeaveFeedUnread();
    }
  }
}

void RecordExtractor::WriteFeedRow(const BatchRecord& record) {
  constexpr std::array kFieldsAfterTransaction = {
      kImportedPenID, kImportedUserID, kImportedTime,
      kImportedDate,  kImportedTarget, kImportedActualFeed,
  };
  const std::size_t row = TakeRow();
  table_.SetCell(row, kImportedTransactionNumber, record.transaction);
  table_.SetCell(row, kImportedRecipeID, record.recipe);
  table_.SetCell(row, kImportedType, "FEED");
  feeds_.NextFeedField();  // the record mark
  feeds_.NextFeedField();  // the transaction, already checked
  for (const ImportColumn column : kFieldsAfterTransaction) {
    table_.SetCell(row, column, feeds_.NextFeedField());
  }
}

// Ignores an empty line.
void RecordExtractor::LeaveFeedUnread() {
  const std::string_view line = feeds_.NextFeedLine();
  if (line.empty()) {
    return;
  }
  SectionCursor fields(line);
  fields.Next();
  table_.AddUnreadFeed({.transaction = std::string(fields.Peek()),
                        .text = std::string(line),
                        .rows = static_cast<std::size_t>(CountFeedRecords(line))});
}

void RecordExtractor::LeaveOtherFeedsUnread() {
  while (!feeds_.AtFeedSectionEnd()) {
    LeaveFeedUnread();
  }
}

std::size_t RecordExtractor::TakeRow() {
  if (next_row_ > table_.RowCount()) {
    throw ParseError(Tr("Too many records detected."));
  }
  return next_row_++;
}

std::int64_t CountFeedRecords(std::string_view section) {
  return std::count(section.begin(), section.end(), 'B');
}

}  // namespace vrx
