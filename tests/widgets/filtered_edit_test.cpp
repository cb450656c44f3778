#include <QApplication>
#include <QClipboard>
#include <QInputMethodEvent>
#include <QMimeData>
#include <QTest>
#include <random>
#include <vector>

#include <gmock/gmock.h>

#include "base/text.h"
#include "feed/key_filters.h"
#include "widgets/fields.h"
#include "widgets/qt_text.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;

int NameKey(std::string_view /*text*/, int key) { return FilterNameKey(key); }

class FilteredEditTest : public ::testing::Test {
 protected:
  FilteredEditTest() { Make(NameKey, 6); }

  void Make(FilteredEdit::Filter filter, int limit) {
    edit_ = new FilteredEdit(std::move(filter), limit, &form_);
    edit_->show();
    form_.show();
    form_.activateWindow();
    QApplication::processEvents();
    edit_->setFocus();
    QObject::connect(edit_, &FilteredEdit::Refused, [this] { ++refused_; });
  }

  void Type(const QString& text) {
    for (const QChar character : text) {
      QTest::sendKeyEvent(QTest::Click, edit_, Qt::Key_unknown, QString(character), Qt::NoModifier);
    }
  }
  std::string Text() const { return edit_->Text(); }
  void Paste(const QString& text) {
    QApplication::clipboard()->setText(text);
    QTest::keySequence(edit_, QKeySequence::Paste);
  }

  QWidget form_;
  FilteredEdit* edit_ = nullptr;
  int refused_ = 0;
};

TEST_F(FilteredEditTest, InsertsTheCodeThatTheFilterGives) {
  Type(u"abd/4"_qs);
  EXPECT_EQ(Text(), "Abd/4");
  EXPECT_EQ(refused_, 0);
}

TEST_F(FilteredEditTest, ARefusedKeyChangesNothingAndIsReported) {
  Type(u"ab"_qs);
  edit_->setSelection(0, 1);
  Type(u"%"_qs);
  EXPECT_EQ(Text(), "Ab");
  EXPECT_EQ(edit_->selectedText(), u"A"_qs);
  EXPECT_EQ(refused_, 1);
}

TEST_F(FilteredEditTest, AKeyAtTheLimitIsRefused) {
  Type(u"STEERS7"_qs);
  EXPECT_EQ(Text(), "STEERS");
  EXPECT_EQ(refused_, 1);
}

TEST_F(FilteredEditTest, AKeyAtTheLimitMayReplaceTheSelection) {
  Type(u"STEERS"_qs);
  edit_->selectAll();
  Type(u"c"_qs);
  EXPECT_EQ(Text(), "C");
  EXPECT_EQ(refused_, 0);
}

TEST_F(FilteredEditTest, InsertsAtTheCursor) {
  Type(u"CRN"_qs);
  edit_->setCursorPosition(1);
  Type(u"o"_qs);
  EXPECT_EQ(Text(), "CORN");
  EXPECT_EQ(edit_->cursorPosition(), 2);
}

TEST_F(FilteredEditTest, TheFilterSeesTheTextBeforeTheKeyWithoutTheSelection) {
  std::vector<std::string> seen;
  Make(
      [&](std::string_view text, int key) {
        seen.emplace_back(text);
        return key;
      },
      6);
  Type(u"12"_qs);
  edit_->selectAll();
  Type(u"3"_qs);
  EXPECT_THAT(seen, ElementsAre("", "1", ""));
}

TEST_F(FilteredEditTest, TheFilterIsAlsoAskedAtTheLimit) {
  std::size_t length = 0;
  Make(
      [&](std::string_view text, int key) {
        length = text.size();
        return key;
      },
      2);
  Type(u"123"_qs);
  EXPECT_EQ(Text(), "12");
  EXPECT_EQ(length, 2U);
}

TEST_F(FilteredEditTest, KeysAndTextAreOneBytePerCharacter) {
  std::vector<int> keys;
  std::vector<std::size_t> lengths;
  Make(
      [&](std::string_view text, int key) {
        lengths.push_back(text.size());
        keys.push_back(key);
        return key;
      },
      16);
  Type(u"é€Жa"_qs);
  EXPECT_THAT(keys, ElementsAre(0xE9, 0x80, 0, 'a'));
  EXPECT_THAT(lengths, ElementsAre(0U, 1U, 2U, 2U));
  EXPECT_EQ(edit_->text(), u"é€a"_qs);
  EXPECT_EQ(refused_, 1);
}

TEST_F(FilteredEditTest, ACharacterOutsideTheCodePageIsNoQuestionMark) {
  Make([](std::string_view /*text*/, int key) { return key; }, 16);
  Type(u"?Ж"_qs);
  EXPECT_EQ(Text(), "?");
}

TEST_F(FilteredEditTest, APasteIsFilteredAsIfTyped) {
  Paste(u"b%d c!rn tail"_qs);
  EXPECT_EQ(Text(), "bd CRN");
  EXPECT_EQ(refused_, 1);
  EXPECT_EQ(edit_->cursorPosition(), 6);
}

TEST_F(FilteredEditTest, APasteInTheMiddleKeepsTheTextAround) {
  Type(u"CN"_qs);
  edit_->setCursorPosition(1);
  Paste(u"or"_qs);
  EXPECT_EQ(Text(), "CORN");
  EXPECT_EQ(edit_->cursorPosition(), 3);
  EXPECT_EQ(refused_, 0);
}

TEST_F(FilteredEditTest, APasteOverTheSelectionReplacesIt) {
  Type(u"STEERS"_qs);
  edit_->selectAll();
  Paste(u"hay"_qs);
  EXPECT_EQ(Text(), "HAY");
}

