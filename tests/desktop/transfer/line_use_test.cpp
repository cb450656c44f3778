// One command at a time on the serial line, and what an indicator sent is never lost.

#include <gmock/gmock.h>

#include "desktop/setup/setup_form.h"
#include "desktop/transfer/transfer_fixture.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using Ms = Milliseconds;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class LineUseTest : public TransferFixture {
 protected:
  bool Enabled(const QString& name) {
    auto* const action = Window().findChild<QAction*>(name);
    return action != nullptr ? action->isEnabled() : TransferFixture::Enabled(name);
  }
  std::vector<std::string> Off(const std::vector<QString>& names) {
    std::vector<std::string> off;
    for (const QString& name : names) {
      if (!Enabled(name)) {
        off.push_back(name.toStdString());
      }
    }
    return off;
  }
  // What would start another command.
  const std::vector<QString> starters_{u"cmdDownloadRecipeToKRM"_qs,
                                       u"cmdUploadDataFromKRM"_qs,
                                       u"cmdOpenRecipeDB"_qs,
                                       u"cmdDownloadRecipeDB"_qs,
                                       u"cmdOpenRecipeBU"_qs,
                                       u"cmdDownloadRecipeBU"_qs,
                                       u"cmdReload"_qs,
                                       u"optConnection(1)"_qs,
                                       u"mnuTransferUpload"_qs,
                                       u"mnuTransferDownload"_qs,
                                       u"mnuToolsSetup"_qs};

  // Times count from the click; the port is open 500 ms later.
  void ConnectFor(Ms time) {
    ClickAfter(time, u"optConnection(0)"_qs);
    Click(u"optConnection(1)"_qs);
  }
  void ArrivesAfter(Ms delay, const std::string& bytes) {
    pump_.After(delay, [this, bytes] { serial_.Arrives(bytes); });
  }
  // Empty where there is none.
  fs::path RescueFile() {
    for (const fs::directory_entry& entry : fs::directory_iterator(app_folder_->DefaultAppPath())) {
      if (entry.path().extension() == ".KRM") {
        return entry.path();
      }
    }
    return {};
  }
};

TEST_F(LineUseTest, EveryStarterIsOffDuringAnUploadAndOnAfterIt) {
  ShowTab();
  ModuleHolds("{BAT/FED},L\r\n");
  std::vector<std::string> off;
  pump_.After(Ms{1200}, [&] { off = Off(starters_); });
  Click(u"cmdUploadDataFromKRM"_qs);
  EXPECT_THAT(off, SizeIs(starters_.size()));
  EXPECT_THAT(Off(starters_), IsEmpty());
}

TEST_F(LineUseTest, EveryStarterIsOffDuringADownloadAndOnAfterItFails) {
  ShowTab();
  chooser_.Choose(folder_.Write("A.RBU", "{DATA_IN},L\r\n"));
  Click(u"cmdDownloadRecipeToKRM"_qs);
  Click(u"cmdOpenRecipeBU"_qs);
  operator_.answers = {Answer::kYes};
  std::vector<std::string> off;
  pump_.After(Ms{1200}, [&] { off = Off(starters_); });
  Click(u"cmdDownloadRecipeBU"_qs);
  EXPECT_EQ(operator_.status_color, StatusColor::kRed);
  EXPECT_THAT(off, SizeIs(starters_.size()));
  EXPECT_THAT(Off(starters_), IsEmpty());
}

TEST_F(LineUseTest, TheFocusReturnsToTheButtonThatWasPressed) {
  ShowTab();
  ModuleHolds("{BAT/FED},L\r\n");
  Find<QPushButton>(u"cmdUploadDataFromKRM"_qs).setFocus();
  Click(u"cmdUploadDataFromKRM"_qs);
  EXPECT_TRUE(HasFocus(u"cmdUploadDataFromKRM"_qs));
}

