#include <atomic>
#include <chrono>
#include <cstdlib>
#include <random>
#include <string>
#include <thread>

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include "base/error.h"
#include "central/client_fixture.h"
#include "central/cutting_proxy.h"
#include "database/copy_database.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;

// Rounds of each fault; VRX_CENTRAL_ROUNDS=50 tries them many times.
int Rounds() {
  const char* const text = std::getenv("VRX_CENTRAL_ROUNDS");
  return text == nullptr ? 3 : std::atoi(text);
}

// Each fault hits a push at a random moment. Afterwards a push without a fault ends, and every row
// is in the central database once.
class CentralFaults : public ClientFixture {
 protected:
  int Random(int most) { return std::uniform_int_distribution(0, most)(random_); }

  // Whether the push ended by itself; what it throws is part of the fault.
  bool PushFrom(const fs::path& file, const std::string& connection) {
    try {
      CentralConnection server(connection);
      vrx::Push(server, OrderFor(file));
      return true;
    } catch (const Error&) {
      return false;
    }
  }

  // A program of its own that pushes the file, and exits 0 if it did.
  pid_t StartPush(const fs::path& file) {
    const std::string connection = Connection();
    const pid_t child = fork();
    if (child == 0) {
      _exit(PushFrom(file, connection) ? 0 : 1);
    }
    return child;
  }

  // A new file in every other round, and more rows of the same one in between.
  fs::path FileOfRound(int round) {
    if (round % 2 == 0) {
      AddBatches(file_, kBatches);
    } else {
      file_ = MakeFile("Y" + std::to_string(round) + ".TDB", kBatches);
    }
    rows_ += kBatches * 5;
    return file_;
  }

  // After a push without a fault.
  void ExpectWhole(const fs::path& file) {
    for (int attempt = 0; attempt < 20 && !PushFrom(file, Connection()); ++attempt) {
      std::this_thread::sleep_for(milliseconds(200));
    }
    ExpectThere(file, rows_);
  }

  std::mt19937 random_{std::random_device{}()};
  static constexpr int kBatches = 400;
  fs::path file_;
  std::int64_t rows_ = 0;  // that the yard should have
};

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

}  // namespace
}  // namespace vrx::testing
