#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "history/group_query.h"
#include "history/outline.h"

namespace vrx {

// List of rowids in the sort order of a group's records. A long list is in a temporary file, with
// at most two blocks in memory; the destructor deletes the file. Throws SQLite::Exception.
class RecordOrder {
 public:
  RecordOrder() = default;
  RecordOrder(const RecordOrder&) = delete;
  RecordOrder& operator=(const RecordOrder&) = delete;

  void Append(std::int64_t rowid);

  // Index of a rowid, from 0; nothing if it is not in the list. Linear in the length.
  [[nodiscard]] std::optional<std::int64_t> Find(std::int64_t rowid);

  // The rowids from index `first`; fewer than `length` at the end of the list.
  [[nodiscard]] std::vector<std::int64_t> Slice(std::int64_t first, std::size_t length);

 private:
  struct Block {
    std::int64_t number = -1;
    std::vector<std::int64_t> rowids;
  };

  void StoreLast();
  const Block& BlockOf(std::int64_t number);

  std::optional<SQLite::Database> file_;
  Block last_{.number = 0, .rowids = {}};
  Block loaded_;
};

// Positions of a group's records in the table, in stored order. Remembers the rowids of both ends
// and of some positions between them, more with every call, and scans the index from the nearest
// one. A gap in the rowids is scanned once; without gaps no scan is needed.
class RecordPlaces {
 public:
  RecordPlaces(Statements& statements, const GroupQuery& query, std::vector<CellValue> group,
               std::int64_t count);

  // The lowest rowid that the record at a position, from 0, can have: all records before it have
  // lower ones. Nothing if there are fewer records now. Throws SQLite::Exception.
  [[nodiscard]] std::optional<std::int64_t> LowestRowid(std::int64_t place);

  // Stores a known result of LowestRowid, such as the end of a page.
  void Note(std::int64_t place, std::int64_t lowest_rowid) { noted_ = {place, lowest_rowid}; }

 private:
  using Mark = std::pair<const std::int64_t, std::int64_t>;  // position, rowid

  enum class Direction { kUp, kDown };

  void MarkEnds();
  [[nodiscard]] Mark Below(std::int64_t place) const;
  std::optional<std::int64_t> Walk(Mark from, std::int64_t place, Direction direction);
  std::optional<std::int64_t> Skip(std::int64_t rowid, std::int64_t records, Direction direction);

  Statements& statements_;
  const GroupQuery& query_;
  std::vector<CellValue> group_;
  std::int64_t count_;
  std::map<std::int64_t, std::int64_t> marks_;
  std::pair<std::int64_t, std::int64_t> noted_{-1, 0};
};

// Positions of a group's records within transaction ranges, for a ranged query. Counts the records
// of a range, which reads its index entries of the group, when a page first lies in it or after it,
// and reads those of the affected ranges for each page. Throws SQLite::Exception.
class RecordRanges {
 public:
  RecordRanges(Statements& statements, const GroupQuery& query, std::vector<CellValue> group);

  // True if the ranges do not overlap in stored order, which is so unless transactions were stored
  // out of the order of their numbers. Required by Rowids.
  [[nodiscard]] bool AreStoredInTurn() const { return stored_in_turn_; }

  // Rowids in stored order from position `first`, from 0; fewer than `length` at the end.
  [[nodiscard]] std::vector<std::int64_t> Rowids(std::int64_t first, std::size_t length);

 private:
  enum class End { kFirst, kLast };
  struct Range {
    std::int64_t number;
    std::int64_t first_rowid;
    std::int64_t last_rowid;
    std::optional<std::int64_t> records = {};
  };

  [[nodiscard]] std::optional<std::int64_t> RowidAt(End end, std::int64_t range) const;
  std::int64_t CountOf(Range& range) const;
  void AppendRowids(const Range& range, std::int64_t offset, std::int64_t count,
                    std::vector<std::int64_t>& rowids) const;

  Statements& statements_;
  const GroupQuery& query_;
  std::vector<CellValue> group_;
  std::vector<Range> ranges_;  // ranges with records, ordered by their first record
  bool stored_in_turn_;
};

// Cache of records near the last requested ones, read in pages of a group. A deleted record is a
// row of NULLs.
class RecordPages {
 public:
  using Record = std::vector<CellValue>;  // by column index - 1

  // Both must outlive it.
  RecordPages(Statements& statements, const GroupQuery& query)
      : statements_(statements), query_(query) {}

  void SortBy(RecordSort sort);
  [[nodiscard]] RecordSort Sort() const { return sort_; }
  // To be called when the outline is reloaded.
  void Forget();

  // nullptr for a record that is not in the cache.
  [[nodiscard]] const Record* Find(const OutlinePlace& place);
  // Reads the page of a record. Throws SQLite::Exception and then keeps the cache.
  const Record& Load(const Outline& outline, const OutlinePlace& place);

  // The rowid of a record, and the index of a rowid in its group in the current sort order; nothing
  // if it does not exist. They read pages as needed. Throw SQLite::Exception.
  [[nodiscard]] std::optional<std::int64_t> RowidAt(const Outline& outline,
                                                    const OutlinePlace& place);
  [[nodiscard]] std::optional<std::int64_t> PlaceOf(const Outline& outline, const GroupPath& path,
                                                    std::int64_t rowid);

 private:
  struct Page {
    std::uint32_t group;
    std::int64_t number;
    std::vector<Record> records;
    std::vector<std::int64_t> rowids = {};  // 0 for a deleted record
  };

  // A group of more than one page, with the data to find its pages. The last used ones are kept.
  struct LargeGroup {
    std::uint32_t group;
    std::vector<CellValue> values;
    RecordPlaces places;
    std::optional<RecordRanges> ranges = {};
    std::unique_ptr<RecordOrder> order = {};
  };

  // True if no index has the records in the required order.
  [[nodiscard]] bool IsReordered() const {
    return sort_.column != 0 || !query_.StoredOrderIsIndexed();
  }
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
  std::list<Page> pages_;  // most recently used first
  std::size_t held_ = 0;
  std::list<LargeGroup> large_groups_;  // most recently used first
};

}  // namespace vrx
