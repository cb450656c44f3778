#include <gmock/gmock.h>

#include "link/link_fixture.h"
#include "presenter/upload.h"

namespace vrx::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;

// The upload button in the direct connection.
class DirectMemory : public LinkFixture {
 protected:
  void SetUp() override { tab.connection = Connection::kIndicator; }

  TransferState tab;
  Upload upload{krm, tab, pump, op, settings};
};

TEST_F(DirectMemory, EmptyMemoryIsReportedInABoxAndInTheStatusLine) {
  tab.data_files = {{.file = 1, .text = "old", .checked = true}};
  upload.UploadDataFromKRM();
  ASSERT_EQ(op.boxes.size(), 1U);
  EXPECT_EQ(op.boxes[0].text, "There is no file data in the KRM memory. ");
  EXPECT_EQ(op.boxes[0].title, "KRM Error");
  EXPECT_EQ(op.boxes[0].icon, Icon::kWarning);
  EXPECT_EQ(op.beeps, 1);
  EXPECT_EQ(op.Status(), "No data files in memory!");
  EXPECT_THAT(tab.data_files, IsEmpty());
  EXPECT_FALSE(tab.data_files_frame_visible);
  EXPECT_TRUE(tab.reload_enabled);
}

TEST_F(DirectMemory, FilesAreCountedAndListedAndReloadIsDisabled) {
  krm.GS_KRM_VirtualMemory("{BAT/FED},L\r\n{REPORT}x");
  upload.UploadDataFromKRM();
  EXPECT_EQ(op.Status(), "Memory read complete!  (22 bytes, 2 files)");
  EXPECT_EQ(op.status_color, StatusColor::kGreen);
  EXPECT_EQ(tab.data_files.size(), 2U);
  EXPECT_TRUE(tab.data_files_frame_visible);
  EXPECT_FALSE(tab.reload_enabled);
  EXPECT_FALSE(op.busy);
  EXPECT_EQ(serial.sent, "");
  EXPECT_EQ(pump.Now(), Ms{0});
}

TEST_F(DirectMemory, OneFileIsReportedInTheSingular) {
  krm.GS_KRM_VirtualMemory("{REPORT}x");
  EXPECT_EQ(upload.ReadDirectMemory(), 1);
  EXPECT_EQ(op.Status(), "Memory read complete!  (9 bytes, 1 file)");
  EXPECT_EQ(tab.transfer_block, "{REPORT}x");
}

TEST_F(DirectMemory, UnknownMemoryIsShownWholeInRed) {
  krm.GS_KRM_VirtualMemory("scribble");
  EXPECT_EQ(upload.ReadDirectMemory(), 0);
  EXPECT_EQ(op.Status(), "No recognized data file!");
  EXPECT_EQ(op.status_color, StatusColor::kRed);
  EXPECT_EQ(tab.data_window, "scribble");
  upload.UploadDataFromKRM();
  EXPECT_EQ(op.Status(), "No data files in memory!");
}

TEST_F(DirectMemory, OnlyRecognizedMemoryIsCutWhole) {
  krm.GS_KRM_VirtualMemory("scribble");
  upload.ReadDirectMemory();
  EXPECT_FALSE(tab.block_is_cut);
  krm.GS_KRM_VirtualMemory("{REPORT}x");
  upload.ReadDirectMemory();
  EXPECT_TRUE(tab.block_is_cut);
  krm.GS_KRM_VirtualMemory(std::string(100, '\f'));
  upload.ReadDirectMemory();
  EXPECT_FALSE(tab.block_is_cut);
}

TEST_F(DirectMemory, HundredthFileIsReported) {
  krm.GS_KRM_VirtualMemory(std::string(100, '\f'));
  EXPECT_EQ(upload.ReadDirectMemory(), 99);
  EXPECT_EQ(op.status_color, StatusColor::kRed);
  EXPECT_THAT(op.Status(), HasSubstr("more than 99 data files"));
}

}  // namespace
}  // namespace vrx::testing
