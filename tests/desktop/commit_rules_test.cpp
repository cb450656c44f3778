// What has the focus is stored before anything else acts: each kind of field and cell of the three
// record tabs, against each way on that the operator has.

#include <QMenu>
#include <QMenuBar>
#include <QTabBar>
#include <QTest>
#include <QToolButton>
#include <functional>
#include <tuple>

#include <gmock/gmock.h>

#include "database/connection.h"
#include "desktop/recipe_grid.h"
#include "desktop/record_pages_site.h"
#include "feed/recipe_columns.h"

namespace vrx::testing {
namespace {

constexpr int kFreshPen = 9;
constexpr int kByPercent = 2;

// The record tabs, with the means of an operator to go on.
class CommitSite : public RecordPagesSite {
 public:
  using RecordPagesSite::Check;
  using RecordPagesSite::ChooseIn;
  using RecordPagesSite::ClickCell;
  using RecordPagesSite::EditCell;
  using RecordPagesSite::Enter;
  using RecordPagesSite::PressKey;
  using RecordPagesSite::Tick;
  using RecordPagesSite::Type;
  using RecordPagesSite::TypeOver;

  RecipeGrid& Lines() { return Find<RecipeGrid>(u"grdREC"_qs); }

  void EditLine(int row, RecipeColumn column, std::string_view text) {
    ClickLine(row, column);
    Type(text);
  }
  // A line that is complete but for its last key, in the entry row.
  void ComposeLine() {
    ClickLine(2, kColumnIngredient);
    Type("CORN");
    PressKey(Qt::Key_Return);
    Type("500");
  }

  // Opens each menu on the way by the mouse, and clicks the item.
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

