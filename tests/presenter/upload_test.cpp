#include "presenter/upload.h"

#include <algorithm>

#include <gmock/gmock.h>

#include "link/link_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class UploadTest : public LinkFixture {
 protected:
  void ModuleHolds(const std::string& memory) {
    serial.WillAnswer(kEcho19200);
    serial.WillAnswer("\x15\x1F" + memory + "\x1F");
  }

  std::vector<std::string> Rows() const {
    std::vector<std::string> texts;
    for (const DataFileRow& row : tab.data_files) {
      texts.push_back(row.text + (row.checked ? " [x]" : ""));
    }
    return texts;
  }

  TransferState tab;
  Upload upload{krm, tab, pump, op, settings};
};

TEST_F(UploadTest, OneFileIsReportedInTheSingular) {
  ModuleHolds("{BAT/FED},L\r\n");
  upload.UploadDataFromKRM();
  EXPECT_EQ(op.Status(), "Upload complete!  (16 bytes, 1 file)");
  EXPECT_EQ(op.status_color, StatusColor::kGreen);
  EXPECT_THAT(Rows(), ElementsAre("Transaction file 1: not readable"));
  EXPECT_TRUE(tab.data_files_frame_visible);
  EXPECT_EQ(tab.transfer_block, "{BAT/FED},L\r\n");
  EXPECT_EQ(tab.data_window, "");
  EXPECT_EQ(op.beeps, 0);
  EXPECT_FALSE(op.busy);
}

TEST_F(UploadTest, SeveralAreReportedInThePlural) {
  ModuleHolds("{BAT/FED},L\r\n{DATA_IN},L\r\n\fpage");
  upload.UploadDataFromKRM();
  EXPECT_EQ(op.Status(), "Upload complete!  (34 bytes, 3 files)");
  EXPECT_THAT(Rows(), ElementsAre("Transaction file 1: not readable",
                                  "Recipe backup file 2: 0 ingredients, 0 recipes, 0 pens",
                                  "Text report 3: 1 line"));
}

TEST_F(UploadTest, EmptyModuleEndsRedWithAnEmptyList) {
  tab.data_files = {{.file = 1, .text = "of an earlier upload"}};
  tab.selected_row = 0;
  ModuleHolds("");
  upload.UploadDataFromKRM();
  EXPECT_EQ(op.Status(), "The KRM buffer is empty");
  EXPECT_EQ(op.status_color, StatusColor::kRed);
  EXPECT_THAT(tab.data_files, IsEmpty());
  EXPECT_EQ(tab.selected_row, -1);
}

TEST_F(UploadTest, ClearsTheTabFirst) {
  tab.data_window = "old text";
  tab.file_path = "/old/path";
  tab.recipe_frames_visible = true;
  ModuleHolds("");
  upload.UploadDataFromKRM();
  EXPECT_EQ(tab.data_window, "");
  EXPECT_EQ(tab.file_path, "");
  EXPECT_FALSE(tab.recipe_frames_visible);
  EXPECT_EQ(op.status_lines.front(), "");
  EXPECT_EQ(op.status_lines.at(1), "Standby...");
}

TEST_F(UploadTest, UnknownMemoryIsShownWhole) {
  ModuleHolds("scribble");
  upload.UploadDataFromKRM();
  EXPECT_EQ(op.Status(), "No recognized data file!");
  EXPECT_EQ(krm.GS_KRM_ErrMsg(), "No recognized data file!");
  EXPECT_EQ(op.status_color, StatusColor::kRed);
  EXPECT_EQ(tab.data_window, "scribble");
  EXPECT_THAT(tab.data_files, IsEmpty());
  EXPECT_FALSE(tab.data_files_frame_visible);
}

