#include "presenter/central_push.h"

#include <cstring>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "central/administration.h"
#include "database/copy_database.h"
#include "support/boxes.h"
#include "support/central_server.h"
#include "support/database_files.h"
#include "support/small_history.h"
#include "support/test_services.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

// A server that takes connections and never says a word.
class SilentServer {
 public:
  explicit SilentServer(const fs::path& folder) : socket_(socket(AF_UNIX, SOCK_STREAM, 0)) {
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    std::strncpy(address.sun_path, (folder / ".s.PGSQL.5432").c_str(), sizeof address.sun_path - 1);
    if (bind(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        listen(socket_, 5) != 0 || fcntl(socket_, F_SETFL, O_NONBLOCK) != 0) {
      throw std::runtime_error("no socket in " + folder.string());
    }
  }
  ~SilentServer() { close(socket_); }
  SilentServer(const SilentServer&) = delete;
  SilentServer& operator=(const SilentServer&) = delete;

  // Ends the next connection. Returns false without one.
  bool HangUp() const {
    const int connection = accept(socket_, nullptr, nullptr);
    return connection >= 0 && close(connection) == 0;
  }
  [[nodiscard]] bool HasCaller() const {
    pollfd_ = {.fd = socket_, .events = POLLIN, .revents = 0};
    return poll(&pollfd_, 1, 0) == 1;
  }

 private:
  int socket_;
  mutable pollfd pollfd_{};
};

// The small history, which has eight rows, and a central database with the yard North.
class CentralPushTest : public ::testing::Test, protected TestServices, public CentralPushView {
 protected:
  static constexpr const char* kLogin = "window_north";

  CentralPushTest() { MakeFile("SMALL.TDB"); }

  const std::string& Database() {
    if (database.empty()) {
      database = CentralServer::Get().MakeCentralDatabase();
      CentralConnection chief = Chief();
      AddYard(chief, "North", "America/Chicago", kLogin);
    }
    return database;
  }
  CentralConnection Chief() {
    return CentralConnection(CentralServer::Get().Connection(Database()));
  }
  fs::path MakeFile(const std::string& name) {
    SmallHistory(dir, name).exec("UPDATE UnitsOfMeasure SET UoM = 'LB'");
    return dir / name;
  }
  // A push to a server in that folder.
  std::string Connection(const fs::path& socket) {
    return "host='" + socket.string() + "' dbname=" + Database() + " user=" + kLogin;
  }
  std::string Connection() { return Connection(CentralServer::Get().SocketFolder()); }

  CentralPush& Window() {
    if (!push) {
      push.emplace(services, ini, "machine", *this);
    }
    return *push;
  }
  void Open(const std::string& name = "SMALL.TDB") {
    const fs::path path = dir / name;
    bound = BindUserDatabase(path, kBusyTimeout);
    Window().SetDatabase(bound);
  }
  void Close() {
    bound = BindBlankInMemory(DatabaseKind::kTransaction);
    bound.blank = true;
    Window().SetDatabase(bound);
  }
  void Set(const CentralSettings& central) { Window().ChangeSettings(central); }
  void SetAndOpen(bool automatic = false) {
    Set({.connection = Connection(), .yard = "North", .automatic = automatic});
    Open();
  }
  void CentralChanged() override { ++changes; }

  const CentralPushState& State() { return Window().State(); }
  // The clock of the pump stands while a thread works.
  void Turn() {
    pump.Pump(Milliseconds{1000});  // or until the next tick
    std::this_thread::sleep_for(std::chrono::milliseconds{1});
  }
  bool WaitFor(const std::function<bool()>& condition) {
    for (int turn = 0; turn < 10000; ++turn) {
      if (condition()) {
        return true;
      }
      Turn();
    }
    return false;
  }
  bool WaitForText(const std::string& text) {
    return WaitFor([&] { return State().text == text; });
  }
  std::int64_t RowsThere() {
    return Chief().Query("SELECT count(*) FROM vrx.transaction").Number(0, 0);
  }
  void Store(const std::string& recipe) {
    Window().BeginWrite();
    Alter(bound.path, "INSERT INTO Transactions ([Transaction], Recipe, Type, Date) VALUES (9, '" +
                          recipe + "', 'BATCH', '2011-03-16')");
    Window().RecordsStored();
    Window().EndWrite();
  }

