#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "base/error.h"
#include "feed/record_fields.h"
#include "platform/calendar.h"

namespace vrx {

// What the operator stored in a recipe database, to be undone and redone.

struct StoredBytes {
  std::string bytes;
  bool operator==(const StoredBytes&) const = default;
};

// As it is stored: NULL, a whole number, a number, a text or bytes.
using StoredValue = std::variant<std::monostate, std::int64_t, double, std::string, StoredBytes>;
using StoredCells = std::vector<StoredValue>;  // in the order of the table's columns

// A row that an edit has changed. A row that was added has no cells before, a removed one none
// after.
struct ChangedRow {
  std::string table;
  std::int64_t row = 0;  // rowid
  std::optional<StoredCells> before = std::nullopt;
  std::optional<StoredCells> after = std::nullopt;
};

// The value of a column as a text; nothing for a row without cells.
std::optional<std::string> CellOf(std::string_view table, const std::optional<StoredCells>& cells,
                                  std::string_view column);

// Where an edit was made, to be shown again.
struct EditPlace {
  RecordKind kind = RecordKind::kRecipe;
  int id = 0;              // of the record
  std::string field = {};  // of the record or of the line, as in the database; empty for none
  int line = 0;            // of a recipe, from 1; 0 for the record itself
  int line_after = 0;      // where the edit has moved it; 0 if it has not
};

struct EditEntry {
  std::string name;  // "weight of CORN 5200 to 777"
  EditPlace place;
  std::vector<ChangedRow> rows;
};

// Another program has changed what is to be undone or redone. what() is shown to the operator.
class UndoRefusal : public Error {
 public:
  using Error::Error;
};

// The edits of one connection. It notices every row that is stored through the connection, by
// triggers of its own in the connection's temporary schema; the file does not contain them. A step
// that is rolled back leaves nothing.
//
// After each edit one of Add, Amend and Skip takes what was stored since the last of them.
class EditHistory {
 public:
  // Drops all entries and watches another connection; nullptr ends. The connection outlives this
  // until then. Throws DatabaseError and watches none.
  void Watch(SQLite::Database* database);

  // Makes an entry of what was stored, as `describe` names it, and drops the entries to be redone.
  // If no row has changed, or the name is empty, the same as Amend.
  struct Named {
    std::string name;
    EditPlace place;
  };
  using Describe = std::function<Named(const std::vector<ChangedRow>& rows)>;
  void Add(const Describe& describe);

  // What was stored follows from the last entry and belongs to it: figures that the program
  // recomputes when a recipe is shown.
  void Amend();

  // What was stored belongs to no entry.
  void Skip();

  // The entries that Undo and Redo take; nullptr for none. Valid until the next change.
  [[nodiscard]] const EditEntry* ToUndo() const { return undo_.empty() ? nullptr : &undo_.back(); }
  [[nodiscard]] const EditEntry* ToRedo() const { return redo_.empty() ? nullptr : &redo_.back(); }

  // Stores every value that the entry changed as it was before, or after it again, in one
  // transaction that also sets `Modified`. Throws UndoRefusal if one of these values has been
  // changed since, and DatabaseError; nothing is stored then and the entry remains.
  void Undo(const Calendar& calendar);
  void Redo(const Calendar& calendar);

 private:
  std::vector<ChangedRow> Take();
  void AddToLast(std::vector<ChangedRow> rows);
  void Store(const EditEntry& entry, bool undo, const Calendar& calendar);

  SQLite::Database* database_ = nullptr;
  std::int64_t changes_taken_ = -1;  // of the connection, when the log was taken last
  std::vector<EditEntry> undo_;
  std::vector<EditEntry> redo_;
};

}  // namespace vrx
