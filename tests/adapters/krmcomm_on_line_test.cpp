#include <algorithm>
#include <chrono>
#include <stop_token>
#include <thread>

#include <gmock/gmock.h>

#include "adapters/one_event.h"
#include "adapters/pseudo_terminal.h"
#include "adapters/qt_event_pump.h"
#include "adapters/qt_serial_control.h"
#include "link/krmcomm.h"
#include "presenter/upload.h"
#include "settings/settings.h"
#include "support/recording_operator.h"

namespace vrx::testing {
namespace {

using ::testing::HasSubstr;
using Ms = Milliseconds;

// A module at the far end of a pseudo-terminal, played by a thread: echoes its one-byte commands,
// sends its memory for NAK, and keeps everything else.
class SmallModule {
 public:
  SmallModule(const PseudoTerminal& terminal, std::string memory)
      : terminal_(terminal), memory_(std::move(memory)) {}

  std::string Stop() {
    thread_.request_stop();
    thread_.join();
    return kept_;
  }

 private:
  void Play(const std::stop_token& stop) {
    while (!stop.stop_requested()) {
      for (const char byte : terminal_.Read(20)) {
        if (byte == '\x15') {
          terminal_.Write("\x15\x1F" + memory_ + "\x1F");
        } else if (byte == '\x14' || byte == '\x19') {
          terminal_.Write(std::string{byte, '\x1F'});
        } else {
          kept_ += byte;
        }
      }
    }
  }

  const PseudoTerminal& terminal_;
  std::string memory_;
  std::string kept_;
  std::jthread thread_{[this](const std::stop_token& stop) { Play(stop); }};
};

class KrmcommOnLine : public ::testing::Test {
 protected:
  PseudoTerminal terminal;
  QtEventPump pump;
  QtSerialControl serial{[this](int) { return terminal.Device(); }};
  RecordingOperator op;
  PrivateINI settings;
  KRMCOMM krm{serial, pump, op, settings};
};

TEST_F(KrmcommOnLine, UploadsFilesOfAModule) {
  SmallModule module(terminal, "{BAT/FED},L\r\n\x0Cpage\xFF");
  TransferState tab;
  Upload upload(krm, tab, pump, op, settings);
  upload.UploadDataFromKRM();
  EXPECT_EQ(op.Status(), "Upload complete!  (22 bytes, 2 files)");
  upload.DataFilesClick(1);
  EXPECT_EQ(tab.data_window, "\x0Cpage\xFF");
  module.Stop();
}

TEST_F(KrmcommOnLine, ClearsAndDownloadsIntoAModule) {
  SmallModule module(terminal, "");
  std::string text = "{DATA_IN},L\r\n";
  while (text.size() < 5000) {
    text += "1,CORN,0\r\n";
  }
  EXPECT_TRUE(krm.KRM_Clear());
  EXPECT_TRUE(krm.KRM_Download(text));
  EXPECT_EQ(module.Stop(), text);
}

TEST_F(KrmcommOnLine, UnpluggedModuleEndsTheReceptionAtOnce) {
  const OneEvent unplug(Ms{1500}, [this] { terminal.HangUp(); });
  const Ms start = pump.Now();
  EXPECT_FALSE(krm.KRM_Dump());
  EXPECT_EQ(krm.GS_KRM_ErrMsg(), "Serial line lost");
  EXPECT_THAT(krm.KRM_FailureCause(), HasSubstr(terminal.Device()));
  EXPECT_FALSE(serial.PortOpen());
  // Before the receive limit, which would end the wait too.
  EXPECT_LT(pump.Now() - start, Ms{1950});
}

TEST_F(KrmcommOnLine, ClosingProgramEndsTheWait) {
  const OneEvent exit(Ms{100}, [this] { pump.Close(); });
  EXPECT_FALSE(krm.KRM_Dump());
  EXPECT_EQ(krm.GS_KRM_ErrMsg(), "The program is closing");
}

}  // namespace
}  // namespace vrx::testing
