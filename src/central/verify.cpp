#include <algorithm>
#include <future>
#include <map>
#include <numeric>
#include <utility>

#include "base/files.h"
#include "base/translation.h"
#include "central/administration.h"
#include "central/row_reader.h"
#include "central/server.h"
#include "central/transfer.h"
#include "database/central_source.h"
#include "database/connection.h"

namespace vrx {
namespace {

constexpr std::int64_t kRowsAtOnce = 50000;     // of a proof
constexpr std::uint64_t kNumbersAtOnce = 5000;  // row numbers that are compared one by one

// Row numbers above `after` up to `last`.
struct RowSpan {
  std::int64_t after;
  std::int64_t last;
};

// Divides a part along its pushes, because row numbers may have wide gaps.
std::vector<RowSpan> ReadSpans(CentralConnection& server, const std::string& yard,
                               const SourcePart& part) {
  std::vector<RowSpan> spans;
  std::int64_t after = part.after;
  std::int64_t count = 0;
  for (const PushedRange& push : ReadPushes(server, yard, part)) {
    count += push.proof.rows;
    if (count >= kRowsAtOnce && push.last_row <= part.last) {
      spans.push_back({.after = after, .last = push.last_row});
      after = push.last_row;
      count = 0;
    }
  }
  if (after < part.last) {
    spans.push_back({.after = after, .last = part.last});
  }
  return spans;
}

// Parts of a span without the erased ranges.
std::vector<RowSpan> WithoutErased(const RowSpan& span, const std::vector<CentralRange>& erased) {
  std::vector<RowSpan> spans;
  std::int64_t after = span.after;
  for (const CentralRange& range : erased) {
    if (range.last <= after || range.first > span.last) {
      continue;
    }
    if (range.first - 1 > after) {
      spans.push_back({.after = after, .last = range.first - 1});
    }
    after = range.last;
  }
  if (after < span.last) {
    spans.push_back({.after = after, .last = span.last});
  }
  return spans;
}

void ReadRows(SQLite::Database& database, const RowSpan& span,
              const std::vector<CentralRange>& erased,
              const std::function<void(const RowEncoder&)>& take) {
  for (const RowSpan& piece : WithoutErased(span, erased)) {
    RowReader reader(database, piece.after);
    while (reader.ReadBlock(piece.last, take)) {
    }
  }
}

// What one erased range took from the file's figures.
std::int64_t CountErased(SQLite::Database& database, const std::vector<CentralRange>& erased) {
  std::int64_t rows = 0;
  for (const CentralRange& range : erased) {
    rows += CountRowsAbove(database, range.first - 1) - CountRowsAbove(database, range.last);
  }
  return rows;
}

class PartComparison {
 public:
  PartComparison(CentralConnection& server, SQLite::Database& database, const std::string& yard,
                 SourcePart part)
      : server_(server),
        database_(database),
        yard_(yard),
        part_(std::move(part)),
        erased_(ReadErased(server, yard, part_)) {}

  [[nodiscard]] std::vector<RowSpan> Spans() const { return ReadSpans(server_, yard_, part_); }
  [[nodiscard]] std::int64_t Erased() { return CountErased(database_, erased_); }

  // Adds the rows of the span to the total, or returns where it differs.
  std::optional<Difference> Compare(const RowSpan& span, ProofSum& total) {
    if (Agree(span, &total)) {
      return std::nullopt;
    }
    return Locate(Narrow(span, kNumbersAtOnce));
  }

 private:
  bool Agree(const RowSpan& span, ProofSum* total) {
    // The file is read while the server computes. Nothing else uses the database meanwhile.
    std::future<RowProof> reading = std::async(std::launch::async, [&] {
      ProofSum sum;
      ReadRows(database_, span, erased_, [&](const RowEncoder& row) {
        sum.Add(row);
        if (total != nullptr) {
          total->Add(row);
        }
      });
      return sum.Take();
    });
    const RowProof there = ReadRowProof(
        server_, yard_, {.source = part_.source, .after = span.after, .last = span.last});
    return reading.get() == there;
  }

