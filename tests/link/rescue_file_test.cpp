#include "link/rescue_file.h"

#include <tuple>

#include <gmock/gmock.h>

#include "base/files.h"
#include "link/link_fixture.h"
#include "presenter/direct_connection.h"
#include "presenter/upload.h"
#include "support/environment.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr LocalTime kNow{
    .date = Date{std::chrono::year{2026}, std::chrono::March, std::chrono::day{9}},
    .time_of_day = std::chrono::hours{7} + std::chrono::minutes{5} + std::chrono::seconds{59}};

class RescueFileTest : public ::testing::Test {
 protected:
  // A path at which no folder can be created.
  fs::path NoFolder(const std::string& name) { return folder.Write(name, "a file"); }

  TempFolder folder;
  RecordingOperator op;
};

TEST_F(RescueFileTest, IsNamedByTheTimeAndHoldsTheBytes) {
  const std::string bytes("junk\0\x1F\xFF", 7);
  const fs::path path = WriteRescueFile(bytes, {folder / "asked/for"}, kNow);
  EXPECT_EQ(path, folder / "asked/for/RESCUE-20260309-070559.KRM");
  EXPECT_EQ(ReadAll(path), bytes);
  EXPECT_EQ(ReadRescueFile(path), bytes);
  EXPECT_TRUE(IsRescueFile(path));
  EXPECT_TRUE(IsRescueFile("x.krm"));
  EXPECT_FALSE(IsRescueFile("x.RBU"));
}

TEST_F(RescueFileTest, OneOf16MebibytesIsReadAndALongerOneRefused) {
  const std::string longest(std::size_t{16} << 20U, 'x');
  EXPECT_EQ(ReadRescueFile(folder.Write("longest.KRM", longest)).size(), longest.size());
  EXPECT_THROW(std::ignore = ReadRescueFile(folder.Write("longer.KRM", longest + "x")), FileError);
}

TEST_F(RescueFileTest, NeverReplacesAnotherFile) {
  const fs::path first = WriteRescueFile("first", {folder.Path()}, kNow);
  const fs::path second = WriteRescueFile("second", {folder.Path()}, kNow);
  EXPECT_EQ(second.filename(), "RESCUE-20260309-070600.KRM");
  EXPECT_EQ(ReadAll(first), "first");
  EXPECT_EQ(ReadAll(second), "second");
}

TEST_F(RescueFileTest, IsWrittenToTheFirstWritableFolder) {
  EXPECT_EQ(WriteRescueFile("x", {{}, NoFolder("a") / "b", folder / "data"}, kNow).parent_path(),
            folder / "data");
}

TEST_F(RescueFileTest, FallsBackToTheTemporaryFolder) {
  fs::create_directory(folder / "tmp");
  const Environment tmp("TMPDIR", (folder / "tmp").c_str());
  EXPECT_TRUE(RescueReceived("x", {NoFolder("a")}, kNow, op));
  EXPECT_TRUE(fs::exists(folder / "tmp/RESCUE-20260309-070559.KRM"));
  ASSERT_THAT(op.boxes, SizeIs(1));
  EXPECT_THAT(op.boxes[0].text, HasSubstr((folder / "tmp/RESCUE-20260309-070559.KRM").string()));
}

TEST_F(RescueFileTest, ReportsWhyEachFolderFailed) {
  const Environment tmp("TMPDIR", NoFolder("tmp").c_str());
  EXPECT_FALSE(RescueReceived("x", {NoFolder("a")}, kNow, op));
  ASSERT_THAT(op.boxes, SizeIs(1));
  EXPECT_EQ(op.boxes[0].icon, Icon::kCritical);
  EXPECT_THAT(op.boxes[0].cause, HasSubstr((folder / "a").string()));
}

// Received data in the Data Transfer tab.
class ReceivedDataTest : public LinkFixture {
 protected:
  // The indicator sends each text as one burst.
  void Receive(const std::vector<std::string>& bursts) {
    Ms at{600};
    for (const std::string& burst : bursts) {
      pump.After(at, [this, burst] { serial.Arrives(burst); });
      at += Ms{3000};
    }
    pump.After(at, [this] { direct.ConnectModule(); });
    direct.ConnectIndicator();
  }
  void Read() {
    tab.connection = Connection::kIndicator;
    upload.UploadDataFromKRM();
  }

