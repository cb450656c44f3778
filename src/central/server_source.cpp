#include "central/server_source.h"

#include <algorithm>
#include <cstddef>
#include <map>

#include "base/translation.h"
#include "central/server.h"

namespace vrx {
namespace {

// A line of ancestors is as long as a file was copied and continued in turn.
constexpr std::size_t kMostAncestors = 1000;

constexpr std::string_view kSourceColumns = R"(
SELECT s.source, s.generation, s.file, coalesce(s.parent::text, ''),
  coalesce(s.parent_last_row, -9223372036854775808),
  coalesce((SELECT m.value FROM vrx.mark m WHERE m.yard = s.yard AND m.source = s.source
            AND m.kind = 'label' ORDER BY m.at DESC LIMIT 1), s.unit),
  coalesce((SELECT p.last_row FROM vrx.push p WHERE p.yard = s.yard AND p.source = s.source
            ORDER BY p.first_row DESC LIMIT 1), s.parent_last_row, -9223372036854775808),
  coalesce((SELECT max(i.import) FROM vrx.import i WHERE i.yard = s.yard
            AND i.source = s.source), 0),
  coalesce((SELECT to_char(p.at AT TIME ZONE 'UTC', 'YYYY-MM-DD"T"HH24:MI:SS"Z"') FROM vrx.push p
            WHERE p.yard = s.yard AND p.source = s.source ORDER BY p.first_row DESC LIMIT 1), ''),
  (SELECT count(*) FROM vrx.push p WHERE p.yard = s.yard AND p.source = s.source)
FROM vrx.source s WHERE s.yard = $1)";

ServerSource ReadSource(const CentralRows& rows, int row) {
  return {.source = rows.Text(row, 0),
          .generation = rows.Text(row, 1),
          .file = rows.Text(row, 2),
          .parent = rows.Text(row, 3),
          .parent_last_row = rows.Number(row, 4),
          .unit = rows.Text(row, 5),
          .last_row = rows.Number(row, 6),
          .last_import = rows.Number(row, 7),
          .pushed_at = rows.Text(row, 8),
          .pushes = rows.Number(row, 9)};
}

int HexDigit(char digit) { return digit <= '9' ? digit - '0' : digit - 'a' + 10; }

std::string FromHex(std::string_view text) {
  std::string bytes;
  for (std::size_t index = 0; index + 1 < text.size(); index += 2) {
    bytes.push_back(static_cast<char>(HexDigit(text[index]) * 16 + HexDigit(text[index + 1])));
  }
  return bytes;
}

// "{1,2,3}"
std::string ArrayText(const std::vector<std::int64_t>& numbers) {
  std::string text = "{";
  for (const std::int64_t number : numbers) {
    text += (text.size() == 1 ? "" : ",") + std::to_string(number);
  }
  return text + "}";
}

}  // namespace

std::string FindYard(CentralConnection& server, const std::string& name) {
  const CentralRows rows = server.Query("SELECT yard FROM vrx.yard WHERE name = $1", {name});
  if (rows.Count() == 0) {
    throw CentralRefused(Tr("the central database has no yard \"%1\" for this login", {name}));
  }
  return rows.Text(0, 0);
}

std::vector<ServerSource> ReadSources(CentralConnection& server, const std::string& yard) {
  const CentralRows rows =
      server.Query(std::string(kSourceColumns) + " ORDER BY s.at, s.source", {yard});
  std::vector<ServerSource> sources;
  for (int row = 0; row < rows.Count(); ++row) {
    sources.push_back(ReadSource(rows, row));
  }
  return sources;
}

std::optional<ServerSource> FindSource(CentralConnection& server, const std::string& yard,
                                       const std::string& source) {
  const CentralRows rows =
      server.Query(std::string(kSourceColumns) + " AND s.source = $2", {yard, source});
  return rows.Count() == 0 ? std::nullopt : std::optional(ReadSource(rows, 0));
}

std::vector<SourcePart> ReadParts(CentralConnection& server, const std::string& yard,
                                  const ServerSource& source) {
  std::vector<SourcePart> parts;
  ServerSource part = source;
  std::int64_t last = source.last_row;
  for (;;) {
    parts.push_back({.source = part.source, .after = part.parent_last_row, .last = last});
    if (part.parent.empty()) {
      break;
    }
    last = std::min(last, part.parent_last_row);
    const std::optional<ServerSource> parent = FindSource(server, yard, part.parent);
    if (!parent || parts.size() > kMostAncestors) {
      throw CentralRefused(
          Tr("the central database lacks the source %1, which the rows up to %2 "
             "belong to",
             {part.parent, std::to_string(last)}));
    }
    part = *parent;
  }
  std::reverse(parts.begin(), parts.end());
  return parts;
}

