#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>

#include <SQLiteCpp/Database.h>

#include "feed/edit_history.h"
#include "presenter/services.h"

namespace vrx {

// What the operator did.
enum class EditAct {
  kRecompute,  // nothing: the program has recomputed figures
  kSet,        // a field of a record or a line
  kAddLine,
  kDeleteLine,
  kMoveLineUp,
  kMoveLineDown,
  kDefaults,
  kCopy,  // to the record of the place
};

struct EditStep {
  EditAct act = EditAct::kRecompute;
  EditPlace place = {};
  // The ingredient of the line, or the name of the record before the edit.
  std::string subject = {};
};

// The commands Undo and Redo on the records of the recipe database.
class UndoCommands {
 public:
  // The services outlive it.
  explicit UndoCommands(Services& services) : services_(services) {}

  // Called whenever a caption has changed.
  void SetObserver(std::function<void()> changed) { changed_ = std::move(changed); }

  // The recipe database that is shown; nullptr for one that cannot be written. Throws
  // DatabaseError.
  void Watch(SQLite::Database* database);

  // To be called before an edit: what other parts of the program have stored is not undone with it.
  // Throws DatabaseError.
  void Begin() { history_.Skip(); }
  // To be called after an edit was stored. Throws DatabaseError.
  void Stored(const EditStep& step);

  // What the next Undo or Redo takes: "weight of CORN 5200 to 777". Empty if there is nothing.
  [[nodiscard]] std::string UndoName() const { return NameOf(history_.ToUndo()); }
  [[nodiscard]] std::string RedoName() const { return NameOf(history_.ToRedo()); }

  // Where the next Undo or Redo changes something; nothing if there is none.
  [[nodiscard]] std::optional<EditPlace> Place(bool undo) const;

  // Returns false after reporting why nothing was undone.
  bool Undo() { return Run(true); }
  bool Redo() { return Run(false); }

 private:
  static std::string NameOf(const EditEntry* entry) {
    return entry == nullptr ? std::string() : entry->name;
  }
  bool Run(bool undo);
  void Changed() const;

  Services& services_;
  SQLite::Database* database_ = nullptr;  // that is watched
  EditHistory history_;
  std::function<void()> changed_;
};

}  // namespace vrx
