#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QProgressBar>
#include <QTest>

#include <gtest/gtest.h>

#include "desktop/main_window/panels.h"
#include "desktop/main_window/turned_off.h"

namespace vrx::testing {
namespace {

class TransferStatusTest : public ::testing::Test {
 protected:
  TransferStatusTest() {
    panel_.ShowMemory(true);
    panel_.show();
  }
  template <typename Part>
  Part& Find(const QString& name) {
    return *panel_.findChild<Part*>(name);
  }
  static void Send(QWidget& part, QEvent::Type type) {
    QMouseEvent event(type, QPointF(2, 2), part.mapToGlobal(QPointF(2, 2)), Qt::LeftButton,
                      Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(&part, &event);
  }

  TransferStatusPanel panel_{nullptr};
  QLabel& size_ = Find<QLabel>(QStringLiteral("lblMemorySize"));
  QProgressBar& bar_ = Find<QProgressBar>(QStringLiteral("prgMemorySize"));
};

TEST_F(TransferStatusTest, AClickTurnsBytesAndBar) {
  QTest::mouseClick(&size_, Qt::LeftButton);
  EXPECT_FALSE(size_.isVisible());
  EXPECT_TRUE(bar_.isVisible());
  QTest::mouseClick(&bar_, Qt::LeftButton);
  EXPECT_TRUE(size_.isVisible());
  EXPECT_FALSE(bar_.isVisible());
}

TEST_F(TransferStatusTest, ADoubleClickIsOneClick) {
  QTest::mouseClick(&size_, Qt::LeftButton);
  Send(bar_, QEvent::MouseButtonDblClick);
  Send(bar_, QEvent::MouseButtonRelease);
  EXPECT_TRUE(bar_.isVisible());
  QTest::mouseClick(&bar_, Qt::LeftButton);
  EXPECT_FALSE(bar_.isVisible());
}

TEST_F(TransferStatusTest, ACauseBelongsToTheStatusItWasGivenFor) {
  auto& status = Find<QLabel>(QStringLiteral("lblStatusWindow"));
  panel_.SetStatusLine(QStringLiteral("failed"));
  panel_.SetStatusCause(QStringLiteral("no reply"));
  EXPECT_EQ(status.toolTip(), QStringLiteral("no reply"));
  panel_.SetStatusLine(QStringLiteral("done"));
  EXPECT_EQ(status.toolTip(), QString());
}

class TurnedOffTest : public ::testing::Test {
 protected:
  TurnedOffTest() {
    form_.show();
    form_.activateWindow();
    QApplication::processEvents();
    one_->setFocus();
  }

  QWidget form_;
  QLineEdit* one_ = new QLineEdit(&form_);
  QLineEdit* other_ = new QLineEdit(&form_);
  TurnedOff turned_off_{form_};
};

TEST_F(TurnedOffTest, AControlGetsItsFocusBackOnce) {
  turned_off_.Turn({one_}, false);
  EXPECT_FALSE(one_->isEnabled());
  EXPECT_TRUE(form_.hasFocus());
  turned_off_.Turn({one_}, true);
  EXPECT_TRUE(one_->hasFocus());
  form_.setFocus();
  turned_off_.Turn({other_}, true);
  EXPECT_TRUE(form_.hasFocus());
}

TEST_F(TurnedOffTest, AFocusThatWentElsewhereStaysThere) {
  turned_off_.Turn({one_}, false);
  other_->setFocus();
  turned_off_.Turn({one_}, true);
  EXPECT_TRUE(other_->hasFocus());
}

}  // namespace
}  // namespace vrx::testing
