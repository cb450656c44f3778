#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "exchange/imported_data.h"

namespace vrx {

// A delivery of a batch: a feed row of the import.
struct FileFeed {
  std::size_t row = 0;
  std::string fingerprint;  // of pen, operator, date, time, target and actual weight
};

// A batch of a transaction file: all rows of one transaction number. Fingerprints are hashes of the
// texts of the file, which are the same whenever a data module is read.
struct FileBatch {
  std::optional<std::int32_t> number = {};  // nothing if it is not a whole number from 1
  std::vector<std::size_t> loads = {};      // rows of the import, from 1
  std::vector<FileFeed> feeds = {};
  std::string fingerprint = {};  // of recipe, operator, date and all loads in their order

  // Of all deliveries, sorted.
  [[nodiscard]] std::vector<std::string> FeedFingerprints() const;
};

// The batches of an import in the order of their first rows. Rows that were never filled belong to
// none.
[[nodiscard]] std::vector<FileBatch> ReadFileBatches(const ImportedData& rows);

// The numbers between the lowest and the highest that no batch has: "3-5,9".
[[nodiscard]] std::string MissingNumbers(const std::vector<FileBatch>& batches);

}  // namespace vrx