  // From the file, as another program sees it.
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
  // Leaves the focus in the field or cell with what was typed.
  std::function<void(CommitSite&)> begin;
  // What the file has for it.
  std::function<std::string(SQLite::Database&)> stored;
  std::string before;
  std::string after;
};

std::ostream& operator<<(std::ostream& out, const Entry& entry) { return out << entry.what; }

std::string LineText(SQLite::Database& file, int recipe, std::size_t line,
                     std::string RecipeLineRecord::*cell) {
  const std::vector<RecipeLineRecord> lines = ReadRecipeLines(file, recipe);
  return line < lines.size() ? lines[line].*cell : "no line";
}

const std::vector<Entry> kEntries = {
    {"IngredientName", kTabIngredients,
     [](CommitSite& site) {
       site.ChooseIn("cboIngID", kCorn);
       site.TypeOver("txtIngName", "MAIZE ");
     },
     [](SQLite::Database& file) { return ReadIngredient(file, kCorn).name; }, "CORN", "MAIZE"},
    {"IngredientDescription", kTabIngredients,
     [](CommitSite& site) {
       site.ChooseIn("cboIngID", kCorn);
       site.TypeOver("txtIngDesc", "Maize ");
     },
     [](SQLite::Database& file) { return ReadIngredient(file, kCorn).description; }, "Corn Rolled",
     "Maize"},
    {"DryMatter", kTabIngredients,
     [](CommitSite& site) {
       site.ChooseIn("cboIngID", kCorn);
       site.TypeOver("txtIngDryMatter", "150");
     },
     [](SQLite::Database& file) {
       return LineText(file, 1, 0, &RecipeLineRecord::dry_matter_percent);
     },
     "88", "100"},
    {"HandAdd", kTabIngredients,
     [](CommitSite& site) {
       site.ChooseIn("cboIngID", kCorn);
       site.Tick("chkIngHandAdd");
     },
     [](SQLite::Database& file) { return std::to_string(ReadIngredient(file, kCorn).hand_add); },
     "0", "1"},
    {"IngredientCell", kTabIngredients,
     [](CommitSite& site) { site.EditCell("grdING", kCorn, "DryMatter%", "70"); },
     [](SQLite::Database& file) {
       return std::to_string(ReadIngredient(file, kCorn).dry_matter_percent);
     },
     "88", "70"},
    {"RecipeName", kTabRecipes, [](CommitSite& site) { site.TypeOver("txtRecName", "STEERS"); },
     [](SQLite::Database& file) { return ReadRecipe(file, 1).name; }, "REC1", "STEERS"},
    {"RecipeDescription", kTabRecipes,
     [](CommitSite& site) { site.TypeOver("txtRecDesc", "Steers "); },
     [](SQLite::Database& file) { return ReadRecipe(file, 1).description; }, "Recipe", "Steers"},
    {"RationTarget", kTabRecipes,
     [](CommitSite& site) { site.TypeOver("txtRecRationTarget", "7000"); },
     [](SQLite::Database& file) { return ReadRecipe(file, 1).ration_target; }, "5000", "7000"},
    {"HeadCount", kTabRecipes,
     [](CommitSite& site) {
       site.ChooseIn("cboRecID", 3);
       site.TypeOver("txtRecHeadCount", "1001");
     },
     [](SQLite::Database& file) { return std::to_string(ReadRecipe(file, 3).head_count); }, "0",
     "100"},
    {"WeightOfALine", kTabRecipes, [](CommitSite& site) { site.EditLine(1, kColumnTarget, "900"); },
     [](SQLite::Database& file) { return LineText(file, 1, 1, &RecipeLineRecord::target); }, "800",
     "900"},
    {"ShareOfALine", kTabRecipes,
     [](CommitSite& site) {
       site.ChooseIn("cboRecID", kByPercent);
       site.EditLine(1, kColumnIngredientPercent, "39.5");
     },
     [](SQLite::Database& file) {
       return LineText(file, kByPercent, 1, &RecipeLineRecord::ingredient_percent);
     },
     "40", "39.50"},
    {"LineInTheEntryRow", kTabRecipes, [](CommitSite& site) { site.ComposeLine(); },
     [](SQLite::Database& file) { return LineText(file, 1, 2, &RecipeLineRecord::target); },
     "no line", "500"},
    {"PenFeed", kTabPens,
     [](CommitSite& site) {
       site.ChooseIn("cboPenID", kFreshPen);
       site.TypeOver("txtPenFeed", "0070");
     },
     [](SQLite::Database& file) { return ReadPen(file, kFreshPen).feed_amount; }, "0", "70"},
    {"PenName", kTabPens,
     [](CommitSite& site) {
       site.ChooseIn("cboPenID", kFreshPen);
       site.TypeOver("txtPenName", "a09");
     },
     [](SQLite::Database& file) { return ReadPen(file, kFreshPen).description; }, "", "A09"},
    {"PenCell", kTabPens,
     [](CommitSite& site) { site.EditCell("grdPEN", kFreshPen, "FeedAmount", "70"); },
     [](SQLite::Database& file) { return ReadPen(file, kFreshPen).feed_amount; }, "0", "70"},
};

struct WayOn {
  const char* what;
  std::function<void(CommitSite&)> go;
};

std::ostream& operator<<(std::ostream& out, const WayOn& way) { return out << way.what; }

const std::vector<WayOn> kWaysOn = {
    {"Menu", [](CommitSite& site) { site.ClickMenu(u"mnuEditAutoAbbrev"_qs); }},
    {"ToolbarButton", [](CommitSite& site) { site.ClickTool(u"Calendar"_qs); }},
    {"Tab", [](CommitSite& site) { site.ClickTab(kTabDataTransfer); }},
    {"Save", [](CommitSite& site) { site.ClickMenu(u"mnuFileSaveRecipeDB"_qs); }},
    {"Close", [](CommitSite& site) { site.ClickMenu(u"mnuFileCloseRecipeDB"_qs); }},
    {"Exit", [](CommitSite& site) { site.ClickMenu(u"mnuFileExit"_qs); }},
    {"CloseBox", [](CommitSite& site) { site.CloseBox(); }},
    {"Update", [](CommitSite& site) { site.ClickButton("cmdAction(0)"); }},
    {"Navigator", [](CommitSite& site) { site.ClickButton("cmdNavigate(2)"); }},
};

class CommitRules : public CommitSite,
                    public ::testing::WithParamInterface<std::tuple<Entry, WayOn>> {};

TEST_P(CommitRules, HoldBeforeAnythingElseActs) {
  const auto& [entry, way] = GetParam();
  Enter(entry.tab);
  entry.begin(*this);
  ASSERT_EQ(InFile(entry.stored), entry.before);
  way.go(*this);
  EXPECT_EQ(InFile(entry.stored), entry.after);
  EXPECT_TRUE(operator_.boxes.empty() || way.what == std::string("Save"));
}

INSTANTIATE_TEST_SUITE_P(All, CommitRules,
                         ::testing::Combine(::testing::ValuesIn(kEntries),
                                            ::testing::ValuesIn(kWaysOn)),
                         [](const auto& test) {
                           return std::string(std::get<0>(test.param).what) + "Before" +
                                  std::get<1>(test.param).what;
                         });

// Neither menus nor tool buttons take the focus by themselves.
class FocusStays : public CommitSite, public ::testing::WithParamInterface<Entry> {};

TEST_P(FocusStays, WhileAMenuOrAToolButtonActs) {
  Enter(GetParam().tab);
  GetParam().begin(*this);
  const QWidget* const page = &Tabs().Page(GetParam().tab);
  ClickMenu(u"mnuEditAutoAbbrev"_qs);
  Window().activateWindow();
  RunEvents();
  ASSERT_NE(QApplication::focusWidget(), nullptr);
  EXPECT_TRUE(page->isAncestorOf(QApplication::focusWidget()));
  ClickTool(u"Abbreviate"_qs);
  ASSERT_NE(QApplication::focusWidget(), nullptr);
  EXPECT_TRUE(page->isAncestorOf(QApplication::focusWidget()));
}

INSTANTIATE_TEST_SUITE_P(All, FocusStays, ::testing::ValuesIn(kEntries),
                         [](const auto& test) { return std::string(test.param.what); });

class EntryRow : public CommitSite {};

TEST_F(EntryRow, AnIngredientAloneIsNeverStored) {
  Enter(kTabRecipes);
  Lines().setFocus();
  PressKey(Qt::Key_Down);
  PressKey(Qt::Key_Down);
  Type("CORN");
  PressKey(Qt::Key_Return);
  ClickTab(kTabPens);
  ClickMenu(u"mnuFileCloseRecipeDB"_qs);
  EXPECT_EQ(InFile([](SQLite::Database& file) { return ReadRecipeLines(file, 1).size(); }), 2U);
}

}  // namespace
}  // namespace vrx::testing
