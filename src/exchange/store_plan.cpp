#include "exchange/store_plan.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace vrx {
namespace {

void PlanBatch(StorePlan& plan, std::size_t index, std::int32_t base, RepeatedBatches repeated) {
  const FileBatch& batch = plan.batches[index];
  const BatchFinding& finding = plan.findings[index];
  const bool whole = finding.state == BatchState::kNew || repeated == RepeatedBatches::kAll;
  for (const std::size_t row : batch.loads) {
    plan.batch_of_row[row - 1] = index;
    plan.bases[row - 1] = whole ? std::optional(base) : std::nullopt;
  }
  for (const FileFeed& feed : batch.feeds) {
    plan.batch_of_row[feed.row - 1] = index;
    plan.bases[feed.row - 1] = whole ? std::optional(base) : std::nullopt;
  }
  if (!whole && finding.state == BatchState::kContinued) {
    for (const std::size_t row : finding.further) {
      plan.bases[row - 1] = *finding.stored_as - *batch.number;
    }
  }
}

// A store that stopped in the middle of a batch has stored only some of its deliveries; if it
// stopped among the loads, the batch cannot be recognized later.
ImportedBatch DescribeBatch(const FileBatch& batch, const BatchFinding& finding,
                            const std::vector<std::size_t>& stored, std::int32_t base) {
  ImportedBatch described{.file_number = batch.number.value_or(0),
                          .transaction = finding.stored_as,
                          .state = finding.state,
                          .loads = batch.fingerprint,
                          .rows = static_cast<std::int64_t>(stored.size())};
  const auto is_stored = [&](std::size_t row) {
    return std::binary_search(stored.begin(), stored.end(), row);
  };
  const auto stored_loads = std::count_if(batch.loads.begin(), batch.loads.end(), is_stored);
  const bool appended = !stored.empty() && stored_loads == 0 && !batch.loads.empty();
  if (!stored.empty() && !appended) {
    described.transaction = batch.number.value_or(0) + base;
  }
  if (stored_loads != 0 && stored_loads != std::ssize(batch.loads)) {
    described.loads.clear();
  }
  FileBatch in_database = batch;
  if (!stored.empty()) {
    std::erase_if(in_database.feeds, [&](const FileFeed& feed) {
      const bool further =
          std::binary_search(finding.further.begin(), finding.further.end(), feed.row);
      return !is_stored(feed.row) && (further || !appended);
    });
  }
  described.feeds = in_database.FeedFingerprints();
  return described;
}

// The lowest and highest batch number of the file, and those between them that it lacks.
void SetFileNumbers(ImportRecord& import, const std::vector<FileBatch>& batches) {
  import.batches = std::ssize(batches);
  import.missing = MissingNumbers(batches);
  for (const FileBatch& batch : batches) {
    if (batch.number) {
      const std::int64_t number = *batch.number;
      import.file_low = std::min(import.file_low.value_or(number), number);
      import.file_high = std::max(import.file_high.value_or(number), number);
    }
  }
}

}  // namespace

StorePlan PlanStore(SQLite::Database& database, const ImportedData& rows, const RecordNames& names,
                    std::int32_t base, RepeatedBatches repeated) {
  StorePlan plan;
  plan.batches = ReadFileBatches(rows);
  plan.findings = FindRepeatedBatches(database, rows, names, plan.batches);
  plan.bases.resize(rows.RowCount());
  plan.batch_of_row.resize(rows.RowCount());
  for (std::size_t i = 0; i < plan.batches.size(); ++i) {
    PlanBatch(plan, i, base, repeated);
  }
  for (std::size_t row = 1; row <= rows.RowCount(); ++row) {
    if (plan.bases[row - 1]) {
      CheckTransactionNumber(rows, row, *plan.bases[row - 1]);
    }
  }
  return plan;
}

void RecordImport(SQLite::Database& transactions, ImportRecord import, const StorePlan& plan,
                  const StoredRows& stored, std::int32_t base) {
  SetFileNumbers(import, plan.batches);
  MakeImportTables(transactions);
  AddImport(transactions, import);
  std::vector<ImportedBatch> batches;
  batches.reserve(plan.batches.size());
  for (std::size_t i = 0; i < plan.batches.size(); ++i) {
    batches.push_back(DescribeBatch(plan.batches[i], plan.findings[i], stored[i], base));
    batches.back().import = import.number;
  }
  AddImportedBatches(transactions, batches);
}

}  // namespace vrx
