#include <QProgressBar>

#include <gmock/gmock.h>

#include "desktop/transfer/line_fixture.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::string kReceivedBatch = "{BAT/FED},L\r\n[BAT],B,1\r\n\r\n";
const StatusLook kWaitingStatus{"Waiting to receive commands/data from K-2260 indicator.",
                                kStatusBlue};
const StatusLook kLoaded{"Waiting to receive commands/data from K2260 indicator.", kStatusBlue};
const StatusLook kCleared{"Received <DC4>, cleared memory.", kStatusBlue};
const StatusLook kSent{"Received <NAK>, transmitted memory.", kStatusBlue};
const StatusLook kSentAll{"Received <FS>, transmitted memory.", kStatusBlue};

std::string Hex(const std::string& bytes) {
  constexpr const char* kDigits = "0123456789ABCDEF";
  std::string hex;
  for (const char byte : bytes) {
    const auto value = static_cast<unsigned char>(byte);
    hex += {' ', kDigits[value / 16], kDigits[value % 16]};
  }
  return hex;
}
std::string Sends(const std::string& bytes) { return "send" + Hex(bytes) + "\n"; }
std::string Expects(const std::string& bytes) { return "expect" + Hex(bytes) + "\n"; }

class DirectOnLine : public LineFixture {
 protected:
  // Connects until the indicator has played its script to the end.
  void ConnectUntilTheEndOf(Program& indicator) {
    const auto end = Once([&] { return indicator.Ended(); }, [this] { ConnectModule(); });
    ConnectDirectly();
    EXPECT_EQ(indicator.Wait(), 0) << indicator.Err();
    EXPECT_FALSE(Direct());
  }
  // Connects, and `act` ends it.
  void ConnectAnd(std::function<void()> act) {
    const auto begin =
        Once([this] { return Status() == kWaitingStatus && line_.PortOpen(); }, std::move(act));
    ConnectDirectly();
  }
  std::string MemorySize() { return Text(u"lblMemorySize"_qs).toStdString(); }
};

TEST_F(DirectOnLine, TheIndicatorSendsAndFetchesWhileAnotherTabIsUsed) {
  const auto indicator =
      Indicator("wait 1500\n" + Sends(kReceivedBatch) + "wait 1000\n" + Sends("\x15") +
                Expects("\x15\x1f" + kReceivedBatch + "\x1f") + "wait 600\n" + Sends("\x14") +
                Expects("\x14\x1f") + "wait 1500\n");
  int tab_changes = 0;
  const auto leave = Once([this] { return Status() == kWaitingStatus; },
                          [&] { Window().Tabs().SelectTab(kTabImport); });
  const auto back = Once([this] { return WasShown(kCleared); },
                         [&] {
                           tab_changes += Tabs().currentIndex() == kTabImport ? 1 : 0;
                           Window().Tabs().SelectTab(kTabDataTransfer);
                         });
  // The program ends its script, not the line: it is the operator who goes back to the module.
  const auto end = Once([this] { return WasShown(kCleared) && MemorySize() == "0"; },
                        [this] { ConnectModule(); });
  ConnectDirectly();
  EXPECT_EQ(indicator->Wait(), 0) << indicator->Err();
  EXPECT_EQ(tab_changes, 1);
  EXPECT_TRUE(WasShown(kSent));
  EXPECT_THAT(boxes_.boxes, IsEmpty());
}

TEST_F(DirectOnLine, ACommandInsideABurstTakesEffectAtItsPlace) {
  const auto indicator =
      Indicator("wait 1500\n" + Sends("\x15") + Expects("\x15\x1f\x1f") + "wait 600\n" +
                Sends("abc\x15"
                      "def") +
                Expects("\x15\x1f"
                        "abc\x1f") +
                "wait 1200\n" + Sends("\x1c") +
                Expects("\x1c\x1f"
                        "abcdef\x1f") +
                "wait 60000\n");
  const auto end = Once([this] { return WasShown(kSentAll); },
                        [&] {
                          EXPECT_EQ(MemorySize(), "6");
                          EXPECT_TRUE(indicator->Err().empty()) << indicator->Err();
                          EXPECT_FALSE(indicator->Ended());
                          ConnectModule();
                        });
  ConnectDirectly();
  EXPECT_TRUE(WasShown(kSentAll));
  EXPECT_EQ(Status(), (StatusLook{"", kStatusBlue}));
}

