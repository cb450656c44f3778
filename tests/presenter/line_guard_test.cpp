#include "link/line_guard.h"

#include <gmock/gmock.h>

#include "link/link_fixture.h"
#include "presenter/direct_connection.h"
#include "presenter/upload.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(LineGuard, OneCommandHasTheLineAtATime) {
  LineGuard guard;
  {
    const auto command = guard.TakeForCommand();
    EXPECT_TRUE(command);
    EXPECT_FALSE(guard.TakeForCommand());
    EXPECT_FALSE(guard.TakeForDirectConnection());
    EXPECT_FALSE(guard.TakeForTransmission());
    EXPECT_TRUE(guard.AtWork());
  }
  EXPECT_TRUE(guard.Free());
  EXPECT_TRUE(guard.TakeForCommand());
}

TEST(LineGuard, ADirectConnectionHasItForItsOwnTransmissionsOnly) {
  LineGuard guard;
  const auto direct = guard.TakeForDirectConnection();
  EXPECT_TRUE(direct);
  EXPECT_FALSE(guard.TakeForCommand());
  EXPECT_FALSE(guard.TakeForDirectConnection());
  EXPECT_FALSE(guard.AtWork());
  {
    const auto answer = guard.TakeForTransmission();
    EXPECT_TRUE(answer);
    EXPECT_TRUE(guard.AtWork());
    EXPECT_FALSE(guard.TakeForTransmission());
  }
  EXPECT_TRUE(guard.TakeForTransmission());
}

TEST(LineGuard, ReportsOfEachChangeWhileTheWatchLives) {
  LineGuard guard;
  std::vector<bool> free;
  {
    const auto watch = guard.OnChange([&] { free.push_back(guard.Free()); });
    EXPECT_TRUE(guard.TakeForCommand());
  }
  EXPECT_TRUE(guard.TakeForCommand());
  EXPECT_THAT(free, ElementsAre(false, true));
}

class CommandsOfOneLine : public LinkFixture {
 protected:
  void ModuleHolds(const std::string& memory) {
    serial.WillAnswer(kEcho19200);
    serial.WillAnswer("\x15\x1F" + memory + "\x1F");
  }

  TransferState tab;
  Upload upload{krm, tab, pump, op, settings};
};

TEST_F(CommandsOfOneLine, ASecondUploadInsideTheFirstDoesNothing) {
  for (const Ms moment : {Ms{100}, Ms{1200}, Ms{2300}, Ms{2700}}) {
    op.status_lines.clear();
    ModuleHolds("{BAT/FED},L\r\n");
    pump.After(moment, [this] { upload.UploadDataFromKRM(); });
    upload.UploadDataFromKRM();
    EXPECT_EQ(op.Status(), "Upload complete!  (16 bytes, 1 file)") << moment.count();
    EXPECT_EQ(tab.data_files.size(), 1U) << moment.count();
    EXPECT_THAT(op.boxes, IsEmpty());
    EXPECT_EQ(std::count(op.status_lines.begin(), op.status_lines.end(), "Standby..."), 1);
  }
}

TEST_F(CommandsOfOneLine, AnIndicatorCannotBeConnectedInsideAnUpload) {
  DirectConnection direct(krm, tab, pump, op, settings);
  ModuleHolds("{BAT/FED},L\r\n");
  pump.After(Ms{2000}, [&] { EXPECT_FALSE(direct.ConnectIndicator()); });
  upload.UploadDataFromKRM();
  EXPECT_EQ(op.status_color, StatusColor::kGreen);
  EXPECT_EQ(tab.connection, Connection::kModule);
}

TEST_F(CommandsOfOneLine, TheMemoryIsReadInsideADirectConnection) {
  DirectConnection direct(krm, tab, pump, op, settings);
  pump.After(Ms{600}, [this] { serial.Arrives("{REPORT}x"); });
  pump.After(Ms{2000}, [this] { upload.UploadDataFromKRM(); });
  pump.After(Ms{3000}, [&] { direct.ConnectModule(); });
  EXPECT_TRUE(direct.ConnectIndicator());
  EXPECT_EQ(tab.transfer_block, "{REPORT}x");
  EXPECT_TRUE(krm.Guard().Free());
}

}  // namespace
}  // namespace vrx::testing
