#include "exchange/file_batches.h"

#include <algorithm>
#include <initializer_list>
#include <map>
#include <set>

#include "base/files.h"
#include "base/number.h"

namespace vrx {
namespace {

constexpr std::size_t kFeedFingerprint = 16;  // hexadecimal digits; compared within one batch

// The texts cannot hold a line end or a tab: these would end a record or be refused.
std::string Fields(const ImportedData& rows, std::size_t row,
                   std::initializer_list<ImportColumn> columns) {
  std::string text;
  for (const ImportColumn column : columns) {
    text.append(rows.Cell(row, column)).append("\t");
  }
  return text + "\n";
}

std::string FeedFingerprint(const ImportedData& rows, std::size_t row) {
  return Sha256(Fields(rows, row,
                       {kImportedPenID, kImportedUserID, kImportedDate, kImportedTime,
                        kImportedTarget, kImportedActualFeed}))
      .substr(0, kFeedFingerprint);
}

// A batch without loads is recognized by its deliveries.
std::string LoadsFingerprint(const ImportedData& rows, const FileBatch& batch) {
  const std::size_t first = batch.loads.empty() ? batch.feeds.front().row : batch.loads.front();
  std::string text = Fields(rows, first, {kImportedRecipeID, kImportedUserID, kImportedDate});
  for (const std::size_t row : batch.loads) {
    text += Fields(rows, row,
                   {kImportedIngredientID, kImportedTarget, kImportedActualBatch, kImportedTime});
  }
  if (batch.loads.empty()) {
    for (const std::string& feed : batch.FeedFingerprints()) {
      text += feed + "\n";
    }
  }
  return Sha256(text);
}

std::optional<std::int32_t> BatchNumber(const ImportedData& rows, std::size_t row) {
  const std::optional<std::int32_t> number = ParseLong(rows.Cell(row, kImportedTransactionNumber));
  return number && *number >= 1 ? number : std::nullopt;
}

}  // namespace

std::vector<std::string> FileBatch::FeedFingerprints() const {
  std::vector<std::string> fingerprints;
  for (const FileFeed& feed : feeds) {
    fingerprints.push_back(feed.fingerprint);
  }
  std::sort(fingerprints.begin(), fingerprints.end());
  return fingerprints;
}

std::vector<FileBatch> ReadFileBatches(const ImportedData& rows) {
  std::vector<FileBatch> batches;
  std::map<std::optional<std::int32_t>, std::size_t> by_number;
  for (std::size_t row = 1; row <= rows.FilledCount(); ++row) {
    if (!rows.Filled(row)) {
      continue;
    }
    const std::optional<std::int32_t> number = BatchNumber(rows, row);
    const auto [found, added] = by_number.try_emplace(number, batches.size());
    if (added) {
      batches.push_back({.number = number});
    }
    FileBatch& batch = batches[found->second];
    if (rows.Cell(row, kImportedType) == "FEED") {
      batch.feeds.push_back({.row = row, .fingerprint = FeedFingerprint(rows, row)});
    } else {
      batch.loads.push_back(row);
    }
  }
  for (FileBatch& batch : batches) {
    batch.fingerprint = LoadsFingerprint(rows, batch);
  }
  return batches;
}

std::string MissingNumbers(const std::vector<FileBatch>& batches) {
  std::set<std::int64_t> numbers;
  for (const FileBatch& batch : batches) {
    if (batch.number) {
      numbers.insert(*batch.number);
    }
  }
  std::string text;
  std::optional<std::int64_t> before;
  for (const std::int64_t number : numbers) {
    const std::int64_t first = before.value_or(number) + 1;
    if (first < number) {
      text += (text.empty() ? "" : ",") + std::to_string(first) +
              (first == number - 1 ? "" : "-" + std::to_string(number - 1));
    }
    before = number;
  }
  return text;
}

}  // namespace vrx
