#include "exchange/transaction_parser.h"

#include <array>
#include <utility>

#include "exchange/parse_error.h"
#include "exchange/transaction_counts.h"
#include "exchange/transaction_shares.h"

namespace vrx {

namespace {

constexpr std::string_view kIdentifier = "{BAT/FED},";
constexpr std::string_view kBatchMark = "[BAT],";
constexpr std::string_view kFeedMark = "[FED],";
constexpr std::string_view kTerminator = "\r\n\r";

// Counts come from marks alone: a damaged file of some kilobytes can count millions of rows.
constexpr std::int32_t kMostRows = 100'000;

// What the operator reads when a section cannot be cut.
struct SectionErrors {
  const char* no_mark;
  const char* no_terminator;
  const char* mark_behind_terminator;
};

std::size_t Find(std::string_view text, std::string_view wanted, std::size_t from,
                 const char* error) {
  const std::size_t found = text.find(wanted, from);
  if (found == std::string_view::npos) {
    throw ParseError(error);
  }
  return found;
}

// From the mark through the first terminator behind `search_from`, which moves to the section's
// end. A terminator directly ahead of the mark leaves an empty section; one further ahead leaves
// none.
std::string_view CutSection(std::string_view text, std::string_view mark, std::size_t& search_from,
                            const SectionErrors& errors) {
  const std::size_t start = Find(text, mark, 0, errors.no_mark);
  const std::size_t end =
      Find(text, kTerminator, search_from, errors.no_terminator) + kTerminator.size();
  if (end < start) {
    throw ParseError(errors.mark_behind_terminator);
  }
  search_from = end;
  return text.substr(start, end - start);
}

}  // namespace

TransactionParser::TransactionParser(std::string_view text, TransFile& file, ImportedData& table,
                                     ProgressDisplay& progress, const ImportHooks& hooks,
                                     std::function<void()> beep)
    : text_(text),
      file_(file),
      table_(table),
      progress_(progress),
      hooks_(hooks),
      beep_(std::move(beep)) {}

std::string TransactionParser::Run(int state) {
  using State = Next (TransactionParser::*)();
  static constexpr std::array<State, 12> kStates = {
      &TransactionParser::Initialize,       &TransactionParser::FindIdentifier,
      &TransactionParser::CutBatchSection,  &TransactionParser::CutFeedSection,
      &TransactionParser::ReadUnits,        &TransactionParser::CountBatches,
      &TransactionParser::CountFeeds,       &TransactionParser::SizeTable,
      &TransactionParser::ExtractRecords,   &TransactionParser::Calculate,
      &TransactionParser::ConfigureColumns, &TransactionParser::ShowTable,
  };
  try {
    for (Next next = state; next;) {
      if (*next < 1 || *next > static_cast<int>(kStates.size())) {
        throw ParseError("Invalid parsing condition occured.");
      }
      next = (this->*kStates[static_cast<std::size_t>(*next - 1)])();
    }
  } catch (const ParseError& error) {
    progress_.SetProgressMessage(error.what());
    return error.what();
  }
  return {};
}

TransactionParser::Next TransactionParser::Initialize() {
  progress_.SetProgressMessage("Initializing...");
  if (text_.size() > kMaxTransactionFile) {
    throw ParseError("Input data from KRM exceeded limit.");
  }
  return 2;
}

TransactionParser::Next TransactionParser::FindIdentifier() {
  const std::size_t identifier = Find(text_, kIdentifier, 0, "No file-type identifier detected.");
  text_.remove_prefix(identifier);
  // The position is told in the text ahead of the cut and used behind it: what stood ahead of the
  // identifier shifts it. Files depend on that.
  unit_position_ = identifier + kIdentifier.size();
  return 3;
}

TransactionParser::Next TransactionParser::CutBatchSection() {
  batch_end_ = 0;
  batch_section_ = CutSection(text_, kBatchMark, batch_end_,
                              {.no_mark = "No batch section identifier detected.",
                               .no_terminator = "No batch section terminator detected.",
                               .mark_behind_terminator = "Invalid batch section detected."});
  return 4;
}

TransactionParser::Next TransactionParser::CutFeedSection() {
  std::size_t feed_end = batch_end_;
  feed_section_ = CutSection(text_, kFeedMark, feed_end,
                             {.no_mark = "No feed section identifier detected.",
                              .no_terminator = "No feed section terminator detected.",
                              .mark_behind_terminator = "Invalid feed section detected."});
  return 5;
}

TransactionParser::Next TransactionParser::ReadUnits() {
  const char letter = unit_position_ < text_.size() ? text_[unit_position_] : '\0';
  if (letter == 'L' || letter == 'l') {
    file_.SetFileUnits("LB");
  } else if (letter == 'K' || letter == 'k') {
    file_.SetFileUnits("KG");
  } else {
    throw ParseError("No units-of-measure detected.");
  }
  return 6;
}

TransactionParser::Next TransactionParser::CountBatches() {
  const BatchCounts counts = CountBatchRows(batch_section_);
  file_.SetFileTransactionCount(KeptCount(counts.batches));
  batch_rows_ = KeptCount(counts.rows);
  if (batch_rows_ <= 0) {
    throw ParseError("Error computing total batches");
  }
  return 7;
}

TransactionParser::Next TransactionParser::CountFeeds() {
  const std::int64_t feeds = CountFeedRecords(feed_section_);
  has_feeds_ = feeds > 0;
  rows_ = KeptCount(batch_rows_ + feeds);
  if (rows_ < 0) {
    throw ParseError("Error computing total feeds");
  }
  return 8;
}

TransactionParser::Next TransactionParser::SizeTable() {
  if (rows_ > kMostRows) {
    throw ParseError("Too many records detected.");
  }
  file_.SetFileRecordCount(rows_);
  table_.Resize(static_cast<std::size_t>(rows_));
  return 9;
}

TransactionParser::Next TransactionParser::ExtractRecords() {
  progress_.SetProgressMessage("Extracting batch and feed data...");
  if (!extractor_) {
    BatchSection batches(batch_section_);
    FeedSection feeds(feed_section_);
    batches.NextBatchField();  // the marks
    feeds.NextFeedField();
    extractor_.emplace(batches, feeds, has_feeds_, table_);
  }
  extractor_->ExtractBatch();
  if (!extractor_->AtBatchSectionEnd()) {
    return 9;
  }
  extractor_->LeaveOtherFeedsUnread();
  return 10;
}

TransactionParser::Next TransactionParser::Calculate() {
  ComputeShares(table_);
  return 11;
}

TransactionParser::Next TransactionParser::ConfigureColumns() {
  if (hooks_.configure_columns) {
    hooks_.configure_columns();
  }
  return 12;
}

TransactionParser::Next TransactionParser::ShowTable() {
  if (hooks_.show_grid) {
    hooks_.show_grid(file_.FileRecordCount());
  }
  beep_();
  progress_.SetProgressMessage("Transaction file import completed! Ready to store.");
  return std::nullopt;
}

}  // namespace vrx
