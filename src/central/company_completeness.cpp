#include <cstdlib>
#include <map>
#include <utility>

#include "central/company_figures.h"
#include "central/server.h"
#include "insight/completeness.h"

namespace vrx {
namespace {

using Statements = std::map<std::string, Statement>;  // by yard

// An import of a copied file that its parent has too is the parent's.
constexpr const char* kImports = R"(
SELECT y.name, i.source, s.unit, i.import, coalesce(i.at, ''), coalesce(i.file, ''),
  coalesce(i.units, ''), i.left_out, i.not_read, i.file_low, i.file_high, coalesce(i.missing, ''),
  coalesce(i.first_date, ''), coalesce(i.last_date, ''),
  coalesce((SELECT m.value FROM vrx.mark m WHERE m.yard = i.yard AND m.source = i.source
            AND m.import = i.import AND m.kind = 'settled' ORDER BY m.at DESC LIMIT 1),
           i.settled, ''),
  b.same, b.continued, b.conflicts
FROM vrx.import i
JOIN vrx.yard y ON y.yard = i.yard
JOIN vrx.source s ON s.yard = i.yard AND s.source = i.source
LEFT JOIN LATERAL (
  SELECT count(*) FILTER (WHERE m.state = 'same') AS same,
         count(*) FILTER (WHERE m.state = 'continued') AS continued,
         count(*) FILTER (WHERE m.state = 'conflict') AS conflicts
  FROM vrx.imported_batch m
  WHERE m.yard = i.yard AND m.source = i.source AND m.import = i.import) b ON true
WHERE NOT EXISTS (SELECT FROM vrx.import p WHERE p.yard = i.yard AND p.source = s.parent
                  AND p.import = i.import AND p.at IS NOT DISTINCT FROM i.at)
  AND NOT EXISTS (SELECT FROM vrx.withdrawal w WHERE w.yard = i.yard AND w.source = i.source
                  AND w.first_row IS NULL)
ORDER BY y.name, i.source, i.import)";

constexpr const char* kRows = R"(
SELECT y.name, count(*) FILTER (WHERE r.is_load), count(*) FILTER (WHERE NOT r.is_load),
  (coalesce(vrx.in_unit(sum(vrx.exact(r.actual)) FILTER (WHERE r.is_load AND r.unit = 'LB'), 'LB',
                        $1), 0)
   + coalesce(vrx.in_unit(sum(vrx.exact(r.actual)) FILTER (WHERE r.is_load AND r.unit = 'KG'),
                          'KG', $1), 0))::float8,
  (coalesce(vrx.in_unit(sum(vrx.exact(r.actual)) FILTER (WHERE NOT r.is_load AND r.unit = 'LB'),
                        'LB', $1), 0)
   + coalesce(vrx.in_unit(sum(vrx.exact(r.actual)) FILTER (WHERE NOT r.is_load AND r.unit = 'KG'),
                          'KG', $1), 0))::float8,
  count(*) FILTER (WHERE r.import IS NULL)
FROM vrx.batch b
JOIN vrx.yard y ON y.yard = b.yard_id
JOIN vrx.counted_row r ON r.yard_id = b.yard_id AND r.source = b.source AND r.batch = b.batch
WHERE ($2::date IS NULL OR b.day >= $2) AND ($3::date IS NULL OR b.day <= $3)
GROUP BY y.name)";

constexpr const char* kBatches = R"(
SELECT v.yard, count(*), count(*) FILTER (WHERE v.state = 'never fed'),
  count(*) FILTER (WHERE v.state = 'out')
FROM vrx.batch_balance v
WHERE ($1::date IS NULL OR v.day >= $1) AND ($2::date IS NULL OR v.day <= $2)
GROUP BY v.yard)";

// Each day of a yard is found by one search of the index.
constexpr const char* kDays = R"(
SELECT y.name, d.day
FROM vrx.yard y
CROSS JOIN LATERAL (
  WITH RECURSIVE listed (day) AS (
    SELECT '-infinity'::date
    UNION ALL
    SELECT (SELECT min(t.day) FROM vrx.transaction t WHERE t.yard = y.yard AND t.day > l.day
              AND NOT EXISTS (SELECT FROM vrx.withdrawal w WHERE w.yard = t.yard
                AND w.source = t.source
                AND (w.first_row IS NULL OR t.row BETWEEN w.first_row AND w.last_row)))
      FROM listed l WHERE l.day IS NOT NULL)
  SELECT l.day FROM listed l WHERE l.day > '-infinity') d
ORDER BY y.name, d.day)";

std::optional<std::string> DayOrNull(const std::optional<Date>& day) {
  return day ? std::optional(StoredText(*day)) : std::nullopt;
}