TEST_F(FilteredEditTest, APasteOfNothingThatPassesChangesNothing) {
  Type(u"CORN"_qs);
  edit_->selectAll();
  Paste(u"%%"_qs);
  EXPECT_EQ(Text(), "CORN");
  EXPECT_EQ(refused_, 1);
}

TEST_F(FilteredEditTest, ThePasteOfTheMenuIsFilteredToo) {
  QApplication::clipboard()->setText(u"corn%"_qs);
  edit_->paste();
  EXPECT_EQ(Text(), "CORN");
  EXPECT_EQ(refused_, 1);
}

TEST_F(FilteredEditTest, ADroppedTextIsFiltered) {
  QMimeData dropped;
  dropped.setText(u"hay!"_qs);
  QDragEnterEvent enter(QPoint(1, 1), Qt::CopyAction, &dropped, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(edit_, &enter);
  QDropEvent drop(QPointF(1, 1), Qt::CopyAction, &dropped, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(edit_, &drop);
  EXPECT_EQ(Text(), "HAY");
  EXPECT_EQ(refused_, 1);
}

TEST_F(FilteredEditTest, AComposedTextIsFiltered) {
  QInputMethodEvent composed;
  composed.setCommitString(u"dé"_qs);
  QApplication::sendEvent(edit_, &composed);
  EXPECT_EQ(Text(), "d");
  EXPECT_EQ(refused_, 1);
}

TEST_F(FilteredEditTest, WhatTheProgramSetsIsNotFiltered) {
  edit_->setText(u"Ünmapped name"_qs);
  EXPECT_EQ(edit_->text(), u"Ünmapped name"_qs);
  EXPECT_EQ(refused_, 0);
  Type(u"x"_qs);
  EXPECT_EQ(edit_->text(), u"Ünmapped name"_qs);
  EXPECT_EQ(refused_, 1);
}

TEST_F(FilteredEditTest, CharactersOfATooLongTextCanBeTakenAway) {
  edit_->setText(u"Ünmapped"_qs);
  edit_->setCursorPosition(8);
  QTest::keyClick(edit_, Qt::Key_Backspace);
  EXPECT_EQ(edit_->text(), u"Ünmappe"_qs);
  EXPECT_EQ(refused_, 0);
}

TEST_F(FilteredEditTest, UndoTakesATypedCharacterBack) {
  Type(u"corn"_qs);
  QTest::keySequence(edit_, QKeySequence::Undo);
  EXPECT_NE(Text(), "CORN");
  EXPECT_EQ(refused_, 0);
}

TEST_F(FilteredEditTest, ABackspaceIsReportedAndNeverFiltered) {
  int backspaces = 0;
  QObject::connect(edit_, &FilteredEdit::Backspace, [&] { ++backspaces; });
  Type(u"CO"_qs);
  QTest::keyClick(edit_, Qt::Key_Backspace);
  QTest::keyClick(edit_, Qt::Key_Backspace);
  QTest::keyClick(edit_, Qt::Key_Backspace);
  EXPECT_EQ(Text(), "");
  EXPECT_EQ(backspaces, 3);
  EXPECT_EQ(refused_, 0);
}

TEST_F(FilteredEditTest, AReadOnlyBoxTakesNothing) {
  edit_->setText(u"CORN"_qs);
  edit_->setReadOnly(true);
  Type(u"x"_qs);
  Paste(u"hay"_qs);
  EXPECT_EQ(Text(), "CORN");
}

TEST_F(FilteredEditTest, LeavingForAnotherFieldIsReportedAMenuIsNot) {
  auto* const other = new QLineEdit(&form_);
  other->show();
  int left = 0;
  QObject::connect(edit_, &FilteredEdit::Left, [&] { ++left; });
  for (const Qt::FocusReason reason :
       {Qt::PopupFocusReason, Qt::MenuBarFocusReason, Qt::ActiveWindowFocusReason}) {
    QFocusEvent out(QEvent::FocusOut, reason);
    QApplication::sendEvent(edit_, &out);
  }
  EXPECT_EQ(left, 0);
  other->setFocus(Qt::TabFocusReason);
  EXPECT_EQ(left, 1);
}

// However text is entered, the box holds only what the filter accepts and no more than its limit.
TEST_F(FilteredEditTest, HoldsOnlyWhatTheFilterLetsThroughWhateverIsDone) {
  std::mt19937 random(20260105);
  const auto any = [&](int count) {
    return std::uniform_int_distribution<int>(0, count - 1)(random);
  };
  const QString alphabet = u"abcdXYZ01/+-% .é€Ж\n\t"_qs;
  for (int step = 0; step < 3000; ++step) {
    QString text;
    for (int length = any(9); length > 0; --length) {
      text += alphabet.at(any(static_cast<int>(alphabet.size())));
    }
    const int end = static_cast<int>(edit_->text().size());
    edit_->setCursorPosition(any(end + 1));
    if (any(2) == 0) {
      edit_->setSelection(any(end + 1), any(4));
    }
    switch (any(5)) {
      case 0:
        QApplication::clipboard()->setText(text);
        edit_->paste();
        break;
      case 1:
        QTest::keyClick(edit_, any(2) == 0 ? Qt::Key_Backspace : Qt::Key_Delete);
        break;
      case 2:
        QTest::keySequence(edit_, any(2) == 0 ? QKeySequence::Undo : QKeySequence::Redo);
        break;
      default:
        Type(text.left(1).simplified());
    }
    const std::string held = Text();
    ASSERT_LE(held.size(), 6U);
    for (const char character : held) {
      ASSERT_EQ(FilterNameKey(character), character) << held;
    }
  }
}

}  // namespace
}  // namespace vrx::testing