TEST_F(UploadTest, MissingModuleIsReportedInABox) {
  EXPECT_EQ(upload.UploadFromModule(), 0);
  ASSERT_EQ(op.boxes.size(), 1U);
  EXPECT_EQ(op.boxes[0].title, "KRM Error");
  EXPECT_EQ(op.boxes[0].text,
            "The KRM was not detected. Please verify that the module is connected. Check cable and "
            "connector and then try again.");
  EXPECT_EQ(op.boxes[0].icon, Icon::kWarning);
  EXPECT_EQ(op.boxes[0].cause, "no reply");
  EXPECT_EQ(op.boxes[0].port_help, PortHelp::kCauseAndSetup);
  EXPECT_EQ(op.Status(), "Error: KRM not detected");
  EXPECT_EQ(op.status_color, StatusColor::kRed);
  EXPECT_EQ(op.beeps, 1);
  EXPECT_FALSE(op.busy);
}

TEST_F(UploadTest, MissingPortIsTheCauseOfTheBox) {
  serial.failing_property = "PortOpen";
  EXPECT_EQ(upload.UploadFromModule(), 0);
  ASSERT_EQ(op.boxes.size(), 1U);
  EXPECT_EQ(op.boxes[0].cause, "fake: PortOpen refused");
}

TEST_F(UploadTest, FailedDumpIsReportedInTheStatusLine) {
  serial.WillAnswer(kEcho19200);
  EXPECT_EQ(upload.UploadFromModule(), 0);
  EXPECT_EQ(op.Status(), "Error: Command response failed");
  EXPECT_EQ(op.status_color, StatusColor::kRed);
  EXPECT_THAT(op.boxes, IsEmpty());
  EXPECT_FALSE(op.busy);
}

TEST_F(UploadTest, TerminatorInsideTheDataIsReportedInTheStatusLine) {
  ModuleHolds("{BAT/FED}\x1F,L");
  EXPECT_EQ(upload.UploadFromModule(), 0);
  EXPECT_EQ(op.Status(), "Invalid terminators");
  EXPECT_EQ(op.status_color, StatusColor::kRed);
}

TEST_F(UploadTest, TerminatorInsideTheDataIsReportedWhenTheRestComesLater) {
  serial.WillAnswer(kEcho19200);
  serial.WillAnswer(FakeSerialControl::Answer{{Ms{10}, "\x15\x1F{BAT/FED},L\x1F"},
                                              {Ms{200}, "the rest of the file"}});
  tab.transfer_block = "of an earlier upload";
  EXPECT_EQ(upload.UploadFromModule(), 0);
  EXPECT_EQ(op.Status(), "Invalid terminators");
  EXPECT_EQ(op.status_color, StatusColor::kRed);
  EXPECT_EQ(tab.transfer_block, "");
}

class UploadWithStrays : public UploadTest {
 protected:
  // What follows the dump, each chunk after its time from the terminator.
  void StraysFollow(const FakeSerialControl::Answer& strays) {
    serial.WillAnswer(kEcho19200);
    FakeSerialControl::Answer answer{{Ms{10}, "\x15\x1F{BAT/FED},L\r\n\x1F"}};
    for (const FakeSerialControl::Chunk& chunk : strays) {
      answer.push_back({Ms{10} + chunk.delay, chunk.bytes});
    }
    serial.WillAnswer(answer);
    upload.UploadDataFromKRM();
  }
  void IsWhole() {
    EXPECT_EQ(op.Status(), "Upload complete!  (16 bytes, 1 file)");
    EXPECT_EQ(tab.transfer_block, "{BAT/FED},L\r\n");
  }
  void IsRefused() {
    EXPECT_EQ(op.Status(), "Invalid terminators");
    EXPECT_EQ(op.status_color, StatusColor::kRed);
    EXPECT_EQ(tab.transfer_block, "");
    EXPECT_THAT(tab.data_files, IsEmpty());
  }
};

TEST_F(UploadWithStrays, UpTo16BytesAreIgnoredWheneverTheyCome) {
  for (const Ms delay : {Ms{0}, Ms{1}, Ms{249}, Ms{600}}) {
    StraysFollow({{delay, std::string(16, '~')}});
    IsWhole();
  }
}