std::optional<std::int64_t> NumberOrNull(const CentralRows& rows, int row, int column) {
  return rows.IsNull(row, column) ? std::nullopt : std::optional(rows.Number(row, column));
}

ImportRecord ImportOf(const CentralRows& rows, int row) {
  return {.number = rows.Number(row, 3),
          .at = rows.Text(row, 4),
          .file = rows.Text(row, 5),
          .units = rows.Text(row, 6),
          .left_out = rows.Number(row, 7),
          .not_read = rows.Number(row, 8),
          .file_low = NumberOrNull(rows, row, 9),
          .file_high = NumberOrNull(rows, row, 10),
          .missing = rows.Text(row, 11),
          .first_date = ParseStoredDate(rows.Text(row, 12)),
          .last_date = ParseStoredDate(rows.Text(row, 13)),
          .settled = rows.Text(row, 14)};
}

void AddServerImports(CentralConnection& server, Statements& statements) {
  const CentralRows rows = server.Query(kImports);
  for (int first = 0; first < rows.Count();) {
    const std::string yard = rows.Text(first, 0);
    const std::string source = rows.Text(first, 1);
    std::vector<ImportRecord> imports;
    std::map<std::int64_t, int> row_of;
    int row = first;
    for (; row < rows.Count() && rows.Text(row, 0) == yard && rows.Text(row, 1) == source; ++row) {
      imports.push_back(ImportOf(rows, row));
      row_of[imports.back().number] = row;
    }
    Statement& statement = statements[yard];
    AddImports(
        imports, rows.Text(first, 2),
        [&](const ImportRecord& import) {
          const int of_import = row_of[import.number];
          statement.same += rows.Number(of_import, 15);
          statement.continued += rows.Number(of_import, 16);
          statement.conflicts += rows.Number(of_import, 17);
        },
        statement);
    first = row;
  }
}

void AddServerRows(CentralConnection& server, const CompanyQuestion& question,
                   Statements& statements) {
  const auto from = DayOrNull(question.from);
  const auto to = DayOrNull(question.to);
  const CentralRows rows = server.Query(kRows, {question.unit, from, to});
  const auto weight = [&](int row, int column) {
    return std::strtod(rows.Text(row, column).c_str(), nullptr);
  };
  for (int row = 0; row < rows.Count(); ++row) {
    Statement& statement = statements[rows.Text(row, 0)];
    statement.loads = rows.Number(row, 1);
    statement.deliveries = rows.Number(row, 2);
    if (statement.loads > 0) {
      statement.loaded = weight(row, 3);
    }
    if (statement.deliveries > 0) {
      statement.fed = weight(row, 4);
    }
    statement.not_recorded = rows.Number(row, 5);
  }
  const CentralRows batches = server.Query(kBatches, {from, to});
  for (int row = 0; row < batches.Count(); ++row) {
    Statement& statement = statements[batches.Text(row, 0)];
    statement.batches = batches.Number(row, 1);
    statement.never_fed = batches.Number(row, 2);
    statement.out = batches.Number(row, 3);
  }
}

void AddServerDays(CentralConnection& server, Statements& statements) {
  const CentralRows rows = server.Query(kDays);
  std::map<std::string, std::vector<Date>> days;
  for (int row = 0; row < rows.Count(); ++row) {
    if (const auto day = ParseStoredDate(rows.Text(row, 1))) {
      days[rows.Text(row, 0)].push_back(*day);
    }
  }
  for (const auto& [yard, of_yard] : days) {
    AddDaysWithout(of_yard, statements[yard]);
  }
}

}  // namespace

AnswerTable ReadCompanyCompleteness(CentralConnection& server, const CompanyQuestion& question) {
  Statements statements;
  const CentralRows yards = server.Query("SELECT name FROM vrx.yard");
  for (int row = 0; row < yards.Count(); ++row) {
    statements[yards.Text(row, 0)] = {.from = question.from, .to = question.to};
  }
  AddServerImports(server, statements);
  AddServerRows(server, question, statements);
  AddServerDays(server, statements);
  AnswerTable table;
  for (const auto& [yard, statement] : statements) {
    AnswerTable of_yard = TableOf(statement);
    if (table.columns.empty()) {
      table.columns = std::move(of_yard.columns);
      table.columns.insert(table.columns.begin(), {"yard", "Yard", CellKind::kName});
    }
    of_yard.rows.front().insert(of_yard.rows.front().begin(), yard);
    table.rows.push_back(std::move(of_yard.rows.front()));
  }
  if (table.columns.empty()) {
    table.columns = TableOf(Statement()).columns;
    table.columns.insert(table.columns.begin(), {"yard", "Yard", CellKind::kName});
  }
  return table;
}

}  // namespace vrx
