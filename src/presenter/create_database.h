#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include "database/schema.h"
#include "platform/operator.h"
#include "presenter/database_identity.h"

namespace vrx {

// What the program knows of the database it works on: RecipeDbPath, RecipeDbName, RecipeDbUoM and
// the same of the transaction side. Empty when none.
struct CurrentDatabase {
  std::filesystem::path path;
  std::string name;  // file title in upper case
  std::string unit;
  std::string read_only_note = {};  // why it may not be written, else empty
};

struct NewDatabase {
  DatabaseKind kind = DatabaseKind::kRecipe;
  std::filesystem::path program_directory;  // holds the templates
  std::filesystem::path path;               // as chosen
  std::string title;                        // the chosen file title
  std::string unit;                         // "LB" or "KG"
  // Called once the copy has proven to be of the template, with the pointer busy.
  std::function<void()> accepted = {};
};

// The eight-character rule of file titles; what breaks it is told.
bool AcceptDatabaseName(const std::string& title, Operator& op);

// What New does between its dialog and the binding of the window: tests the name and the template,
// copies the template without overwriting, and makes the copy a user's file with unit and date of
// creation. Whatever is in the way is told to the operator, and false comes back; the chosen path
// then holds what it held before.
//
// Path and name of `current` are set once the copy exists, and stay set when it turns out to be no
// template; its unit follows with a good one. On success the pointer is the hourglass, which
// the caller takes back once its views are bound.
bool CreateDatabase(const NewDatabase& wanted, DatabaseIdentity& identity, Operator& op,
                    CurrentDatabase& current);

}  // namespace vrx
