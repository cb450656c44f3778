// What has the focus is stored before anything else acts: each kind of field and cell of the three
// record tabs, against each way on that the operator has.

#include <QApplication>
#include <functional>
#include <tuple>

#include <gmock/gmock.h>

#include "desktop/records/commit_fixture.h"

namespace vrx::testing {
namespace {

struct WayOn {
  const char* what;
  std::function<void(CommitFixture&)> go;
};

std::ostream& operator<<(std::ostream& out, const WayOn& way) { return out << way.what; }

const std::vector<WayOn> kWaysOn = {
    {"Menu", [](CommitFixture& fixture) { fixture.ClickMenu(u"mnuEditAutoAbbrev"_qs); }},
    {"ToolbarButton", [](CommitFixture& fixture) { fixture.ClickTool(u"Calendar"_qs); }},
    {"Tab", [](CommitFixture& fixture) { fixture.ClickTab(kTabDataTransfer); }},
    {"Save", [](CommitFixture& fixture) { fixture.ClickMenu(u"mnuFileSaveRecipeDB"_qs); }},
    {"Close", [](CommitFixture& fixture) { fixture.ClickMenu(u"mnuFileCloseRecipeDB"_qs); }},
    {"Exit", [](CommitFixture& fixture) { fixture.ClickMenu(u"mnuFileExit"_qs); }},
    {"CloseBox", [](CommitFixture& fixture) { fixture.CloseBox(); }},
    {"Update", [](CommitFixture& fixture) { fixture.ClickButton("cmdAction(0)"); }},
    {"Navigator", [](CommitFixture& fixture) { fixture.ClickButton("cmdNavigate(2)"); }},
};

class CommitRules : public CommitFixture,
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
class FocusStays : public CommitFixture, public ::testing::WithParamInterface<Entry> {};

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

class EntryRow : public CommitFixture {};

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
