#include <sstream>

#include <gtest/gtest.h>

#include "ctl/session.h"

namespace vrx {
namespace {

class TerminalOperatorTest : public ::testing::Test {
 protected:
  Answer Show(const MessageBox& box, TerminalOperator::Settings settings,
              const std::string& typed = "") {
    std::istringstream in(typed);
    ProgressLine line(err, settings.err_is_terminal);
    return TerminalOperator(in, err, line, settings).ShowMessage(box);
  }

  std::ostringstream err;
  const MessageBox yes_no = {.buttons = Buttons::kYesNo, .title = "Clear KRM", .text = "Sure?"};
  const MessageBox ok_cancel = {
      .buttons = Buttons::kOkCancel, .title = "Weight Units Error", .text = "Go on?"};
};

TEST_F(TerminalOperatorTest, PrintsTitleTextAndCause) {
  EXPECT_EQ(Show({.title = "Error", .text = "One.\r\nTwo.", .cause = "disk full"}, {}),
            Answer::kOk);
  EXPECT_EQ(err.str(), "Error: One.\nTwo.\ncause: disk full\n");
}

TEST_F(TerminalOperatorTest, EndsATextAtItsLastLetter) {
  Show({.title = "Error", .text = "One. \r\n \r\n"}, {});
  EXPECT_EQ(err.str(), "Error: One.\n");
}

TEST_F(TerminalOperatorTest, PrintsNoCauseIfThereIsNone) {
  Show({.title = "KRM Test", .text = "KRM Successfully Detected."}, {});
  EXPECT_EQ(err.str(), "KRM Test: KRM Successfully Detected.\n");
}

TEST_F(TerminalOperatorTest, YesPressesTheGoingOnButton) {
  EXPECT_EQ(Show(yes_no, {.yes = true}), Answer::kYes);
  EXPECT_EQ(Show(ok_cancel, {.yes = true}), Answer::kOk);
}

TEST_F(TerminalOperatorTest, WithoutATerminalTheRefusingButtonIsPressed) {
  EXPECT_EQ(Show(yes_no, {}, "Yes\n"), Answer::kNo);
  EXPECT_EQ(Show(ok_cancel, {}, "OK\n"), Answer::kCancel);
}

TEST_F(TerminalOperatorTest, ATerminalIsAsked) {
  EXPECT_EQ(Show(yes_no, {.in_is_terminal = true}, "yes\n"), Answer::kYes);
  EXPECT_EQ(Show(yes_no, {.in_is_terminal = true}, "y\n"), Answer::kYes);
  EXPECT_EQ(Show(ok_cancel, {.in_is_terminal = true}, " ok \n"), Answer::kOk);
}

TEST_F(TerminalOperatorTest, AnythingButTheGoingOnWordRefuses) {
  for (const char* typed : {"", "\n", "no\n", "yesterday\n"}) {
    EXPECT_EQ(Show(yes_no, {.in_is_terminal = true}, typed), Answer::kNo) << typed;
    EXPECT_EQ(Show(ok_cancel, {.in_is_terminal = true}, typed), Answer::kCancel) << typed;
  }
}

TEST_F(TerminalOperatorTest, StatusTextsOfErrorAndSuccessAreMessages) {
  std::istringstream in;
  ProgressLine line(err, false);
  TerminalOperator op(in, err, line, {});
  op.SetStatusLine("Standby...");
  EXPECT_EQ(err.str(), "");
  op.SetStatusColor(StatusColor::kRed);
  op.SetStatusLine("Error: KRM not detected");
  EXPECT_EQ(err.str(), "Error: KRM not detected\n");
  EXPECT_TRUE(op.StatusIsError());
}

TEST_F(TerminalOperatorTest, BusyTextsAreDrawnOnATerminal) {
  std::istringstream in;
  ProgressLine line(err, true);
  TerminalOperator op(in, err, line, {.err_is_terminal = true});
  op.SetStatusLine("Standby...");
  EXPECT_EQ(err.str(), "Standby...");
  op.SetStatusColor(StatusColor::kGreen);
  op.SetStatusLine("Upload complete!");
  EXPECT_EQ(err.str(), "Standby...\r\x1B[KUpload complete!\n");
}

TEST_F(TerminalOperatorTest, ReportsACauseOnce) {
  std::istringstream in;
  ProgressLine line(err, false);
  TerminalOperator op(in, err, line, {});
  op.ShowMessage({.title = "KRM Error", .text = "Not detected.", .cause = "no reply"});
  op.ReportCause("no reply");
  op.ReportCause("");
  EXPECT_EQ(err.str(), "KRM Error: Not detected.\ncause: no reply\n");
  op.ReportCause("the line is gone");
  EXPECT_EQ(err.str(), "KRM Error: Not detected.\ncause: no reply\ncause: the line is gone\n");
}

TEST_F(TerminalOperatorTest, ReportsACauseAnewWithAnotherMessage) {
  std::istringstream in;
  ProgressLine line(err, false);
  TerminalOperator op(in, err, line, {});
  for (int time = 0; time < 2; ++time) {
    op.ShowMessage({.title = "KRM Error", .text = "Not detected.", .cause = "no reply"});
  }
  EXPECT_EQ(
      err.str(),
      "KRM Error: Not detected.\ncause: no reply\nKRM Error: Not detected.\ncause: no reply\n");
}

TEST_F(TerminalOperatorTest, BeepsOnATerminalOnly) {
  std::istringstream in;
  ProgressLine line(err, false);
  TerminalOperator(in, err, line, {}).Beep();
  EXPECT_EQ(err.str(), "");
  TerminalOperator(in, err, line, {.err_is_terminal = true}).Beep();
  EXPECT_EQ(err.str(), "\a");
}

TEST(ProgressLine, ShowsThePercentageOfTheRange) {
  std::ostringstream err;
  {
    ProgressLine line(err, true);
    line.SetProgressMessage("Copying");
    line.SetProgressRange(1000);
    line.SetProgressValue(5);  // less than a percent more: not drawn again
    line.SetProgressValue(500);
  }
  EXPECT_EQ(err.str(), "Copying\r\x1B[KCopying  0%\r\x1B[KCopying  50%\r\x1B[K");
}

TEST(ProgressLine, BeginsAnewWithEachRangeAndMessage) {
  std::ostringstream err;
  ProgressLine line(err, true);
  line.SetProgressMessage("Copying");
  line.SetProgressRange(10);
  line.SetProgressValue(5);
  err.str("");
  line.SetProgressRange(20);
  EXPECT_EQ(err.str(), "\r\x1B[KCopying  0%");
  err.str("");
  line.SetProgressMessage("Checking");
  EXPECT_EQ(err.str(), "\r\x1B[KChecking");
}

TEST(ProgressLine, DrawsNothingElsewhere) {
  std::ostringstream err;
  {
    ProgressLine line(err, false);
    line.SetProgressMessage("Copying");
    line.SetProgressRange(2);
    line.SetProgressValue(2);
    EXPECT_EQ(line.Message(), "Copying");
  }
  EXPECT_EQ(err.str(), "");
}

}  // namespace
}  // namespace vrx
