#include "presenter/connection_texts.h"

#include <array>
#include <span>

namespace vrx {
namespace {

constexpr std::array<std::string_view, 8> kRecipeControls{
    " (Ingredient Grid)",           " (Recipe Grid)",
    " (Ingredient Selection Grid)", " (Pen Grid)",
    " (Ingredient ADO Control)",    " (Recipe ADO Control)",
    " (Pen ADO Control)",           " (Recipe UoM ADO Control)",
};

constexpr std::array<std::string_view, 2> kTransactionControls{
    " (Transaction Grid)",
    " (Transaction UoM ADO Control)",
};

std::string Lines(std::string_view connection, std::span<const std::string_view> labels) {
  std::string text;
  for (const std::string_view label : labels) {
    text += connection;
    text += label;
    text += "\r\n";
  }
  return text;
}

}  // namespace

ConnectionTexts BuildConnectionTexts(std::string_view recipe_connection,
                                     std::string_view transaction_connection) {
  return {Lines(recipe_connection, kRecipeControls),
          Lines(transaction_connection, kTransactionControls)};
}

std::string ConnectionString(std::string_view database_path) {
  return "Data Source=" + std::string(database_path);
}

}  // namespace vrx