TEST_F(UploadWithStrays, MoreThan16BytesAreRefusedWheneverTheyCome) {
  for (const Ms delay : {Ms{0}, Ms{1}, Ms{249}, Ms{600}}) {
    StraysFollow({{delay, std::string(17, '~')}});
    IsRefused();
  }
}

TEST_F(UploadWithStrays, BytesOfSeveralArrivalsAreCountedTogether) {
  StraysFollow({{Ms{50}, "12345678"}, {Ms{100}, "12345678"}});
  IsWhole();
  StraysFollow({{Ms{50}, "12345678"}, {Ms{100}, "123456789"}});
  IsRefused();
}

TEST_F(UploadWithStrays, OneTerminatorAmongThemIsRefused) {
  for (const Ms delay : {Ms{0}, Ms{100}}) {
    StraysFollow({{delay, "\x1F"}});
    IsRefused();
  }
}

TEST_F(UploadWithStrays, TheTransferReadsThemWithDtrRaised) {
  StraysFollow({});
  IsWhole();
  // The reply ends 10 ms after its command went out.
  EXPECT_EQ(serial.TimesOf("DTR off").back() - serial.TimesOf("out").back(), Ms{10 + 250});
}

TEST_F(UploadTest, AWrongFirstByteIsReportedWithItsCause) {
  serial.WillAnswer(kEcho19200);
  serial.WillAnswer("?\x1F{BAT/FED},L\r\n\x1F");
  upload.UploadDataFromKRM();
  EXPECT_EQ(op.Status(), "Error: unexpected reply");
  EXPECT_EQ(op.status_color, StatusColor::kRed);
}

TEST_F(UploadTest, ReloadIsOnAfterAnUploadFromTheModule) {
  tab.reload_enabled = false;  // as after reading the memory of the direct connection
  ModuleHolds("{REPORT}");
  upload.UploadDataFromKRM();
  EXPECT_TRUE(tab.reload_enabled);
}

TEST_F(UploadTest, CountsInTheStatusLineEveryHalfSecond) {
  serial.WillAnswer(kEcho19200);
  serial.WillAnswer(FakeSerialControl::Answer{
      {Ms{100}, "\x15\x1F{REPORT}"}, {Ms{600}, std::string(100, 'x')}, {Ms{1700}, "\x1F"}});
  upload.UploadFromModule();
  // The check ends after 1510 ms and leaves a count of 2; the reply begins 1100 ms later.
  EXPECT_THAT(
      op.status_lines,
      ElementsAre("Standby...", "Uploading from KRM....  2 bytes",
                  "Uploading from KRM....  2 bytes",
                  "Uploading from KRM....  10 bytes, 0% of the memory",
                  "Uploading from KRM....  110 bytes, 0% of the memory, at most 10 min 6 s left",
                  "Uploading from KRM....  110 bytes, 0% of the memory, at most 15 min 9 s left",
                  "Uploading from KRM....  111 bytes, 0% of the memory, at most 20 min 1 s left",
                  "Upload complete!  (111 bytes, 1 file)"));
  pump.Pump(Ms{5000});
  EXPECT_EQ(op.Status(), "Upload complete!  (111 bytes, 1 file)");
}

class CanceledUpload : public UploadTest {
 protected:
  // Cancels at that time after the start.
  void UploadAndCancelAfter(Ms moment) {
    pump.After(moment, [this] { krm.Guard().Cancel(); });
    upload.UploadDataFromKRM();
  }
};

