#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <unordered_map>

#include "base/error.h"
#include "exchange/imported_data.h"

namespace vrx {

enum class Delimiter { kNone, kComma, kSemicolon, kCr, kCrLf };

// Ends a parse; what() is shown to the operator.
class ParseError : public Error {
 public:
  using Error::Error;
};

// Reads the fields of a section one by one. Fields are views of the section's text, which must
// outlive them.
class SectionCursor {
 public:
  SectionCursor() = default;
  explicit SectionCursor(std::string_view section) : section_(section) {}

  // Returns the next field. Returns "" past the end, and for text after the last delimiter.
  std::string_view Next();
  [[nodiscard]] std::string_view Peek() const;
  // Returns the rest of the line without its line end, and moves to the next line.
  std::string_view NextLine();
  [[nodiscard]] bool PastEnd() const { return position_ >= section_.size(); }
  // True past the end and at the CR of the terminator's empty line.
  [[nodiscard]] bool AtEnd() const { return PastEnd() || section_[position_] == '\r'; }
  [[nodiscard]] Delimiter LastDelimiter() const { return last_delimiter_; }

 private:
  std::string_view section_;
  std::size_t position_ = 0;
  Delimiter last_delimiter_ = Delimiter::kNone;
};

// Number of "B" characters, also in pen and user fields. `section` may be a part of the feed
// section.
[[nodiscard]] std::int64_t CountFeedRecords(std::string_view section);

class BatchSection {
 public:
  BatchSection() = default;
  explicit BatchSection(std::string_view section) : cursor_(section) {}

  std::string_view NextBatchField() { return cursor_.Next(); }
  [[nodiscard]] std::string_view PeekBatchField() const { return cursor_.Peek(); }
  [[nodiscard]] bool AtBatchSectionEnd() const { return cursor_.AtEnd(); }
  [[nodiscard]] bool PastEnd() const { return cursor_.PastEnd(); }

  // True if the last read field ended its list.
  [[nodiscard]] bool AtListEnd() const {
    return cursor_.LastDelimiter() == Delimiter::kSemicolon ||
           cursor_.LastDelimiter() == Delimiter::kCrLf;
  }

 private:
  SectionCursor cursor_;
};

class FeedSection {
 public:
  FeedSection() = default;
  explicit FeedSection(std::string_view section) : cursor_(section) {}

  std::string_view NextFeedField();

  // Field 2 of the next record. The result is cached, because each batch without feeds asks again.
  std::string_view PeekFeedTransaction();

  // Returns the rest of the line and moves to the next line.
  std::string_view NextFeedLine();

  [[nodiscard]] bool AtFeedSectionEnd() const { return cursor_.PastEnd(); }

 private:
  SectionCursor cursor_;
  std::optional<std::string_view> next_transaction_;
};

inline constexpr int kMaxBatchIngredients = 32;

// Parses a transaction number. Throws ParseError for a text that is not a number, numbers below 1,
// and the highest number of 32 bits, after which the indicator cannot count.
std::int32_t TransactionNumber(std::string_view text);

enum BatchList : std::size_t { kIngredients, kTimes, kTargets, kActuals, kBatchLists };

struct BatchRecord {
  std::string_view transaction;
  std::string_view recipe;
  std::string_view date;
  std::string_view user;
  std::array<std::array<std::string_view, kMaxBatchIngredients>, kBatchLists> lists;
  std::size_t ingredients = 0;
};

// Reads the batch section record by record. Records have views of the section's text.
class BatchReader {
 public:
  explicit BatchReader(BatchSection batches) : batches_(batches) {}

  // Throws ParseError for a record that is incomplete or damaged.
  BatchRecord Next();
  [[nodiscard]] bool AtEnd() const { return batches_.AtBatchSectionEnd(); }

 private:
  std::string_view NextInRecord();
  std::string_view TakeEntry();
  void SkipPadding();
  void ReadIngredients(BatchRecord& record);
  void ReadList(BatchRecord& record, BatchList list);

  BatchSection batches_;
};

// Writes the records of both sections to rows of the table, each batch followed by its feeds. The
// table must already have the counted size. A feed record whose number belongs neither to the
// current batch nor to a later one becomes an unread feed, so that the feeds after it are read.
class RecordExtractor {
 public:
  RecordExtractor(BatchSection batches, FeedSection feeds, bool has_feeds, ImportedData& table);

  // Extracts one batch record with its feeds. Throws ParseError; rows written before remain.
  void ExtractBatch();
  [[nodiscard]] bool AtBatchSectionEnd() const { return batches_.AtEnd(); }

  // Makes all remaining feed records unread feeds.
  void LeaveOtherFeedsUnread();

 private:
  bool IsOfLaterBatch(std::string_view transaction) const;
  void WriteBatchRows(const BatchRecord& record);
  void ReadFeeds(const BatchRecord& record);
  void WriteFeedRow(const BatchRecord& record);
  void LeaveFeedUnread();
  std::size_t TakeRow();

  BatchReader batches_;
  FeedSection feeds_;
  bool has_feeds_;
  ImportedData& table_;
  std::size_t next_row_ = 1;
  // Number of batches not extracted yet, by the text of their transaction number.
  std::unordered_map<std::string_view, std::size_t> later_batches_;
};

}  // namespace vrx