TEST_F(LineUseTest, TheFocusStaysWhereTheOperatorPutItMeanwhile) {
  ShowTab();
  ModuleHolds("{BAT/FED},L\r\n");
  pump_.After(Ms{1200}, [this] { Find<QWidget>(u"txtDataWindow"_qs).setFocus(); });
  Click(u"cmdUploadDataFromKRM"_qs);
  EXPECT_TRUE(HasFocus(u"txtDataWindow"_qs));
}

TEST_F(LineUseTest, ADirectConnectionLeavesItsOwnControlsOn) {
  ShowTab();
  std::vector<std::string> waiting;
  std::vector<std::string> answering;
  pump_.After(Ms{1000}, [&] { waiting = Off(starters_); });
  ArrivesAfter(Ms{1500}, "\x15");
  pump_.After(Ms{2500}, [&] { answering = Off(starters_); });
  ConnectFor(Ms{6000});
  EXPECT_THAT(waiting, IsEmpty());
  EXPECT_THAT(answering, ElementsAre("cmdOpenRecipeDB", "cmdDownloadRecipeDB", "cmdOpenRecipeBU",
                                     "cmdDownloadRecipeBU", "mnuToolsSetup"));
}

TEST_F(LineUseTest, SetupStartsNoCommandDuringADirectConnection) {
  ShowTab();
  std::vector<bool> enabled;
  pump_.After(Ms{1000}, [&] {
    QTimer::singleShot(0, qApp, [&] {
      auto* const form = qobject_cast<SetupForm*>(QApplication::activeModalWidget());
      ASSERT_NE(form, nullptr);
      for (const char* name : {"cmdTestKRM", "cmdClearKRM", "cmdSetBaud"}) {
        enabled.push_back(form->findChild<QPushButton*>(QLatin1String(name))->isEnabled());
      }
      form->close();
    });
    Choose(u"mnuToolsSetup"_qs);
  });
  ConnectFor(Ms{6000});
  EXPECT_THAT(enabled, ElementsAre(false, false, false));
}

// Neutral words after a failure.
TEST_F(LineUseTest, NeutralMessagesAreBlue) {
  ShowTab();
  Click(u"cmdUploadDataFromKRM"_qs);
  ASSERT_EQ(operator_.status_color, StatusColor::kRed);
  chooser_.Choose(folder_.Write("A.RBU", "{DATA_IN},L\r\n"));
  Click(u"cmdDownloadRecipeToKRM"_qs);
  Click(u"cmdOpenRecipeBU"_qs);
  EXPECT_EQ(operator_.Status(), "Recipe backup-file opened, ready to download.");
  EXPECT_EQ(operator_.status_color, StatusColor::kBlue);
}

TEST_F(LineUseTest, ReloadIsOnAgainForTheModuleAfterADirectUpload) {
  ShowTab();
  ArrivesAfter(Ms{600}, "{REPORT}x");
  pump_.After(Ms{2000}, [this] {
    Click(u"cmdUploadDataFromKRM"_qs);
    EXPECT_FALSE(Enabled(u"cmdReload"_qs));
  });
  ConnectFor(Ms{3000});
  ModuleHolds("{BAT/FED},L\r\n");
  Click(u"cmdUploadDataFromKRM"_qs);
  EXPECT_TRUE(Enabled(u"cmdReload"_qs));
}

// Received data.

TEST_F(LineUseTest, MemoryWithoutAFileIsRescuedOnce) {
  ShowTab();
  ArrivesAfter(Ms{600}, "scribble");
  pump_.After(Ms{2000}, [this] {
    Click(u"cmdUploadDataFromKRM"_qs);
    Click(u"cmdUploadDataFromKRM"_qs);
  });
  ConnectFor(Ms{3000});
  ASSERT_FALSE(RescueFile().empty());
  EXPECT_EQ(ReadAll(RescueFile()), "scribble");
  ASSERT_THAT(operator_.boxes, SizeIs(1));
  EXPECT_EQ(LastBox().text,
            "What the indicator sent is kept in the file " + RescueFile().string() + ".");
}

