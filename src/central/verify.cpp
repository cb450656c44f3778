#include <algorithm>
#include <future>
#include <map>
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

constexpr std::int64_t kRowsAtOnce = 200000;  // that the server answers for in one question
constexpr std::int64_t kBlockStep = 5000;     // row numbers of a block

// Row numbers above `after` up to `last`.
struct RowSpan {
  std::int64_t after;
  std::int64_t last;
};

// Divides a part along its pushes, because row numbers may have wide gaps.
std::vector<RowSpan> ReadSpans(CentralConnection& server, const std::string& yard,
                               const SourcePart& part) {
  const CentralRows rows = server.Query(
      "SELECT last_row, rows FROM vrx.push WHERE yard = $1 AND source = $2 AND last_row <= $3 "
      "ORDER "
      "BY last_row",
      {yard, part.source, std::to_string(part.last)});
  std::vector<RowSpan> spans;
  std::int64_t after = part.after;
  std::int64_t count = 0;
  for (int row = 0; row < rows.Count(); ++row) {
    count += rows.Number(row, 1);
    if (count >= kRowsAtOnce) {
      spans.push_back({.after = after, .last = rows.Number(row, 0)});
      after = spans.back().last;
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

using BlockProofs = std::map<std::int64_t, RowProof>;

BlockProofs ReadServerBlocks(CentralConnection& server, const std::string& yard,
                             const std::string& source, const RowSpan& span) {
  const CentralRows rows = server.Query(
      "SELECT block, rows, target, actual_batch, actual_feed, encode(digest, 'hex') FROM "
      "vrx.row_blocks($1, $2, $3, $4, $5)",
      {yard, source, std::to_string(span.after + 1), std::to_string(span.last),
       std::to_string(kBlockStep)});
  BlockProofs proofs;
  for (int row = 0; row < rows.Count(); ++row) {
    proofs[rows.Number(row, 0)] = ProofOf(rows, row, 1);
  }
  return proofs;
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

BlockProofs ReadFileBlocks(SQLite::Database& database, const RowSpan& span,
                           const std::vector<CentralRange>& erased) {
  BlockProofs proofs;
  ProofSum sum;
  std::int64_t block = 0;
  const auto finish = [&] {
    if (sum.Rows() > 0) {
      proofs[block] = sum.Take();
    }
  };
  ReadRows(database, span, erased, [&](const RowEncoder& row) {
    if (row.Number() / kBlockStep != block) {
      finish();
      block = row.Number() / kBlockStep;
    }
    sum.Add(row);
  });
  finish();
  return proofs;
}

// What one erased range took from the file's figures.
std::int64_t CountErased(SQLite::Database& database, const std::vector<CentralRange>& erased) {
  std::int64_t rows = 0;
  for (const CentralRange& range : erased) {
    rows += CountRowsAbove(database, range.first - 1) - CountRowsAbove(database, range.last);
  }
  return rows;
}

std::optional<std::int64_t> FirstDifferentBlock(const BlockProofs& here, const BlockProofs& there) {
  auto one = here.begin();
  auto other = there.begin();
  for (; one != here.end() && other != there.end(); ++one, ++other) {
    if (*one != *other) {
      return std::min(one->first, other->first);
    }
  }
  if (one != here.end()) {
    return one->first;
  }
  return other != there.end() ? std::optional(other->first) : std::nullopt;
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

  // Adds the proofs of the span's blocks, or returns where it differs.
  std::optional<Difference> Compare(const RowSpan& span, RowProof& total, Sha256Sum& hash) {
    // The file is read while the server computes. Nothing else uses the database meanwhile.
    std::future<BlockProofs> reading =
        std::async(std::launch::async, [&] { return ReadFileBlocks(database_, span, erased_); });
    const BlockProofs there = ReadServerBlocks(server_, yard_, part_.source, span);
    const BlockProofs here = reading.get();
    if (const auto block = FirstDifferentBlock(here, there)) {
      return Locate(span, *block);
    }
    for (const auto& [number, proof] : here) {
      total.rows += proof.rows;
      total.target += proof.target;
      total.actual_batch += proof.actual_batch;
      total.actual_feed += proof.actual_feed;
      hash.Add(proof.digest);
    }
    return std::nullopt;
  }

 private:
  // The rows of a block that differ.
  Difference Locate(const RowSpan& span, std::int64_t block) {
    const RowSpan narrow{.after = std::max(span.after, (block - 1) * kBlockStep - 1),
                         .last = std::min(span.last, (block + 1) * kBlockStep)};
    std::map<std::int64_t, std::string> here;
    ReadRows(database_, narrow, erased_,
             [&](const RowEncoder& row) { here[row.Number()] = std::string(row.Digest()); });
    Difference difference;
    const auto note = [&](std::int64_t row, std::int64_t& count) {
      difference.first_row = Total(difference) == 0 ? row : std::min(difference.first_row, row);
      difference.last_row = Total(difference) == 0 ? row : std::max(difference.last_row, row);
      ++count;
    };
    const SourcePart piece{.source = part_.source, .after = narrow.after, .last = narrow.last};
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
      difference = {.first_row = narrow.after + 1, .last_row = narrow.last, .changed = 1};
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

}  // namespace

VerifyOutcome VerifyParts(CentralConnection& server, SQLite::Database& database,
                          const std::string& yard, const std::vector<SourcePart>& parts,
                          const CentralProgress& progress) {
  VerifyOutcome outcome;
  Sha256Sum hash;
  const std::int64_t rows = parts.empty() ? 0 : CountRowsAbove(database, kBeforeFirstRow);
  for (const SourcePart& part : parts) {
    PartComparison comparison(server, database, yard, part);
    for (const RowSpan& span : comparison.Spans()) {
      outcome.difference = comparison.Compare(span, outcome.proof, hash);
      if (outcome.difference) {
        return outcome;
      }
      progress.Report(Tr("Comparing rows"), outcome.proof.rows, rows);
    }
    outcome.erased += comparison.Erased();
  }
  outcome.proof.digest = hash.Finish();
  return outcome;
}

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
