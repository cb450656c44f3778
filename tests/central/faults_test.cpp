#include <chrono>
#include <csignal>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include "base/error.h"
#include "central/cutting_proxy.h"
#include "central/faults_fixture.h"
#include "database/copy_database.h"
#include "support/environment.h"
#include "support/program.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;

TEST_F(CentralFaults, TheProgramIsKilled) {
  int killed = 0;
  for (int round = 1; round <= Rounds(); ++round) {
    const fs::path file = FileOfRound(round);
    const pid_t child = StartPush(file);
    std::this_thread::sleep_for(milliseconds(Random(400)));
    kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    killed += WIFSIGNALED(status) ? 1 : 0;
    ExpectWhole(file);
  }
  RecordProperty("killed", killed);
}

TEST_F(CentralFaults, TheConnectionIsCutAtARandomByte) {
  for (int round = 1; round <= Rounds(); ++round) {
    const fs::path file = FileOfRound(round);
    {
      CuttingProxy proxy(folder_ / "proxy", CentralServer::Get().SocketFolder(), Random(400'000));
      PushFrom(file, proxy.Connection(database_, kNorth));
    }
    ExpectWhole(file);
  }
}

TEST_F(CentralFaults, TheServersMainProcessIsKilled) {
  for (int round = 1; round <= Rounds(); ++round) {
    const fs::path file = FileOfRound(round);
    const pid_t child = StartPush(file);
    std::this_thread::sleep_for(milliseconds(Random(400)));
    CentralServer::Get().KillAndStart();
    int status = 0;
    waitpid(child, &status, 0);
    chief_ = CentralConnection(Connection("chief"));
    ExpectWhole(file);
  }
}

TEST_F(CentralFaults, TwoPushesAtOnce) {
  for (int round = 1; round <= Rounds(); ++round) {
    const fs::path file = FileOfRound(round);
    const pid_t one = StartPush(file);
    std::this_thread::sleep_for(milliseconds(Random(50)));
    const pid_t other = StartPush(file);
    for (const pid_t child : {one, other}) {
      int status = 0;
      waitpid(child, &status, 0);
    }
    ExpectWhole(file);
  }
}

// The window stores while a push is at work.
TEST_F(CentralFaults, RowsAreStoredDuringAPush) {
  for (int round = 1; round <= Rounds(); ++round) {
    const fs::path file = FileOfRound(round);
    const pid_t child = StartPush(file);
    for (int store = 0; store < 5; ++store) {
      std::this_thread::sleep_for(milliseconds(Random(40)));
      AddBatches(file, 20);
      rows_ += 100;
    }
    int status = 0;
    waitpid(child, &status, 0);
    ExpectWhole(file);
  }
}

TEST_F(CentralFaults, VacuumAndSaveAsBetweenPushesThatAreCut) {
  for (int round = 1; round <= Rounds(); ++round) {
    const fs::path file = FileOfRound(round);
    Alter(file, "DELETE FROM Transactions WHERE rowid = (SELECT max(rowid) - 3 FROM Transactions)");
    Alter(file, "INSERT INTO Transactions (Type) VALUES ('BATCH')");
    CuttingProxy proxy(folder_ / "proxy", CentralServer::Get().SocketFolder(), Random(400'000));
    PushFrom(file, proxy.Connection(database_, kNorth));
    CopyDatabaseFile(file, folder_ / "COPY.TDB", kBusyTimeout);
    Alter(file, "VACUUM");
    ExpectWhole(file);
    EXPECT_FALSE(PushFrom(folder_ / "COPY.TDB", Connection())) << "a copy without its word";
  }
}

// A copy on another computer, both continued, both pushed with cuts.
TEST_F(CentralFaults, BothCopiesAreContinued) {
  const fs::path file = MakeFile("Y.TDB", 50);
  rows_ = 250;
  ExpectWhole(file);
  for (int round = 1; round <= Rounds(); ++round) {
    const fs::path copy = folder_ / ("COPY" + std::to_string(round) + ".TDB");
    fs::copy_file(file, copy);
    AddBatches(file, 10);
    Alter(copy, "INSERT INTO Transactions ([Transaction], Type) VALUES (9999, 'BATCH')");
    PushOrder order = OrderFor(copy);
    order.machine = "second PC";
    order.as_new_source = true;
    for (bool done = false, cut = true; !done; cut = false) {
      CuttingProxy proxy(folder_ / "proxy", CentralServer::Get().SocketFolder(), Random(60'000));
      try {
        CentralConnection server(cut ? proxy.Connection(database_, kNorth) : Connection());
        vrx::Push(server, order);
        done = true;
      } catch (const Error& error) {
        ASSERT_TRUE(cut) << error.what();
      }
    }
    for (int attempt = 0; attempt < 20 && !PushFrom(file, Connection()); ++attempt) {
    }
    rows_ += 51;
    ExpectThere(file, rows_);
    ExpectThere(copy, rows_);
    EXPECT_EQ(Rows(Restore("R" + std::to_string(round) + ".TDB",
                           Ask(copy, "SELECT Source FROM CentralSource"))),
              Rows(copy));
  }
}

// The times of the journal are the server's; the file's own dates are all that is wrong.
TEST_F(CentralFaults, TheClockOfThePcIsWrongByAYear) {
  constexpr int kYear = 365 * 24 * 60 * 60;
  const std::string programs = VRX_BIN_DIR;
  const Environment clock("LD_PRELOAD", programs + "/../tests/libvrx_wrong_clock.so");
  const Environment sanitizer("ASAN_OPTIONS", "verify_asan_link_order=0");
  const auto run = [&](std::vector<std::string> args) {
    args.insert(args.begin(), {"--data-dir", folder_.Path().string(), "central"});
    args.insert(args.end(), {"--server", Connection(), "--yard", "North"});
    Program program(programs + "/vrx2260ctl", args, folder_.Path().string());
    EXPECT_EQ(program.Wait(), 0) << args[3] << ": " << program.Err();
  };
  for (int round = 1; round <= Rounds(); ++round) {
    const fs::path file = FileOfRound(round);
    const std::string start = Value("SELECT clock_timestamp()");
    const Environment shift("VRX_CLOCK_SHIFT",
                            std::to_string((round % 4 < 2 ? kYear : -kYear) + Random(1000)));
    run({"push", file.string()});
    EXPECT_EQ(Value("SELECT count(*) > 0 AND bool_and(at <= clock_timestamp()) FROM vrx.push WHERE "
                    "at >= $1",
                    {start}),
              "t");
    EXPECT_EQ(Value("SELECT $1::timestamptz BETWEEN $2::timestamptz - interval '1s' AND "
                    "clock_timestamp()",
                    {Ask(file, "SELECT PushedAt FROM CentralSource"), start}),
              "t");
    run({"verify", file.string()});
    ExpectThere(file, rows_);
    const fs::path copy = folder_ / ("R" + std::to_string(round) + ".TDB");
    run({"restore", "--source", Ask(file, "SELECT Source FROM CentralSource"), "--out",
         copy.string()});
    EXPECT_EQ(Rows(copy), Rows(file));
    EXPECT_NE(Ask(copy, "SELECT substr(Created, 1, 4) FROM History"), start.substr(0, 4));
  }
}

}  // namespace
}  // namespace vrx::testing
