#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "history/cell_value.h"
#include "history/group_query.h"
#include "history/outline.h"
#include "history/record_order.h"
#include "history/record_places.h"
#include "history/record_ranges.h"
#include "history/statements.h"

namespace vrx {

// The records near those asked for last, read by pages of a group. A record that is not in the
// table any more is a row of NULLs.
class RecordPages {
 public:
  using Record = std::vector<CellValue>;  // by column index less 1

  // Both outlive it.
  RecordPages(Statements& statements, const GroupQuery& query)
      : statements_(statements), query_(query) {}

  void SortBy(int column, bool ascending);
  // For an outline read anew.
  void Forget();

  // nullptr for a record that is not at hand.
  const Record* Find(const OutlinePlace& place);
  // Reads the page of a record. Throws SQLite::Exception; what was at hand still is.
  const Record& Load(const Outline& outline, const OutlinePlace& place);

 private:
  struct Page {
    std::uint32_t group;
    std::int64_t number;
    std::vector<Record> records;
    std::int64_t last_rowid = 0;
  };

  // A group of more than one page; its places, its ranges or its order are kept while it is among
  // those of its kind that were read last.
  struct LargeGroup {
    std::uint32_t group;
    std::vector<CellValue> values;
    RecordPlaces places;
    std::optional<RecordRanges> ranges = {};
    std::unique_ptr<RecordOrder> order = {};
  };

  // Whether the records come in an order that no index gives.
  bool IsReordered() const { return sort_column_ != 0 || !query_.StoredOrderIsIndexed(); }
  void ReadSmall(Page& page, std::span<const CellValue> values, std::size_t length);
  void ReadStored(Page& page, LargeGroup& large, std::size_t length);
  void ReadRanged(Page& page, LargeGroup& large, std::size_t length);
  void ReadOrdered(Page& page, LargeGroup& large, std::size_t length);
  void ReadListed(Page& page, std::span<const std::int64_t> rowids);
  std::unique_ptr<RecordOrder> ReadOrder(std::span<const CellValue> values);
  LargeGroup& Large(std::uint32_t group, const std::vector<CellValue>& values, std::int64_t count);
  const Record& Hold(Page page, std::int64_t record);

  Statements& statements_;
  const GroupQuery& query_;
  int sort_column_ = 0;
  bool ascending_ = true;
  std::list<Page> pages_;  // the one used last in front
  std::size_t held_ = 0;
  std::list<LargeGroup> large_groups_;  // the one read last in front
};

}  // namespace vrx