TEST_F(CanceledUpload, EndsAtOnceAndKeepsTheDataThatArrived) {
  serial.WillAnswer(kEcho19200);
  serial.WillAnswer(FakeSerialControl::Answer{{Ms{100}, "\x15\x1F{BAT/FED},L"}});
  UploadAndCancelAfter(Ms{4000});
  EXPECT_EQ(pump.Now(), Ms{4000});
  EXPECT_EQ(op.Status(), "Upload canceled after 13 bytes.");
  EXPECT_EQ(op.status_color, StatusColor::kRed);
  EXPECT_EQ(upload.CanceledPart(), "{BAT/FED},L");
  EXPECT_THAT(op.boxes, IsEmpty());
  EXPECT_THAT(tab.data_files, IsEmpty());
  EXPECT_FALSE(op.busy);
  EXPECT_TRUE(krm.Guard().Free());
  EXPECT_FALSE(krm.Guard().Cancelable());
}

TEST_F(CanceledUpload, AsksNothingWhileItLooksForTheModule) {
  UploadAndCancelAfter(Ms{700});
  EXPECT_EQ(pump.Now(), Ms{700});
  EXPECT_EQ(op.Status(), "Upload canceled after 0 bytes.");
  EXPECT_EQ(upload.CanceledPart(), "");
  EXPECT_THAT(op.boxes, IsEmpty());
}

TEST_F(CanceledUpload, KeepsNothingOfTheFramingAlone) {
  serial.WillAnswer(kEcho19200);
  serial.WillAnswer(FakeSerialControl::Answer{{Ms{100}, "\x15\x1F"}});
  UploadAndCancelAfter(Ms{4000});
  EXPECT_EQ(upload.CanceledPart(), "");
}

TEST_F(CanceledUpload, IsFollowedByACompleteOne) {
  serial.WillAnswer(kEcho19200);
  serial.WillAnswer(FakeSerialControl::Answer{{Ms{100}, "\x15\x1F{BAT/FED},L"}});
  UploadAndCancelAfter(Ms{4000});
  ModuleHolds("{BAT/FED},L\r\n");
  upload.UploadDataFromKRM();
  EXPECT_EQ(op.Status(), "Upload complete!  (16 bytes, 1 file)");
  EXPECT_EQ(upload.CanceledPart(), "");
}

TEST_F(CanceledUpload, IsCompleteIfTheReplyWasWhole) {
  ModuleHolds("{BAT/FED},L\r\n");
  // The reply ends 2520 ms after the start.
  UploadAndCancelAfter(Ms{2600});
  EXPECT_EQ(op.Status(), "Upload complete!  (16 bytes, 1 file)");
}

TEST_F(UploadTest, IsBusyAndBlueWhileItRuns) {
  ModuleHolds("{REPORT}");
  op.status_color = StatusColor::kRed;
  bool busy = false;
  StatusColor color = StatusColor::kGreen;
  pump.After(Ms{2000}, [&] {
    busy = op.busy;
    color = op.status_color;
  });
  upload.UploadFromModule();
  EXPECT_TRUE(busy);
  EXPECT_EQ(color, StatusColor::kBlue);
}

TEST_F(UploadTest, LostLineIsReportedAndTheWaitEnds) {
  serial.WillAnswer(kEcho19200);
  serial.WillAnswer(FakeSerialControl::Answer{{Ms{100}, "\x15\x1F{REP"}});
  pump.After(Ms{3000}, [&] { serial.LoseLine(); });
  EXPECT_EQ(upload.UploadFromModule(), 0);
  EXPECT_EQ(op.Status(), "Error: Serial line lost");
  EXPECT_EQ(pump.Now(), Ms{3000});
}

TEST_F(UploadTest, ClosingProgramIsAskedNothing) {
  pump.After(Ms{300}, [&] { pump.closing = true; });
  EXPECT_EQ(upload.UploadFromModule(), 0);
  EXPECT_EQ(pump.Now(), Ms{300});
  EXPECT_THAT(op.boxes, IsEmpty());
  EXPECT_EQ(op.Status(), "Error: The program is closing");
  EXPECT_FALSE(op.busy);
}

