#include "widgets/labels.h"

#include <QApplication>
#include <QBoxLayout>
#include <QHelpEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QStringList>
#include <QTest>
#include <QToolTip>
#include <initializer_list>

#include <gtest/gtest.h>

#include "widgets/fields.h"
#include "widgets/layout.h"

namespace vrx::testing {
namespace {

const QString kLongText = QStringLiteral("a text that is longer than the label");

std::unique_ptr<ElidedLabel> MakeLabel(const QString& text) {
  auto label = std::make_unique<ElidedLabel>();
  label->setText(text);
  label->resize(80, 30);
  label->show();
  QApplication::processEvents();
  return label;
}

QString TipOf(ElidedLabel& label) {
  QToolTip::hideText();
  QHelpEvent help(QEvent::ToolTip, {5, 5}, label.mapToGlobal(QPoint(5, 5)));
  QApplication::sendEvent(&label, &help);
  return QToolTip::text();
}

TEST(ElidedLabelTest, OnlyACutTextIsShownInATip) {
  EXPECT_EQ(TipOf(*MakeLabel(kLongText)), kLongText);
  EXPECT_EQ(TipOf(*MakeLabel(QStringLiteral("a"))), QString());
}

// Whether the columns [from, to) of the picture have one color.
bool IsBlank(const QImage& image, int from, int to) {
  for (int x = from; x < to; ++x) {
    for (int y = 0; y < image.height(); ++y) {
      if (image.pixel(x, y) != image.pixel(0, 0)) {
        return false;
      }
    }
  }
  return true;
}

TEST(ElidedLabelTest, ACutTextKeepsItsIndentOnTheSideOfItsAlignment) {
  constexpr int kIndent = 20;
  const auto label = MakeLabel(QString(60, QChar(u'M')));
  label->setIndent(kIndent);
  label->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  const QImage left = label->grab().toImage();
  label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  const QImage right = label->grab().toImage();
  EXPECT_TRUE(IsBlank(left, 0, kIndent));
  EXPECT_FALSE(IsBlank(left, left.width() - kIndent, left.width()));
  EXPECT_TRUE(IsBlank(right, right.width() - kIndent, right.width()));
  EXPECT_FALSE(IsBlank(right, 0, kIndent));
}

TEST(TextViewTest, PassesTheFocusOnToAControlThatCanTakeIt) {
  QWidget form;
  auto* const view = new TextView("view", QStringLiteral("View"), &form);
  auto* const button = new QPushButton(&form);
  view->PassFocusTo(*button);
  form.show();
  form.activateWindow();
  QApplication::processEvents();
  view->setFocus();
  EXPECT_TRUE(button->hasFocus());
  button->setEnabled(false);
  view->setFocus();
  EXPECT_TRUE(view->hasFocus());
}

// The Enter key goes from field to field on such a form.
class LinkLabelTest : public ::testing::Test {
 protected:
  LinkLabelTest() {
    auto* const column = new QVBoxLayout(&form_);
    for (QWidget* const part : std::initializer_list<QWidget*>{before_, label_, after_}) {
      column->addWidget(part);
    }
    label_->setText(QStringLiteral("a text <a href=\"place\">a link</a>"));
    QObject::connect(label_, &QLabel::linkActivated, [this](const QString& to) { opened_ += to; });
    form_.show();
    form_.activateWindow();
    QApplication::processEvents();
    before_->setFocus();
  }

  void Press(int key) { QTest::keyClick(QApplication::focusWidget(), static_cast<Qt::Key>(key)); }

  QWidget form_;
  EnterAsTab enter_{&form_};
  QLineEdit* before_ = new QLineEdit(&form_);
  LinkLabel* label_ = new LinkLabel(&form_);
  QLineEdit* after_ = new QLineEdit(&form_);
  QStringList opened_;
};

TEST_F(LinkLabelTest, OneTabReachesTheLinkAndEnterOpensIt) {
  Press(Qt::Key_Tab);
  EXPECT_TRUE(label_->hasFocus());
  Press(Qt::Key_Return);
  EXPECT_EQ(opened_, QStringList{QStringLiteral("place")});
  Press(Qt::Key_Enter);
  EXPECT_EQ(opened_.size(), 2);
  EXPECT_TRUE(label_->hasFocus());
}

TEST_F(LinkLabelTest, OneMoreTabLeavesIt) {
  Press(Qt::Key_Tab);
  Press(Qt::Key_Tab);
  EXPECT_TRUE(after_->hasFocus());
  Press(Qt::Key_Backtab);
  EXPECT_TRUE(label_->hasFocus());
  Press(Qt::Key_Return);
  EXPECT_EQ(opened_.size(), 1);
  Press(Qt::Key_Backtab);
  EXPECT_TRUE(before_->hasFocus());
}

TEST_F(LinkLabelTest, EnterOpensTheLinkAgainAfterAnotherWindow) {
  Press(Qt::Key_Tab);
  QLineEdit other;
  other.show();
  other.activateWindow();
  QApplication::processEvents();
  EXPECT_FALSE(label_->hasFocus());
  form_.activateWindow();
  QApplication::processEvents();
  ASSERT_TRUE(label_->hasFocus());
  Press(Qt::Key_Return);
  EXPECT_EQ(opened_.size(), 1);
}

TEST_F(LinkLabelTest, WithoutALinkItIsPassedBy) {
  label_->setText(QStringLiteral("a text"));
  Press(Qt::Key_Tab);
  EXPECT_TRUE(after_->hasFocus());
  label_->setFocus();
  Press(Qt::Key_Return);
  EXPECT_TRUE(after_->hasFocus());
}

class TwoPartRowTest : public ::testing::Test {
 protected:
  TwoPartRowTest() {
    first_->setFixedSize(100, 20);
    second_->setFixedSize(140, 20);
    row_.First()->addWidget(first_);
    row_.Second()->addWidget(second_);
    form_.show();
    QApplication::processEvents();
  }

  bool SideBySide() {
    QApplication::processEvents();
    return static_cast<QBoxLayout*>(row_.layout())->direction() == QBoxLayout::LeftToRight;
  }

  QWidget form_;
  TwoPartRow row_{&form_};
  QWidget* first_ = new QWidget(&row_);
  QWidget* second_ = new QWidget(&row_);
};

TEST_F(TwoPartRowTest, BreaksWhenItsPartsAndTheirGapAreWiderThanTheRow) {
  row_.resize(100 + kGroupSpacing + 140, 60);
  EXPECT_TRUE(SideBySide());
  row_.resize(100 + kGroupSpacing + 139, 60);
  EXPECT_FALSE(SideBySide());
}

TEST_F(TwoPartRowTest, BreaksWhenAControlGrows) {
  row_.resize(100 + kGroupSpacing + 140, 60);
  ASSERT_TRUE(SideBySide());
  first_->setFixedWidth(120);
  EXPECT_FALSE(SideBySide());
}

TEST_F(TwoPartRowTest, NeedsAtLeastTheWidthOfItsWiderPart) {
  EXPECT_EQ(row_.minimumSizeHint().width(), 140);
  first_->setFixedWidth(200);
  QApplication::processEvents();
  EXPECT_EQ(row_.minimumSizeHint().width(), 200);
}

}  // namespace
}  // namespace vrx::testing
