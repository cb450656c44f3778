#include <gtest/gtest.h>

#include "database/connection.h"
#include "database/records.h"
#include "feed/where_used.h"
#include "support/database_files.h"

namespace vrx::testing {
namespace {

TEST(WhereUsedIds, AreComparedAsNumbersInRecipesInUse) {
  const TempFolder folder;
  const std::filesystem::path path = CopyOfTemplate(folder, "YARD.RDB");
  Alter(path,
        "UPDATE Recipe SET Description = 'in use' WHERE ID <> 5;"
        "INSERT INTO RecipeRation (RecipeID, Ingredient, Sequence) VALUES"
        " ('10', '07', 1), ('2', '7', 2), ('2', ' 7', 1), ('5', '7', 1), ('3', '70', 1)");
  SQLite::Database database = OpenDatabase(path, Access::kRead);
  const WhereUsed in_2{.recipe_id = 2, .recipe_name = "REC002"};
  const WhereUsed in_10{.recipe_id = 10, .recipe_name = "REC010"};
  EXPECT_EQ(FindWhereIngUsed(database, 7, false), (std::vector<WhereUsed>{in_2, in_2, in_10}));
  EXPECT_EQ(FindWhereIngUsed(database, 7, true), std::vector<WhereUsed>{in_2});
  EXPECT_TRUE(FindWhereIngUsed(database, 8, false).empty());
}

}  // namespace
}  // namespace vrx::testing
