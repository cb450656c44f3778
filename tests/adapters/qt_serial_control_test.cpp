#include "adapters/qt_serial_control.h"

#include <filesystem>
#include <tuple>

#include <gmock/gmock.h>
#include <poll.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include "adapters/cpu_meter.h"
#include "adapters/one_event.h"
#include "adapters/pseudo_terminal.h"
#include "adapters/qt_event_pump.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::StartsWith;
using Ms = Milliseconds;

constexpr Ms kEndless = std::chrono::minutes{5};

std::string AllByteValues() {
  std::string all;
  for (int value = 0; value < 256; ++value) {
    all += static_cast<char>(value);
  }
  return all;
}

std::unique_ptr<QtSerialControl> ControlOf(const std::string& device) {
  auto control = std::make_unique<QtSerialControl>([device](int) { return device; });
  control->SetInBufferSize(2048);
  control->SetOutBufferSize(1024);
  control->SetCommPort(1);
  control->SetSettings("19200,n,8,1");
  return control;
}

// The error of opening; empty if it works.
std::string OpeningError(SerialControl& control) {
  try {
    control.SetPortOpen(true);
    return {};
  } catch (const SerialError& error) {
    return error.what();
  }
}

class QtSerialControlTest : public ::testing::Test {
 protected:
  void Open(Handshaking mode = Handshaking::kNone) {
    control->SetHandshaking(mode);
    control->SetPortOpen(true);
  }

  // Collects until that many bytes are there; the test's own time limit ends it otherwise.
  std::string Receive(std::size_t size) {
    std::string bytes;
    while (bytes.size() < size) {
      if (control->InBufferCount() == 0) {
        pump.Pump(kEndless);
      }
      bytes += control->Input();
    }
    return bytes;
  }

  // Sends, reading the far end meanwhile.
  std::string Send(std::string_view bytes) {
    std::string arrived;
    control->Output(bytes);
    while (control->OutBufferCount() > 0) {
      pump.Pump(Ms{5});
      arrived += terminal.Read(0);
    }
    while (arrived.size() < bytes.size()) {
      arrived += terminal.Read(1000);
    }
    return arrived;
  }

  // Waits for the loss and returns what the count said.
  std::string WaitForLoss() {
    try {
      while (control->InBufferCount() == 0) {
        pump.Pump(kEndless);
      }
    } catch (const SerialError& error) {
      return error.what();
    }
    return "bytes are waiting";
  }

  PseudoTerminal terminal;
  QtEventPump pump;
  std::unique_ptr<QtSerialControl> control = ControlOf(terminal.Device());
};

TEST(LineSettings, ReadsTheFourParts) {
  EXPECT_EQ(ParseLineSettings("19200,n,8,1"), (LineSettings{19200, Parity::kNone, 8, 1}));
  EXPECT_EQ(ParseLineSettings("1200,e,7,2"), (LineSettings{1200, Parity::kEven, 7, 2}));
  EXPECT_EQ(ParseLineSettings("300,s,5,1"), (LineSettings{300, Parity::kSpace, 5, 1}));
}

TEST(LineSettings, RefusesEveryOtherForm) {
  for (const char* text :
       {"", "19200", "19200,n,8", "19200,n,8,1,", "19200,n,8,1,2", "0,n,8,1", "fast,n,8,1",
        "19200,x,8,1", "19200,,8,1", "19200,no,8,1", "19200,n,9,1", "19200,n,4,1", "19200,n,8,0",
        "19200,n,8,3", "-1,n,8,1", " 19200,n,8,1", "99999999999,n,8,1"}) {
    EXPECT_THROW(std::ignore = ParseLineSettings(text), SerialError) << text;
  }
}

TEST_F(QtSerialControlTest, ReceivesEveryByteValue) {
  Open();
  terminal.Write(AllByteValues());
  EXPECT_EQ(Receive(256), AllByteValues());
  EXPECT_EQ(control->InBufferCount(), 0);
}

TEST_F(QtSerialControlTest, SendsEveryByteValue) {
  Open();
  EXPECT_EQ(Send(AllByteValues()), AllByteValues());
  EXPECT_EQ(control->OutBufferCount(), 0);
}

