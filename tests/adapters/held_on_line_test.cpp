#include <array>
#include <string>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <termios.h>
#include <unistd.h>

#include "adapters/one_event.h"
#include "adapters/pseudo_terminal.h"
#include "adapters/qt_event_pump.h"
#include "adapters/qt_serial_control.h"
#include "link/krmcomm.h"
#include "presenter/direct_connection.h"
#include "settings/settings.h"
#include "support/recording_operator.h"

namespace vrx::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::SizeIs;
using Ms = Milliseconds;

// Real events, with a clock that runs 20 times as fast as the real one: the link's ten seconds are
// half a second of the test's time.
class FastPump : public QtEventPump {
 public:
  Ms Now() const override { return QtEventPump::Now() * kFaster; }
  void Pump(Ms limit) override { QtEventPump::Pump((limit + Ms{kFaster - 1}) / kFaster); }

 private:
  static constexpr int kFaster = 20;
};

// A device on a pseudo-terminal that holds the line.
class HeldOnLine : public ::testing::Test {
 protected:
  HeldOnLine() {
    termios raw{};
    tcgetattr(terminal.NearEnd(), &raw);
    cfmakeraw(&raw);
    tcsetattr(terminal.NearEnd(), TCSANOW, &raw);
  }

  // More than the system keeps for a device that does not read.
  static std::string Much() { return std::string(200'000, 'x'); }
  void IsHeld() {
    EXPECT_EQ(krm.GS_KRM_ErrMsg(), "Serial line held");
    EXPECT_FALSE(serial.PortOpen());
  }
  // Everything that has arrived, as far as it is there.
  std::string ReadAllOf() {
    std::string all;
    for (std::string part = terminal.Read(50); !part.empty(); part = terminal.Read(50)) {
      all += part;
    }
    return all;
  }

  void AnXoffEndsOneCommandOnly() {
    EXPECT_TRUE(krm.KRM_Download("first"));
    terminal.Write("\x13");
    EXPECT_FALSE(krm.KRM_Clear());
    IsHeld();
    ReadAllOf();
    EXPECT_TRUE(krm.KRM_Download("second"));
    EXPECT_EQ(ReadAllOf(), "second");
  }

  PseudoTerminal terminal;
  FastPump pump;
  QtSerialControl serial{[this](int) { return terminal.Device(); }};
  RecordingOperator op;
  PrivateINI settings;
  KRMCOMM krm{serial, pump, op, settings};
};

TEST_F(HeldOnLine, ADeviceThatStopsReadingEndsADownload) {
  EXPECT_FALSE(krm.KRM_Download(Much()));
  IsHeld();
}

TEST_F(HeldOnLine, TheNextTransmissionOpensTheLineAnew) {
  EXPECT_FALSE(krm.KRM_Download(Much()));
  ReadAllOf();
  EXPECT_TRUE(krm.KRM_Download("text"));
  EXPECT_THAT(ReadAllOf(), ::testing::EndsWith("text"));
}

TEST_F(HeldOnLine, OneXoffEndsACommandAndIsForgottenAtTheNextOne) { AnXoffEndsOneCommandOnly(); }

// Where the device keeps its end in flow control, as a console does.
TEST_F(HeldOnLine, AnXoffIsForgottenOnALineThatKeepsItsFlowControl) {
  termios flow{};
  tcgetattr(terminal.NearEnd(), &flow);
  flow.c_iflag |= IXON;
  tcsetattr(terminal.NearEnd(), TCSANOW, &flow);
  AnXoffEndsOneCommandOnly();
}

TEST_F(HeldOnLine, AnXonLetsTheTransmissionGoOn) {
  EXPECT_TRUE(krm.KRM_Download("first"));
  terminal.Write("\x13");
  const OneEvent resume(Ms{300}, [this] { terminal.Write("\x11"); });
  EXPECT_TRUE(krm.KRM_Download("second"));
  EXPECT_EQ(ReadAllOf(), "firstsecond");
}

TEST_F(HeldOnLine, AnIndicatorThatStopsReadingIsAnsweredAgainLater) {
  TransferState tab;
  DirectConnection direct(krm, tab, pump, op, settings);
  ASSERT_TRUE(direct.Enter());
  krm.GS_KRM_VirtualMemory(Much());
  terminal.Write("\x15");
  const OneEvent clear(Ms{1200}, [this] {
    ReadAllOf();
    krm.GS_KRM_VirtualMemory("abc");
    terminal.Write("\x15");
  });
  const OneEvent leave(Ms{2000}, [&] { direct.ConnectModule(); });
  EXPECT_TRUE(direct.DirectConnectLoop());
  ASSERT_THAT(op.boxes, SizeIs(1));
  EXPECT_EQ(op.boxes[0].text, "Transmission of response to <NAK> command failed!");
  EXPECT_THAT(op.boxes[0].cause, HasSubstr("Serial line held"));
  EXPECT_EQ(ReadAllOf(),
            "\x15\x1F"
            "abc\x1F");
}

}  // namespace
}  // namespace vrx::testing
