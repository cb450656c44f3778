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

// How the records of a group are sorted; column 0: in the order they were stored.
struct RecordSort {
  int column = 0;
  bool ascending = true;
};

// The records near those asked for last, read by pages of a group. A record that is not in the
// table any more is a row of NULLs.
class RecordPages {
 public:
  using Record = std::vector<CellValue>;  // by column index less 1

  // Both outlive it.
  RecordPages(Statements& statements, const GroupQuery& query)
      : statements_(statements), query_(query) {}

  void SortBy(RecordSort sort);
  RecordSort Sort() const { return sort_; }
  // For an outline read anew.
  void Forget();

  // nullptr for a record that is not at hand.
  const Record* Find(const OutlinePlace& place);
  // Reads the page of a record. Throws SQLite::Exception; what was at hand still is.
  const Record& Load(const Outline& outline, const OutlinePlace& place);

  // The rowid of a record, and the place of a rowid in its group, from 0, as the records are
  // sorted: nothing for one that is not there. They read what they need. Throw SQLite::Exception.
  std::optional<std::int64_t> RowidAt(const Outline& outline, const OutlinePlace& place);
  std::optional<std::int64_t> PlaceOf(const Outline& outline, const GroupPath& path,
                                      std::int64_t rowid);

 private:
  struct Page {
    std::uint32_t group;
    std::int64_t number;
    std::vector<Record> records;
    std::vector<std::int64_t> rowids = {};  // 0 for a record that is not in the table any more
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
  bool IsReordered() const { return sort_.column != 0 || !query_.StoredOrderIsIndexed(); }
  const Page* FindPage(const OutlinePlace& place);
  const Page& LoadPage(const Outline& outline, const OutlinePlace& place);
  void ReadSmall(Page& page, std::span<const CellValue> values, std::size_t length);
  void ReadStored(Page& page, LargeGroup& large, std::size_t length);
  void ReadRanged(Page& page, LargeGroup& large, std::size_t length);
  void ReadOrdered(Page& page, LargeGroup& large, std::size_t length);
  void ReadListed(Page& page, std::span<const std::int64_t> rowids);
  std::unique_ptr<RecordOrder> ReadOrder(std::span<const CellValue> values);
  LargeGroup& Large(std::uint32_t group, const std::vector<CellValue>& values, std::int64_t count);
  RecordOrder& OrderOf(LargeGroup& large);
  const Page& Hold(Page page);

  Statements& statements_;
  const GroupQuery& query_;
  RecordSort sort_;
  std::list<Page> pages_;  // the one used last in front
  std::size_t held_ = 0;
  std::list<LargeGroup> large_groups_;  // the one read last in front
};

}  // namespace vrx
