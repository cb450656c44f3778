#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "database/imports.h"
#include "exchange/file_batches.h"
#include "exchange/imported_data.h"
#include "exchange/repeated_batches.h"
#include "exchange/store_row.h"

namespace vrx {

// What a store does with batches that the database has already (FindRepeatedBatches).
enum class RepeatedBatches {
  kAsk,   // the operator
  kNew,   // stores new batches, and the further deliveries of continued ones under their numbers
  kAll,   // stores the whole import, repeated batches under new numbers
  kNone,  // stores nothing if any batch is repeated
};

// What is stored of an import.
struct StorePlan {
  std::vector<FileBatch> batches;
  std::vector<BatchFinding> findings;     // by batch
  std::vector<std::size_t> batch_of_row;  // by row - 1
  // What is added to the transaction number of a row, by row - 1; nothing if it is not stored.
  std::vector<std::optional<std::int32_t>> bases;
};

// The rows of each batch that were stored, ascending.
using StoredRows = std::vector<std::vector<std::size_t>>;

// Compares the import with the database and plans its store; new batches are numbered from `base`.
// Throws DatabaseError, and StoreRowError if a transaction number would not fit 32 bits.
[[nodiscard]] StorePlan PlanStore(SQLite::Database& transactions, const ImportedData& rows,
                                  const RecordNames& names, std::int32_t base,
                                  RepeatedBatches repeated);

// Writes the rows of `Imports` and `ImportedBatches` inside the caller's transaction. The batches
// and their numbers in the file are taken from the plan. Throws DatabaseError.
void RecordImport(SQLite::Database& transactions, ImportRecord import, const StorePlan& plan,
                  const StoredRows& stored, std::int32_t base);

}  // namespace vrx
