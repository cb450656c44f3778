#include <QApplication>
#include <QKeyEvent>
#include <QTest>
#include <QWindow>
#include <chrono>

#include <SQLiteCpp/Database.h>
#include <gtest/gtest.h>

#include "desktop/app/operator_actions.h"
#include "desktop/main_window/main_window_fixture.h"

namespace vrx::testing {
namespace {

class OperatorActionsTest : public ::testing::Test {
 protected:
  OperatorActionsTest() {
    window_.show();
    begun_ = 0;
  }

  QWidget window_;
  int begun_ = 0;
  OperatorActions actions_{[this] { ++begun_; }};
};

TEST_F(OperatorActionsTest, AClickIsOneActionFromThePressToTheRelease) {
  QTest::mousePress(window_.windowHandle(), Qt::LeftButton, {}, QPoint(5, 5));
  EXPECT_EQ(begun_, 1);
  QTest::mouseMove(window_.windowHandle(), QPoint(6, 6));
  QTest::mouseRelease(window_.windowHandle(), Qt::LeftButton, {}, QPoint(6, 6));
  EXPECT_EQ(begun_, 1);
}

TEST_F(OperatorActionsTest, AKeyBeginsOneAndAKeyHeldDownNoMore) {
  QTest::keyPress(window_.windowHandle(), Qt::Key_A);
  const int first = begun_;
  EXPECT_GE(first, 1);
  QKeyEvent held(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, QStringLiteral("a"), true);
  QApplication::sendEvent(window_.windowHandle(), &held);
  QTest::keyRelease(window_.windowHandle(), Qt::Key_A);
  EXPECT_EQ(begun_, first);
}

class LockedDatabase : public MainWindowFixture {};

// The first statement of the action waits out the whole budget, and the others fail at once.
TEST_F(LockedDatabase, IsWaitedForOncePerAction) {
  Open(DatabaseKind::kRecipe);
  Show();
  const std::chrono::milliseconds limit = lock_waits_.Left();
  EXPECT_LT(limit, std::chrono::seconds{2});
  const std::filesystem::path path = Main().Databases().Bound(DatabaseKind::kRecipe).path;
  {
    SQLite::Database other(path, SQLite::OPEN_READWRITE);
    other.exec("BEGIN EXCLUSIVE");
    Choose(u"mnuFileSaveRecipeDB"_qs);
    EXPECT_EQ(lock_waits_.Left().count(), 0);
    EXPECT_THROW(Main()
                     .Databases()
                     .Bound(DatabaseKind::kRecipe)
                     .connection->exec("UPDATE Pen SET Name = 'X' WHERE ID = 1"),
                 SQLite::Exception);
  }
  EXPECT_EQ(operator_.boxes.at(0).text, "A table in the specified database is locked.");
  EXPECT_TRUE(On(u"mnuFileCloseRecipeDB"_qs));
  QTest::keyClick(Window().windowHandle(), Qt::Key_Shift);
  EXPECT_EQ(lock_waits_.Left(), limit);
}

}  // namespace
}  // namespace vrx::testing
