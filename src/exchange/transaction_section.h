#pragma once

#include <optional>
#include <string_view>

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

}  // namespace vrx
