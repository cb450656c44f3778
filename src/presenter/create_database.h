#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include "database/schema.h"
#include "platform/operator.h"
#include "presenter/database_identity.h"

namespace vrx {

// The current database: RecipeDbPath, RecipeDbName, RecipeDbUoM and the same for transactions.
// Empty if there is none.
struct CurrentDatabase {
  std::filesystem::path path;
  std::string name;  // file title in upper case
  std::string unit;
  std::string read_only_note = {};  // why it is read-only; empty if it is not
};

struct NewDatabase {
  DatabaseKind kind = DatabaseKind::kRecipe;
  std::filesystem::path program_directory;  // holds the templates
  std::filesystem::path path;               // as chosen
  std::string title;                        // the chosen file title
  std::string unit;                         // "LB" or "KG"
  // Called when the copy has been verified, before it is made a user's file.
  std::function<void()> accepted = {};
};

// Checks the eight-character rule of file titles and reports a violation.
bool AcceptDatabaseName(const std::string& title, Operator& op);

// The steps of New between its dialog and the binding of the window: checks the name and the
// template, copies the template without overwriting, and makes the copy a user's file with unit and
// date of creation. Returns false after reporting a failure; an existing file is then unchanged.
//
// Sets path and name of `current` as soon as the copy exists, even if it is not a valid template,
// and the unit only on success.
bool CreateDatabase(const NewDatabase& wanted, DatabaseIdentity& identity, Operator& op,
                    CurrentDatabase& current);

}  // namespace vrx