TEST_F(DirectOnLine, WhatWasReceivedIsReadAndSaved) {
  const auto indicator =
      Indicator("wait 1500\n" + Sends(kReceivedBatch + "\f page") + "wait 60000\n");
  const auto end =
      Once([this] { return MemorySize() == std::to_string(kReceivedBatch.size() + 6); },
           [&] {
             Upload();
             EXPECT_EQ(Status(), (StatusLook{"Memory read complete!  (32 bytes, 2 "
                                             "files)",
                                             kStatusGreen}));
             EXPECT_THAT(Rows(),
                         ElementsAre("Transaction file 1: not readable", "Text report 2: 1 line"));
             EXPECT_FALSE(Enabled(u"cmdReload"_qs));
             EXPECT_TRUE(HasFocus(u"cmdSaveFile"_qs));
             ClickBox(0);
             chooser_.Choose(folder_ / "A.QXT");
             Click(u"cmdSaveFile"_qs);
             EXPECT_EQ(ReadAll(folder_ / "A.QXT"), kReceivedBatch);
             ConnectModule();
           });
  ConnectDirectly();
  EXPECT_TRUE(fs::exists(folder_ / "A.QXT"));
}

TEST_F(DirectOnLine, UnknownTextInMemoryIsShownInRed) {
  const auto indicator = Indicator("wait 1500\n" + Sends("xyz") + "wait 60000\n");
  const auto end = Once([this] { return MemorySize() == "3"; },
                        [&] {
                          Upload();
                          EXPECT_TRUE(WasShown({"No recognized data file!", kStatusRed}));
                          EXPECT_EQ(Status().text, "No data files in memory!");
                          EXPECT_EQ(Data(), "xyz");
                          EXPECT_EQ(boxes_.Last().title, "Rescue File");
                          EXPECT_FALSE(Visible(u"frmDataFiles"_qs));
                          ConnectModule();
                        });
  ConnectDirectly();
  EXPECT_EQ(Data(), "");
}

TEST_F(DirectOnLine, AnEmptyMemoryIsReportedInABoxAndInTheStatus) {
  const auto indicator = Indicator("wait 60000\n");
  ConnectAnd([this] {
    Upload();
    EXPECT_EQ(boxes_.Last().title, "KRM Error");
    EXPECT_EQ(boxes_.Last().icon, Icon::kWarning);
    EXPECT_EQ(boxes_.Last().text, "There is no file data in the KRM memory. ");
    EXPECT_TRUE(WasShown({"No data files in memory!", kStatusBlue}));
    EXPECT_THAT(Rows(), IsEmpty());
    ConnectModule();
  });
  EXPECT_EQ(boxes_.boxes.size(), 1U);
}

TEST_F(DirectOnLine, ABackupIsLoadedAfterTheQuestionAndFetched) {
  const std::string backup = "{DATA_IN},L\r\n";
  const auto indicator = Indicator(Expects("\x14\x1f") + "wait 1000\n" + Sends("\x15") +
                                   Expects("\x15\x1f" + backup + "\x1f") + "wait 1500\n");
  const auto end = Once([this] { return WasShown(kSent); }, [this] { ConnectModule(); });
  ConnectAnd([&] {
    Click(u"cmdDownloadRecipeToKRM"_qs);
    EXPECT_EQ(Find<QPushButton>(u"cmdOpenRecipeBU"_qs).text(), u"Load Memory..."_qs);
    EXPECT_FALSE(Visible(u"cmdDownloadRecipeBU"_qs));
    chooser_.Choose(folder_.Write("A.RBU", backup));
    boxes_.answers = {QMessageBox::Yes};
    Click(u"cmdOpenRecipeBU"_qs);
    EXPECT_EQ(boxes_.Last().title, "Overwrite KRM");
    EXPECT_TRUE(WasShown(kLoaded));
  });
  EXPECT_TRUE(WasShown(kSent));
  EXPECT_EQ(indicator->Wait(), 0) << indicator->Err();
}

TEST_F(DirectOnLine, ADatabaseIsLoadedAfterTheQuestionUnlessItIsRefused) {
  const auto indicator = Indicator(Expects("\x14\x1f") + "wait 60000\n");
  const fs::path database = MakeUserFile("YARD.RDB", DatabaseKind::kRecipe);
  ConnectAnd([&] {
    Click(u"cmdDownloadRecipeToKRM"_qs);
    boxes_.answers = {QMessageBox::No, QMessageBox::Yes};
    chooser_.Choose(database);
    Click(u"cmdOpenRecipeDB"_qs);
    EXPECT_FALSE(WasShown(kLoaded));
    EXPECT_EQ(MemorySize(), "0");
    chooser_.Choose(database);
    Click(u"cmdOpenRecipeDB"_qs);
    EXPECT_EQ(boxes_.Last().text,
              "Are you sure you want to overwrite all data in the KRM module with recipe data from "
              "the YARD.RDB database?");
    EXPECT_TRUE(WasShown(kLoaded));
    QTest::qWait(250);  // the longest delay of the display
    EXPECT_EQ(MemorySize(), std::to_string(Find<DataWindow>(u"txtDataWindow"_qs).Bytes().size()));
    ConnectModule();
  });
  EXPECT_TRUE(WasShown(kLoaded));
  EXPECT_TRUE(indicator->Err().empty()) << indicator->Err();
}

