#include <QApplication>
#include <QLineEdit>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "desktop/recipes/recipe_grid.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class FocusEvents : public RecipeGridEvents {
 public:
  void GridGotFocus() override { seen.emplace_back("got"); }
  void GridLostFocus() override { seen.emplace_back("lost"); }
  bool GoToRow(int /*row*/) override { return true; }
  bool CommitRow() override { return true; }
  void DiscardEntry() override {}
  void BeforeCellEdit(LineColumn /*column*/) override {}
  void AfterCellEdit(LineColumn /*column*/) override {}
  bool EnterCell(LineColumn /*column*/, std::string_view /*text*/) override { return true; }
  bool ChooseIngredient(int /*id*/) override { return true; }
  void KeyRefused() override {}

  std::vector<std::string> seen;
};

TEST(RecipeGridFocus, IsTakenByAnotherFieldOfItsWindowOnly) {
  FocusEvents events;
  QWidget form;
  auto* const grid = new RecipeGrid(events, &form);
  auto* const field = new QLineEdit(&form);
  QLineEdit elsewhere;
  elsewhere.show();
  form.show();
  form.activateWindow();
  QApplication::processEvents();
  grid->setFocus();
  EXPECT_THAT(events.seen, ElementsAre("got"));
  events.seen.clear();
  elsewhere.activateWindow();
  elsewhere.setFocus();
  QApplication::processEvents();
  ASSERT_TRUE(elsewhere.hasFocus());
  form.activateWindow();
  QApplication::processEvents();
  EXPECT_THAT(events.seen, IsEmpty());
  field->setFocus();
  EXPECT_THAT(events.seen, ElementsAre("lost"));
}

}  // namespace
}  // namespace vrx::testing
