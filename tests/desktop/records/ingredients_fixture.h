#pragma once

#include <gtest/gtest.h>

#include "desktop/records/record_pages_fixture.h"

namespace vrx::testing {

// With the Ingredients tab shown.
class IngredientsFixture : public RecordPagesFixture {
 protected:
  void SetUp() override { Enter(kTabIngredients); }

  IngredientRecord Stored(int id) { return ReadIngredient(Database(), id); }
  void Choose(int id) { ChooseIn("cboIngID", id); }
  void ExpectOnRecord(int id) {
    EXPECT_EQ(List("cboIngID").currentIndex(), id);
    EXPECT_EQ(CurrentId("grdING"), id);
    EXPECT_EQ(Text(u"lblRecordNumber"_qs), QString::number(id));
    EXPECT_EQ(Shown("txtIngName"), Stored(id).name);
  }
};

}  // namespace vrx::testing
