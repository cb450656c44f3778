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

inline constexpr std::size_t kMaxTransactionFile = 65535;  // bytes

// Called at the end of a parse to update the view of the import. Functions may be empty.
struct ImportHooks {
  std::function<void()> configure_columns;
  std::function<void(std::int32_t rows)> show_grid;
};

// The current transaction file: its text, the results of the last parse and the table of its rows.
// Texts are bytes as in the file.
class TransFile {
 public:
  // Reads the file FilePath. On failure shows a message, keeps the previous text and returns false.
  // `focus_import_button` gives `cmdImportFile` the focus.
  [[nodiscard]] bool LoadTransactionFile(Operator& op,
                                         const std::function<void()>& focus_import_button);

  // Sets a text from memory instead of a file.
  void SetText(std::string text) { text_ = std::move(text); }
  [[nodiscard]] const std::string& Text() const { return text_; }

  // Returns "" on success, else the error text, which is also the progress message. Replaces the
  // previous results step by step; after an error the results so far remain.
  std::string ParseTransactionFile(ProgressDisplay& progress, const ImportHooks& hooks,
                                   Operator& op, const PrivateINI& settings);

  [[nodiscard]] const ImportedData& Imported() const { return imported_; }

  // Clears the table and its counts, but not text, name, path and unit.
  void ClearImport();

  [[nodiscard]] std::int32_t FileRecordCount() const { return record_count_; }
  void SetFileRecordCount(std::int32_t count) { record_count_ = count; }
  [[nodiscard]] std::int32_t FileTransactionCount() const { return transaction_count_; }
  void SetFileTransactionCount(std::int32_t count) { transaction_count_ = count; }
  [[nodiscard]] const std::string& FileUnits() const { return units_; }  // "LB" or "KG"
  void SetFileUnits(std::string units) { units_ = std::move(units); }
  [[nodiscard]] const std::string& FileName() const { return name_; }
  void SetFileName(std::string name) { name_ = std::move(name); }
  [[nodiscard]] const std::string& FilePath() const { return path_; }
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

// Counts by marks only, before records are read: every "B," is treated as a batch, and the text
// between the next two ";" as its list of times. Both counts are 0 if a ";" is missing. Linear in
// the length of the section.
[[nodiscard]] BatchCounts CountBatchRows(std::string_view section);

// The count as 32 bits; -1 if it does not fit.
[[nodiscard]] std::int32_t KeptCount(std::int64_t count);

// One parse of a transaction file in twelve consecutive states; an error ends it. Time is linear in
// the length of the text.
class TransactionParser {
 public:
  // All references must outlive the parser. Counts and unit are set in `file`.
  TransactionParser(std::string_view text, TransFile& file, ImportedData& table,
                    ProgressDisplay& progress, const ImportHooks& hooks,
                    std::function<void()> beep);

  // Runs the states from `state` on. Returns "" or the error text, which is also the progress
  // message.
  std::string Run(int state = 1);

 private:
  using Next = std::optional<int>;  // the next state; nothing at the end

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

  std::size_t unit_position_ = 0;  // index in the text from the identifier on
  std::size_t batch_end_ = 0;
  std::string_view batch_section_;
  std::string_view feed_section_;
  std::int32_t batch_rows_ = 0;
  bool has_feeds_ = false;
  std::int32_t rows_ = 0;
  std::optional<RecordExtractor> extractor_;
};

}  // namespace vrx
