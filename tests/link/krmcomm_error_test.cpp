#include <gtest/gtest.h>

#include "link/link_fixture.h"

namespace vrx::testing {
namespace {

class LinkErrorTest : public LinkFixture {
 protected:
  void ExpectDownloadFails(LinkError error) {
    EXPECT_FALSE(krm.KRM_Download("text"));
    EXPECT_EQ(krm.KRM_Error(), error);
  }
  void ExpectClearFails(LinkError error) {
    EXPECT_FALSE(krm.KRM_Clear());
    EXPECT_EQ(krm.KRM_Error(), error);
  }
};

TEST_F(LinkErrorTest, IsNoneBeforeTheFirstCommand) { EXPECT_EQ(krm.KRM_Error(), LinkError::kNone); }

TEST_F(LinkErrorTest, NoReplyIsATimeout) { ExpectClearFails(LinkError::kTimeout); }

TEST_F(LinkErrorTest, AnIncompleteReplyIsATimeout) {
  serial.WillAnswer("\x15\x1F half");
  EXPECT_FALSE(krm.KRM_Dump());
  EXPECT_EQ(krm.KRM_Error(), LinkError::kTimeout);
}

TEST_F(LinkErrorTest, ALineThatTakesNoByteIsHeld) {
  serial.hold_after_output = 0;
  ExpectDownloadFails(LinkError::kHeld);
}

TEST_F(LinkErrorTest, StaysHeldIfTheControlFailsAfterwards) {
  serial.hold_after_output = 0;
  pump.After(Ms{2000}, [this] { serial.failing_property = "DTREnable"; });
  ExpectDownloadFails(LinkError::kHeld);
  EXPECT_TRUE(krm.KRM_LineHeld());
}

TEST_F(LinkErrorTest, ALineThatGoesAwayIsLost) {
  for (const Ms moment : {Ms{500}, Ms{1500}}) {  // before and after the command byte
    pump.After(moment, [this] { serial.LoseLine(); });
    ExpectClearFails(LinkError::kLost);
  }
}

TEST_F(LinkErrorTest, ALineThatGoesAwayDuringATransmissionIsLost) {
  serial.lose_after_output = 1;
  ExpectDownloadFails(LinkError::kLost);
}

TEST_F(LinkErrorTest, APortThatIsClosedDuringACommandIsLost) {
  for (const Ms moment : {Ms{500}, Ms{1500}}) {
    pump.After(moment, [this] { krm.KRM_ImmediateClose(); });
    ExpectClearFails(LinkError::kLost);
  }
}

TEST_F(LinkErrorTest, APortThatIsClosedDuringATransmissionIsLost) {
  serial.per_byte = Ms{100};
  pump.After(Ms{1200}, [this] { krm.KRM_ImmediateClose(); });
  ExpectDownloadFails(LinkError::kLost);
}

TEST_F(LinkErrorTest, ALineThatGoesAwayDuringADirectConnectionIsLost) {
  EXPECT_TRUE(krm.KRM_DirectOpen());
  pump.After(Ms{500}, [this] { serial.LoseLine(); });
  EXPECT_FALSE(krm.KRM_DirectRxD());
  EXPECT_EQ(krm.KRM_Error(), LinkError::kLost);
}

TEST_F(LinkErrorTest, AnUnexpectedReplyIsAProtocolError) {
  serial.WillAnswer(kEcho19200);
  ExpectClearFails(LinkError::kProtocol);
  serial.WillAnswer(
      "\x14\x1F"
      "data\x1F");
  EXPECT_FALSE(krm.KRM_Dump());
  EXPECT_EQ(krm.KRM_Error(), LinkError::kProtocol);
}

TEST_F(LinkErrorTest, APortThatDoesNotOpenIsRefused) {
  serial.failing_property = "PortOpen";
  ExpectClearFails(LinkError::kRefused);
}

TEST_F(LinkErrorTest, APortNumberThatIsNotANumberIsRefused) {
  settings.SetSerialPort("COM2");
  ExpectClearFails(LinkError::kRefused);
}

TEST_F(LinkErrorTest, APropertyThatCannotBeSetIsRefused) {
  serial.failing_property = "Output";
  ExpectClearFails(LinkError::kRefused);
}

TEST_F(LinkErrorTest, AnUnknownBaudRateIsRefused) {
  EXPECT_FALSE(krm.KRM_SetBaud(4800));
  EXPECT_EQ(krm.KRM_Error(), LinkError::kRefused);
}

TEST_F(LinkErrorTest, IsNoneIfTheProgramIsClosing) {
  pump.After(Ms{500}, [this] { pump.closing = true; });
  ExpectClearFails(LinkError::kNone);
}

TEST_F(LinkErrorTest, ASuccessfulCommandResetsTheError) {
  ExpectClearFails(LinkError::kTimeout);
  serial.WillAnswer(kEchoClear);
  EXPECT_TRUE(krm.KRM_Clear());
  EXPECT_EQ(krm.KRM_Error(), LinkError::kNone);
}

}  // namespace
}  // namespace vrx::testing