TEST_F(QtSerialControlTest, SetsTheLineAsSpecified) {
  Open();
  termios line{};
  ASSERT_EQ(tcgetattr(terminal.NearEnd(), &line), 0);
  EXPECT_EQ(cfgetispeed(&line), static_cast<speed_t>(B19200));
  EXPECT_EQ(cfgetospeed(&line), static_cast<speed_t>(B19200));
  EXPECT_EQ(line.c_cflag & static_cast<tcflag_t>(CSIZE), static_cast<tcflag_t>(CS8));
  EXPECT_EQ(line.c_cflag & static_cast<tcflag_t>(PARENB | CSTOPB | CRTSCTS), 0U);
  EXPECT_EQ(line.c_iflag & static_cast<tcflag_t>(IXON | IXOFF | ICRNL | INLCR | ISTRIP), 0U);
}

// A pseudo-terminal takes no other parity or number of data bits.
TEST_F(QtSerialControlTest, SetsTwoStopBits) {
  control->SetSettings("1200,n,8,2");
  Open();
  termios line{};
  ASSERT_EQ(tcgetattr(terminal.NearEnd(), &line), 0);
  EXPECT_EQ(cfgetospeed(&line), static_cast<speed_t>(B1200));
  EXPECT_NE(line.c_cflag & static_cast<tcflag_t>(CSTOPB), 0U);
}

// The test's own descriptor keeps the line open between the two openings.
TEST_F(QtSerialControlTest, AHoldOfAnEarlierOpeningIsForgotten) {
  Open(Handshaking::kXOnXOff);
  terminal.Write("\x13");
  pollfd near{.fd = terminal.NearEnd(), .events = POLLOUT, .revents = 0};
  while (poll(&near, 1, 0) > 0) {
    pump.Pump(Ms{5});
  }
  control->SetPortOpen(false);
  Open();
  EXPECT_EQ(Send("free"), "free");
}

TEST_F(QtSerialControlTest, StopsReceivingWhenItsBufferIsFull) {
  Open();
  terminal.Write(std::string(3000, 'x'));
  while (control->InBufferCount() < 2048) {
    pump.Pump(kEndless);
  }
  pump.Pump(Ms{50});
  EXPECT_EQ(control->InBufferCount(), 2048);
}

