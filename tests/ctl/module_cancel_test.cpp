#include <filesystem>
#include <string>

#include <gmock/gmock.h>

#include "ctl/ctl_fixture.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

// A signal comes at a moment of a transfer, in simulated time.
class ModuleCancel : public CtlTest {
 protected:
  void SignalAfter(Milliseconds moment) {
    pump.After(moment, [this] {
      ASSERT_TRUE(on_signal) << "the signal would end the program";
      on_signal();
    });
  }
  std::string Backup() const {
    return folder.Write("old.rbu", "{DATA_IN}" + std::string(5000, 'x')).string();
  }
};

TEST_F(ModuleCancel, ASignalEndsAnUploadAndWhatArrivedIsInARescueFile) {
  serial.WillAnswer("\x19\x1F");
  serial.WillAnswer(FakeSerialControl::Answer{{Milliseconds{100}, "\x15\x1F{BAT/FED},L"}});
  SignalAfter(Milliseconds{4000});
  const fs::path out_folder = folder / "out";
  EXPECT_EQ(Run({"module", "upload", "--out", out_folder.string(), "--port", "3"}), 1);
  EXPECT_EQ(pump.Now(), Milliseconds{4000});
  EXPECT_THAT(err, StartsWith("Upload canceled after 13 bytes.\n"
                              "Rescue File: What the indicator sent is kept in the file " +
                              out_folder.string() + "/RESCUE-"));
  const fs::path kept = *fs::directory_iterator(out_folder);
  EXPECT_EQ(ReadAll(kept), "{BAT/FED},L");
  EXPECT_THAT(out, IsEmpty());
  EXPECT_FALSE(serial.PortOpen());
  EXPECT_FALSE(on_signal) << "a later signal must end the program";
}

TEST_F(ModuleCancel, ASignalEndsADownloadAndTheModuleIsNamedIncomplete) {
  serial.per_byte = Milliseconds{1};
  serial.WillAnswer("\x19\x1F");
  serial.WillAnswer("\x14\x1F");
  SignalAfter(Milliseconds{5500});
  EXPECT_EQ(Run({"--yes", "module", "download", Backup(), "--port", "3"}), 1);
  EXPECT_THAT(err, EndsWith("Download canceled after 2048 of 5009 bytes. The data in the module "
                            "are incomplete.\n"));
  EXPECT_FALSE(on_signal);
}

TEST_F(ModuleCancel, AQuestionIsNotATransferThatASignalCouldCancel) {
  EXPECT_EQ(Run({"module", "download", Backup(), "--port", "3"}), 1);
  EXPECT_THAT(err, StartsWith("Overwrite KRM: "));
  EXPECT_FALSE(on_signal);
  EXPECT_THAT(serial.events, IsEmpty());
}

TEST_F(ModuleCancel, ATerminalShowsTheProgress) {
  err_is_terminal = true;
  serial.WillAnswer("\x19\x1F");
  serial.WillAnswer(FakeSerialControl::Answer{{Milliseconds{100}, "\x15\x1F{REPORT}"},
                                              {Milliseconds{1700}, std::string(6600, 'x')},
                                              {Milliseconds{2800}, "\x1F"}});
  EXPECT_EQ(Run({"module", "upload", "--out", (folder / "out").string(), "--port", "3"}), 0);
  EXPECT_THAT(err, HasSubstr("Uploading from KRM....  6610 bytes, 10% of the memory, at most "));
  EXPECT_THAT(Screen(), Not(HasSubstr("Uploading")));
}

}  // namespace
}  // namespace vrx::testing