void ReadDigests(CentralConnection& server, const std::string& yard, const SourcePart& part,
                 const std::function<bool(std::int64_t row, std::string_view digest)>& take) {
  constexpr int kBlock = 10000;
  std::int64_t after = part.after;
  for (;;) {
    const CentralRows rows = server.Query(
        "SELECT row, encode(digest, 'hex') FROM vrx.transaction WHERE yard = $1 AND source = $2 "
        "AND row > $3 AND row <= $4 ORDER BY row LIMIT " +
            std::to_string(kBlock),
        {yard, part.source, std::to_string(after), std::to_string(part.last)});
    for (int row = 0; row < rows.Count(); ++row) {
      after = rows.Number(row, 0);
      if (!take(after, FromHex(rows.Text(row, 1)))) {
        return;
      }
    }
    if (rows.Count() < kBlock) {
      return;
    }
  }
}

std::vector<ServerRow> FindRows(CentralConnection& server, const std::string& yard,
                                const std::vector<SourcePart>& parts,
                                const std::vector<std::int64_t>& rows) {
  std::map<std::int64_t, ServerRow> found;
  for (const std::int64_t row : rows) {
    found[row] = {.row = row};
  }
  for (const SourcePart& part : parts) {
    std::vector<std::int64_t> of_part;
    std::copy_if(rows.begin(), rows.end(), std::back_inserter(of_part),
                 [&](std::int64_t row) { return row > part.after && row <= part.last; });
    const CentralRows answer = server.Query(
        "SELECT n.row, coalesce(encode(t.digest, 'hex'), ''), EXISTS (SELECT 1 FROM vrx.withdrawal "
        "w WHERE w.yard = $1 AND w.source = $2 AND n.row BETWEEN coalesce(w.first_row, n.row) AND "
        "coalesce(w.last_row, n.row)) FROM unnest($3::bigint[]) AS n (row) LEFT JOIN "
        "vrx.transaction t ON t.yard = $1 AND t.source = $2 AND t.row = n.row",
        {yard, part.source, ArrayText(of_part)});
    for (int row = 0; row < answer.Count(); ++row) {
      ServerRow& one = found[answer.Number(row, 0)];
      one.digest = FromHex(answer.Text(row, 1));
      one.away = answer.Text(row, 2) == "t";
    }
  }
  std::vector<ServerRow> result;
  for (const auto& [number, row] : found) {
    result.push_back(row);
  }
  return result;
}

std::vector<CentralRange> ReadErased(CentralConnection& server, const std::string& yard,
                                     const SourcePart& part) {
  const CentralRows rows = server.Query(
      "SELECT greatest(coalesce(first_row, $3::bigint + 1), $3::bigint + 1), "
      "least(coalesce(last_row, $4::bigint), $4::bigint) FROM vrx.withdrawal WHERE yard = $1 AND "
      "source = $2 AND erased ORDER BY 1",
      {yard, part.source, std::to_string(part.after), std::to_string(part.last)});
  std::vector<CentralRange> ranges;
  for (int row = 0; row < rows.Count(); ++row) {
    const CentralRange range{.first = rows.Number(row, 0), .last = rows.Number(row, 1)};
    if (range.first <= range.last) {
      ranges.push_back(range);
    }
  }
  return ranges;
}

RowProof ProofOf(const CentralRows& rows, int row, int column) {
  const auto number = [&](int sum) {
    return Exact::OfText(rows.Text(row, column + sum)).value_or(Exact());
  };
  return {.rows = rows.Number(row, column),
          .target = number(1),
          .actual_batch = number(2),
          .actual_feed = number(3),
          .digest = FromHex(rows.Text(row, column + 4))};
}

RowProof ReadRowProof(CentralConnection& server, const std::string& yard, const SourcePart& part) {
  return ProofOf(
      server.Query("SELECT rows, target, actual_batch, actual_feed, encode(digest, 'hex') FROM "
                   "vrx.row_proof($1, $2, $3::bigint + 1, $4, true)",
                   {yard, part.source, std::to_string(part.after), std::to_string(part.last)}),
      0, 0);
}

std::vector<PushedRange> ReadPushes(CentralConnection& server, const std::string& yard,
                                    const SourcePart& part) {
  const CentralRows rows = server.Query(
      "SELECT first_row, last_row, rows, target, actual_batch, actual_feed, encode(digest, 'hex') "
      "FROM vrx.push WHERE yard = $1 AND source = $2 AND last_row > $3 AND first_row <= $4 ORDER "
      "BY first_row",
      {yard, part.source, std::to_string(part.after), std::to_string(part.last)});
  std::vector<PushedRange> pushes;
  for (int row = 0; row < rows.Count(); ++row) {
    pushes.push_back({.first_row = rows.Number(row, 0),
                      .last_row = rows.Number(row, 1),
                      .proof = ProofOf(rows, row, 2)});
  }
  return pushes;
}

std::string RangeText(const std::vector<std::int64_t>& rows) {
  constexpr int kMostRanges = 10;
  std::string text;
  int ranges = 0;
  for (std::size_t index = 0; index < rows.size();) {
    std::size_t last = index;
    while (last + 1 < rows.size() && rows[last + 1] == rows[last] + 1) {
      ++last;
    }
    if (++ranges > kMostRanges) {
      return text + ", ...";
    }
    text += (text.empty() ? "" : ", ") + std::to_string(rows[index]) +
            (last > index ? "-" + std::to_string(rows[last]) : "");
    index = last + 1;
  }
  return text;
}

}  // namespace vrx
