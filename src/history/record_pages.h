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

// A list of rowids in any order: the order of a group's records. A long one lies in a temporary
// file that goes with the object; at most two blocks are held. Throws SQLite::Exception.
class RecordOrder {
 public:
  RecordOrder() = default;
  RecordOrder(const RecordOrder&) = delete;
  RecordOrder& operator=(const RecordOrder&) = delete;

  void Append(std::int64_t rowid);

  // The place of a rowid, from 0; nothing for one that is not in the list. Walks the list.
  std::optional<std::int64_t> Find(std::int64_t rowid);

  // Shorter where the list ends.
  std::vector<std::int64_t> Slice(std::int64_t first, std::size_t length);

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

// Where in the table the records of one group stand, in the order they were stored. Knows the rowid
// of its ends and of some places between, more of them with every question, and walks the index
// from the nearest: a gap in the rowids costs a walk once, and none costs nothing.
class RecordPlaces {
 public:
  RecordPlaces(Statements& statements, const GroupQuery& query, std::vector<CellValue> group,
               std::int64_t count);

  // The lowest rowid that the record at that place, from 0, can have: no record ahead of it has
  // one that high. Nothing where there are fewer records by now. Throws SQLite::Exception.
  std::optional<std::int64_t> LowestRowid(std::int64_t place);

  // A place whose lowest rowid is known, as at the end of a page.
  void Note(std::int64_t place, std::int64_t lowest_rowid) { noted_ = {place, lowest_rowid}; }

 private:
  using Mark = std::pair<const std::int64_t, std::int64_t>;  // place, rowid

  enum class Direction { kUp, kDown };

  void MarkEnds();
  Mark Below(std::int64_t place) const;
  std::optional<std::int64_t> Walk(Mark from, std::int64_t place, Direction direction);
  std::optional<std::int64_t> Skip(std::int64_t rowid, std::int64_t records, Direction direction);

  Statements& statements_;
  const GroupQuery& query_;
  std::vector<CellValue> group_;
  std::int64_t count_;
  std::map<std::int64_t, std::int64_t> marks_;
  std::pair<std::int64_t, std::int64_t> noted_{-1, 0};
};

// Where in the ranges of transactions the records of one group stand, for a ranged query. Reads the
// group's entries of the index once, and then, for a page, those of the ranges it touches. Throws
// SQLite::Exception.
class RecordRanges {
 public:
  RecordRanges(Statements& statements, const GroupQuery& query, std::vector<CellValue> group);

  // Whether all records of one range were stored ahead of all those of another: so it is unless
  // transactions were stored out of the order of their numbers. Only then can rowids be asked for.
  bool AreStoredInTurn() const { return stored_in_turn_; }

  // In stored order from the record at place `first`, from 0; fewer where there are not as many.
  std::vector<std::int64_t> Rowids(std::int64_t first, std::size_t length) const;

 private:
  struct Range {
    std::int64_t number;
    std::int64_t first_rowid;
    std::int64_t last_rowid;
    std::int64_t records;
    std::int64_t place;  // of its first record
  };

  void AppendRowids(const Range& range, std::int64_t offset, std::int64_t count,
                    std::vector<std::int64_t>& rowids) const;

  Statements& statements_;
  const GroupQuery& query_;
  std::vector<CellValue> group_;
  std::vector<Range> ranges_;  // those that hold records, in the order of their first ones
  bool stored_in_turn_;
};

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
