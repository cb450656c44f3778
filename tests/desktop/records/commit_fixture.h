#pragma once

#include <QMenu>
#include <QMenuBar>
#include <QTabBar>
#include <QTest>
#include <QToolButton>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "database/connection.h"
#include "desktop/recipes/recipe_grid.h"
#include "desktop/records/record_pages_fixture.h"
#include "feed/recipe_columns.h"

namespace vrx::testing {

inline constexpr int kFreshPen = 9;
inline constexpr int kByPercent = 2;

// The record tabs, with the operator's ways to leave a field.
class CommitFixture : public RecordPagesFixture {
 public:
  using RecordPagesFixture::Check;
  using RecordPagesFixture::ChooseIn;
  using RecordPagesFixture::ClickCell;
  using RecordPagesFixture::EditCell;
  using RecordPagesFixture::Enter;
  using RecordPagesFixture::PressKey;
  using RecordPagesFixture::Tick;
  using RecordPagesFixture::Type;
  using RecordPagesFixture::TypeOver;

  int CurrentTab() { return Window().Tabs().CurrentTab(); }
  RecipeGrid& Lines() { return Find<RecipeGrid>(u"grdREC"_qs); }

  void EditLine(int row, RecipeColumn column, std::string_view text) {
    ClickLine(row, column);
    Type(text);
  }
  // Composes a line in the entry row that is complete except for its last key.
  void ComposeLine() {
    ClickLine(2, kColumnIngredient);
    Type("CORN");
    PressKey(Qt::Key_Return);
    Type("500");
  }

  // Opens the menus with the mouse and clicks the item.
  void ClickMenu(const QString& name) {
    QMenu* menu = nullptr;
    for (QObject* const shown : Find<QAction>(name).associatedObjects()) {
      menu = qobject_cast<QMenu*>(shown) == nullptr ? menu : qobject_cast<QMenu*>(shown);
    }
    ASSERT_NE(menu, nullptr) << name.toStdString();
    OpenMenu(*menu);
    QTest::mouseClick(menu, Qt::LeftButton, {},
                      menu->actionGeometry(&Find<QAction>(name)).center());
    RunEvents();
  }
  void ClickTool(const QString& name) {
    QTest::mouseClick(&Find<QToolButton>(name), Qt::LeftButton);
    RunEvents();
  }
  void ClickTab(int tab) {
    QTabBar& strip = *Tabs().tabBar();
    QTest::mouseClick(&strip, Qt::LeftButton, {}, strip.tabRect(tab).center());
    RunEvents();
  }
  void ClickButton(const char* name) { Press(name); }
  void CloseBox() { Window().close(); }

  // Reads the file like another program.
  template <typename Read>
  auto InFile(const Read& read) {
    SQLite::Database file = OpenDatabase(path_, Access::kRead);
    return read(file);
  }

