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

// Reads the fields of a section one by one. Fields are views into the section's text, which must
// outlive them.
class SectionCursor {
 public:
  SectionCursor() = default;
  explicit SectionCursor(std::string_view section) : section_(section) {}

  // The next field; "" without a move once the end is passed, and "" too for what stands behind the
  // last delimiter.
  std::string_view Next();
  std::string_view Peek() const;
  // The rest of the line, its line end taken too but not given.
  std::string_view NextLine();
  bool PastEnd() const { return position_ >= section_.size(); }
  // Past the end, or at the CR of the terminator's empty line.
  bool AtEnd() const { return PastEnd() || section_[position_] == '\r'; }
  Delimiter LastDelimiter() const { return last_delimiter_; }

 private:
  std::string_view section_;
  std::size_t position_ = 0;
  Delimiter last_delimiter_ = Delimiter::kNone;
};

// Every "B" counts, one in a pen or user field too. `section` may be a part of the feed section.
std::int64_t CountFeedRecords(std::string_view section);

class BatchSection {
 public:
  BatchSection() = default;
  explicit BatchSection(std::string_view section) : cursor_(section) {}

  std::string_view NextBatchField() { return cursor_.Next(); }
  std::string_view PeekBatchField() const { return cursor_.Peek(); }
  bool AtBatchSectionEnd() const { return cursor_.AtEnd(); }
  bool PastEnd() const { return cursor_.PastEnd(); }

  // True if the field read last was the last of its list.
  bool AtListEnd() const {
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

  // Field 2 of the next record. Asked again and again by batches without feeds, it scans the text
  // once.
  std::string_view PeekFeedTransaction();

  // The rest of the line at the cursor, which moves to the next one.
  std::string_view NextFeedLine();

  bool AtFeedSectionEnd() const { return cursor_.PastEnd(); }

 private:
  SectionCursor cursor_;
  std::optional<std::string_view> next_transaction_;
};

inline constexpr int kMaxBatchIngredients = 32;

// The whole number of a transaction field. Throws ParseError for no number, one below 1 and the
// highest of 32 bits, which the indicator's own count cannot pass.
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

// Reads the batch section record by record. What it gives refers to the section's text.
class BatchReader {
 public:
  explicit BatchReader(BatchSection batches) : batches_(batches) {}

  // Throws ParseError for a record that is incomplete or damaged.
  BatchRecord Next();
  bool AtEnd() const { return batches_.AtBatchSectionEnd(); }

 private:
  std::string_view NextInRecord();
  std::string_view TakeEntry();
  void SkipPadding();
  void ReadIngredients(BatchRecord& record);
  void ReadList(BatchRecord& record, BatchList list);

  BatchSection batches_;
};

// Takes the records of the two sections into rows of the table, batch by batch, each followed by
// its feeds. The table must have been sized by the counts beforehand. A feed record whose number is
// neither that of the batch at hand nor that of a later one becomes an unread feed of the table, so
// that it does not hide those after it.
class RecordExtractor {
 public:
  RecordExtractor(BatchSection batches, FeedSection feeds, bool has_feeds, ImportedData& table);

  // One batch record with its feeds. Throws ParseError; what was written before stays.
  void ExtractBatch();
  bool AtBatchSectionEnd() const { return batches_.AtEnd(); }

  // Makes unread feeds of what is left of the feed section.
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
  // How many batches still to be extracted have a transaction number, compared as text.
  std::unordered_map<std::string_view, std::size_t> later_batches_;
};

// Ends a parse; what() is the text that the operator is shown.
class ParseError : public Error {
 public:
  using Error::Error;
};

}  // namespace vrx
