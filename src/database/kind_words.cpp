#include "database/kind_words.h"

#include "base/application.h"
#include "database/identity.h"

namespace vrx {
namespace {

constexpr KindWords kRecipeWords{
    .noun = "recipe",
    .template_name = kRecipeTemplateName,
    .blank_type = kNulRecipeDb,
    .user_type = kUserRecipeDb,
    .extension = "RDB",
    .filter = "Recipe Database (*.RDB)|*.RDB",
    .new_dialog_title = "Create New Recipe Database File",
    .open_dialog_title = "Open Recipe Database File",
    .save_as_dialog_title = "Save Recipe Database As...",
    .new_failure = "New Recipe File Error",
    .open_failure = "Open Recipe File Error",
    .close_failure = "Close Recipe File Error",
    .save_as_failure = "Save As Recipe Database Error",
    .recent_path_key = "MRU_RecipePathName",
    .recent_name_key = "MRU_RecipeFileName",
};

constexpr KindWords kTransactionWords{
    .noun = "transaction",
    .template_name = kTransactionTemplateName,
    .blank_type = kNulTransDb,
    .user_type = kUserTransDb,
    .extension = "TDB",
    .filter = "Transaction Database (*.TDB)|*.TDB",
    .new_dialog_title = "Create New Transaction Database File",
    .open_dialog_title = "Open Transaction Database File",
    .save_as_dialog_title = "Save Transaction Database As...",
    .new_failure = "New Transaction File Error",
    .open_failure = "Open Transaction File Error",
    .close_failure = "Close Transaction File Error",
    .save_as_failure = "Save As Transaction Database Error",
    .recent_path_key = "MRU_TransPathName",
    .recent_name_key = "MRU_TransFileName",
};

}  // namespace

const KindWords& WordsOf(DatabaseKind kind) {
  return kind == DatabaseKind::kRecipe ? kRecipeWords : kTransactionWords;
}

}  // namespace vrx
