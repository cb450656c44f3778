#include <algorithm>
#include <cstddef>
#include <deque>
#include <utility>

#include <SQLiteCpp/Column.h>

#include "base/translation.h"
#include "central/push_steps.h"
#include "central/row_reader.h"
#include "database/connection.h"

namespace vrx {
namespace {

// Notes that are looked at in one question to the server.
constexpr std::size_t kNotesAtOnce = 10000;

// Compares the digests of the file's rows, one by one, with those of a part of its source.
class RowComparison {
 public:
  // The file's rows above `after`, less those that were erased there.
  RowComparison(SQLite::Database& database, std::int64_t after) : reader_(database, after) {}

  void SetErased(std::vector<CentralRange> erased) { erased_ = std::move(erased); }

  // Whether the next row of the file up to `last` has that number and digest.
  bool IsNext(std::int64_t number, std::string_view digest, std::int64_t last) {
    for (;;) {
      if (rows_.empty() && !ReadMore(last)) {
        return false;
      }
      const Row row = std::move(rows_.front());
      rows_.pop_front();
      if (row.number >= number || !IsErased(row.number)) {
        return row.number == number && row.digest == digest;
      }
    }
  }

 private:
  struct Row {
    std::int64_t number;
    std::string digest;
  };

  bool ReadMore(std::int64_t last) {
    reader_.ReadBlock(last, [this](const RowEncoder& row) {
      rows_.push_back({.number = row.Number(), .digest = std::string(row.Digest())});
    });
    return !rows_.empty();
  }

  [[nodiscard]] bool IsErased(std::int64_t row) const {
    return std::any_of(erased_.begin(), erased_.end(), [row](const CentralRange& range) {
      return row >= range.first && row <= range.last;
    });
  }

  RowReader reader_;
  std::vector<CentralRange> erased_;
  std::deque<Row> rows_;
};

[[noreturn]] void RefuseOlderCopy(std::int64_t row) {
  throw CentralRefused(
      Tr("the central database has other rows of this source than this file, from row %1 on: the "
         "file was replaced by an older copy, or a copy of it was pushed from elsewhere",
         {std::to_string(row)}));
}

// Rows that a push took there without this file learning of it.
void CheckUnknownRows(SQLite::Database& database, CentralConnection& server,
                      const std::string& yard, const SourcePart& part,
                      const CentralProgress& progress) {
  RowComparison comparison(database, part.after);
  comparison.SetErased(ReadErased(server, yard, part));
  ReadDigests(server, yard, part, [&](std::int64_t number, std::string_view digest) {
    progress.Check();
    if (!comparison.IsNext(number, digest, part.last)) {
      RefuseOlderCopy(number);
    }
    return true;
  });
}

// The last pushed row shows an older copy that has the same mark.
void CheckLastRow(SQLite::Database& database, CentralConnection& server, const std::string& yard,
                  const std::vector<SourcePart>& parts, std::int64_t last_row) {
  for (const ServerRow& row : FindRows(server, yard, parts, {last_row})) {
    if (!row.away && row.digest != DigestOfRow(database, last_row)) {
      RefuseOlderCopy(last_row);
    }
  }
}

}  // namespace

void RefuseCopy() {
  throw CopyRefused(
      Tr("this file is a copy of the source that the central database has: it was made by Save "
         "As or a restore, or was pushed from another computer. It goes on only as a new source"));
}

std::optional<ServerSource> FindOriginal(SQLite::Database& database, CentralConnection& server,
                                         const std::string& yard) {
  if (CountRowsAbove(database, kBeforeFirstRow) == 0) {
    return std::nullopt;
  }
  const std::int64_t first =
      database.execAndGet("SELECT min(RowNumber) FROM Transactions").getInt64();
  const std::string digest = DigestOfRow(database, first);
  for (const ServerSource& source : ReadSources(server, yard)) {
    for (const ServerRow& row : FindRows(server, yard, ReadParts(server, yard, source), {first})) {
      if (row.digest == digest) {
        return source;
      }
    }
  }
  return std::nullopt;
}

void CheckContinues(SQLite::Database& database, CentralConnection& server, const std::string& yard,
                    const ServerSource& there, CentralSource& here,
                    const CentralProgress& progress) {
  if (there.generation != here.generation) {
    RefuseCopy();
  }
  const std::vector<SourcePart> parts = ReadParts(server, yard, there);
  const std::vector<std::int64_t> changed = FindChangedRows(database, server, yard, parts);
  if (!changed.empty()) {
    throw CentralRefused(Tr(
        "rows were changed or deleted in this file after they were pushed: %1. Nothing is pushed "
        "until they are as they were, or the administrator withdraws or erases them",
        {RangeText(changed)}));
  }
  if (there.last_row == kBeforeFirstRow) {
    return;
  }
  if (here.pushed_to >= there.last_row) {
    CheckLastRow(database, server, yard, parts, there.last_row);
    return;
  }
  const SourcePart unknown{.source = there.source,
                           .after = std::max(here.pushed_to, there.parent_last_row),
                           .last = there.last_row};
  CheckUnknownRows(database, server, yard, unknown, progress);
}

std::vector<std::int64_t> FindChangedRows(SQLite::Database& database, CentralConnection& server,
                                          const std::string& yard,
                                          const std::vector<SourcePart>& parts) {
  std::vector<std::int64_t> changed;
  while (changed.empty()) {
    std::vector<std::int64_t> rows;
    for (const CentralChange& change : ReadCentralChanges(database, kNotesAtOnce)) {
      rows.push_back(change.row);
    }
    if (rows.empty()) {
      break;
    }
    std::vector<std::int64_t> the_same;
    for (const ServerRow& row : FindRows(server, yard, parts, rows)) {
      const bool is_the_same =
          row.away || row.digest.empty() || row.digest == DigestOfRow(database, row.row);
      (is_the_same ? the_same : changed).push_back(row.row);
    }
    ForgetCentralChanges(database, the_same);
  }
  return changed;
}

std::int64_t FindCommonRows(SQLite::Database& database, CentralConnection& server,
                            const std::string& yard, const std::vector<SourcePart>& parts,
                            const CentralProgress& progress) {
  std::int64_t common = kBeforeFirstRow;
  bool equal = true;
  RowComparison comparison(database, kBeforeFirstRow);
  for (const SourcePart& part : parts) {
    comparison.SetErased(ReadErased(server, yard, part));
    ReadDigests(server, yard, part, [&](std::int64_t number, std::string_view digest) {
      progress.Check();
      equal = equal && comparison.IsNext(number, digest, part.last);
      common = equal ? number : common;
      return equal;
    });
  }
  return common;
}

}  // namespace vrx
