#include "widgets/fields.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QStandardItemModel>
#include <QTableView>
#include <QTest>
#include <QWheelEvent>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace vrx::testing {
namespace {

// Lets digits through.
int DigitFilter(std::string_view /*text*/, int key) { return key >= '0' && key <= '9' ? key : 0; }

TEST(GoToNextCell, FollowsTheOrderOnTheScreenAndSkipsHiddenColumns) {
  QStandardItemModel cells(2, 4);
  QTableView list;
  list.setModel(&cells);
  list.horizontalHeader()->moveSection(3, 0);
  list.setColumnHidden(1, true);
  std::vector<std::pair<int, int>> visited;
  while (GoToNextCell(list)) {
    visited.emplace_back(list.currentIndex().row(), list.currentIndex().column());
  }
  EXPECT_EQ(visited,
            (std::vector<std::pair<int, int>>{{0, 3}, {0, 0}, {0, 2}, {1, 3}, {1, 0}, {1, 2}}));
}

TEST(GoToNextCell, StaysInAnEmptyList) {
  QStandardItemModel cells(0, 4);
  QTableView list;
  list.setModel(&cells);
  EXPECT_FALSE(GoToNextCell(list));
}

class FieldsTest : public ::testing::Test {
 protected:
  FieldsTest() {
    box_->setGeometry(0, 0, 100, 30);
    next_->setGeometry(0, 40, 100, 30);
    form_.show();
    form_.activateWindow();
    QApplication::processEvents();
    box_->setFocus();
    QObject::connect(box_, &FilteredEdit::Refused, [this] { ++refused_; });
    QObject::connect(box_, &FilteredEdit::Left, [this] { ++left_; });
  }

  void Type(const QString& text, Qt::KeyboardModifiers held = Qt::NoModifier) {
    for (const QChar character : text) {
      QTest::sendKeyEvent(QTest::Click, box_, Qt::Key_unknown, QString(character), held);
    }
  }

