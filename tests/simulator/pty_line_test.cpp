#include "simulator/pty_line.h"

#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

#include <gtest/gtest.h>

#include "simulator/simulator_program.h"
#include "support/temp_folder.h"

namespace vrx::simulator {
namespace {

namespace fs = std::filesystem;

using ::vrx::testing::Client;
using ::vrx::testing::Eventually;
using ::vrx::testing::TempFolder;

class PtyLineTest : public ::testing::Test {
 protected:
  TempFolder folder_;
  fs::path link_ = folder_ / "line";
};

TEST_F(PtyLineTest, LinksItsTerminalAndTakesTheLinkAway) {
  {
    const PtyLine line(link_);
    EXPECT_TRUE(fs::is_symlink(link_));
    EXPECT_TRUE(fs::is_character_file(link_));
  }
  EXPECT_FALSE(fs::is_symlink(link_));
}

TEST_F(PtyLineTest, CarriesAllByteValuesBothWays) {
  PtyLine line(link_);
  const Client client(link_);
  std::string bytes;
  for (int value = 0; value < 256; ++value) {
    bytes += static_cast<char>(value);
  }
  EXPECT_EQ(line.Write(bytes), bytes.size());
  EXPECT_EQ(client.Read(bytes.size()), bytes);
  client.Write(bytes);
  std::string read;
  EXPECT_TRUE(Eventually([&] { return (read += line.Read()).size() >= bytes.size(); }));
  EXPECT_EQ(read, bytes);
}

TEST_F(PtyLineTest, NeitherReadsNorWritesWithWaiting) {
  PtyLine line(link_);
  EXPECT_EQ(line.Read(), "");
  const std::string block(4096, 'x');
  std::size_t taken = 0;
  for (std::size_t now = 1; now > 0; taken += now) {
    now = line.Write(block);
    ASSERT_LT(taken, 10'000'000U) << "a line that nobody reads must fill";
  }
  EXPECT_GT(taken, 0U);
}

TEST_F(PtyLineTest, DiscardsUnreadBytes) {
  PtyLine line(link_);
  const std::string block(4096, 'x');
  while (line.Write(block) > 0) {
  }
  ASSERT_TRUE(Eventually([&] { return line.Untaken() > 2048; }));
  line.DiscardUntaken();
  line.Write("new");
  EXPECT_EQ(Client(link_).Read(3), "new");
  EXPECT_EQ(line.Untaken(), 0U);
}

TEST_F(PtyLineTest, OutlivesItsClients) {
  PtyLine line(link_);
  { const Client client(link_); }
  EXPECT_EQ(line.Read(), "");
  const Client client(link_);
  line.Write("again");
  EXPECT_EQ(client.Read(5), "again");
}

TEST_F(PtyLineTest, ReportsWhenClientsComeAndGo) {
  PtyLine line(link_);
  EXPECT_FALSE(line.TakeClients().came);
  {
    const Client client(link_);
    const PtyLine::Clients clients = line.TakeClients();
    EXPECT_TRUE(clients.came);
    EXPECT_FALSE(clients.went);
  }
  const PtyLine::Clients clients = line.TakeClients();
  EXPECT_FALSE(clients.came);
  EXPECT_TRUE(clients.went);
}

TEST_F(PtyLineTest, OpensAgainWhatAClientTookForItself) {
  PtyLine line(link_);
  {
    const Client client(link_);
    client.TakeForItself();
  }
  line.TakeClients();
  EXPECT_FALSE(Client(link_).TakenForOne());
}

TEST_F(PtyLineTest, ReplacesALinkToATerminalThatIsGone) {
  fs::create_symlink("/dev/pts/999999", link_);
  const PtyLine line(link_);
  EXPECT_TRUE(fs::is_character_file(link_));
}

TEST_F(PtyLineTest, ReplacesALinkToItsOwnTerminalOfAnEarlierRun) {
  std::optional<PtyLine> line(std::in_place, link_);
  const fs::path target = fs::read_symlink(link_);
  line.reset();
  fs::create_symlink(target, link_);
  line.emplace(link_);
  EXPECT_TRUE(fs::is_character_file(link_));
}

class TakenPath : public PtyLineTest {
 protected:
  std::string Refusal() {
    try {
      const PtyLine line(link_);
    } catch (const std::system_error& error) {
      return error.what();
    }
    return "";
  }
};

TEST_F(TakenPath, LeavesAFileAlone) {
  folder_.Write("line", "precious");
  EXPECT_NE(Refusal().find(link_.string() + ": another file is there"), std::string::npos);
  EXPECT_EQ(testing::ReadAll(link_), "precious");
}

TEST_F(TakenPath, LeavesAFolderAlone) {
  fs::create_directory(link_);
  EXPECT_NE(Refusal().find(link_.string()), std::string::npos);
  EXPECT_TRUE(fs::is_directory(link_));
}

TEST_F(TakenPath, LeavesTheLinkOfALineThatLivesAlone) {
  const PtyLine other(link_);
  const fs::path target = fs::read_symlink(link_);
  EXPECT_NE(Refusal().find(target.string()), std::string::npos);
  EXPECT_EQ(fs::read_symlink(link_), target);
}

TEST_F(TakenPath, LeavesLinksToAnythingElseAlone) {
  for (const char* target : {"/dev/null", "/nowhere/at/all", "/dev/pts/", "/dev/pts/ptmx2",
                             "/dev/pts/1/../x", "999999"}) {
    fs::create_symlink(target, link_);
    EXPECT_NE(Refusal(), "") << target;
    EXPECT_EQ(fs::read_symlink(link_), target);
    fs::remove(link_);
  }
}

TEST_F(PtyLineTest, DoesNotTakeAwayALinkThatIsNoLongerItsOwn) {
  {
    const PtyLine line(link_);
    fs::remove(link_);
    folder_.Write("line", "somebody's");
  }
  EXPECT_EQ(testing::ReadAll(link_), "somebody's");
}

TEST_F(PtyLineTest, ReportsAFolderThatIsMissing) {
  EXPECT_THROW(PtyLine(folder_ / "missing/line"), std::system_error);
}

}  // namespace
}  // namespace vrx::simulator
