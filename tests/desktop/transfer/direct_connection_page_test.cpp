#include <gmock/gmock.h>

#include "desktop/transfer/transfer_fixture.h"

namespace vrx::testing {
namespace {

using Ms = Milliseconds;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kWaiting = "Waiting to receive commands/data from K-2260 indicator.";
constexpr Ms kOpen{500};  // entering closes the port in order

class DirectConnectionPageTest : public TransferFixture {
 protected:
  // Times count from the opening of the port. An answer takes 1600 ms.
  void After(Ms delay, std::function<void()> event) {
    pump_.After(kOpen + delay, std::move(event));
  }
  void ArrivesAfter(Ms delay, const std::string& bytes) {
    After(delay, [this, bytes] { serial_.Arrives(bytes); });
  }
  // The click that connects; returns when the connection has ended, at the latest then.
  void ConnectFor(Ms delay) {
    ClickAfter(kOpen + delay, u"optConnection(0)"_qs);
    Click(u"optConnection(1)"_qs);
  }
  bool Direct() { return Find<QRadioButton>(u"optConnection(1)"_qs).isChecked(); }
};

TEST_F(DirectConnectionPageTest, ShowsTheMemoryAndLoadsInPlaceOfDownloads) {
  ShowTab();
  After(Ms{100}, [this] {
    EXPECT_TRUE(Direct());
    EXPECT_EQ(operator_.Status(), kWaiting);
    EXPECT_EQ(operator_.status_color, StatusColor::kBlue);
    EXPECT_TRUE(Visible(u"lblMemory"_qs));
    EXPECT_TRUE(Visible(u"lblMemorySize"_qs));
    EXPECT_FALSE(Visible(u"prgMemorySize"_qs));
    Click(u"cmdDownloadRecipeToKRM"_qs);
    for (const QString& open : {u"cmdOpenRecipeDB"_qs, u"cmdOpenRecipeBU"_qs}) {
      EXPECT_EQ(Find<QPushButton>(open).text(), u"Load Memory..."_qs);
    }
    EXPECT_FALSE(Visible(u"cmdDownloadRecipeDB"_qs));
    EXPECT_FALSE(Visible(u"cmdDownloadRecipeBU"_qs));
  });
  ConnectFor(Ms{1000});
  EXPECT_FALSE(Direct());
  EXPECT_FALSE(Visible(u"lblMemory"_qs));
  EXPECT_FALSE(Visible(u"lblMemorySize"_qs));
  EXPECT_FALSE(Visible(u"frmRecipeFile"_qs));
  EXPECT_EQ(operator_.Status(), "");
  Click(u"cmdDownloadRecipeToKRM"_qs);
  EXPECT_EQ(Find<QPushButton>(u"cmdOpenRecipeDB"_qs).text(), u"Open..."_qs);
  EXPECT_TRUE(Visible(u"cmdDownloadRecipeDB"_qs));
}

TEST_F(DirectConnectionPageTest, WhatArrivesIsCountedWithin200Milliseconds) {
  ShowTab();
  ArrivesAfter(Ms{100}, "{BAT/FED},L\r\n");
  After(Ms{100 + 250 + 200 + 1}, [this] { EXPECT_EQ(Text(u"lblMemorySize"_qs), u"13"_qs); });
  ConnectFor(Ms{2000});
}

TEST_F(DirectConnectionPageTest, AClickOnTheCountShowsTheBarAndBack) {
  ShowTab();
  ArrivesAfter(Ms{100}, std::string(1000, 'x'));
  After(Ms{1000}, [this] {
    QTest::mouseClick(&Find<QLabel>(u"lblMemorySize"_qs), Qt::LeftButton);
    EXPECT_FALSE(Visible(u"lblMemorySize"_qs));
    auto& bar = Find<QProgressBar>(u"prgMemorySize"_qs);
    EXPECT_TRUE(bar.isVisible());
    EXPECT_EQ(bar.value(), 1000);
    EXPECT_EQ(bar.maximum(), 65536);
    QTest::mouseClick(&bar, Qt::LeftButton);
    EXPECT_TRUE(Visible(u"lblMemorySize"_qs));
  });
  ConnectFor(Ms{2000});
}

// The second press of a double click goes to what the first click has shown.
TEST_F(DirectConnectionPageTest, ADoubleClickOnTheCountShowsTheBar) {
  ShowTab();
  After(Ms{1000}, [this] {
    auto& label = Find<QLabel>(u"lblMemorySize"_qs);
    auto& bar = Find<QProgressBar>(u"prgMemorySize"_qs);
    QTest::mouseClick(&label, Qt::LeftButton);
    QMouseEvent second(QEvent::MouseButtonDblClick, QPointF(2, 2), bar.mapToGlobal(QPointF(2, 2)),
                       Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&bar, &second);
    QTest::mouseRelease(&bar, Qt::LeftButton);
    EXPECT_TRUE(bar.isVisible());
    EXPECT_FALSE(label.isVisible());
    QTest::mouseClick(&bar, Qt::LeftButton);
    EXPECT_TRUE(label.isVisible());
  });
  ConnectFor(Ms{2000});
}

TEST_F(DirectConnectionPageTest, AnswersTheIndicatorWhileAnotherTabIsUsed) {
  ShowTab();
  ArrivesAfter(Ms{100}, "abc");
  After(Ms{1000}, [this] { Window().Tabs().SelectTab(kTabImport); });
  ArrivesAfter(Ms{1500}, "\x15");
  After(Ms{4000}, [this] {
    EXPECT_EQ(Tabs().currentIndex(), kTabImport);
    EXPECT_EQ(serial_.sent,
              "\x15\x1f"
              "abc\x1f");
    Window().Tabs().SelectTab(kTabDataTransfer);
  });
  ConnectFor(Ms{5000});
  EXPECT_THAT(operator_.status_lines, Contains("Received <NAK>, transmitted memory."));
}

TEST_F(DirectConnectionPageTest, AClearEmptiesPathAndWindow) {
  ShowTab();
  const std::filesystem::path backup = folder_.Write("A.RBU", "{DATA_IN},L\r\n");
  After(Ms{100}, [this, backup] {
    chooser_.Choose(backup);
    operator_.answers = {Answer::kYes};
    Click(u"cmdDownloadRecipeToKRM"_qs);
    Click(u"cmdOpenRecipeBU"_qs);
    EXPECT_EQ(Path(), backup.string());
    EXPECT_EQ(Data(), "{DATA_IN},L\n");
    EXPECT_EQ(operator_.Status(), "Waiting to receive commands/data from K2260 indicator.");
  });
  ArrivesAfter(Ms{4000}, "\x14");
  After(Ms{7000}, [this] {
    EXPECT_EQ(Path(), "");
    EXPECT_EQ(Data(), "");
    EXPECT_EQ(Text(u"lblMemorySize"_qs), u"0"_qs);
    EXPECT_EQ(operator_.Status(), kWaiting);
  });
  ConnectFor(Ms{8000});
  EXPECT_THAT(operator_.status_lines, Contains("Received <DC4>, cleared memory."));
}

TEST_F(DirectConnectionPageTest, UploadReadsTheMemoryAndReloadIsOffUntilMoreArrives) {
  ShowTab();
  ArrivesAfter(Ms{100}, "{BAT/FED},L\r\n");
  After(Ms{1000}, [this] {
    Click(u"cmdUploadDataFromKRM"_qs);
    EXPECT_EQ(operator_.Status(), "Memory read complete!  (13 bytes, 1 file)");
    EXPECT_THAT(Rows(), ElementsAre("Transaction file 1: not readable"));
    EXPECT_FALSE(Enabled(u"cmdReload"_qs));
    EXPECT_TRUE(HasFocus(u"cmdSaveFile"_qs));
  });
  ArrivesAfter(Ms{1500}, "{REPORT} a");
  After(Ms{2500}, [this] {
    EXPECT_TRUE(Enabled(u"cmdReload"_qs));
    EXPECT_TRUE(HasFocus(u"cmdReload"_qs));
    EXPECT_EQ(operator_.Status(), "");
    Click(u"cmdReload"_qs);
    EXPECT_THAT(Rows(), ElementsAre("Transaction file 1: not readable", "Text report 2: 1 line"));
  });
  ConnectFor(Ms{3000});
}

TEST_F(DirectConnectionPageTest, WhatArrivesTakesNoFocusFromAnotherTab) {
  ShowTab();
  ArrivesAfter(Ms{100}, "{BAT/FED},L\r\n");
  After(Ms{1000}, [this] {
    Click(u"cmdUploadDataFromKRM"_qs);
    Window().Tabs().SelectTab(kTabImport);
    Tabs().tabBar()->setFocus();
  });
  ArrivesAfter(Ms{1500}, "{REPORT} a");
  After(Ms{2500}, [this] {
    EXPECT_TRUE(Tabs().tabBar()->hasFocus());
    Window().Tabs().SelectTab(kTabDataTransfer);
  });
  ConnectFor(Ms{3000});
}

TEST_F(DirectConnectionPageTest, UploadOfAnEmptyMemoryIsReported) {
  ShowTab();
  After(Ms{100}, [this] {
    Click(u"cmdUploadDataFromKRM"_qs);
    EXPECT_EQ(LastBox().text, "There is no file data in the KRM memory. ");
    EXPECT_EQ(operator_.Status(), "No data files in memory!");
    EXPECT_FALSE(Visible(u"frmDataFiles"_qs));
  });
  ConnectFor(Ms{1000});
}

TEST_F(DirectConnectionPageTest, DataLeftInMemoryIsAskedAboutOnTheNextEntry) {
  ShowTab();
  ArrivesAfter(Ms{100}, "abc");
  ConnectFor(Ms{1000});
  operator_.answers = {Answer::kNo};
  ArrivesAfter(Ms{100}, "\x15");
  ConnectFor(Ms{5000});
  EXPECT_EQ(LastBox().title, "Clear Memory");
  EXPECT_EQ(LastBox().text, "Do you want to clear the current data in memory?");
  EXPECT_EQ(serial_.sent,
            "\x15\x1f"
            "abc\x1f");
}

TEST_F(DirectConnectionPageTest, APortThatCannotBeOpenedFallsBackToTheModule) {
  ShowTab();
  serial_.failing_property = "PortOpen";
  Click(u"optConnection(1)"_qs);
  EXPECT_EQ(LastBox().text, "Could not open serial port for direct-connection.");
  EXPECT_EQ(LastBox().title, "Error");
  EXPECT_EQ(LastBox().cause, "fake: PortOpen refused");
  EXPECT_FALSE(Direct());
  EXPECT_FALSE(Visible(u"lblMemory"_qs));
  serial_.failing_property.clear();
  ConnectFor(Ms{1000});
  EXPECT_THAT(operator_.status_lines, Contains(kWaiting));
}

TEST_F(DirectConnectionPageTest, ALostLineIsReportedAndFallsBackToTheModule) {
  ShowTab();
  After(Ms{300}, [this] { serial_.LoseLine(); });
  Click(u"optConnection(1)"_qs);
  EXPECT_EQ(LastBox().text, "The direct-connection has ended: Serial line lost.");
  EXPECT_FALSE(Direct());
  ConnectFor(Ms{1000});
  EXPECT_FALSE(Direct());
}

TEST_F(DirectConnectionPageTest, AClosingProgramEndsItWithoutAMessage) {
  ShowTab();
  After(Ms{300}, [this] { pump_.closing = true; });
  Click(u"optConnection(1)"_qs);
  EXPECT_THAT(operator_.boxes, IsEmpty());
  EXPECT_FALSE(serial_.PortOpen());
}

TEST_F(DirectConnectionPageTest, TheModuleChosenWhileThePortOpensStaysChosen) {
  ShowTab();
  ClickAfter(Ms{100}, u"optConnection(0)"_qs);
  Click(u"optConnection(1)"_qs);
  EXPECT_FALSE(Direct());
  EXPECT_FALSE(serial_.PortOpen());
  EXPECT_FALSE(Visible(u"lblMemory"_qs));
}

TEST_F(DirectConnectionPageTest, TheIndicatorChosenWhileTheModuleIsComesBack) {
  ShowTab();
  ClickAfter(kOpen + Ms{1000}, u"optConnection(0)"_qs);
  ClickAfter(kOpen + Ms{1100}, u"optConnection(1)"_qs);
  pump_.After(kOpen + Ms{5000}, [this] {
    EXPECT_TRUE(Direct());
    EXPECT_TRUE(serial_.PortOpen());
    Click(u"optConnection(0)"_qs);
  });
  Click(u"optConnection(1)"_qs);
  EXPECT_FALSE(Direct());
  EXPECT_FALSE(serial_.PortOpen());
}

TEST_F(DirectConnectionPageTest, CannotBeChosenDuringAnUpload) {
  ShowTab();
  ModuleHolds("{BAT/FED},L\r\n");
  ClickAfter(Ms{2000}, u"optConnection(1)"_qs);
  Click(u"cmdUploadDataFromKRM"_qs);
  EXPECT_FALSE(Direct());
  EXPECT_FALSE(Visible(u"lblMemory"_qs));
  EXPECT_EQ(operator_.status_color, StatusColor::kGreen);
  EXPECT_TRUE(Enabled(u"optConnection(1)"_qs));
}

TEST_F(DirectConnectionPageTest, AnotherClickOnTheChosenConnectionIsIgnored) {
  ShowTab();
  Click(u"optConnection(0)"_qs);
  EXPECT_THAT(operator_.status_lines, IsEmpty());
  After(Ms{100}, [this] { Click(u"optConnection(1)"_qs); });
  ArrivesAfter(Ms{500}, "abc");
  After(Ms{1200}, [this] { EXPECT_EQ(Text(u"lblMemorySize"_qs), u"3"_qs); });
  ConnectFor(Ms{2000});
}

}  // namespace
}  // namespace vrx::testing
