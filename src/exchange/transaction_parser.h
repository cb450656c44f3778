#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "exchange/imported_data.h"
#include "exchange/transaction_section.h"
#include "platform/operator.h"
#include "platform/progress_display.h"

namespace vrx {

class PrivateINI;

inline constexpr std::size_t kMaxTransactionFile = 65535;

// What the end of a parse asks of whoever shows the import. An empty function is not called.
struct ImportHooks {
  std::function<void()> configure_columns;
  std::function<void(std::int32_t rows)> show_grid;
};

// The transaction file at hand: its text, what a parse found in it, and the table of its rows.
// Texts of the file are bytes as they stand in it.
class TransFile {
 public:
  // Reads the file of FilePath; false, with the text of before kept, after telling the operator why
  // not. `focus_import_button` gives `cmdImportFile` the focus.
  bool LoadTransactionFile(Operator& op, const std::function<void()>& focus_import_button);

  // Takes a text in memory in place of a file.
  void SetText(std::string text) { text_ = std::move(text); }
  const std::string& Text() const { return text_; }

  // "" on success, else the error's text, which the progress message shows as well. What an earlier
  // parse left is replaced step by step, and keeps what a failed one wrote.
  std::string ParseTransactionFile(ProgressDisplay& progress, const ImportHooks& hooks,
                                   Operator& op, const PrivateINI& settings);

  const ImportedData& Imported() const { return imported_; }

  // Empties the table and its counts. Text, name, path and unit stay.
  void ClearImport();

  std::int32_t FileRecordCount() const { return record_count_; }
  void SetFileRecordCount(std::int32_t count) { record_count_ = count; }
  std::int32_t FileTransactionCount() const { return transaction_count_; }
  void SetFileTransactionCount(std::int32_t count) { transaction_count_ = count; }
  const std::string& FileUnits() const { return units_; }  // "LB" or "KG"
  void SetFileUnits(std::string units) { units_ = std::move(units); }
  const std::string& FileName() const { return name_; }
  void SetFileName(std::string name) { name_ = std::move(name); }
  const std::string& FilePath() const { return path_; }
  void SetFilePath(std::string path) { path_ = std::move(path); }

 private:
  std::string text_;
  ImportedData imported_;
  std::int32_t record_count_ = 0;
  std::int32_t transaction_count_ = 0;
  std::string units_;
  std::string name_;
  std::string path_;
};

struct BatchCounts {
  std::int64_t batches = 0;
  std::int64_t rows = 0;
};

// Counts by marks alone, ahead of any reading of records: a "B," counts as a batch wherever it
// stands, and the text between the two ";" behind it as its list of times. Both counts are 0 when
// one of the ";" is missing. Linear in the section's length.
BatchCounts CountBatchRows(std::string_view section);

// A count as it is kept; -1 for one beyond 32 bits.
std::int32_t KeptCount(std::int64_t count);

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