TEST_F(UploadTest, HundredthFileIsReportedAndTheOthersAreListed) {
  const std::string memory(101, '\f');
  ModuleHolds(memory);
  upload.UploadDataFromKRM();
  EXPECT_EQ(op.status_color, StatusColor::kRed);
  EXPECT_THAT(op.Status(), HasSubstr("more than 99 data files"));
  EXPECT_EQ(tab.data_files.size(), 99U);
  EXPECT_EQ(tab.data_window, memory);
}

TEST_F(UploadTest, AClickTurnsTheCheckOfItsRowOverAndShowsItsFile) {
  ModuleHolds("{BAT/FED},L\r\n{DATA_IN},L\r\n\fpage");
  upload.UploadDataFromKRM();
  const auto checked = [this] {
    std::vector<bool> rows;
    for (const DataFileRow& row : tab.data_files) {
      rows.push_back(row.checked);
    }
    return rows;
  };
  upload.DataFilesClick(1);
  EXPECT_EQ(tab.data_window, "{DATA_IN},L\r\n");
  upload.DataFilesClick(2);
  EXPECT_EQ(tab.data_window, "\fpage");
  EXPECT_THAT(checked(), ElementsAre(false, true, true));
  upload.DataFilesClick(1);
  EXPECT_EQ(tab.data_window, "{DATA_IN},L\r\n");
  EXPECT_THAT(checked(), ElementsAre(false, false, true));
  EXPECT_EQ(tab.selected_row, 1);
  EXPECT_EQ(op.beeps, 3);
}

TEST_F(UploadTest, ARowNamesTheContentsOfItsFile) {
  ModuleHolds(
      "{BAT/FED},L\r\n[BAT],B,1,3,01152009,2,4,0,0;0830,0,0;1000.0,0,0;998.0,0,0\r\n\r\n"
      "[FED],B,1,12,2,0915,01152009,750.0,748.5\r\n\r\n"
      "{DATA_IN},L\r\n\r\n[ING]\r\n\r\n1,CORN,0\r\n2,HAY,0\r\n\r\n[REC]\r\n\r\n\r\n[PEN]\r\n\r\n"
      "1,PEN001,10\r\n\r\n{REPORT}\r\none\r\ntwo\r\n");
  upload.UploadDataFromKRM();
  EXPECT_THAT(Rows(), ElementsAre("Transaction file 1: 15-Jan-09, 1 batch",
                                  "Recipe backup file 2: 2 ingredients, 0 recipes, 1 pen",
                                  "Text report 3: 2 lines"));
  EXPECT_EQ(tab.data_files[0].type, DataFileType::kTransaction);
}

TEST_F(UploadTest, ACompleteUploadIsNotedWithItsTime) {
  EXPECT_FALSE(tab.uploaded_at.has_value());
  ModuleHolds("{BAT/FED}\x1F,L");
  upload.UploadDataFromKRM();
  EXPECT_FALSE(tab.uploaded_at.has_value());
  ModuleHolds("");
  upload.UploadDataFromKRM();
  const auto empty = tab.uploaded_at;
  EXPECT_TRUE(empty.has_value());
  ModuleHolds("scribble");
  upload.UploadDataFromKRM();
  EXPECT_GT(tab.uploaded_at, empty);
}

TEST_F(UploadTest, ClickOnTheOnlyRowKeepsItChecked) {
  ModuleHolds("{REPORT}x");
  upload.UploadDataFromKRM();
  upload.DataFilesClick(0);
  upload.DataFilesClick(0);
  EXPECT_THAT(Rows(), ElementsAre("Text report 1: 1 line [x]"));
}

TEST_F(UploadTest, FileThatIsMissingIsRefused) {
  ModuleHolds("{REPORT}x");
  upload.UploadDataFromKRM();
  EXPECT_THROW(upload.ShowDataFile(0), Error);
  EXPECT_THROW(upload.ShowDataFile(2), Error);
  EXPECT_THROW(upload.DataFilesClick(1), Error);
  EXPECT_THAT(Rows(), ElementsAre("Text report 1: 1 line"));
  EXPECT_EQ(tab.data_window, "");
}

}  // namespace
}  // namespace vrx::testing
