#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/error.h"
#include "central/row_encoder.h"

namespace vrx {

class CentralConnection;
class CentralRows;

// Work that the central database or this file rules out, and that trying again does not help.
class CentralRefused : public Error {
 public:
  using Error::Error;
};

// A file that is a copy of a source. It can go on as a source of its own.
class CopyRefused : public CentralRefused {
 public:
  using CentralRefused::CentralRefused;
};

// Below every row number.
inline constexpr std::int64_t kBeforeFirstRow = std::numeric_limits<std::int64_t>::min();

// A source as the central database has it. Its own rows are above `parent_last_row`; the rows up to
// that number are those of its parent.
struct ServerSource {
  std::string source = {};
  std::string generation = {};
  std::string file = {};
  std::string parent = {};  // "" without one
  std::int64_t parent_last_row = kBeforeFirstRow;
  std::string unit = {};                    // label when it was made, then of the last mark
  std::int64_t last_row = kBeforeFirstRow;  // of the last push; parent_last_row before the first
  std::int64_t last_import = 0;             // highest number of an import
  std::string pushed_at = {};               // of the last push, ISO 8601; "" before
  std::int64_t pushes = 0;
};

// The rows of one source that belong to a file, in the order of their numbers.
struct SourcePart {
  std::string source = {};
  std::int64_t after = kBeforeFirstRow;  // rows above this number
  std::int64_t last = kBeforeFirstRow;   // up to this one
};

// All functions below throw CentralError for what the server refuses.

// The yard's ID. Throws CentralRefused if the login has no yard of that name.
[[nodiscard]] std::string FindYard(CentralConnection& server, const std::string& name);

// By the time of the first push.
[[nodiscard]] std::vector<ServerSource> ReadSources(CentralConnection& server,
                                                    const std::string& yard);
[[nodiscard]] std::optional<ServerSource> FindSource(CentralConnection& server,
                                                     const std::string& yard,
                                                     const std::string& source);

// The parts that make the file of a source: those of its ancestors, then its own rows. Throws
// CentralRefused if an ancestor is missing.
[[nodiscard]] std::vector<SourcePart> ReadParts(CentralConnection& server, const std::string& yard,
                                                const ServerSource& source);

// A row as its digest shows it. `away`: the administrator has withdrawn or erased it.
struct ServerRow {
  std::int64_t row = 0;
  std::string digest = {};  // 32 bytes; empty if it was erased or never there
  bool away = false;
};

// Calls `take` with the digests of a part's rows in order until it returns false. Holds some
// thousand of them at a time.
void ReadDigests(CentralConnection& server, const std::string& yard, const SourcePart& part,
                 const std::function<bool(std::int64_t row, std::string_view digest)>& take);

// The given rows, ascending, of a file with these parts.
[[nodiscard]] std::vector<ServerRow> FindRows(CentralConnection& server, const std::string& yard,
                                              const std::vector<SourcePart>& parts,
                                              const std::vector<std::int64_t>& rows);

// Row ranges of a part that the administrator has erased, ascending.
struct CentralRange {
  std::int64_t first = 0;
  std::int64_t last = 0;
};
[[nodiscard]] std::vector<CentralRange> ReadErased(CentralConnection& server,
                                                   const std::string& yard, const SourcePart& part);

// Columns rows, target, actual_batch, actual_feed and the digest in hexadecimal, from `column` on.
[[nodiscard]] RowProof ProofOf(const CentralRows& rows, int row, int column);

// Count, sums and digest that the server computes now of the rows of a part.
[[nodiscard]] RowProof ReadRowProof(CentralConnection& server, const std::string& yard,
                                    const SourcePart& part);

// The rows of a push, as the server's journal has them since it proved them.
struct PushedRange {
  std::int64_t first_row = 0;
  std::int64_t last_row = 0;
  RowProof proof = {};
};

// The pushes that have rows of a part, ascending.
[[nodiscard]] std::vector<PushedRange> ReadPushes(CentralConnection& server,
                                                  const std::string& yard, const SourcePart& part);

// "5-9, 12", for messages; at most ten ranges.
[[nodiscard]] std::string RangeText(const std::vector<std::int64_t>& rows);

}  // namespace vrx
