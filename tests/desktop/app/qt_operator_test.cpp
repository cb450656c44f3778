#include <QAbstractButton>
#include <QApplication>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>
#include <optional>

#include <gtest/gtest.h>

#include "desktop/app/qt_services.h"
#include "desktop/next_modal.h"

namespace vrx::testing {
namespace {

struct ShownBox {
  QMessageBox::Icon icon = QMessageBox::NoIcon;
  QMessageBox::StandardButtons buttons;
  QString title;
  QString text;
  QString details;
  Qt::TextFormat format = Qt::AutoText;
  int width = 0;
  int height = 0;
  bool button_in_sight = false;
  QMessageBox::StandardButton by_enter = QMessageBox::NoButton;
  QString below;  // the text
  qsizetype buttons_in_all = 0;
};

class OperatorBoxes : public ::testing::Test {
 protected:
  // Shows the box, keeps how it looked and presses a button of it.
  Answer Show(const MessageBox& box, QMessageBox::StandardButton press) {
    const NextModal modal([&](QWidget& widget) {
      auto& message = dynamic_cast<QMessageBox&>(widget);
      shown = {message.icon(),
               message.standardButtons(),
               message.windowTitle(),
               message.text(),
               message.detailedText(),
               message.textFormat(),
               message.width(),
               message.height(),
               message.rect().contains(message.button(press)->geometry()),
               message.standardButton(message.defaultButton()),
               message.informativeText(),
               message.buttons().size()};
      cursor = QApplication::overrideCursor() != nullptr;
      message.button(press)->click();
    });
    return op.ShowMessage(box);
  }

