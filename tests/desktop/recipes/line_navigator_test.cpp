#include <QAbstractButton>
#include <QLabel>
#include <array>
#include <vector>

#include <gmock/gmock.h>

#include "desktop/recipes/recipe_lines.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class LineNavigatorTest : public ::testing::Test {
 protected:
  // The lines to which the four buttons lead.
  std::vector<int> TargetsFrom(int row, int lines) {
    std::vector<int> targets;
    const auto connection = QObject::connect(&navigator_, &LineNavigator::Moved,
                                             [&](int line) { targets.push_back(line); });
    navigator_.Show(row, lines);
    for (int button = 0; button < 4; ++button) {
      navigator_.findChild<QAbstractButton*>(QStringLiteral("grdREC.Navigate(%1)").arg(button))
          ->click();
    }
    QObject::disconnect(connection);
    return targets;
  }
  QString Text() {
    return navigator_.findChild<QLabel*>(QStringLiteral("grdREC.NavigatorText"))->text();
  }

  LineNavigator navigator_;
};

TEST_F(LineNavigatorTest, LeadsToTheFirstPreviousNextAndLastLine) {
  EXPECT_THAT(TargetsFrom(3, 5), ElementsAre(1, 2, 4, 5));
  EXPECT_EQ(Text(), QStringLiteral("Ingredient: 3 of 5"));
  EXPECT_THAT(TargetsFrom(1, 5), ElementsAre(1, 1, 2, 5));
  EXPECT_THAT(TargetsFrom(5, 5), ElementsAre(1, 4, 5, 5));
}

TEST_F(LineNavigatorTest, LeadsFromTheEntryRowToTheLastLine) {
  EXPECT_THAT(TargetsFrom(-1, 5), ElementsAre(1, 5, 5, 5));
  EXPECT_EQ(Text(), QStringLiteral("Ingredient: new of 5"));
}

TEST_F(LineNavigatorTest, LeadsNowhereWithoutLines) { EXPECT_THAT(TargetsFrom(-1, 0), IsEmpty()); }

}  // namespace
}  // namespace vrx::testing
