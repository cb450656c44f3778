#include <gtest/gtest.h>

#include "presenter/setup.h"

namespace vrx::testing {
namespace {

TEST(ConnectionTexts, ListEachControlWithTheStringItIsBoundBy) {
  const ConnectionTexts texts =
      BuildConnectionTexts(ConnectionString("/data/YARD.RDB"), ConnectionString("/app/Q.MDB"));
  EXPECT_EQ(texts.recipe_controls,
            "Data Source=/data/YARD.RDB (Ingredient Grid)\r\n"
            "Data Source=/data/YARD.RDB (Recipe Grid)\r\n"
            "Data Source=/data/YARD.RDB (Ingredient Selection Grid)\r\n"
            "Data Source=/data/YARD.RDB (Pen Grid)\r\n"
            "Data Source=/data/YARD.RDB (Ingredient ADO Control)\r\n"
            "Data Source=/data/YARD.RDB (Recipe ADO Control)\r\n"
            "Data Source=/data/YARD.RDB (Pen ADO Control)\r\n"
            "Data Source=/data/YARD.RDB (Recipe UoM ADO Control)\r\n");
  EXPECT_EQ(texts.transaction_controls,
            "Data Source=/app/Q.MDB (Transaction Grid)\r\n"
            "Data Source=/app/Q.MDB (Transaction UoM ADO Control)\r\n");
}

}  // namespace
}  // namespace vrx::testing
