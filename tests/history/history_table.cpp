#include "history/history_table.h"

#include <sstream>

#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/Transaction.h>

#include "database/connection.h"
#include "database/schema.h"
#include "database/templates.h"
#include "history/columns.h"
#include "history/group_query.h"

namespace vrx::testing {

namespace {

std::filesystem::path NewTable(const TempFolder& folder) {
  CreateTemplate(folder / "YARD.TDB", DatabaseKind::kTransaction);
  return folder / "YARD.TDB";
}

std::string InsertText() {
  std::string text = "INSERT INTO Transactions (rowid";
  std::string marks = "?1";
  for (const HistoryColumn& column : StoredColumns()) {
    text += ", " + Bracketed(column.field);
    marks += ", ?" + std::to_string(column.index + 1);
  }
  return text + ") VALUES (" + marks + ")";
}

void Insert(SQLite::Statement& insert, const CellValue& rowid, const Cells& cells) {
  insert.reset();
  insert.clearBindings();
  BindValue(insert, 1, rowid);
  for (const auto& [column, value] : cells) {
    BindValue(insert, column + 1, value);
  }
  insert.exec();
}

}  // namespace

HistoryTable::HistoryTable()
    : path_(NewTable(folder_)), database_(OpenDatabase(path_, Access::kRead)) {}

void HistoryTable::Store(const std::vector<Cells>& rows) {
  SQLite::Database writer = OpenDatabase(path_, Access::kWrite);
  SQLite::Transaction transaction(writer);
  SQLite::Statement insert(writer, InsertText());
  for (const Cells& row : rows) {
    Insert(insert, {}, row);
  }
  transaction.commit();
}

void HistoryTable::StoreAt(std::int64_t rowid, const Cells& cells) {
  SQLite::Database writer = OpenDatabase(path_, Access::kWrite);
  SQLite::Statement insert(writer, InsertText());
  Insert(insert, rowid, cells);
}

void HistoryTable::Exec(const std::string& statements) const {
  OpenDatabase(path_, Access::kWrite).exec(statements);
}

std::string TextOf(const CellValue& value) {
  std::ostringstream text;
  text.precision(15);
  std::visit(
      [&](const auto& stored) {
        if constexpr (std::is_same_v<std::decay_t<decltype(stored)>, std::monostate>) {
          text << "NULL";
        } else {
          text << stored;
        }
      },
      value);
  return text.str();
}

std::vector<std::string> Lines(GroupedRows& rows) {
  std::vector<std::string> lines;
  for (std::int64_t number = 1; number <= rows.RowCount(); ++number) {
    const HistoryRow row = rows.Row(number);
    std::string line(2 * static_cast<std::size_t>(row.depth - 1), ' ');
    if (row.kind == HistoryRowKind::kRecord) {
      line += TextOf(row.cells.at(8));
    } else if (row.kind == HistoryRowKind::kGroup) {
      line += (row.open ? "- " : "+ ") + TextOf(row.group);
    } else {
      line += "= " + TextOf(row.group);
      for (std::size_t column = 0; column < row.cells.size(); ++column) {
        if (!IsNull(row.cells[column])) {
          line += " " + std::to_string(column + 1) + ":" + TextOf(row.cells[column]);
        }
      }
    }
    lines.push_back(line);
  }
  return lines;
}

}  // namespace vrx::testing
