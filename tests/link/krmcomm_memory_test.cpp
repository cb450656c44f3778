#include <gmock/gmock.h>

#include "link/link_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::HasSubstr;

// Answers out of the image on an open port.
class VirtualMemory : public LinkFixture {
 protected:
  void SetUp() override {
    krm.KRM_Download("");
    krm.KRM_AppendToVirtualMemory("{DATA");
    krm.KRM_AppendToVirtualMemory("_IN}");
  }

  void ExpectRefusal(const std::string& text) {
    ASSERT_EQ(op.boxes.size(), 1U);
    EXPECT_EQ(op.boxes[0].title, "Error");
    EXPECT_EQ(op.boxes[0].text, text);
    EXPECT_EQ(op.boxes[0].icon, Icon::kCritical);
    EXPECT_THAT(op.boxes[0].cause, HasSubstr("Output"));
    EXPECT_EQ(op.beeps, 1);
  }
};

TEST_F(VirtualMemory, AppendingSendsNothing) {
  EXPECT_EQ(krm.GS_KRM_VirtualMemory(), "{DATA_IN}");
  EXPECT_EQ(serial.sent, "");
}

TEST_F(VirtualMemory, ClearingAnswersAsTheModuleDoes) {
  krm.KRM_ClearVirtualMemory();
  EXPECT_EQ(krm.GS_KRM_VirtualMemory(), "");
  EXPECT_EQ(serial.sent, "\x14\x1F");
  EXPECT_EQ(op.beeps, 1);
  EXPECT_TRUE(op.boxes.empty());
}

TEST_F(VirtualMemory, DumpFramesTheImage) {
  krm.KRM_DumpVirtualMemory();
  EXPECT_EQ(serial.sent, "\x15\x1F{DATA_IN}\x1F");
  EXPECT_EQ(krm.GS_KRM_VirtualMemory(), "{DATA_IN}");
}

TEST_F(VirtualMemory, DumpAllFramesTheImage) {
  krm.KRM_DumpAllVirtualMemory();
  EXPECT_EQ(serial.sent, "\x1C\x1F{DATA_IN}\x1F");
}

TEST_F(VirtualMemory, EmptyImageIsNakUsUs) {
  krm.GS_KRM_VirtualMemory("");
  krm.KRM_DumpVirtualMemory();
  EXPECT_EQ(serial.sent, "\x15\x1F\x1F");
}

TEST_F(VirtualMemory, SuccessBeepsOnlyWhenTheBeeperIsOn) {
  settings.SetEnableBeeperOn(false);
  krm.KRM_DumpVirtualMemory();
  EXPECT_EQ(op.beeps, 0);
}

TEST_F(VirtualMemory, FailuresAlwaysShowAMessageAndBeep) {
  settings.SetEnableBeeperOn(false);
  serial.failing_property = "Output";
  krm.KRM_DumpVirtualMemory();
  ExpectRefusal("Transmission of response to <NAK> command failed!");
}

TEST_F(VirtualMemory, AnAnswerThatTheEndOfTheProgramPreventsIsNotReported) {
  pump.closing = true;
  EXPECT_FALSE(krm.KRM_DumpVirtualMemory());
  EXPECT_TRUE(op.boxes.empty());
  EXPECT_EQ(op.beeps, 0);
}

TEST_F(VirtualMemory, FailedDumpAllIsReported) {
  serial.failing_property = "Output";
  krm.KRM_DumpAllVirtualMemory();
  ExpectRefusal("Transmission of response to <FS> command failed!");
}

TEST_F(VirtualMemory, FailedClearIsReportedAndTheImageIsEmpty) {
  serial.failing_property = "Output";
  krm.KRM_ClearVirtualMemory();
  ExpectRefusal("Transmission of response to <DC4> command failed!");
  EXPECT_EQ(krm.GS_KRM_VirtualMemory(), "");
}

TEST_F(VirtualMemory, LargeImageGoesOutInBlocks) {
  krm.GS_KRM_VirtualMemory(std::string(65'000, 'x'));
  krm.KRM_DumpVirtualMemory();
  EXPECT_EQ(serial.sent.size(), 65'003U);
  EXPECT_EQ(serial.blocks.size(), 64U);
  EXPECT_EQ(krm.GL_KRM_TxDCount(), 65'003);
}

}  // namespace
}  // namespace vrx::testing