  // The first piece of a span that differs, of at most so many row numbers.
  RowSpan Narrow(RowSpan span, std::uint64_t most) {
    while (static_cast<std::uint64_t>(span.last) - static_cast<std::uint64_t>(span.after) > most) {
      const RowSpan lower{.after = span.after, .last = std::midpoint(span.after, span.last)};
      if (Agree(lower, nullptr)) {
        span.after = lower.last;
      } else {
        span = lower;
      }
    }
    return span;
  }

  Difference Locate(const RowSpan& span) {
    std::map<std::int64_t, std::string> here;
    ReadRows(database_, span, erased_,
             [&](const RowEncoder& row) { here[row.Number()] = std::string(row.Digest()); });
    Difference difference;
    const auto note = [&](std::int64_t row, std::int64_t& count) {
      difference.first_row = Total(difference) == 0 ? row : std::min(difference.first_row, row);
      difference.last_row = Total(difference) == 0 ? row : std::max(difference.last_row, row);
      ++count;
    };
    const SourcePart piece{.source = part_.source, .after = span.after, .last = span.last};
    ReadDigests(server_, yard_, piece, [&](std::int64_t row, std::string_view digest) {
      const auto found = here.find(row);
      if (found == here.end()) {
        note(row, difference.missing_here);
      } else {
        if (found->second != digest) {
          note(row, difference.changed);
        }
        here.erase(found);
      }
      return true;
    });
    for (const auto& [row, digest] : here) {
      note(row, difference.missing_there);
    }
    if (Total(difference) == 0) {
      // Only the stored digests of the server are right: a row there was changed without them.
      const std::int64_t row = Narrow(span, 1).last;
      difference = {.first_row = row, .last_row = row, .changed = 1};
    }
    return difference;
  }

  static std::int64_t Total(const Difference& difference) {
    return difference.changed + difference.missing_here + difference.missing_there;
  }

  CentralConnection& server_;
  SQLite::Database& database_;
  const std::string& yard_;
  SourcePart part_;
  std::vector<CentralRange> erased_;
};

VerifyOutcome VerifyParts(CentralConnection& server, SQLite::Database& database,
                          const std::string& yard, const std::vector<SourcePart>& parts,
                          const CentralProgress& progress) {
  VerifyOutcome outcome;
  ProofSum total;
  const std::int64_t rows = parts.empty() ? 0 : CountRowsAbove(database, kBeforeFirstRow);
  for (const SourcePart& part : parts) {
    PartComparison comparison(server, database, yard, part);
    for (const RowSpan& span : comparison.Spans()) {
      outcome.difference = comparison.Compare(span, total);
      if (outcome.difference) {
        return outcome;
      }
      progress.Report(Tr("Comparing rows"), total.Rows(), rows);
    }
    outcome.erased += comparison.Erased();
  }
  outcome.proof = total.Take();
  return outcome;
}

}  // namespace

VerifyOutcome Verify(CentralConnection& server, const std::filesystem::path& file,
                     const std::string& yard, LockWait lock_wait, const CentralProgress& progress) {
  CheckCentralSchema(server);
  return WithDatabaseErrors(file, [&] {
    SQLite::Database database = OpenDatabase(file, Access::kRead, lock_wait);
    const std::string yard_id = FindYard(server, yard);
    const std::optional<CentralSource> here = ReadCentralSource(database);
    const std::optional<ServerSource> there =
        here ? FindSource(server, yard_id, here->source) : std::nullopt;
    if (!there) {
      throw CentralRefused(
          Tr("%1 was never pushed to this yard of the central database", {FileTitle(file)}));
    }
    VerifyOutcome outcome =
        VerifyParts(server, database, yard_id, ReadParts(server, yard_id, *there), progress);
    outcome.source = here->source;
    outcome.waiting = CountRowsAbove(database, there->last_row);
    outcome.as_of = there->pushed_at;
    return outcome;
  });
}

}  // namespace vrx
