#include "presenter/direct_connection.h"

#include <cstdint>
#include <filesystem>
#include <limits>
#include <vector>

#include <gmock/gmock.h>

#include "base/files.h"
#include "exchange/recipe_text.h"
#include "link/link_fixture.h"
#include "presenter/upload.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::string_view kWaiting = "Waiting to receive commands/data from K-2260 indicator.";

// Entering takes 500 ms; arrival times count from the start of entering. An answer takes 1600 ms.
class DirectConnectionTest : public LinkFixture {
 protected:
  void ArriveAfter(Ms delay, const std::string& bytes) {
    pump.After(Ms{500} + delay, [this, bytes] { serial.Arrives(bytes); });
  }
  void After(Ms delay, std::function<void()> event) {
    pump.After(Ms{500} + delay, std::move(event));
  }
  void LeaveAfter(Ms delay) {
    After(delay, [this] { direct.ConnectModule(); });
  }

  TransferState tab;
  DirectConnection direct{krm, tab, pump, op, settings};
};

TEST_F(DirectConnectionTest, CommandInABurstTakesEffectAtItsPlace) {
  ArriveAfter(Ms{100},
              "abc\x15"
              "def");
  LeaveAfter(Ms{10'000});
  EXPECT_TRUE(direct.ConnectIndicator());
  EXPECT_EQ(serial.sent,
            "\x15\x1F"
            "abc\x1F");
  EXPECT_EQ(krm.GS_KRM_VirtualMemory(), "abcdef");
  EXPECT_THAT(op.status_lines, Contains("Received <NAK>, transmitted memory."));
  // 250 ms of silence, then 1000 ms of DTR.
  EXPECT_THAT(serial.TimesOf("out"), ElementsAre(Ms{500 + 100 + 250 + 1000}));
}

// Another command that a handler runs while an answer is being sent receives too.
TEST_F(DirectConnectionTest, ABurstOutlivesWhatIsReceivedDuringAnAnswer) {
  ArriveAfter(Ms{100},
              "abc\x15"
              "def");
  After(Ms{1000}, [this] { krm.GS_KRM_RxDBuffer("1234567"); });
  LeaveAfter(Ms{10'000});
  EXPECT_TRUE(direct.ConnectIndicator());
  EXPECT_EQ(krm.GS_KRM_VirtualMemory(), "abcdef");
}

TEST_F(DirectConnectionTest, NoRowOfAnEmptiedListIsSelected) {
  ArriveAfter(Ms{100}, "{REPORT}x");
  After(Ms{1000}, [this] {
    tab.data_files = {{.file = 1, .text = "Text Report - 1"}};
    tab.data_files_frame_visible = true;
    tab.selected_row = 0;
  });
  ArriveAfter(Ms{2000}, "\x14");
  LeaveAfter(Ms{10'000});
  EXPECT_TRUE(direct.ConnectIndicator());
  EXPECT_THAT(tab.data_files, IsEmpty());
  EXPECT_EQ(tab.selected_row, -1);
}

TEST_F(DirectConnectionTest, DumpAllAnswersWithItsOwnCommand) {
  ArriveAfter(Ms{100}, "abc\x1C");
  LeaveAfter(Ms{10'000});
  direct.ConnectIndicator();
  EXPECT_EQ(serial.sent,
            "\x1C\x1F"
            "abc\x1F");
  EXPECT_THAT(op.status_lines, Contains("Received <FS>, transmitted memory."));
}

TEST_F(DirectConnectionTest, EmptyImageIsAnsweredNakUsUs) {
  ArriveAfter(Ms{100}, "\x15");
  LeaveAfter(Ms{10'000});
  direct.ConnectIndicator();
  EXPECT_EQ(serial.sent, "\x15\x1F\x1F");
}

TEST_F(DirectConnectionTest, OtherControlCharactersAreData) {
  const std::string data = "\x0C\x11\x13\x16\x17\x18\x19\x1F\r\n";
  ArriveAfter(Ms{100}, data);
  LeaveAfter(Ms{1000});
  direct.ConnectIndicator();
  EXPECT_EQ(krm.GS_KRM_VirtualMemory(), data);
  EXPECT_EQ(serial.sent, "");
}

TEST_F(DirectConnectionTest, ClearEmptiesImageAndTextBoxesAndShowsForAtMost200Ms) {
  ArriveAfter(Ms{100}, "{REPORT}x");
  After(Ms{1000}, [&] {
    tab.data_window = "shown";
    tab.file_path = "/shown";
  });
  ArriveAfter(Ms{1500}, "\x14");
  std::string before_the_tick;
  std::string after_the_tick;
  After(Ms{1500 + 250 + 1600 + 1}, [&] { before_the_tick = op.Status(); });
  After(Ms{1500 + 250 + 1600 + 201}, [&] { after_the_tick = op.Status(); });
  LeaveAfter(Ms{10'000});
  direct.ConnectIndicator();
  EXPECT_EQ(serial.sent, "\x14\x1F");
  EXPECT_EQ(krm.GS_KRM_VirtualMemory(), "");
  EXPECT_EQ(before_the_tick, "Received <DC4>, cleared memory.");
  EXPECT_EQ(after_the_tick, kWaiting);
  EXPECT_EQ(tab.file_path, "");
  EXPECT_EQ(tab.data_window, "");
}

TEST_F(DirectConnectionTest, ChangedMemorySizeClearsTheStatusLine) {
  ArriveAfter(Ms{100}, "abc");
  std::string status = "nothing yet";
  std::string size;
  After(Ms{600}, [&] {
    status = op.Status();
    size = tab.memory_size;
  });
  LeaveAfter(Ms{1000});
  direct.ConnectIndicator();
  EXPECT_EQ(size, "3");
  EXPECT_EQ(tab.memory_bar, 3);
  EXPECT_EQ(status, "");
}

TEST_F(DirectConnectionTest, UnchangedMemorySizeLeavesTheStatusLine) {
  krm.GS_KRM_VirtualMemory("abc");
  op.answers = {Answer::kNo};
  ArriveAfter(Ms{700}, "\x15");
  std::string status;
  After(Ms{5000}, [&] { status = op.Status(); });
  LeaveAfter(Ms{6000});
  direct.ConnectIndicator();
  EXPECT_EQ(status, "Received <NAK>, transmitted memory.");
}

TEST_F(DirectConnectionTest, BarEndsAtItsMaximum) {
  ArriveAfter(Ms{100}, std::string(70'000, 'x'));
  LeaveAfter(Ms{1000});
  direct.ConnectIndicator();
  EXPECT_EQ(tab.memory_size, "70000");
  EXPECT_EQ(tab.memory_bar, 65536);
}

TEST_F(DirectConnectionTest, ChangedMemoryMakesAReadListReloadable) {
  Upload upload(krm, tab, pump, op, settings);
  ArriveAfter(Ms{100}, "{REPORT}x");
  After(Ms{1000}, [&] { upload.UploadDataFromKRM(); });
  bool reloadable_after_reading = true;
  After(Ms{1300}, [&] { reloadable_after_reading = tab.reload_enabled; });
  ArriveAfter(Ms{1400}, "\fmore");
  bool reloadable_after_change = false;
  std::size_t rows_after_change = 0;
  After(Ms{2000}, [&] {
    reloadable_after_change = tab.reload_enabled;
    rows_after_change = tab.data_files.size();
  });
  ArriveAfter(Ms{2100}, "\x14");
  std::size_t rows_after_clear = 1;
  After(Ms{3000}, [&] { rows_after_clear = tab.data_files.size(); });
  LeaveAfter(Ms{10'000});
  direct.ConnectIndicator();
  EXPECT_FALSE(reloadable_after_reading);
  EXPECT_TRUE(reloadable_after_change);
  EXPECT_EQ(rows_after_change, 1U);
  EXPECT_EQ(rows_after_clear, 0U);
}

TEST_F(DirectConnectionTest, AnsweringNoKeepsTheImageForTheNextDump) {
  krm.GS_KRM_VirtualMemory("kept");
  op.answers = {Answer::kNo};
  ArriveAfter(Ms{100}, "\x15");
  LeaveAfter(Ms{10'000});
  direct.ConnectIndicator();
  ASSERT_EQ(op.boxes.size(), 1U);
  EXPECT_EQ(op.boxes[0].text, "Do you want to clear the current data in memory?");
  EXPECT_EQ(op.boxes[0].title, "Clear Memory");
  EXPECT_EQ(op.boxes[0].icon, Icon::kQuestion);
  EXPECT_EQ(op.boxes[0].buttons, Buttons::kYesNo);
  EXPECT_EQ(serial.sent, "\x15\x1Fkept\x1F");
}

TEST_F(DirectConnectionTest, AnsweringYesEmptiesTheImageWithoutTransmission) {
  krm.GS_KRM_VirtualMemory("old");
  op.answers = {Answer::kYes};
  LeaveAfter(Ms{1000});
  direct.ConnectIndicator();
  EXPECT_EQ(krm.GS_KRM_VirtualMemory(), "");
  EXPECT_EQ(serial.sent, "");
}

TEST_F(DirectConnectionTest, AnImageThatTheOperatorEmptiesNeedsNoSaving) {
  for (const Answer answer : {Answer::kNo, Answer::kYes}) {
    krm.GS_KRM_VirtualMemory("x");
    tab.received.Arrived();
    op.answers = {answer};
    direct.Enter();
    EXPECT_EQ(tab.received.Unsaved(), answer == Answer::kNo);
  }
}

TEST_F(DirectConnectionTest, EmptyImageIsNotAskedAbout) {
  LeaveAfter(Ms{1000});
  direct.ConnectIndicator();
  EXPECT_THAT(op.boxes, IsEmpty());
}

TEST_F(DirectConnectionTest, RefusedPortFallsBackToTheModule) {
  serial.failing_property = "PortOpen";
  tab.connection = Connection::kIndicator;
  EXPECT_FALSE(direct.ConnectIndicator());
  ASSERT_EQ(op.boxes.size(), 1U);
  EXPECT_EQ(op.boxes[0].text, "Could not open serial port for direct-connection.");
  EXPECT_EQ(op.boxes[0].title, "Error");
  EXPECT_EQ(op.boxes[0].icon, Icon::kCritical);
  EXPECT_EQ(op.boxes[0].cause, "fake: PortOpen refused");
  EXPECT_EQ(op.beeps, 1);
  EXPECT_EQ(tab.connection, Connection::kModule);
  EXPECT_FALSE(tab.memory_label_visible);
  EXPECT_TRUE(tab.download_buttons_visible);
}

TEST_F(DirectConnectionTest, EnteringSetsTheTabUp) {
  tab.data_window = "old";
  tab.file_path = "/old";
  tab.recipe_frames_visible = true;
  tab.data_files_frame_visible = true;
  tab.memory_bar_visible = true;
  op.status_color = StatusColor::kRed;
  ASSERT_TRUE(direct.Enter());
  EXPECT_EQ(tab.connection, Connection::kIndicator);
  EXPECT_EQ(tab.data_window, "");
  EXPECT_EQ(tab.file_path, "");
  EXPECT_FALSE(tab.recipe_frames_visible);
  EXPECT_FALSE(tab.data_files_frame_visible);
  EXPECT_TRUE(tab.memory_label_visible);
  EXPECT_TRUE(tab.memory_size_visible);
  EXPECT_FALSE(tab.memory_bar_visible);
  EXPECT_EQ(tab.open_caption, "Load Memory...");
  EXPECT_FALSE(tab.download_buttons_visible);
  EXPECT_EQ(op.status_color, StatusColor::kBlue);
  EXPECT_EQ(op.Status(), kWaiting);
  EXPECT_EQ(serial.handshaking, Handshaking::kNone);
}

TEST_F(DirectConnectionTest, LeavingSetsTheTabBackAndStopsTheUpdates) {
  ArriveAfter(Ms{100}, "abc");
  After(Ms{900}, [&] {
    tab.data_window = "shown";
    tab.file_path = "/stays";
    tab.data_files_frame_visible = true;
  });
  LeaveAfter(Ms{1000});
  EXPECT_TRUE(direct.ConnectIndicator());
  EXPECT_EQ(pump.Now(), Ms{500 + 1000 + 500});
  EXPECT_FALSE(serial.PortOpen());
  EXPECT_EQ(tab.connection, Connection::kModule);
  EXPECT_EQ(tab.data_window, "");
  EXPECT_EQ(tab.file_path, "/stays");
  EXPECT_FALSE(tab.data_files_frame_visible);
  EXPECT_FALSE(tab.memory_size_visible);
  EXPECT_EQ(tab.open_caption, "Open...");
  EXPECT_TRUE(tab.download_buttons_visible);
  EXPECT_EQ(op.Status(), "");
  const std::size_t lines_before = op.status_lines.size();
  krm.GS_KRM_VirtualMemory("");
  for (int i = 0; i < 10; ++i) {
    pump.Pump(Ms{1000});
  }
  EXPECT_EQ(op.status_lines.size(), lines_before);
  EXPECT_EQ(tab.memory_size, "3");
}

TEST_F(DirectConnectionTest, FailedReplyIsReportedAndTheLoopGoesOn) {
  ArriveAfter(Ms{100}, "abc\x15");
  After(Ms{500}, [&] { serial.failing_property = "Output"; });
  After(Ms{4000}, [&] { serial.failing_property = ""; });
  ArriveAfter(Ms{5000}, "\x15");
  LeaveAfter(Ms{10'000});
  EXPECT_TRUE(direct.ConnectIndicator());
  ASSERT_EQ(op.boxes.size(), 1U);
  EXPECT_EQ(op.boxes[0].text, "Transmission of response to <NAK> command failed!");
  EXPECT_EQ(serial.sent,
            "\x15\x1F"
            "abc\x1F");
}

TEST_F(DirectConnectionTest, TheLineIsInUseDuringAReplyOnly) {
  std::vector<bool> in_use;
  const auto note = [&] { in_use.push_back(krm.Guard().AtWork()); };
  ArriveAfter(Ms{100}, "abc\x15");
  After(Ms{200}, note);
  After(Ms{1000}, note);
  After(Ms{5000}, note);
  LeaveAfter(Ms{10'000});
  direct.ConnectIndicator();
  EXPECT_THAT(in_use, ElementsAre(false, true, false));
}

TEST_F(DirectConnectionTest, AReplyThatTheLineHoldsIsFollowedByAReopenedPort) {
  ArriveAfter(Ms{100}, "abc\x15");
  serial.hold_after_output = 0;
  After(Ms{15'000}, [this] { serial.hold_after_output = std::numeric_limits<std::size_t>::max(); });
  ArriveAfter(Ms{20'000}, "def\x15");
  LeaveAfter(Ms{30'000});
  EXPECT_TRUE(direct.ConnectIndicator());
  EXPECT_EQ(serial.blocks.back(),
            "\x15\x1F"
            "abcdef\x1F");
  EXPECT_EQ(serial.TimesOf("open").size(), 2U);
}

TEST_F(DirectConnectionTest, LostLineIsReportedOnceAndFallsBackToTheModule) {
  ArriveAfter(Ms{100}, "abc");
  After(Ms{200}, [&] { serial.LoseLine(); });
  EXPECT_FALSE(direct.ConnectIndicator());
  ASSERT_EQ(op.boxes.size(), 1U);
  EXPECT_EQ(op.boxes[0].title, "Error");
  EXPECT_EQ(op.boxes[0].text, "The direct-connection has ended: Serial line lost.");
  EXPECT_EQ(op.boxes[0].cause, "fake: the line is gone");
  EXPECT_EQ(krm.GS_KRM_VirtualMemory(), "abc");
  EXPECT_EQ(tab.connection, Connection::kModule);
  EXPECT_EQ(pump.Now(), Ms{500 + 200});
}

TEST_F(DirectConnectionTest, LineLostDuringAReplyEndsTheConnection) {
  ArriveAfter(Ms{100}, "\x15");
  After(Ms{800}, [&] { serial.LoseLine(); });
  EXPECT_FALSE(direct.ConnectIndicator());
  ASSERT_EQ(op.boxes.size(), 2U);
  EXPECT_EQ(op.boxes[0].text, "Transmission of response to <NAK> command failed!");
  EXPECT_EQ(op.boxes[1].text, "The direct-connection has ended: Serial line lost.");
}

TEST_F(DirectConnectionTest, ClosingProgramEndsItWithoutAMessageAndKeepsWhatArrived) {
  ArriveAfter(Ms{100}, "abc\x15");
  After(Ms{200}, [&] { pump.closing = true; });
  EXPECT_TRUE(direct.ConnectIndicator());
  EXPECT_THAT(op.boxes, IsEmpty());
  EXPECT_EQ(krm.GS_KRM_VirtualMemory(), "abc");
  EXPECT_EQ(pump.Now(), Ms{500 + 200});
}

TEST_F(DirectConnectionTest, LeavingDuringAReplyAnswersNothingMore) {
  ArriveAfter(Ms{100},
              "abc\x15\x15"
              "def");
  LeaveAfter(Ms{400});
  EXPECT_TRUE(direct.ConnectIndicator());
  EXPECT_EQ(serial.sent, "");
  EXPECT_EQ(op.boxes.size(), 1U);
  EXPECT_EQ(krm.GS_KRM_VirtualMemory(), "abc");
}

TEST_F(DirectConnectionTest, CanBeEnteredAnew) {
  LeaveAfter(Ms{1000});
  EXPECT_TRUE(direct.ConnectIndicator());
  ArriveAfter(Ms{100}, "abc");
  LeaveAfter(Ms{1000});
  EXPECT_TRUE(direct.ConnectIndicator());
  EXPECT_EQ(krm.GS_KRM_VirtualMemory(), "abc");
}

TEST_F(DirectConnectionTest, LoadReplacesTheImageAndAnswersUnasked) {
  ASSERT_TRUE(direct.Enter());
  krm.GS_KRM_VirtualMemory("old");
  EXPECT_EQ(TimeOf([&] { direct.LoadMemory("{DATA_IN},L\r\n"); }), Ms{1600});
  EXPECT_EQ(krm.GS_KRM_VirtualMemory(), "{DATA_IN},L\r\n");
  EXPECT_EQ(serial.sent, "\x14\x1F");
  EXPECT_EQ(op.Status(), "Waiting to receive commands/data from K2260 indicator.");
}

TEST_F(DirectConnectionTest, OnlyABackupHasABackupsHeader) {
  EXPECT_TRUE(HasBackupHeader("{DATA_IN},L\r\n", op, settings));
  EXPECT_THAT(op.boxes, IsEmpty());
  EXPECT_FALSE(HasBackupHeader(" {DATA_IN},L\r\n", op, settings));
  ASSERT_EQ(op.boxes.size(), 1U);
  EXPECT_EQ(op.boxes[0].text,
            "The Recipe backup-file has an invalid file header and cannot be downloaded.");
  EXPECT_EQ(op.boxes[0].title, "File-Header Error");
  EXPECT_EQ(op.boxes[0].icon, Icon::kWarning);
  EXPECT_EQ(op.beeps, 1);
}

// As in the setup dialog.
TEST_F(DirectConnectionTest, ResumesWhenAnotherRoutineHasClosedThePort) {
  After(Ms{100}, [this] {
    krm.KRM_Close();
    EXPECT_TRUE(direct.Resume());
    EXPECT_EQ(serial.handshaking, Handshaking::kNone);
  });
  ArriveAfter(Ms{2'000}, "after");
  LeaveAfter(Ms{10'000});
  EXPECT_TRUE(direct.ConnectIndicator());
  EXPECT_EQ(krm.GS_KRM_VirtualMemory(), "after");
}

TEST_F(DirectConnectionTest, ResumesWhenAnotherRoutineHasUsedThePort) {
  serial.WillAnswer("\x19\x1f");
  After(Ms{100}, [this] {
    krm.KRM_Close();
    EXPECT_TRUE(krm.KRM_OnlineCheck());
    EXPECT_EQ(serial.handshaking, Handshaking::kXOnXOff);
    EXPECT_TRUE(direct.Resume());
    EXPECT_EQ(serial.handshaking, Handshaking::kNone);
  });
  ArriveAfter(Ms{9'000}, "after");
  LeaveAfter(Ms{15'000});
  EXPECT_TRUE(direct.ConnectIndicator());
  EXPECT_EQ(krm.GS_KRM_VirtualMemory(), "after");
}

TEST_F(DirectConnectionTest, EndsWhenThePortCannotBeResumed) {
  After(Ms{100}, [this] {
    krm.KRM_Close();
    serial.failing_property = "PortOpen";
    EXPECT_FALSE(direct.Resume());
  });
  direct.ConnectIndicator();
  EXPECT_EQ(tab.connection, Connection::kModule);
  ASSERT_EQ(op.boxes.size(), 1U);
  EXPECT_EQ(op.boxes[0].text, "Could not open serial port for direct-connection.");
}

TEST_F(DirectConnectionTest, ResumesNothingInTheModuleConnection) {
  EXPECT_TRUE(direct.Resume());
  EXPECT_THAT(serial.events, IsEmpty());
}

TEST(RecipeBackup, HasAtMost16Megabytes) {
  const TempFolder folder;
  const std::filesystem::path file = folder.Write("a.RBU", "{DATA_IN}");
  constexpr std::uintmax_t kMost = 16'777'216;
  std::filesystem::resize_file(file, kMost);
  EXPECT_EQ(ReadRecipeBackup(file).size(), kMost);
  std::filesystem::resize_file(file, kMost + 1);
  EXPECT_THROW(ReadRecipeBackup(file), FileError);
}

}  // namespace
}  // namespace vrx::testing
