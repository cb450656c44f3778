#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "database/imports.h"
#include "exchange/file_batches.h"
#include "exchange/store_row.h"

namespace vrx {

// How a batch of a file compares with the transaction database. A data module that was not cleared
// brings its old batches again; a module that was read during a feeding brings the rest of a
// batch's deliveries later.
//
//   new        no batch of the database has the same loads
//   same       same loads, and the database has all deliveries of the file
//   continued  same loads, and the file has more deliveries than the database
//   conflict   same loads, and each has deliveries that the other lacks
struct BatchFinding {
  BatchState state = BatchState::kNew;
  std::optional<std::int32_t> stored_as = {};  // its number in the database unless it is new
  // Compared by the stored names and figures, because no recorded import has stored it.
  bool by_name = false;
  std::vector<std::size_t> further = {};  // rows of the deliveries that the database lacks
};

// One finding for each batch. A batch of the database is found once at most. Throws DatabaseError.
[[nodiscard]] std::vector<BatchFinding> FindRepeatedBatches(SQLite::Database& transactions,
                                                            const ImportedData& rows,
                                                            const RecordNames& names,
                                                            const std::vector<FileBatch>& batches);

[[nodiscard]] bool AnyRepeated(const std::vector<BatchFinding>& findings);

// The counts of the states, with the numbers in the database: "3 batches are there already, as
// transactions 1-3." One line for each state that occurs, new batches last.
[[nodiscard]] std::string RepeatedText(const std::vector<BatchFinding>& findings);

// The batches that are not new, a line for consecutive ones: "Batches 4-6: the same as transactions
// 23-25".
[[nodiscard]] std::string RepeatedList(const std::vector<FileBatch>& batches,
                                       const std::vector<BatchFinding>& findings);

}  // namespace vrx