  TempFolder folder;
  TransferState tab;
  DirectConnection direct{krm, tab, pump, op, settings};
  Upload upload{krm, tab, pump, op, settings};
};

TEST_F(ReceivedDataTest, IsUnsavedUntilItsWholeBlockIsSaved) {
  EXPECT_FALSE(tab.received.Unsaved());
  Receive({"{REPORT}x"});
  EXPECT_TRUE(tab.received.Unsaved());
  tab.received.BlockSaved();  // of other data
  EXPECT_TRUE(tab.received.Unsaved());
  Read();
  EXPECT_TRUE(tab.block_is_cut);
  tab.received.BlockSaved();
  EXPECT_FALSE(tab.received.Unsaved());
}

TEST_F(ReceivedDataTest, MoreThanWasReadIsUnsaved) {
  Receive({"{REPORT}x"});
  Read();
  op.answers = {Answer::kNo};
  Receive({"more"});
  tab.received.BlockSaved();
  EXPECT_TRUE(tab.received.Unsaved());
}

TEST_F(ReceivedDataTest, AnUploadFromAModuleIsNotWhatTheIndicatorSent) {
  Receive({"{REPORT}x"});
  tab.connection = Connection::kModule;
  serial.WillAnswer(kEcho19200);
  serial.WillAnswer("\x15\x1F{REPORT}y\x1F");
  upload.UploadDataFromKRM();
  tab.received.BlockSaved();
  EXPECT_TRUE(tab.received.Unsaved());
}

TEST_F(ReceivedDataTest, IsGivenUpByAClearOfTheIndicatorOrOfTheOperator) {
  Receive({"{REPORT}x", "\x14"});
  EXPECT_FALSE(tab.received.Unsaved());
  Receive({"{REPORT}x"});
  op.answers = {Answer::kYes};
  Receive({});
  EXPECT_FALSE(tab.received.Unsaved());
}

TEST_F(ReceivedDataTest, LoadedRecipesWereNotReceived) {
  ASSERT_TRUE(direct.Enter());
  direct.LoadMemory("{DATA_IN}");
  EXPECT_FALSE(tab.received.Unsaved());
}

TEST_F(ReceivedDataTest, MemoryThatIsNotCutWholeSaysSo) {
  Receive({"scribble"});
  Read();
  EXPECT_FALSE(tab.block_is_cut);
  EXPECT_EQ(tab.transfer_block, "scribble");
  krm.GS_KRM_VirtualMemory(std::string(100, '\f'));
  Read();
  EXPECT_FALSE(tab.block_is_cut);
  EXPECT_THAT(tab.data_files, SizeIs(99));
  krm.GS_KRM_VirtualMemory(std::string(99, '\f'));
  Read();
  EXPECT_TRUE(tab.block_is_cut);
}

TEST_F(ReceivedDataTest, ARescueFileIsReadAsIfItHadJustBeenReceived) {
  const fs::path file = folder.Write("RESCUE-20260309-070559.KRM", "{BAT/FED},L\r\n\fpage");
  tab.data_window = "old";
  tab.recipe_frames_visible = true;
  tab.reload_enabled = false;
  upload.UploadFromFile(file);
  EXPECT_EQ(op.Status(), "Memory read complete!  (18 bytes, 2 files)");
  EXPECT_EQ(op.status_color, StatusColor::kGreen);
  EXPECT_THAT(tab.data_files, SizeIs(2));
  EXPECT_TRUE(tab.data_files_frame_visible);
  EXPECT_FALSE(tab.recipe_frames_visible);
  EXPECT_EQ(tab.file_path, file.string());
  EXPECT_EQ(tab.data_window, "");
  EXPECT_TRUE(tab.reload_enabled);
  upload.DataFilesClick(1);
  EXPECT_EQ(tab.data_window, "\fpage");
  EXPECT_THAT(serial.events, IsEmpty());
}

TEST_F(ReceivedDataTest, ARescueFileWithoutMarksIsShownWhole) {
  upload.UploadFromFile(folder.Write("a.krm", "scribble"));
  EXPECT_EQ(op.Status(), "No recognized data file!");
  EXPECT_EQ(tab.data_window, "scribble");
  EXPECT_THAT(tab.data_files, IsEmpty());
  EXPECT_THROW(upload.UploadFromFile(folder / "none.krm"), FileError);
}

}  // namespace
}  // namespace vrx::testing