 private:
  void ClickLine(int row, RecipeColumn column) {
    const QRect cell = Lines().visualRect(Lines().model()->index(row, column));
    QTest::mouseClick(Lines().viewport(), Qt::LeftButton, {},
                      QPoint(cell.left() + 4, cell.center().y()));
    if (!Lines().IsEditing()) {
      PressKey(Qt::Key_F2);
    }
  }
  void OpenMenu(QMenu& menu) {
    auto* const above = qobject_cast<QMenu*>(menu.menuAction()->associatedObjects().value(0));
    if (above == nullptr) {
      QMenuBar& bar = *Window().menuBar();
      QTest::mouseClick(&bar, Qt::LeftButton, {}, bar.actionGeometry(menu.menuAction()).center());
    } else {
      OpenMenu(*above);
      QTest::mouseClick(above, Qt::LeftButton, {},
                        above->actionGeometry(menu.menuAction()).center());
    }
    RunEvents();
  }
};

struct Entry {
  const char* what;
  int tab;
  // Types into the field or cell and leaves the focus there.
  std::function<void(CommitFixture&)> begin;
  // The stored value.
  std::function<std::string(SQLite::Database&)> stored;
  std::string before;
  std::string after;
};

inline std::ostream& operator<<(std::ostream& out, const Entry& entry) { return out << entry.what; }

inline std::string LineText(SQLite::Database& file, int recipe, std::size_t line,
                            std::string RecipeLineRecord::*cell) {
  const std::vector<RecipeLineRecord> lines = ReadRecipeLines(file, recipe);
  return line < lines.size() ? lines[line].*cell : "no line";
}

inline const std::vector<Entry> kEntries = {
    {"IngredientName", kTabIngredients,
     [](CommitFixture& fixture) {
       fixture.ChooseIn("cboIngID", kCorn);
       fixture.TypeOver("txtIngName", "MAIZE ");
     },
     [](SQLite::Database& file) { return ReadIngredient(file, kCorn).name; }, "CORN", "MAIZE"},
    {"IngredientDescription", kTabIngredients,
     [](CommitFixture& fixture) {
       fixture.ChooseIn("cboIngID", kCorn);
       fixture.TypeOver("txtIngDesc", "Maize ");
     },
     [](SQLite::Database& file) { return ReadIngredient(file, kCorn).description; }, "Corn Rolled",
     "Maize"},
    {"DryMatter", kTabIngredients,
     [](CommitFixture& fixture) {
       fixture.ChooseIn("cboIngID", kCorn);
       fixture.TypeOver("txtIngDryMatter", "150");
     },
     [](SQLite::Database& file) {
       return LineText(file, 1, 0, &RecipeLineRecord::dry_matter_percent);
     },
     "88", "100"},
    {"HandAdd", kTabIngredients,
     [](CommitFixture& fixture) {
       fixture.ChooseIn("cboIngID", kCorn);
       fixture.Tick("chkIngHandAdd");
     },
     [](SQLite::Database& file) { return std::to_string(ReadIngredient(file, kCorn).hand_add); },
     "0", "1"},
    {"IngredientCell", kTabIngredients,
     [](CommitFixture& fixture) { fixture.EditCell("grdING", kCorn, "DryMatter%", "70"); },
     [](SQLite::Database& file) {
       return std::to_string(ReadIngredient(file, kCorn).dry_matter_percent);
     },
     "88", "70"},
    {"RecipeName", kTabRecipes,
     [](CommitFixture& fixture) { fixture.TypeOver("txtRecName", "STEERS"); },
     [](SQLite::Database& file) { return ReadRecipe(file, 1).name; }, "REC1", "STEERS"},
    {"RecipeDescription", kTabRecipes,
     [](CommitFixture& fixture) { fixture.TypeOver("txtRecDesc", "Steers "); },
     [](SQLite::Database& file) { return ReadRecipe(file, 1).description; }, "Recipe", "Steers"},
    {"RationTarget", kTabRecipes,
     [](CommitFixture& fixture) { fixture.TypeOver("txtRecRationTarget", "7000"); },
     [](SQLite::Database& file) { return ReadRecipe(file, 1).ration_target; }, "5000", "7000"},
    {"HeadCount", kTabRecipes,
     [](CommitFixture& fixture) {
       fixture.ChooseIn("cboRecID", 3);
       fixture.TypeOver("txtRecHeadCount", "1001");
     },
     [](SQLite::Database& file) { return std::to_string(ReadRecipe(file, 3).head_count); }, "0",
     "100"},
    {"WeightOfALine", kTabRecipes,
     [](CommitFixture& fixture) { fixture.EditLine(1, kColumnTarget, "900"); },
     [](SQLite::Database& file) { return LineText(file, 1, 1, &RecipeLineRecord::target); }, "800",
     "900"},
    {"ShareOfALine", kTabRecipes,
     [](CommitFixture& fixture) {
       fixture.ChooseIn("cboRecID", kByPercent);
       fixture.EditLine(1, kColumnIngredientPercent, "39.5");
     },
     [](SQLite::Database& file) {
       return LineText(file, kByPercent, 1, &RecipeLineRecord::ingredient_percent);
     },
     "40", "39.50"},
    {"LineInTheEntryRow", kTabRecipes, [](CommitFixture& fixture) { fixture.ComposeLine(); },
     [](SQLite::Database& file) { return LineText(file, 1, 2, &RecipeLineRecord::target); },
     "no line", "500"},
    {"PenFeed", kTabPens,
     [](CommitFixture& fixture) {
       fixture.ChooseIn("cboPenID", kFreshPen);
       fixture.TypeOver("txtPenFeed", "0070");
     },
     [](SQLite::Database& file) { return ReadPen(file, kFreshPen).feed_amount; }, "0", "70"},
    {"PenName", kTabPens,
     [](CommitFixture& fixture) {
       fixture.ChooseIn("cboPenID", kFreshPen);
       fixture.TypeOver("txtPenName", "a09");
     },
     [](SQLite::Database& file) { return ReadPen(file, kFreshPen).description; }, "", "A09"},
    {"PenCell", kTabPens,
     [](CommitFixture& fixture) { fixture.EditCell("grdPEN", kFreshPen, "FeedAmount", "70"); },
     [](SQLite::Database& file) { return ReadPen(file, kFreshPen).feed_amount; }, "0", "70"},
};

}  // namespace vrx::testing