  QtOperator op;
  ShownBox shown;
  bool cursor = false;
};

TEST_F(OperatorBoxes, HasTitleTextIconAndCause) {
  const Answer answer = Show({.icon = Icon::kCritical,
                              .title = "Fatal Error",
                              .text = "It failed.",
                              .cause = "the disk is full"},
                             QMessageBox::Ok);
  EXPECT_EQ(answer, Answer::kOk);
  EXPECT_EQ(shown.icon, QMessageBox::Critical);
  EXPECT_EQ(shown.buttons, QMessageBox::Ok);
  EXPECT_EQ(shown.title, u"Fatal Error"_qs);
  EXPECT_EQ(shown.text, u"It failed."_qs);
  EXPECT_EQ(shown.details, u"the disk is full"_qs);
}

TEST_F(OperatorBoxes, ShowTheCauseOfAPortProblemBelowTheTextAndOfferSetup) {
  const MessageBox box{.title = "t",
                       .text = "No port.",
                       .cause = "/dev/ttyS1: no such device",
                       .port_help = PortHelp::kCauseAndSetup};
  const QSignalSpy wanted(&op, &QtOperator::PortSetupRequested);
  EXPECT_EQ(Show(box, QMessageBox::Ok), Answer::kOk);
  EXPECT_EQ(shown.text, u"No port."_qs);
  EXPECT_EQ(shown.below, u"/dev/ttyS1: no such device"_qs);
  EXPECT_EQ(shown.details, QString());
  EXPECT_EQ(shown.by_enter, QMessageBox::Ok);
  EXPECT_EQ(wanted.count(), 0);
  const NextModal escape([](QWidget& widget) { QTest::keyClick(&widget, Qt::Key_Escape); });
  EXPECT_EQ(op.ShowMessage(box), Answer::kOk);
  EXPECT_EQ(wanted.count(), 0);
  const NextModal setup([](QWidget& widget) {
    widget.findChild<QPushButton*>(QStringLiteral("cmdPortSetup"))->click();
  });
  EXPECT_EQ(op.ShowMessage(box), Answer::kOk);
  EXPECT_EQ(wanted.count(), 1);
}

TEST_F(OperatorBoxes, OfSetupItselfShowTheCauseWithoutAnotherSetup) {
  Show({.title = "t", .text = "x", .cause = "no reply", .port_help = PortHelp::kCause},
       QMessageBox::Ok);
  EXPECT_EQ(shown.below, u"no reply"_qs);
  EXPECT_EQ(shown.buttons_in_all, 1);
}

TEST_F(OperatorBoxes, EnterPressesTheGoingOnButton) {
  Show({.title = "t", .text = "x", .cause = "y"}, QMessageBox::Ok);
  EXPECT_EQ(shown.by_enter, QMessageBox::Ok);
  Show({.buttons = Buttons::kOkCancel, .title = "t", .text = "x"}, QMessageBox::Ok);
  EXPECT_EQ(shown.by_enter, QMessageBox::Ok);
  Show({.buttons = Buttons::kYesNo, .title = "t", .text = "x"}, QMessageBox::Yes);
  EXPECT_EQ(shown.by_enter, QMessageBox::Yes);
}

TEST_F(OperatorBoxes, EnterPressesTheRefusingButtonOfAQuestionThatRefusesByDefault) {
  Show({.buttons = Buttons::kYesNo, .title = "t", .text = "x", .refuses_by_default = true},
       QMessageBox::No);
  EXPECT_EQ(shown.by_enter, QMessageBox::No);
  Show({.buttons = Buttons::kOkCancel, .title = "t", .text = "x", .refuses_by_default = true},
       QMessageBox::Cancel);
  EXPECT_EQ(shown.by_enter, QMessageBox::Cancel);
}

TEST_F(OperatorBoxes, IsWideEnoughForItsTitle) {
  const std::string title = "Open Transaction File Error of some length";
  Show({.title = title, .text = "x", .cause = "y"}, QMessageBox::Ok);
  EXPECT_GT(shown.width,
            QFontMetrics(QApplication::font()).horizontalAdvance(QString::fromStdString(title)));
}

TEST_F(OperatorBoxes, StaysWithinTheScreenWithALongText) {
  std::string text;
  for (int line = 0; line < 200; ++line) {
    text += "Recipe without ration target: " + std::to_string(line) + "\r\n";
  }
  Show({.title = "Overwrite KRM", .text = text}, QMessageBox::Ok);
  EXPECT_LT(shown.height, QGuiApplication::primaryScreen()->availableSize().height());
  EXPECT_TRUE(shown.button_in_sight);
}

TEST_F(OperatorBoxes, WithoutATitleBearsTheApplications) {
  Show({.title = {}, .text = "text"}, QMessageBox::Ok);
  EXPECT_EQ(shown.title, u"VRX(2260)"_qs);
  EXPECT_EQ(shown.icon, QMessageBox::NoIcon);
  EXPECT_EQ(shown.details, QString());
}

TEST_F(OperatorBoxes, BreaksLinesAtCrLfAndKeepsOtherText) {
  Show({.title = "t",
        .text = "a < b\r\n\r\n<b>Gr\xc3\xbc\xc3\x9f"
                "e</b>",
        .cause = "x\r\ny"},
       QMessageBox::Ok);
  EXPECT_EQ(shown.text, u"a < b\n\n<b>Grüße</b>"_qs);
  EXPECT_EQ(shown.format, Qt::PlainText);
  EXPECT_EQ(shown.details, u"x\ny"_qs);
}

TEST_F(OperatorBoxes, EachIcon) {
  Show({.icon = Icon::kWarning, .title = "t", .text = "t"}, QMessageBox::Ok);
  EXPECT_EQ(shown.icon, QMessageBox::Warning);
  Show({.icon = Icon::kQuestion, .title = "t", .text = "t"}, QMessageBox::Ok);
  EXPECT_EQ(shown.icon, QMessageBox::Question);
  Show({.icon = Icon::kInformation, .title = "t", .text = "t"}, QMessageBox::Ok);
  EXPECT_EQ(shown.icon, QMessageBox::Information);
}

TEST_F(OperatorBoxes, GivesTheButtonPressed) {
  const MessageBox ok_cancel{.buttons = Buttons::kOkCancel, .title = "t", .text = "t"};
  EXPECT_EQ(Show(ok_cancel, QMessageBox::Ok), Answer::kOk);
  EXPECT_EQ(shown.buttons, QMessageBox::Ok | QMessageBox::Cancel);
  EXPECT_EQ(Show(ok_cancel, QMessageBox::Cancel), Answer::kCancel);
  const MessageBox yes_no{.buttons = Buttons::kYesNo, .title = "t", .text = "t"};
  EXPECT_EQ(Show(yes_no, QMessageBox::Yes), Answer::kYes);
  EXPECT_EQ(shown.buttons, QMessageBox::Yes | QMessageBox::No);
  EXPECT_EQ(Show(yes_no, QMessageBox::No), Answer::kNo);
}

Answer AnswerWhenClosed(Buttons buttons) {
  QtOperator op;
  const NextModal modal([](QWidget& widget) { widget.close(); });
  return op.ShowMessage({.buttons = buttons, .title = "t", .text = "t"});
}

TEST_F(OperatorBoxes, ClosedIsTheRefusingAnswer) {
  EXPECT_EQ(AnswerWhenClosed(Buttons::kOk), Answer::kOk);
  EXPECT_EQ(AnswerWhenClosed(Buttons::kOkCancel), Answer::kCancel);
  EXPECT_EQ(AnswerWhenClosed(Buttons::kYesNo), Answer::kNo);
}

TEST_F(OperatorBoxes, BusyCursorsNest) {
  op.SetBusy(true);
  op.SetBusy(true);
  ASSERT_NE(QApplication::overrideCursor(), nullptr);
  EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
  op.SetBusy(false);
  EXPECT_NE(QApplication::overrideCursor(), nullptr);
  op.SetBusy(false);
  EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST_F(OperatorBoxes, ABoxSuspendsTheBusyCursor) {
  op.SetBusy(true);
  Show({.title = "t", .text = "t"}, QMessageBox::Ok);
  EXPECT_FALSE(cursor);
  EXPECT_NE(QApplication::overrideCursor(), nullptr);
  op.SetBusy(false);
}

TEST_F(OperatorBoxes, StatusLineGoesToTheWindow) {
  QSignalSpy text(&op, &QtOperator::StatusLineChanged);
  QSignalSpy color(&op, &QtOperator::StatusColorChanged);
  op.SetStatusLine("Upload complete!");
  op.SetStatusColor(StatusColor::kGreen);
  op.SetStatusLine("");
  ASSERT_EQ(text.size(), 2);
  EXPECT_EQ(text[0][0].toString(), u"Upload complete!"_qs);
  EXPECT_EQ(text[1][0].toString(), QString());
  ASSERT_EQ(color.size(), 1);
  EXPECT_EQ(color[0][0].value<StatusColor>(), StatusColor::kGreen);
}

}  // namespace
}  // namespace vrx::testing
