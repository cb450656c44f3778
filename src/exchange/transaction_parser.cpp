#include "exchange/transaction_parser.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/files.h"
#include "base/number.h"
#include "base/text.h"
#include "base/translation.h"
#include "exchange/imported_data.h"
#include "exchange/transaction_section.h"
#include "settings/settings.h"

namespace vrx {
namespace {

// Number of entries of a list of times before the first that is not a time. Text after the last
// comma is ignored.
std::int64_t CountTimes(std::string_view list) {
  std::int64_t count = 0;
  for (;;) {
    const std::size_t comma = list.find(',');
    if (comma == std::string_view::npos || (comma != 4 && comma != 6)) {
      return count;
    }
    ++count;
    list.remove_prefix(comma + 1);
  }
}

struct BatchIngredient {
  std::string id;
  float percentage = 0.0F;
};

struct Batch {
  std::int32_t total = 0;
  std::vector<BatchIngredient> ingredients;
};

using BatchTotals = std::unordered_map<std::int32_t, Batch>;  // by transaction number

// Rows are filled from the top without gaps.
template <typename Work>
void ForEachRow(const ImportedData& table, std::string_view type, const Work& work) {
  for (std::size_t row = 1; table.Filled(row); ++row) {
    if (table.Cell(row, kImportedType) == type) {
      work(row, TransactionNumber(table.Cell(row, kImportedTransactionNumber)));
    }
  }
}

// Rounds to whole units on purpose.
std::int32_t WholeWeight(const ImportedData& table, std::size_t row) {
  return TextToLong(table.Cell(row, kImportedActualBatch));
}

void AddToTotal(std::int32_t& total, std::int32_t weight) {
  const std::int64_t sum = std::int64_t{total} + weight;
  if (!std::in_range<std::int32_t>(sum)) {
    throw ParseError(Tr("Batch total exceeded limit."));
  }
  total = static_cast<std::int32_t>(sum);
}

// Quotient and product are each rounded to single precision.
std::string PercentageText(std::int32_t weight, std::int32_t total) {
  float percentage = 0.0F;
  if (total > 0) {
    const auto quotient = static_cast<float>(static_cast<double>(weight) / total);
    percentage = quotient * 100.0F;
  }
  return Format(percentage, "0.0000");
}

constexpr int kIngredientColumns = kImportColumns - kFirstIngredientWeight + 1;

// Weight column of an ingredient; nothing if its ID has none.
std::optional<int> WeightColumn(std::string_view ingredient) {
  const std::optional<double> id = ParseNumber(ingredient);
  const double whole = id ? std::nearbyint(*id) : 0.0;
  if (whole < 1) {
    throw ParseError(Tr("Invalid ingredient ID detected."));
  }
  if (whole > kIngredientColumns) {
    return std::nullopt;
  }
  return kFirstIngredientWeight - 1 + static_cast<int>(whole);
}

// Weight and percentage are read from their texts, and every step has single precision. A share
// outside the range of a single has no text.
std::string ShareText(std::string_view weight, float percentage) {
  try {
    return Format(TextToSingle(weight) * (percentage / 100.0F), "0.0");
  } catch (const ConversionError&) {
    throw ParseError(Tr("Invalid feed weight detected."));
  }
}

void WriteShares(ImportedData& table, std::size_t row, const Batch& batch) {
  const std::string weight(table.Cell(row, kImportedActualFeed));
  if (weight.empty()) {
    return;
  }
  for (const BatchIngredient& ingredient : batch.ingredients) {
    if (ingredient.id == "0") {
      return;
    }
    if (ingredient.percentage <= 0) {
      continue;
    }
    if (const std::optional<int> column = WeightColumn(ingredient.id)) {
      table.SetCell(row, *column, ShareText(weight, ingredient.percentage));
    }
  }
}

// Fills `Calculated_Ing%OfBatch` of the batch rows and the share of each ingredient in the feed
// rows. Cost is proportional to the filled rows, for any transaction numbers. Throws ParseError if
// a total, weight or ingredient ID is invalid; cells written before remain.
void ComputeShares(ImportedData& table) {
  BatchTotals batches;
  ForEachRow(table, "BATCH", [&](std::size_t row, std::int32_t number) {
    AddToTotal(batches[number].total, WholeWeight(table, row));
  });
  ForEachRow(table, "BATCH", [&](std::size_t row, std::int32_t number) {
    Batch& batch = batches[number];
    const std::string percentage = PercentageText(WholeWeight(table, row), batch.total);
    table.SetCell(row, kCalculatedIngPercentOfBatch, percentage);
    if (batch.ingredients.size() == kMaxBatchIngredients) {
      throw ParseError(Tr("Too many ingredients in a batch detected."));
    }
    batch.ingredients.push_back(
        {std::string(table.Cell(row, kImportedIngredientID)), TextToSingle(percentage)});
  });
  ForEachRow(table, "FEED", [&](std::size_t row, std::int32_t number) {
    WriteShares(table, row, batches[number]);
  });
}

constexpr std::string_view kIdentifier = "{BAT/FED},";
constexpr std::string_view kBatchMark = "[BAT],";
constexpr std::string_view kFeedMark = "[FED],";
constexpr std::string_view kTerminator = "\r\n\r";

// Rows are counted by marks only, so a damaged file of a few kilobytes could count millions.
constexpr std::int32_t kMostRows = 100000;

// Messages for a section that cannot be cut.
struct SectionErrors {
  const char* no_mark;
  const char* no_terminator;
  const char* mark_after_terminator;
};

std::size_t Find(std::string_view text, std::string_view wanted, std::size_t from,
                 const char* error) {
  const std::size_t found = text.find(wanted, from);
  if (found == std::string_view::npos) {
    throw ParseError(error);
  }
  return found;
}

// Returns the text from the mark through the first terminator after `search_from`, and sets
// `search_from` to the end of the section. The section is empty if the terminator is directly
// before the mark; a terminator further before it is an error.
std::string_view CutSection(std::string_view text, std::string_view mark, std::size_t& search_from,
                            const SectionErrors& errors) {
  const std::size_t start = Find(text, mark, 0, errors.no_mark);
  const std::size_t end =
      Find(text, kTerminator, search_from, errors.no_terminator) + kTerminator.size();
  if (end < start) {
    throw ParseError(errors.mark_after_terminator);
  }
  search_from = end;
  return text.substr(start, end - start);
}

}  // namespace

bool TransFile::LoadTransactionFile(Operator& op,
                                    const std::function<void()>& focus_import_button) {
  MessageBox box{.icon = Icon::kWarning, .title = "Import Error", .text = {}};
  if (path_.empty()) {
    box.text = "Please select a transaction (.QXT) file to import.";
    if (focus_import_button) {
      focus_import_button();
    }
  } else if (!FileExists(path_)) {
    box.text = "Could not find transaction file.";
  } else {
    try {
      std::string text = ReadFileBytes(path_, kMaxTransactionFile);
      if (text.size() <= kMaxTransactionFile) {
        text_ = std::move(text);
        return true;
      }
      box.text = "Transaction file data exceeds maximum limit of " +
                 std::to_string(kMaxTransactionFile) + " characters.";
    } catch (const FileError& error) {
      box.text = "Could not read transaction file.";
      box.cause = error.what();
    }
  }
  op.ShowMessage(box);
  return false;
}

void TransFile::ClearImport() {
  imported_.Resize(0);
  record_count_ = 0;
  transaction_count_ = 0;
}

std::string TransFile::ParseTransactionFile(ProgressDisplay& progress, const ImportHooks& hooks,
                                            Operator& op, const PrivateINI& settings) {
  TransactionParser parser(text_, *this, imported_, progress, hooks,
                           [&] { BeepIfEnabled(op, settings); });
  return parser.Run();
}

BatchCounts CountBatchRows(std::string_view section) {
  constexpr std::size_t kNone = std::string_view::npos;
  BatchCounts counts;
  std::size_t list_start = 0;  // the ";" before the last counted list; 0 if none
  std::int64_t times = 0;
  for (std::size_t mark = section.find("B,"); mark != kNone; mark = section.find("B,", mark + 1)) {
    if (list_start <= mark) {
      list_start = section.find(';', mark);
      const std::size_t list_end = list_start == kNone ? kNone : section.find(';', list_start + 1);
      if (list_end == kNone) {
        return {};
      }
      times = CountTimes(section.substr(list_start + 1, list_end - list_start - 1));
    }
    ++counts.batches;
    counts.rows += times;
  }
  return counts;
}

std::int32_t KeptCount(std::int64_t count) {
  return count > std::numeric_limits<std::int32_t>::max() ? -1 : static_cast<std::int32_t>(count);
}

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
  // Specified: the position is computed before text is removed and used afterwards, so text before
  // the identifier shifts it. Existing files depend on this.
  unit_position_ = identifier + kIdentifier.size();
  return 3;
}

TransactionParser::Next TransactionParser::CutBatchSection() {
  batch_end_ = 0;
  batch_section_ = CutSection(text_, kBatchMark, batch_end_,
                              {.no_mark = "No batch section identifier detected.",
                               .no_terminator = "No batch section terminator detected.",
                               .mark_after_terminator = "Invalid batch section detected."});
  return 4;
}

TransactionParser::Next TransactionParser::CutFeedSection() {
  std::size_t feed_end = batch_end_;
  feed_section_ = CutSection(text_, kFeedMark, feed_end,
                             {.no_mark = "No feed section identifier detected.",
                              .no_terminator = "No feed section terminator detected.",
                              .mark_after_terminator = "Invalid feed section detected."});
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
    throw ParseError(Tr("Too many records detected."));
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
