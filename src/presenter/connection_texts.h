#pragma once

#include <string>
#include <string_view>

namespace vrx {

// What `SETUP` lists of the controls that are bound to a database: a line for each, closed by CR
// LF.
struct ConnectionTexts {
  std::string recipe_controls;       // RecipeControlsText
  std::string transaction_controls;  // TransactionControlsText
};

// Of the connection strings that the controls of each database are bound by.
ConnectionTexts BuildConnectionTexts(std::string_view recipe_connection,
                                     std::string_view transaction_connection);

// "Data Source=" and the path.
std::string ConnectionString(std::string_view database_path);

}  // namespace vrx
