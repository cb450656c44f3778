#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "presenter/lifecycle_fixture.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;
using Outcome = LegacyOpening::Outcome;

class LifecycleEarlierTest : public LifecycleFixture {
 protected:
  fs::path old_ = folder_ / "OLD.RDB";
  fs::path copy_ = MakeUserFile("COPY.RDB", DatabaseKind::kRecipe);
};

TEST_F(LifecycleEarlierTest, TheCopyIsOpenedInPlaceOfTheEarlierFile) {
  earlier_.answer = {.outcome = Outcome::kOpenCopy, .copy = copy_};
  chooser_.Choose(old_);
  databases_.BrowseRecipeDatabase();
  EXPECT_THAT(earlier_.asked, ElementsAre(Pair(DatabaseKind::kRecipe, old_)));
  EXPECT_EQ(BoundName(DatabaseKind::kRecipe), "COPY.RDB");
  EXPECT_EQ(databases_.Recipe().path, copy_);
  EXPECT_EQ(databases_.Recipe().name, "COPY.RDB");
  EXPECT_THAT(window_.Panels(DatabaseKind::kRecipe), Contains("COPY.RDB"));
  EXPECT_THAT(BoxTitles(), IsEmpty());
}

TEST_F(LifecycleEarlierTest, AnEndChangesNothing) {
  databases_.OpenRecipeDatabase(copy_, "COPY.RDB");
  earlier_.answer = {.outcome = Outcome::kEnd};
  chooser_.Choose(old_);
  databases_.BrowseRecipeDatabase();
  EXPECT_EQ(BoundName(DatabaseKind::kRecipe), "COPY.RDB");
  EXPECT_THAT(window_.Panels(DatabaseKind::kRecipe), Contains("COPY.RDB"));
  EXPECT_THAT(BoxTitles(), IsEmpty());
}

TEST_F(LifecycleEarlierTest, AnyOtherFileIsAskedAboutAndOpened) {
  const fs::path file = MakeUserFile("YARD.TDB", DatabaseKind::kTransaction);
  databases_.OpenTransactionDatabase(file, "YARD.TDB");
  EXPECT_THAT(earlier_.asked, ElementsAre(Pair(DatabaseKind::kTransaction, file)));
  EXPECT_EQ(BoundName(DatabaseKind::kTransaction), "YARD.TDB");
}

}  // namespace
}  // namespace vrx::testing