TEST_F(QtSerialControlTest, DiscardedOutputIsNotSent) {
  Open();
  control->Output(std::string(300'000, 'x'));
  for (int i = 0; i < 10; ++i) {
    pump.Pump(Ms{5});
  }
  EXPECT_GT(control->OutBufferCount(), 0);
  control->DiscardOutput();
  EXPECT_EQ(control->OutBufferCount(), 0);
}

TEST_F(QtSerialControlTest, LeavesXonXoffToTheLine) {
  Open(Handshaking::kXOnXOff);
  termios line{};
  ASSERT_EQ(tcgetattr(terminal.NearEnd(), &line), 0);
  EXPECT_NE(line.c_iflag & static_cast<tcflag_t>(IXON), 0U);
  EXPECT_NE(line.c_iflag & static_cast<tcflag_t>(IXOFF), 0U);
  terminal.Write("a\x13\x11z");
  EXPECT_EQ(Receive(2), "az");
}

TEST_F(QtSerialControlTest, LineWithoutDtrIsUsedWithoutIt) {
  control->SetDTREnable(true);
  Open();
  control->SetDTREnable(false);
  control->SetDTREnable(true);
  terminal.Write("still there");
  EXPECT_EQ(Receive(11), "still there");
  EXPECT_EQ(Send("so am I"), "so am I");
}

TEST_F(QtSerialControlTest, ClosedPortHoldsNothingAndRefusesOutput) {
  EXPECT_FALSE(control->PortOpen());
  EXPECT_EQ(control->InBufferCount(), 0);
  EXPECT_EQ(control->OutBufferCount(), 0);
  EXPECT_EQ(control->Input(), "");
  control->DiscardInput();
  control->DiscardOutput();
  EXPECT_THROW(control->Output("x"), SerialError);
}

TEST_F(QtSerialControlTest, OpensAgainAfterAClose) {
  Open();
  control->SetPortOpen(false);
  EXPECT_FALSE(control->PortOpen());
  Open();
  terminal.Write("again");
  EXPECT_EQ(Receive(5), "again");
}

TEST_F(QtSerialControlTest, DiscardedInputIsGoneAndTheReceptionGoesOn) {
  Open();
  // More than the buffer holds, so that the reception has stopped.
  terminal.Write(std::string(3000, 'x'));
  while (control->InBufferCount() < 2048) {
    pump.Pump(kEndless);
  }
  pump.Pump(Ms{50});
  control->DiscardInput();
  EXPECT_EQ(control->InBufferCount(), 0);
  terminal.Write("fresh");
  std::string bytes;
  while (!bytes.ends_with("fresh")) {
    bytes += Receive(1);
  }
}

TEST_F(QtSerialControlTest, LongReplyPassesThroughTheSmallBuffer) {
  Open();
  std::string reply;
  while (reply.size() < 65'000) {
    reply += std::to_string(reply.size()) + ',';
  }
  std::string received;
  std::size_t written = 0;
  while (received.size() < reply.size()) {
    const std::size_t size = std::min<std::size_t>(1000, reply.size() - written);
    terminal.Write(std::string_view(reply).substr(written, size));
    written += size;
    received += Receive(size);
  }
  EXPECT_EQ(received, reply);
}

TEST_F(QtSerialControlTest, CountsWhatTheFarEndDoesNotTakeAndGoesOnLater) {
  Open();
  const std::string bytes(300'000, 'x');
  control->Output(bytes);
  for (int i = 0; i < 20; ++i) {
    pump.Pump(Ms{5});
  }
  EXPECT_GT(control->OutBufferCount(), 0);
  std::string arrived;
  while (control->OutBufferCount() > 0) {
    arrived += terminal.Read(0);
    pump.Pump(Ms{5});
  }
  while (arrived.size() < bytes.size()) {
    arrived += terminal.Read(1000);
  }
  EXPECT_EQ(arrived, bytes);
}

TEST_F(QtSerialControlTest, LineThatIsHeldFromTheFirstByteOnGoesOnWhenItIsReleased) {
  Open(Handshaking::kXOnXOff);
  terminal.Write("\x13");
  pollfd near{.fd = terminal.NearEnd(), .events = POLLOUT, .revents = 0};
  while (poll(&near, 1, 0) > 0) {
    pump.Pump(Ms{5});
  }
  control->Output("held");
  for (int i = 0; i < 10; ++i) {
    pump.Pump(Ms{5});
  }
  EXPECT_GT(control->OutBufferCount(), 0);
  terminal.Write("\x11");
  while (control->OutBufferCount() > 0) {
    pump.Pump(Ms{5});
  }
  EXPECT_EQ(terminal.Read(1000), "held");
}

TEST_F(QtSerialControlTest, WaitingForArrivalsUsesNoProcessorTime) {
  Open();
  const CpuMeter meter;
  const Ms end = pump.Now() + Ms{1000};
  while (pump.Now() < end) {
    pump.Pump(end - pump.Now());
    EXPECT_EQ(control->InBufferCount(), 0);
  }
  EXPECT_LT(meter.Share(), kWaitingShare);
}

TEST_F(QtSerialControlTest, HangUpEndsTheWaitAndMakesTheCountsThrow) {
  Open();
  const OneEvent unplug(Ms{50}, [&] { terminal.HangUp(); });
  EXPECT_THAT(WaitForLoss(), AllOf(StartsWith(terminal.Device()), HasSubstr("gone")));
  EXPECT_THROW(std::ignore = control->OutBufferCount(), SerialError);
  EXPECT_THROW(control->Output("x"), SerialError);
  EXPECT_THROW(control->DiscardInput(), SerialError);
  EXPECT_TRUE(control->PortOpen());
  control->SetPortOpen(false);
  EXPECT_EQ(control->InBufferCount(), 0);
  EXPECT_EQ(control->OutBufferCount(), 0);
}

TEST_F(QtSerialControlTest, HangUpEndsATransmission) {
  Open();
  control->Output(std::string(300'000, 'x'));
  const OneEvent unplug(Ms{50}, [&] { terminal.HangUp(); });
  EXPECT_THROW(
      {
        while (control->OutBufferCount() > 0) {
          pump.Pump(Ms{5});
        }
      },
      SerialError);
}

TEST_F(QtSerialControlTest, WhatArrivedBeforeTheHangUpCanBeRead) {
  Open();
  terminal.Write("last words");
  while (control->InBufferCount() < 10) {
    pump.Pump(kEndless);
  }
  terminal.HangUp();
  EXPECT_THROW(std::ignore = control->OutBufferCount(), SerialError);
  EXPECT_EQ(control->InBufferCount(), 10);
  EXPECT_EQ(control->Input(), "last words");
  EXPECT_THROW(std::ignore = control->InBufferCount(), SerialError);
}

TEST_F(QtSerialControlTest, UnusedDeadLineUsesNoProcessorTime) {
  Open();
  terminal.HangUp();
  const CpuMeter meter;
  const Ms end = pump.Now() + Ms{1000};
  while (pump.Now() < end) {
    pump.Pump(end - pump.Now());
  }
  EXPECT_LT(meter.Share(), kWaitingShare);
  EXPECT_THROW(std::ignore = control->InBufferCount(), SerialError);
}

TEST_F(QtSerialControlTest, SecondOpeningSaysInUse) {
  Open();
  const auto second = ControlOf(terminal.Device());
  EXPECT_THAT(OpeningError(*second), AllOf(StartsWith(terminal.Device()), HasSubstr("in use")));
  EXPECT_FALSE(second->PortOpen());
  control->SetPortOpen(false);
  EXPECT_EQ(OpeningError(*second), "");
}

TEST_F(QtSerialControlTest, SecondOpeningThroughALinkSaysInUse) {
  const TempFolder folder;
  std::filesystem::create_symlink(terminal.Device(), folder / "COM1");
  Open();
  const auto second = ControlOf((folder / "COM1").string());
  EXPECT_THAT(OpeningError(*second), HasSubstr("in use"));
}

TEST_F(QtSerialControlTest, MissingDeviceIsReported) {
  const TempFolder folder;
  const std::string device = (folder / "ttyUSB0").string();
  EXPECT_EQ(OpeningError(*ControlOf(device)), device + ": no such device");
}

TEST_F(QtSerialControlTest, FileThatIsNoSerialDeviceIsReported) {
  const TempFolder folder;
  const std::string file = folder.Write("file", "x").string();
  EXPECT_EQ(OpeningError(*ControlOf(file)), file + ": is not a serial device");
  EXPECT_EQ(OpeningError(*ControlOf("/dev/null")), "/dev/null: is not a serial device");
}

// The rights of a user who may not use the device, also where the tests run as root.
TEST_F(QtSerialControlTest, ForbiddenDeviceIsReported) {
  ASSERT_EQ(chmod(terminal.Device().c_str(), 0), 0);
  constexpr uid_t kNobody = 65534;
  const bool is_root = geteuid() == 0;
  if (is_root) {
    ASSERT_EQ(seteuid(kNobody), 0);
  }
  const std::string said = OpeningError(*control);
  if (is_root) {
    ASSERT_EQ(seteuid(0), 0);
  }
  EXPECT_THAT(said, AllOf(StartsWith(terminal.Device()), HasSubstr("access denied")));
}

TEST_F(QtSerialControlTest, SettingsOfAnotherFormAreRefused) {
  EXPECT_THROW(control->SetSettings("19200"), SerialError);
}

TEST_F(QtSerialControlTest, PortNumberIsMappedByTheResolver) {
  QtSerialControl mapped([this](int number) {
    if (number != 7) {
      throw SerialError("there is no serial port " + std::to_string(number));
    }
    return terminal.Device();
  });
  EXPECT_THROW(mapped.SetCommPort(6), SerialError);
  mapped.SetCommPort(7);
  mapped.SetSettings("19200,n,8,1");
  EXPECT_EQ(OpeningError(mapped), "");
}

}  // namespace
}  // namespace vrx::testing
