#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

namespace vrx {

// Columns of an import, numbered as in the grid `grdIMPORT`.
enum ImportColumn : int {
  kImportedTransactionNumber = 1,
  kImportedRecipeID = 2,
  kImportedType = 3,
  kImportedTarget = 4,
  kImportedIngredientID = 5,
  kImportedActualBatch = 6,
  kImportedPenID = 7,
  kImportedActualFeed = 8,
  kImportedTime = 9,
  kImportedDate = 10,
  kImportedUserID = 11,
  kCalculatedIngPercentOfBatch = 12,
  kFirstIngredientWeight = 13,
  kImportColumns = 112,
};

// A feed record of the file that is not in any row, because it fits no batch.
struct UnreadFeed {
  std::string transaction;  // the second field of the record
  std::string text;         // the record without its line end
  std::size_t rows = 0;     // rows counted for it, which stay empty
};

// A column of the grid as it is shown now.
struct ImportGridColumn {
  std::string caption;
  bool visible = true;
};

// Contents of `grdIMPORT`: 112 columns of texts, one row for each counted row. Only cells that were
// set take memory, and equal texts are stored once, so memory is proportional to the size of the
// file. All other cells are empty. Texts are bytes as in the file (Windows-1252).
class ImportedData {
 public:
  ImportedData() = default;
  // A copy would have views of the original's texts.
  ImportedData(const ImportedData&) = delete;
  ImportedData& operator=(const ImportedData&) = delete;
  ImportedData(ImportedData&&) = default;
  ImportedData& operator=(ImportedData&&) = default;
  ~ImportedData() = default;

  void Resize(std::size_t rows);  // clears all cells and the list of unread feeds
  [[nodiscard]] std::size_t RowCount() const { return row_count_; }

  // Number of rows from the top that include all filled rows.
  [[nodiscard]] std::size_t FilledCount() const { return filled_.size(); }

  // Rows are numbered from 1. Cell returns "" for a cell that was never set; the view is valid
  // until Resize. SetCell throws std::out_of_range outside the table.
  [[nodiscard]] std::string_view Cell(std::size_t row, int column) const;
  void SetCell(std::size_t row, int column, std::string_view text);

  // True if any cell of the row was set.
  [[nodiscard]] bool Filled(std::size_t row) const;

  // In the order of the file.
  [[nodiscard]] const std::vector<UnreadFeed>& UnreadFeeds() const { return unread_feeds_; }
  void AddUnreadFeed(UnreadFeed feed) { unread_feeds_.push_back(std::move(feed)); }

 private:
  struct Row {
    std::vector<std::pair<int, std::string_view>> cells;  // ascending columns
  };
  std::unordered_set<std::string> texts_;  // elements have stable addresses
  std::vector<Row> filled_;                // the rows from 1 on; rows are filled from the top
  std::size_t row_count_ = 0;
  std::vector<UnreadFeed> unread_feeds_;
};

// "Imported_TransactionNumber" ... "Calculated_Ing%OfBatch", "Calculated_Ing01Wt" ...
[[nodiscard]] std::string ImportColumnKey(int column);

// Design caption of a column from 1 to 112: "Transaction", "Recipe ID" ... "Ing01 Wt" ...
// "Ing100 Wt". At run time the ingredient columns have the names of the ingredients.
[[nodiscard]] std::string DesignImportCaption(int column);

// True if a column has words; all others have right-aligned numbers.
[[nodiscard]] bool IsImportText(int column);

}  // namespace vrx