TEST_F(DirectOnLine, MemoryOfBeforeIsAskedAboutAndKeptOrEmptied) {
  {
    const auto indicator = Indicator("wait 1500\n" + Sends("abc") + "wait 60000\n");
    const auto end = Once([this] { return MemorySize() == "3"; }, [this] { ConnectModule(); });
    ConnectDirectly();
  }
  const auto answered = [this](QMessageBox::StandardButton answer, const std::string& memory) {
    shown_.clear();
    boxes_.answers = {answer};
    const auto indicator = Indicator("wait 1500\n" + Sends("\x15") +
                                     Expects("\x15\x1f" + memory + "\x1f") + "wait 1000\n");
    const auto end = Once([this] { return WasShown(kSent); }, [this] { ConnectModule(); });
    ConnectDirectly();
    EXPECT_EQ(indicator->Wait(), 0) << indicator->Err();
    EXPECT_EQ(boxes_.Last().title, "Clear Memory");
    EXPECT_EQ(boxes_.Last().icon, Icon::kQuestion);
    EXPECT_EQ(boxes_.Last().buttons, Buttons::kYesNo);
    EXPECT_EQ(boxes_.Last().text, "Do you want to clear the current data in memory?");
  };
  answered(QMessageBox::No, "abc");
  answered(QMessageBox::Yes, "");
}

TEST_F(DirectOnLine, APortWithoutADeviceFallsBackToTheModule) {
  fs::create_symlink(folder_ / "unplugged", link_);
  ConnectDirectly();
  EXPECT_EQ(boxes_.Last().title, "Error");
  EXPECT_EQ(boxes_.Last().icon, Icon::kCritical);
  EXPECT_EQ(boxes_.Last().text, "Could not open serial port for direct-connection.");
  EXPECT_EQ(boxes_.Last().cause, (folder_ / "unplugged").string() + ": no such device");
  EXPECT_FALSE(Direct());
  EXPECT_FALSE(Visible(u"lblMemory"_qs));
  TheNextUploadWorks();
}

TEST_F(DirectOnLine, ALinePulledWhileItWaitsIsReportedAndTheNextConnectionWorks) {
  {
    auto indicator = Indicator("wait 60000\n");
    ConnectAnd([&] { indicator.reset(); });
    EXPECT_EQ(boxes_.Last().text, "The direct-connection has ended: Serial line lost.");
    EXPECT_FALSE(Direct());
  }
  const auto indicator = Indicator("wait 60000\n");
  bool stood = false;
  ConnectAnd([&] {
    stood = Direct();
    ConnectModule();
  });
  EXPECT_TRUE(stood);
}

// The message box of the answer comes before that of the connection.
TEST_F(DirectOnLine, ALinePulledInAnAnswerIsReportedAndTheModuleWorksNext) {
  auto indicator = Indicator("wait 1500\n" + Sends("\x15") + "wait 60000\n");
  Later(Ms{2800}, [&] { indicator.reset(); });
  ConnectDirectly();
  ASSERT_FALSE(boxes_.boxes.empty());
  EXPECT_EQ(boxes_.Last().text, "The direct-connection has ended: Serial line lost.");
  EXPECT_FALSE(Direct());
  TheNextUploadWorks();
}

TEST_F(DirectOnLine, TheModuleWorksAfterIt) {
  {
    const auto indicator = Indicator("wait 1500\n" + Sends("abc") + "wait 60000\n");
    const auto end = Once([this] { return MemorySize() == "3"; }, [this] { ConnectModule(); });
    ConnectDirectly();
  }
  EXPECT_FALSE(Visible(u"lblMemory"_qs));
  EXPECT_FALSE(Visible(u"lblMemorySize"_qs));
  EXPECT_FALSE(Visible(u"prgMemorySize"_qs));
  EXPECT_EQ(Status(), (StatusLook{"", kStatusBlue}));
  TheNextUploadWorks();
}

}  // namespace
}  // namespace vrx::testing