  QWidget form_;
  FilteredEdit* box_ = new FilteredEdit(DigitFilter, 3, &form_);
  QLineEdit* next_ = new QLineEdit(&form_);
  int refused_ = 0;
  int left_ = 0;
};

TEST_F(FieldsTest, ATypedCharacterPassesTheFilterUpToTheLimit) {
  Type(QStringLiteral("1a23"));
  EXPECT_EQ(box_->Text(), "123");
  EXPECT_EQ(refused_, 1);
  Type(QStringLiteral("4"));
  EXPECT_EQ(box_->Text(), "123");
  EXPECT_EQ(refused_, 2);
}

TEST_F(FieldsTest, AFullBoxTakesACharacterInPlaceOfTheSelection) {
  box_->setText(QStringLiteral("123"));
  box_->setSelection(1, 1);
  Type(QStringLiteral("9"));
  EXPECT_EQ(box_->Text(), "193");
  EXPECT_EQ(refused_, 0);
}

TEST_F(FieldsTest, ACharacterWithoutACodeIsNotAQuestionMark) {
  auto* const any = new FilteredEdit([](std::string_view, int key) { return key; }, 5, &form_);
  for (const QString& character : {QStringLiteral("?"), QStringLiteral("\u0416")}) {
    QTest::sendKeyEvent(QTest::Click, any, Qt::Key_unknown, character, Qt::NoModifier);
  }
  EXPECT_EQ(any->Text(), "?");
}

TEST_F(FieldsTest, APasteKeepsWhatPassesAndReportsTheRestOnce) {
  QApplication::clipboard()->setText(QStringLiteral("a1b2c"));
  box_->paste();
  EXPECT_EQ(box_->Text(), "12");
  EXPECT_EQ(refused_, 1);
}

TEST_F(FieldsTest, ATextSetByTheProgramIsNotFiltered) {
  box_->setText(QStringLiteral("longer text"));
  EXPECT_EQ(box_->Text(), "longer text");
  EXPECT_EQ(refused_, 0);
}

TEST_F(FieldsTest, OnlyAnotherFieldTakesTheFocusForGood) {
  for (const Qt::FocusReason reason :
       {Qt::PopupFocusReason, Qt::MenuBarFocusReason, Qt::ActiveWindowFocusReason}) {
    EXPECT_FALSE(LeavesField(QFocusEvent(QEvent::FocusOut, reason))) << reason;
  }
  next_->setFocus();
  EXPECT_EQ(left_, 1);
}

TEST_F(FieldsTest, CtrlTabTurnsTheTabsInBothDirections) {
  const auto turns = [](Qt::Key key, Qt::KeyboardModifiers held) {
    return TurnsTabs(QKeyEvent(QEvent::KeyPress, key, held));
  };
  EXPECT_TRUE(turns(Qt::Key_Tab, Qt::ControlModifier));
  EXPECT_TRUE(turns(Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier));
  EXPECT_FALSE(turns(Qt::Key_Tab, Qt::NoModifier));
  EXPECT_FALSE(turns(Qt::Key_Backtab, Qt::ShiftModifier));
}

TEST_F(FieldsTest, EnterGoesToTheNextFieldAsTabDoes) {
  new EnterAsTab(&form_);
  QTest::keyClick(box_, Qt::Key_Enter, Qt::KeypadModifier);
  EXPECT_TRUE(next_->hasFocus());
  box_->setFocus();
  QTest::keyClick(box_, Qt::Key_Return);
  EXPECT_TRUE(next_->hasFocus());
  box_->setFocus();
  QTest::keyClick(box_, Qt::Key_Return, Qt::ControlModifier);
  EXPECT_TRUE(box_->hasFocus());
}

TEST_F(FieldsTest, EnterKeepsItsMeaningInAnotherWindow) {
  new EnterAsTab(&form_);
  QLineEdit other;
  int entered = 0;
  QObject::connect(&other, &QLineEdit::returnPressed, [&] { ++entered; });
  other.show();
  QTest::keyClick(&other, Qt::Key_Return);
  EXPECT_EQ(entered, 1);
}

class ChoiceListTest : public ::testing::Test {
 protected:
  ChoiceListTest() {
    list_.addItems({QStringLiteral("one"), QStringLiteral(" two"), QStringLiteral("three")});
    list_.show();
    list_.activateWindow();
    list_.setFocus();
    QApplication::processEvents();
  }

  ChoiceList list_;
};

TEST_F(ChoiceListTest, TheWheelChangesNothingAndIsLeftToThePage) {
  QWheelEvent wheel({5, 5}, list_.mapToGlobal(QPointF(5, 5)), {}, {0, -120}, Qt::NoButton,
                    Qt::NoModifier, Qt::NoScrollPhase, false);
  QApplication::sendEvent(&list_, &wheel);
  EXPECT_FALSE(wheel.isAccepted());
  EXPECT_EQ(list_.currentIndex(), 0);
}

TEST_F(ChoiceListTest, AKeyThatWouldChangeTheChoiceOpensTheListInstead) {
  QTest::keyClick(&list_, Qt::Key_Down);
  EXPECT_TRUE(list_.view()->isVisible());
  EXPECT_EQ(list_.currentIndex(), 0);
}

TEST_F(ChoiceListTest, ALetterSearchesInTheOpenListAndSpaceOnlyOpensIt) {
  QTest::keyClick(&list_, Qt::Key_Space, Qt::NoModifier);
  EXPECT_TRUE(list_.view()->isVisible());
  EXPECT_EQ(list_.view()->currentIndex().row(), 0);
  list_.hidePopup();
  QTest::keyClick(&list_, Qt::Key_T);
  EXPECT_TRUE(list_.view()->isVisible());
  EXPECT_EQ(list_.view()->currentIndex().row(), 2);
  EXPECT_EQ(list_.currentIndex(), 0);
}

}  // namespace
}  // namespace vrx::testing
