#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include <SQLiteCpp/Database.h>

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

}  // namespace vrx
