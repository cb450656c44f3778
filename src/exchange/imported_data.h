#pragma once

#include <cstddef>
#include <string>
#include <string_view>
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

// The table behind `grdIMPORT`: strings, 112 columns by the rows that were counted. Rows that were
// counted but never filled read as empty cells and cost nothing; of a filled row only the cells
// with text take room. Texts are bytes as they stand in the file.
class ImportedData {
 public:
  void Resize(std::size_t rows);  // empties every cell
  std::size_t RowCount() const { return row_count_; }

  // Rows from 1. Cell gives "" for anything never set; SetCell throws std::out_of_range outside
  // RowCount x 112.
  std::string_view Cell(std::size_t row, int column) const;
  void SetCell(std::size_t row, int column, std::string text);

  // True if any cell of the row was set.
  bool Filled(std::size_t row) const;

 private:
  struct Row {
    std::vector<std::pair<int, std::string>> cells;  // by ascending column
  };
  std::vector<Row> filled_;  // rows 1 to filled_.size(); rows are filled from the top
  std::size_t row_count_ = 0;
};

// "Imported_TransactionNumber" ... "Calculated_Ing%OfBatch", "Calculated_Ing01Wt" ...
std::string ImportColumnKey(int column);

}  // namespace vrx
