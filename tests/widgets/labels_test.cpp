#include "widgets/labels.h"

#include <QApplication>
#include <QBoxLayout>
#include <QHelpEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QToolTip>

#include <gtest/gtest.h>

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
