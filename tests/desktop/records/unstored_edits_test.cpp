// An edit that cannot be stored is reported with its cause and stays in its field, and whatever
// leaves the field asks what becomes of it.

#include <tuple>

#include <gmock/gmock.h>

#include "desktop/records/unstored_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::IsEmpty;
using ::testing::SizeIs;

struct WayOut {
  const char* what;
  std::function<void(UnstoredFixture&)> go;
  // Whether it has led to its destination.
  std::function<bool(UnstoredFixture&, int tab, int record)> arrived;
};

std::ostream& operator<<(std::ostream& out, const WayOut& way) { return out << way.what; }

const std::vector<WayOut> kWaysOut = {
    {"NextField", [](UnstoredFixture& fixture) { fixture.PressKey(Qt::Key_Tab); },
     [](UnstoredFixture&, int, int) { return true; }},
    {"Tab", [](UnstoredFixture& fixture) { fixture.ClickTab(kTabDataTransfer); },
     [](UnstoredFixture& fixture, int, int) { return fixture.CurrentTab() == kTabDataTransfer; }},
    {"CtrlTab",
     [](UnstoredFixture& /*fixture*/) {
       QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab, Qt::ControlModifier);
     },
     [](UnstoredFixture& fixture, int tab, int) { return fixture.CurrentTab() != tab; }},
    {"Navigator", [](UnstoredFixture& fixture) { fixture.ClickButton("cmdNavigate(2)"); },
     [](UnstoredFixture& fixture, int, int record) {
       return fixture.CurrentRecord() == record + 1;
     }},
    {"Close", [](UnstoredFixture& fixture) { fixture.ClickMenu(u"mnuFileCloseRecipeDB"_qs); },
     [](UnstoredFixture& fixture, int, int) { return !fixture.DatabaseIsOpen(); }},
    {"FileExit", [](UnstoredFixture& fixture) { fixture.ClickMenu(u"mnuFileExit"_qs); },
     [](UnstoredFixture& fixture, int, int) { return fixture.Exits().size() == 1; }},
    {"CloseBox", [](UnstoredFixture& fixture) { fixture.CloseBox(); },
     [](UnstoredFixture& fixture, int, int) { return fixture.Exits().size() == 1; }},
};

class UnstoredEdits : public UnstoredFixture,
                      public ::testing::WithParamInterface<std::tuple<Entry, WayOut>> {
 protected:
  void LeaveLocked() {
    const auto& [entry, way] = GetParam();
    Enter(entry.tab);
    entry.begin(*this);
    record_ = CurrentRecord();
    Lock();
    way.go(*this);
    RunEvents();
  }
  bool Arrived() {
    const auto& [entry, way] = GetParam();
    return way.arrived(*this, entry.tab, record_);
  }
  std::string Stored() { return InFile(std::get<0>(GetParam()).stored); }

  int record_ = 0;
};

TEST_P(UnstoredEdits, StayInTheirFieldUntilAnotherTryStoresThem) {
  const auto& [entry, way] = GetParam();
  Answer(Answer::kStay);
  LeaveLocked();
  ExpectOneQuestion();
  EXPECT_EQ(CurrentTab(), entry.tab);
  EXPECT_EQ(CurrentRecord(), record_);
  EXPECT_TRUE(DatabaseIsOpen());
  EXPECT_THAT(Exits(), IsEmpty());
  EXPECT_EQ(Stored(), entry.before);
  ASSERT_NE(QApplication::focusWidget(), nullptr);
  EXPECT_TRUE(Tabs().Page(entry.tab).isAncestorOf(QApplication::focusWidget()));
  Boxes().clear();
  Answer(Answer::kTryAgain);
  UnlockWhenAsked();
  way.go(*this);
  RunEvents();
  ExpectOneQuestion();
  EXPECT_TRUE(Arrived());
  ClickTab(kTabBatchedFed);
  EXPECT_EQ(Stored(), entry.after);
  EXPECT_THAT(Boxes(), SizeIs(1));
}

TEST_P(UnstoredEdits, AreDiscardedByTheOperatorAlone) {
  const auto& [entry, way] = GetParam();
  Answer(Answer::kDiscard);
  UnlockWhenAsked();
  LeaveLocked();
  ExpectOneQuestion();
  EXPECT_TRUE(Arrived());
  ClickTab(kTabBatchedFed);
  EXPECT_EQ(Stored(), entry.before);
  EXPECT_THAT(Boxes(), SizeIs(1));
}

// Each field by a key and by the mouse, and a field and a cell by every way out.
std::vector<std::tuple<Entry, WayOut>> FieldsAndWays() {
  std::vector<std::tuple<Entry, WayOut>> pairs;
  for (const Entry& entry : kEntries) {
    const std::string what = entry.what;
    const bool every_way = what == "RecipeName" || what == "WeightOfALine" || what == "PenCell";
    for (std::size_t way = 0; way < (every_way ? kWaysOut.size() : 2); ++way) {
      pairs.emplace_back(entry, kWaysOut[way]);
    }
  }
  return pairs;
}

INSTANTIATE_TEST_SUITE_P(All, UnstoredEdits, ::testing::ValuesIn(FieldsAndWays()),
                         [](const auto& test) {
                           return std::string(std::get<0>(test.param).what) + "Before" +
                                  std::get<1>(test.param).what;
                         });

}  // namespace
}  // namespace vrx::testing
