#include "history/record_order.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Statement.h>

namespace vrx {

namespace {

constexpr std::size_t kBlockLength = 8192;

}  // namespace

void RecordOrder::Append(std::int64_t rowid) {
  if (last_.rowids.size() == kBlockLength) {
    StoreLast();
  }
  last_.rowids.push_back(rowid);
}

void RecordOrder::StoreLast() {
  if (!file_) {
    // Without a name the engine makes a file of its own that is gone when it is closed.
    file_.emplace("", SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
    file_->exec("PRAGMA journal_mode=OFF; PRAGMA cache_size=-256");  // kB
    file_->exec("CREATE TABLE Block (Number INTEGER PRIMARY KEY, Rowids BLOB)");
  }
  SQLite::Statement insert(*file_, "INSERT INTO Block VALUES (?, ?)");
  insert.bind(1, last_.number);
  insert.bindNoCopy(2, last_.rowids.data(),
                    static_cast<int>(last_.rowids.size() * sizeof(std::int64_t)));
  insert.exec();
  ++last_.number;
  last_.rowids.clear();
}

const RecordOrder::Block& RecordOrder::BlockOf(std::int64_t number) {
  if (number >= last_.number) {
    return last_;
  }
  if (number != loaded_.number) {
    SQLite::Statement query(*file_, "SELECT Rowids FROM Block WHERE Number = ?");
    query.bind(1, number);
    query.executeStep();
    const SQLite::Column rowids = query.getColumn(0);
    Block block{.number = number, .rowids = {}};
    block.rowids.resize(static_cast<std::size_t>(rowids.getBytes()) / sizeof(std::int64_t));
    std::memcpy(block.rowids.data(), rowids.getBlob(), block.rowids.size() * sizeof(std::int64_t));
    loaded_ = std::move(block);
  }
  return loaded_;
}

std::optional<std::int64_t> RecordOrder::Find(std::int64_t rowid) {
  for (std::int64_t number = 0; number <= last_.number; ++number) {
    const std::vector<std::int64_t>& rowids = BlockOf(number).rowids;
    const auto found = std::find(rowids.begin(), rowids.end(), rowid);
    if (found != rowids.end()) {
      return number * static_cast<std::int64_t>(kBlockLength) + (found - rowids.begin());
    }
  }
  return std::nullopt;
}

std::vector<std::int64_t> RecordOrder::Slice(std::int64_t first, std::size_t length) {
  std::vector<std::int64_t> slice;
  while (slice.size() < length) {
    const auto place = static_cast<std::size_t>(first) + slice.size();
    const Block& block = BlockOf(static_cast<std::int64_t>(place / kBlockLength));
    const std::size_t offset = place - static_cast<std::size_t>(block.number) * kBlockLength;
    if (offset >= block.rowids.size()) {
      break;
    }
    slice.push_back(block.rowids[offset]);
  }
  return slice;
}

}  // namespace vrx
