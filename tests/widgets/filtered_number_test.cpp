#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QTest>

#include <gmock/gmock.h>

#include "feed/key_filters.h"
#include "feed/recipe_columns.h"
#include "widgets/fields.h"
#include "widgets/refusal_tip.h"

namespace vrx::testing {
namespace {

// A box that explains its refusals; a number unless a test makes another one.
class FilteredNumber : public ::testing::Test {
 protected:
  FilteredNumber() {
    Make([](std::string_view /*text*/, int key) { return FilterDigitKey(key); },
         FilteredEdit::Takes::kNumber);
  }

  void Make(FilteredEdit::Filter filter, FilteredEdit::Takes takes) {
    edit_ = new FilteredEdit(std::move(filter), 6, &form_);
    edit_->Explain([](std::string_view text,
                      int key) { return std::string(text) + " refuses " + static_cast<char>(key); },
                   takes);
    form_.show();
    form_.activateWindow();
    edit_->show();
    QApplication::processEvents();
    edit_->setFocus();
    QObject::connect(edit_, &FilteredEdit::Refused, [this] { ++refused_; });
  }

  void MakeShare() {
    Make([](std::string_view text,
            int key) { return TypeLineKey(LineColumn::kIngredientPercent, text, key).code; },
         FilteredEdit::Takes::kNumber);
  }

  void Type(const QString& text) {
    for (const QChar character : text) {
      QTest::sendKeyEvent(QTest::Click, edit_, Qt::Key_unknown, QString(character), Qt::NoModifier);
    }
  }
  void Paste(const QString& text) {
    QApplication::clipboard()->setText(text);
    QTest::keySequence(edit_, QKeySequence::Paste);
  }
  std::string Text() const { return edit_->Text(); }

  static QLabel* Tip() {
    for (QWidget* const widget : QApplication::topLevelWidgets()) {
      if (widget->objectName() == QLatin1String("lblRefusal") && widget->isVisible()) {
        return static_cast<QLabel*>(widget);
      }
    }
    return nullptr;
  }
  static std::string TipText() { return Tip() == nullptr ? "" : Tip()->text().toStdString(); }

  QWidget form_;
  FilteredEdit* edit_ = nullptr;
  int refused_ = 0;
};

TEST_F(FilteredNumber, ARefusedKeyShowsItsReasonForAWhile) {
  Type(u"4x"_qs);
  EXPECT_EQ(TipText(), "4 refuses x");
  EXPECT_EQ(refused_, 1);
  EXPECT_TRUE(QTest::qWaitFor([] { return Tip() == nullptr; }, 20000));
}

TEST_F(FilteredNumber, TheTipIsBelowTheBoxAndTakesNoFocus) {
  Type(u"x"_qs);
  ASSERT_NE(Tip(), nullptr);
  EXPECT_GE(Tip()->y(), edit_->mapToGlobal(QPoint(0, edit_->height())).y());
  EXPECT_TRUE(edit_->hasFocus());
}

TEST_F(FilteredNumber, AFieldWithoutAReasonHasNoTip) {
  edit_->Explain({}, FilteredEdit::Takes::kText);
  Type(u"x"_qs);
  EXPECT_EQ(Tip(), nullptr);
  EXPECT_EQ(refused_, 1);
}

TEST_F(FilteredNumber, DigitsAfterARefusedDecimalKeyAreRefused) {
  for (const QChar mark : {QChar(u','), QChar(u'.'), QChar(0x066B)}) {
    edit_->setText({});
    refused_ = 0;
    Type(u"4"_qs + mark + u"5"_qs);
    EXPECT_EQ(Text(), "4");
    EXPECT_EQ(refused_, 2);
  }
}

TEST_F(FilteredNumber, AnyOtherKeyEndsTheRefusalOfDigits) {
  Type(u"4,5"_qs);
  QTest::keyClick(edit_, Qt::Key_Shift);
  Type(u"5"_qs);
  EXPECT_EQ(Text(), "4");
  QTest::keyClick(edit_, Qt::Key_End);
  Type(u"5"_qs);
  EXPECT_EQ(Text(), "45");
}

TEST_F(FilteredNumber, APastedTextIsTakenWholeOrNotAtAll) {
  Type(u"9"_qs);
  edit_->selectAll();
  for (const QString& text : {u"4,5"_qs, u"1,200"_qs, u"12a"_qs, u"1234567"_qs, u"-5"_qs}) {
    refused_ = 0;
    Paste(text);
    EXPECT_EQ(Text(), "9") << text.toStdString();
    EXPECT_EQ(refused_, 1);
  }
  Paste(u" 1200\n"_qs);
  EXPECT_EQ(Text(), "1200");
}

TEST_F(FilteredNumber, APastedShareTakesADecimalComma) {
  MakeShare();
  Paste(u"4,5"_qs);
  EXPECT_EQ(Text(), "4.5");
  edit_->selectAll();
  for (const QString& text : {u"4,555"_qs, u"4,5,5"_qs, u"101"_qs, u"4 5"_qs}) {
    Paste(text);
    EXPECT_EQ(Text(), "4.5") << text.toStdString();
  }
}

TEST_F(FilteredNumber, ALeadingDecimalKeyOfAShareTypesAZero) {
  MakeShare();
  Type(u",5"_qs);
  EXPECT_EQ(Text(), "0.5");
  Type(u",5"_qs);
  EXPECT_EQ(Text(), "0.5") << "a second decimal key is refused, and the digit after it";
}

TEST_F(FilteredNumber, ATextKeepsTheCharactersThatPass) {
  Make([](std::string_view /*text*/, int key) { return FilterNameKey(key); },
       FilteredEdit::Takes::kText);
  Paste(u"a.b,c"_qs);
  EXPECT_EQ(Text(), "AbC");
  EXPECT_EQ(TipText(), "A refuses .");
}

TEST_F(FilteredNumber, AClosedBoxSaysWhy) {
  edit_->setReadOnly(true);
  edit_->setToolTip(u"The file is write-protected"_qs);
  Type(u"5"_qs);
  EXPECT_EQ(TipText(), "The file is write-protected");
  EXPECT_EQ(Text(), "");
}

TEST_F(FilteredNumber, UndoWorksOnWhatWasTypedSinceItWasStored) {
  Type(u"45"_qs);
  QTest::keyClick(edit_, Qt::Key_Z, Qt::ControlModifier);
  EXPECT_NE(Text(), "45");
  QTest::keyClick(edit_, Qt::Key_Y, Qt::ControlModifier);
  EXPECT_EQ(Text(), "45");
  edit_->setModified(false);
  QTest::keyClick(edit_, Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(Text(), "45") << "it is stored: the key belongs to the window";
}

TEST(RefusalTip, OneTipAtATimeAndNoneWithoutAReason) {
  QWidget form;
  form.resize(100, 100);
  form.show();
  ShowRefusal(form, form.rect(), u"first"_qs);
  ShowRefusal(form, form.rect(), u"second"_qs);
  ShowRefusal(form, form.rect(), {});
  int tips = 0;
  for (const QWidget* const widget : QApplication::topLevelWidgets()) {
    tips += widget->objectName() == QLatin1String("lblRefusal") && widget->isVisible() ? 1 : 0;
  }
  EXPECT_EQ(tips, 1);
}

}  // namespace
}  // namespace vrx::testing
