#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

namespace vrx {

// Columns of an import, from 1, as the grid `grdIMPORT` counts them.
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

// A feed record of the file that no row holds.
struct UnreadFeed {
  std::string transaction;  // its second field
  std::string text;         // the record without its line end
  std::size_t rows = 0;     // that it was counted for, and that stay empty
};

// The table behind `grdIMPORT`: strings, 112 columns by the rows that were counted. Rows that were
// counted but never filled read as empty cells and cost nothing; of a filled row only the cells
// that were set take memory, and a text that many cells share is held once, so memory follows the
// size of the file. Texts are bytes as they are in the file.
class ImportedData {
 public:
  ImportedData() = default;
  // A copy would refer to the texts of the original.
  ImportedData(const ImportedData&) = delete;
  ImportedData& operator=(const ImportedData&) = delete;
  ImportedData(ImportedData&&) = default;
  ImportedData& operator=(ImportedData&&) = default;
  ~ImportedData() = default;

  void Resize(std::size_t rows);  // empties every cell, and the list of unread feeds
  std::size_t RowCount() const { return row_count_; }

  // The number of rows from the top that hold all that was filled.
  std::size_t FilledCount() const { return filled_.size(); }

  // Rows from 1. Cell gives "" for anything never set; SetCell throws std::out_of_range outside
  // RowCount x 112. The text of a cell lives until Resize.
  std::string_view Cell(std::size_t row, int column) const;
  void SetCell(std::size_t row, int column, std::string_view text);

  // True if any cell of the row was set.
  bool Filled(std::size_t row) const;

  // The feed records that fit no batch, in the order of the file.
  const std::vector<UnreadFeed>& UnreadFeeds() const { return unread_feeds_; }
  void AddUnreadFeed(UnreadFeed feed) { unread_feeds_.push_back(std::move(feed)); }

 private:
  struct Row {
    std::vector<std::pair<int, std::string_view>> cells;  // by ascending column
  };
  std::unordered_set<std::string> texts_;  // its elements never move
  std::vector<Row> filled_;                // rows 1 to filled_.size(); rows are filled from the top
  std::size_t row_count_ = 0;
  std::vector<UnreadFeed> unread_feeds_;
};

// "Imported_TransactionNumber" ... "Calculated_Ing%OfBatch", "Calculated_Ing01Wt" ...
std::string ImportColumnKey(int column);

// The caption that a column of `grdIMPORT`, 1 to 112, has at design: "Transaction", "Recipe ID" ...
// "Ing01 Wt" ... "Ing100 Wt". At run time the ingredient columns bear the ingredients' names.
std::string DesignImportCaption(int column);

// Whether a column of `grdIMPORT` holds words; all others hold numbers, aligned right.
bool IsImportText(int column);

// A column of the grid as it is shown now.
struct ImportGridColumn {
  std::string caption;
  bool visible = true;
};

}  // namespace vrx
