#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "exchange/imported_data.h"
#include "exchange/trans_file.h"
#include "exchange/transaction_records.h"
#include "exchange/transaction_section.h"
#include "platform/progress_display.h"

namespace vrx {

// One parse of a transaction file: twelve states, each of which leads to the next unless an error
// ends the run. Time goes with the text's length.
class TransactionParser {
 public:
  // Everything named must outlive the parser. The counts and the unit go to `file`.
  TransactionParser(std::string_view text, TransFile& file, ImportedData& table,
                    ProgressDisplay& progress, const ImportHooks& hooks,
                    std::function<void()> beep);

  // Runs the states from `state` on. "" or the error's text, which the progress message shows too.
  std::string Run(int state = 1);

 private:
  using Next = std::optional<int>;  // the state to go on with; nothing ends the run

  Next Initialize();
  Next FindIdentifier();
  Next CutBatchSection();
  Next CutFeedSection();
  Next ReadUnits();
  Next CountBatches();
  Next CountFeeds();
  Next SizeTable();
  Next ExtractRecords();
  Next Calculate();
  Next ConfigureColumns();
  Next ShowTable();

  std::string_view text_;
  TransFile& file_;
  ImportedData& table_;
  ProgressDisplay& progress_;
  const ImportHooks& hooks_;
  std::function<void()> beep_;

  std::size_t unit_position_ = 0;  // counted from 0 in the text behind the cut
  std::size_t batch_end_ = 0;
  std::string_view batch_section_;
  std::string_view feed_section_;
  std::int32_t batch_rows_ = 0;
  bool has_feeds_ = false;
  std::int32_t rows_ = 0;
  std::optional<RecordExtractor> extractor_;
};

}  // namespace vrx
