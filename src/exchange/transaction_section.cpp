#include "exchange/transaction_section.h"

#include <algorithm>

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
    SectionCursor ahead = cursor_;
    ahead.Next();
    next_transaction_ = ahead.Next();
  }
  return *next_transaction_;
}

}  // namespace vrx