  TempFolder dir;
  std::string database;
  CPrivateINI ini{dir / "VRX-2260.INI", system, op};
  BoundDatabase bound;
  std::optional<CentralPush> push;
  int changes = 0;
};

TEST_F(CentralPushTest, DoesNothingWithoutAConnection) {
  Open();
  Store("STEERS");
  const int turns = pump.pumps;
  for (int i = 0; i < 100; ++i) {
    Turn();
  }
  EXPECT_EQ(pump.pumps, turns + 100);
  EXPECT_EQ(State().sign, CentralSign::kNone);
  EXPECT_EQ(State().text, "");
  EXPECT_FALSE(State().here.has_value());
  EXPECT_FALSE(fs::exists(dir / "VRX-2260.INI"));
}

TEST_F(CentralPushTest, CountsTheRowsThatWaitWithoutTheServer) {
  Set({.connection = Connection(dir / "nowhere"), .yard = "North"});
  Open();
  EXPECT_EQ(State().sign, CentralSign::kChecking);
  EXPECT_TRUE(WaitForText("Central: 8 rows waiting"));
  EXPECT_EQ(State().sign, CentralSign::kWaiting);
  EXPECT_EQ(State().why, "8 rows of SMALL.TDB are not in the central database yet.");
  Close();
  EXPECT_EQ(State().sign, CentralSign::kNone);
}

TEST_F(CentralPushTest, TakesTheRowsThereAndSaysSo) {
  SetAndOpen();
  Window().Push();
  EXPECT_TRUE(State().running);
  ASSERT_TRUE(WaitForText("Central: up to date"));
  EXPECT_FALSE(State().running);
  EXPECT_EQ(State().why, "All rows of SMALL.TDB are in the central database.");
  ASSERT_TRUE(State().last.has_value());
  EXPECT_EQ(State().last->rows, 8);
  EXPECT_EQ(RowsThere(), 8);
}

TEST_F(CentralPushTest, AStoreIsPushedOnlyIfThatIsAutomatic) {
  SetAndOpen();
  Store("STEERS");
  ASSERT_TRUE(WaitForText("Central: 9 rows waiting"));
  EXPECT_FALSE(State().running);
  Set({.connection = Connection(), .yard = "North", .automatic = true});
  Store("HEIFER");
  ASSERT_TRUE(WaitForText("Central: up to date"));
  EXPECT_EQ(RowsThere(), 10);
}

TEST_F(CentralPushTest, OpeningAFilePushesNothing) {
  SetAndOpen(true);
  ASSERT_TRUE(WaitForText("Central: 8 rows waiting"));
  EXPECT_FALSE(State().running);
  EXPECT_EQ(
      Ask(dir / "SMALL.TDB", "SELECT count(*) FROM sqlite_schema WHERE name = 'CentralSource'"),
      std::vector<std::string>{"0"});
}

TEST_F(CentralPushTest, AServerThatIsNotReachedIsTriedAgainWithGrowingPauses) {
  const fs::path way = dir / "way";
  fs::create_directory(way);
  const SilentServer server(way);
  Set({.connection = Connection(way), .yard = "North"});
  Open();
  Window().Push();
  std::vector<Milliseconds> tries;
  for (int i = 0; i < 3; ++i) {
    ASSERT_TRUE(WaitFor([&] { return server.HasCaller(); }));
    tries.push_back(pump.Now());
    server.HangUp();
    ASSERT_TRUE(WaitFor([&] {
      return !server.HasCaller() && State().progress.total == 0 &&
             State().sign == CentralSign::kNotReached;
    }));
    if (i == 0) {
      EXPECT_EQ(State().text, "Central: not reached since 06:30");
      EXPECT_THAT(State().why, HasSubstr("The next try is at 06:30."));
    }
    EXPECT_TRUE(State().running);
  }
  for (int i = 1; i < 3; ++i) {
    EXPECT_GE(tries[i] - tries[i - 1], CentralPush::PauseAfter(i)) << i;
  }
}

TEST_F(CentralPushTest, ThePausesGrowToHalfAnHour) {
  using std::chrono::minutes;
  using std::chrono::seconds;
  EXPECT_EQ(CentralPush::PauseAfter(1), seconds{30});
  EXPECT_EQ(CentralPush::PauseAfter(2), minutes{1});
  EXPECT_EQ(CentralPush::PauseAfter(6), minutes{16});
  EXPECT_EQ(CentralPush::PauseAfter(7), minutes{30});
  EXPECT_EQ(CentralPush::PauseAfter(1000), minutes{30});
}

TEST_F(CentralPushTest, APushGoesOnByItselfOnceTheServerIsReached) {
  Set({.connection = Connection(dir / "way"), .yard = "North"});
  Open();
  Window().Push();
  ASSERT_TRUE(WaitForText("Central: not reached since 06:30"));
  fs::create_directory_symlink(CentralServer::Get().SocketFolder(), dir / "way");
  EXPECT_TRUE(WaitForText("Central: up to date"));
  EXPECT_EQ(RowsThere(), 8);
}

TEST_F(CentralPushTest, ARefusedPushIsNotTriedAgain) {
  Set({.connection = Connection(), .yard = "Nowhere"});
  Open();
  Window().Push();
  ASSERT_TRUE(WaitForText("Central: refused"));
  EXPECT_EQ(State().sign, CentralSign::kRefused);
  EXPECT_EQ(State().why,
            "Nothing was pushed: the central database has no yard \"Nowhere\" for "
            "this login.");
  EXPECT_FALSE(State().running);
  Set({.connection = Connection(), .yard = "North"});
  EXPECT_TRUE(WaitForText("Central: 8 rows waiting"));
}

TEST_F(CentralPushTest, AMissingYardIsAnObstacle) {
  Set({.connection = Connection(), .yard = ""});
  Open();
  Window().Push();
  EXPECT_EQ(State().text, "Central: refused");
  EXPECT_EQ(State().obstacle, "The name of the yard is missing.");
  EXPECT_FALSE(State().running);
}

TEST_F(CentralPushTest, ClosingTheFileEndsAPushAndReopeningItGoesOn) {
  const fs::path way = dir / "way";
  fs::create_directory(way);
  std::optional<SilentServer> server(std::in_place, way);
  Set({.connection = Connection(way), .yard = "North"});
  Open();
  Window().Push();
  ASSERT_TRUE(WaitFor([&] { return server->HasCaller(); }));
  Close();
  EXPECT_EQ(State().sign, CentralSign::kNone);
  server.reset();
  fs::remove_all(way);
  fs::create_directory_symlink(CentralServer::Get().SocketFolder(), way);
  Open();
  EXPECT_TRUE(WaitForText("Central: up to date"));
}

TEST_F(CentralPushTest, AnotherFileIsNotPushedInItsPlace) {
  MakeFile("OTHER.TDB");
  Set({.connection = Connection(dir / "way"), .yard = "North", .automatic = true});
  Open();
  Window().Push();
  ASSERT_TRUE(WaitForText("Central: not reached since 06:30"));
  Close();
  Open("OTHER.TDB");
  EXPECT_TRUE(WaitForText("Central: 8 rows waiting"));
  EXPECT_FALSE(State().running);
}

TEST_F(CentralPushTest, StopEndsThePushForGood) {
  const fs::path way = dir / "way";
  fs::create_directory(way);
  const SilentServer server(way);
  Set({.connection = Connection(way), .yard = "North"});
  Open();
  Window().Push();
  ASSERT_TRUE(WaitFor([&] { return server.HasCaller(); }));
  Window().Stop();
  EXPECT_FALSE(State().running);
  EXPECT_TRUE(WaitForText("Central: 8 rows waiting"));
}

// The file of a push that has got as far as the rows, which a lock of the server holds up.
TEST_F(CentralPushTest, AWriteFindsTheFileFreeAndThePushGoesOnAfterIt) {
  SetAndOpen();
  CentralConnection chief = Chief();
  chief.Query("BEGIN");
  chief.Query("LOCK TABLE vrx.push IN SHARE MODE");
  Window().Push();
  ASSERT_TRUE(WaitFor([&] { return State().progress.done == 8; }));
  Window().BeginWrite();
  {
    SQLite::Database writer =
        OpenDatabase(bound.path, Access::kWrite, std::chrono::milliseconds{0});
    writer.exec("BEGIN EXCLUSIVE");
    for (int i = 0; i < 20; ++i) {
      Turn();
    }
    writer.exec("INSERT INTO Transactions ([Transaction], Recipe, Type) VALUES (9, 'S', 'BATCH')");
    writer.exec("COMMIT");
  }
  Window().EndWrite();
  EXPECT_TRUE(State().running);
  chief.Query("COMMIT");
  ASSERT_TRUE(WaitForText("Central: up to date"));
  EXPECT_EQ(RowsThere(), 9);
}

TEST_F(CentralPushTest, ACopyIsRefusedAndGoesOnAsASourceOfItsOwnByAWord) {
  SetAndOpen();
  Window().Push();
  ASSERT_TRUE(WaitForText("Central: up to date"));
  CopyDatabaseFile(dir / "SMALL.TDB", dir / "COPY.TDB", kBusyTimeout);
  Open("COPY.TDB");
  Store("STEERS");
  Window().Push();
  ASSERT_TRUE(WaitForText("Central: refused"));
  EXPECT_TRUE(State().is_copy);
  Window().PushAsNewSource();
  ASSERT_TRUE(WaitForText("Central: up to date"));
  EXPECT_FALSE(State().is_copy);
  EXPECT_EQ(RowsThere(), 9);
}

TEST_F(CentralPushTest, RowsThatWereChangedAfterThePushAreShownAndRefused) {
  SetAndOpen();
  Window().Push();
  ASSERT_TRUE(WaitForText("Central: up to date"));
  Alter(bound.path, "UPDATE Transactions SET Target = 1 WHERE RowNumber = 2");
  Window().MakeWay();
  ASSERT_TRUE(WaitForText("Central: rows were changed"));
  Window().Push();
  ASSERT_TRUE(WaitForText("Central: refused"));
  EXPECT_THAT(State().why, HasSubstr("changed or deleted in this file after they were pushed: 2"));
}

TEST_F(CentralPushTest, AFileThatAnotherProgramHoldsIsWaitedFor) {
  SetAndOpen();
  ASSERT_TRUE(WaitForText("Central: 8 rows waiting"));
  {
    const ExclusiveHolder holder(bound.path);
    Window().Push();
    ASSERT_TRUE(WaitFor([&] { return State().progress.doing.empty() && State().running; }));
    for (int i = 0; i < 50; ++i) {
      Turn();
    }
    EXPECT_TRUE(State().running);
  }
  EXPECT_TRUE(WaitForText("Central: up to date"));
}

TEST_F(CentralPushTest, SettingsAreKeptInTheIniFile) {
  Set({.connection = "service=company", .yard = "North", .automatic = true});
  EXPECT_EQ(ReadCentralSettings(ini),
            (CentralSettings{.connection = "service=company", .yard = "North", .automatic = true}));
  EXPECT_THAT(op.boxes, IsEmpty());
}

TEST_F(CentralPushTest, ReportsSettingsThatCannotBeWritten) {
  fs::create_directory(dir / "VRX-2260.INI");
  Set({.connection = "service=company", .yard = "North"});
  EXPECT_EQ(OnlyBox(op.boxes).text, "Unable to save the setting to the applications INI file.");
  EXPECT_EQ(Window().Settings().connection, "service=company");
}

}  // namespace
}  // namespace vrx::testing