TEST_F(LineUseTest, ARescueFileIsOpenedAsIfItHadJustBeenReceived) {
  ShowTab();
  const fs::path file = folder_.Write("RESCUE-20260105-173000.KRM", "{BAT/FED},L\r\n\fpage");
  chooser_.Choose(file);
  Click(u"cmdDownloadRecipeToKRM"_qs);
  Click(u"cmdOpenRecipeBU"_qs);
  EXPECT_EQ(operator_.Status(), "Memory read complete!  (18 bytes, 2 files)");
  EXPECT_EQ(operator_.status_color, StatusColor::kGreen);
  EXPECT_THAT(Rows(), ElementsAre("Transaction file 1: not readable", "Text report 2: 1 line"));
  EXPECT_TRUE(Visible(u"frmDataFiles"_qs));
  EXPECT_FALSE(Visible(u"frmRecipeBackup"_qs));
  EXPECT_EQ(Path(), file.string());
  ClickBox(0);
  chooser_.Choose(folder_ / "A.QXT");
  Click(u"cmdSaveFile"_qs);
  EXPECT_EQ(ReadAll(folder_ / "A.QXT"), "{BAT/FED},L\r\n");
  // It is no backup to be downloaded.
  Click(u"cmdDownloadRecipeToKRM"_qs);
  Click(u"cmdDownloadRecipeBU"_qs);
  EXPECT_THAT(LastBox().text, HasSubstr("You must first 'Open' the Recipe backup-file"));
}

TEST_F(LineUseTest, LeavingWithUnsavedDataAsksFirst) {
  ShowTab();
  ArrivesAfter(Ms{600}, "{REPORT}x");
  ConnectFor(Ms{3000});
  operator_.answers = {Answer::kNo, Answer::kNo};
  Window().close();
  Choose(u"mnuFileExit"_qs);
  EXPECT_EQ(LastBox().text,
            "What the indicator sent has not been saved.\r\n"
            "Leave the program, and keep it in a rescue file?");
  EXPECT_EQ(LastBox().buttons, Buttons::kYesNo);
  EXPECT_THAT(exits_, IsEmpty());
  EXPECT_TRUE(RescueFile().empty());
  operator_.answers = {Answer::kYes};
  Window().close();
  EXPECT_THAT(exits_, ElementsAre(ExitReason::kCloseBox));
  EXPECT_EQ(ReadAll(RescueFile()), "{REPORT}x");
}

TEST_F(LineUseTest, LeavingWhileTheProgramClosesAsksNothing) {
  ShowTab();
  ArrivesAfter(Ms{600}, "{REPORT}x");
  ConnectFor(Ms{3000});
  pump_.closing = true;
  Window().close();
  EXPECT_THAT(operator_.boxes, IsEmpty());
  EXPECT_THAT(exits_, ElementsAre(ExitReason::kCloseBox));
}

TEST_F(LineUseTest, LeavingWithSavedDataAsksNothing) {
  ShowTab();
  ArrivesAfter(Ms{600}, "{REPORT}x{BAT/FED},L");
  pump_.After(Ms{2000}, [this] {
    Click(u"cmdUploadDataFromKRM"_qs);
    for (const int row : {0, 1}) {
      ClickBox(row);
      chooser_.Choose(folder_ / (row == 0 ? "A.TXT" : "A.QXT"));
      Click(u"cmdSaveFile"_qs);
    }
  });
  ConnectFor(Ms{3000});
  Choose(u"mnuFileExit"_qs);
  EXPECT_THAT(operator_.boxes, IsEmpty());
  EXPECT_THAT(exits_, ElementsAre(ExitReason::kFileExit));
}

TEST_F(LineUseTest, AnEndOfTheSessionKeepsTheDataWithoutAQuestion) {
  ShowTab();
  ArrivesAfter(Ms{600}, "{REPORT}x");
  ConnectFor(Ms{3000});
  Main().Unload();
  EXPECT_THAT(operator_.boxes, IsEmpty());
  EXPECT_EQ(ReadAll(RescueFile()), "{REPORT}x");
}

}  // namespace
}  // namespace vrx::testing
