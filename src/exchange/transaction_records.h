#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "exchange/imported_data.h"
#include "exchange/transaction_section.h"

namespace vrx {

inline constexpr int kMaxBatchIngredients = 32;

// The whole number of a transaction field. Throws ParseError for no number, one below 1 and the
// highest of 32 bits, which the indicator's own count cannot pass.
std::int32_t TransactionNumber(std::string_view text);

// Takes the records of the two sections into rows of the table, batch by batch, each followed by
// its feeds. The table must have been sized by the counts beforehand.
class RecordExtractor {
 public:
  RecordExtractor(BatchSection batches, FeedSection feeds, bool has_feeds, ImportedData& table)
      : batches_(batches), feeds_(feeds), has_feeds_(has_feeds), table_(table) {}

  // One batch record with its feeds. Throws ParseError; what was written before stays.
  void ExtractBatch();
  bool AtBatchSectionEnd() const { return batches_.AtBatchSectionEnd(); }

 private:
  enum List : std::size_t { kIngredients, kTimes, kTargets, kActuals, kLists };

  struct BatchRecord {
    std::string_view transaction;
    std::string_view recipe;
    std::string_view date;
    std::string_view user;
    std::array<std::array<std::string_view, kMaxBatchIngredients>, kLists> lists;
    std::size_t ingredients = 0;
  };

  std::string_view NextInRecord();
  std::string_view TakeEntry();
  void SkipPadding();
  void ReadIngredients(BatchRecord& record);
  void ReadList(BatchRecord& record, List list);
  void WriteBatchRows(const BatchRecord& record);
  void ReadFeeds(const BatchRecord& record);
  std::size_t TakeRow();
  void Write(std::size_t row, ImportColumn column, std::string_view text);

  BatchSection batches_;
  FeedSection feeds_;
  bool has_feeds_;
  ImportedData& table_;
  std::size_t next_row_ = 1;
};

}  // namespace vrx
