#include <chrono>
#include <optional>
#include <set>
#include <thread>
#include <utility>

#include <SQLiteCpp/Database.h>
#include <gmock/gmock.h>

#include "end_to_end/programs_fixture.h"
#include "support/private_mounts.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

class WrongDatabases : public ProgramsTest {
 protected:
  // Every way to name a recipe database on the command line.
  std::vector<std::vector<std::string>> Uses(const std::string& path) const {
    return {{"info", path},
            {"list", "ingredients", path},
            {"set", "pen", path, "1", "--name", "A01"},
            {"store", SitePath("day05.qxt"), "--into", transactions, "--recipes", path},
            {"store", SitePath("day05.qxt"), "--into", path, "--recipes", SitePath("SITE.RDB")}};
  }

  static std::string CauseOf(const std::string& err) {
    const std::size_t start = err.find("cause: ");
    return start == std::string::npos ? "" : err.substr(start, err.find('\n', start) - start);
  }

  // Returns the cause that `info` reported.
  std::string RefusedUntouched(const std::string& path) {
    const std::string before = fs::exists(path) ? ReadAll(path) : "(none)";
    for (const auto& args : Uses(path)) {
      const Result result = Ctl(args);
      EXPECT_EQ(result.code, 1) << args.front();
      EXPECT_THAT(result.out, IsEmpty()) << args.front();
      EXPECT_NE(CauseOf(result.err), "") << args.front() << ": " << result.err;
      EXPECT_THAT(result.err, HasSubstr("Invalid Database: ")) << args.front();
      EXPECT_TRUE((fs::exists(path) ? ReadAll(path) : "(none)") == before) << args.front();
      EXPECT_FALSE(fs::exists(path + "-journal"));
    }
    EXPECT_EQ(Info(transactions)["rows"], 0);
    return CauseOf(Ctl({"info", path}).err);
  }

  std::string CopyOfSite(const std::string& name) const {
    fs::copy_file(SitePath("SITE.RDB"), folder / name);
    return (folder / name).string();
  }

  std::string transactions = NewTransactionDatabase();
};

TEST_F(WrongDatabases, AreRefusedUntouchedEachWithItsOwnCause) {
  const std::string site = ReadAll(SitePath("SITE.RDB"));
  const std::string foreign = (folder / "FOREIGN.RDB").string();
  SQLite::Database(foreign, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE)
      .exec("CREATE TABLE Notes (Text TEXT)");
  const std::string newer = CopyOfSite("NEWER.RDB");
  SQLite::Database(newer, SQLite::OPEN_READWRITE).exec("PRAGMA user_version = 2");
  const std::string odd = CopyOfSite("ODD.RDB");
  SQLite::Database(odd, SQLite::OPEN_READWRITE).exec("DROP TABLE BrantockDatabase");
  const std::vector<std::string> files = {
      folder.Write("TEXT.RDB", "just a text, nothing else\n").string(),
      folder.Write("EMPTY.RDB", "").string(),
      folder.Write("CUT.RDB", site.substr(0, site.size() / 2)).string(),
      folder.Write("OLD.RDB", std::string("\0\1\0\0Standard Jet DB\0", 20) + std::string(4076, 'x'))
          .string(),
      foreign,
      newer,
      odd,
      (folder / "MISSING.RDB").string()};
  std::set<std::string> causes;
  for (const std::string& file : files) {
    SCOPED_TRACE(file);
    std::string cause = RefusedUntouched(file);
    const std::string title = fs::path(file).filename().string();
    if (const std::size_t name = cause.find(title); name != std::string::npos) {
      cause.erase(name, title.size());
    }
    EXPECT_TRUE(causes.insert(cause).second) << cause;
  }
}

TEST_F(WrongDatabases, OfTheOtherKindNameTheirMark) {
  const Result result = Ctl({"list", "pens", transactions});
  EXPECT_EQ(result.code, 1);
  EXPECT_THAT(result.err, HasSubstr("cause: T.TDB is marked USER_TRANS_DB\n"));
}

TEST_F(WrongDatabases, ALockedOneIsWaitedFor) {
  const std::string path = CopyOfSite("BUSY.RDB");
  std::optional<SQLite::Database> other(std::in_place, path, SQLite::OPEN_READWRITE);
  other->exec("BEGIN EXCLUSIVE");
  Program info(Bin("vrx2260ctl"), WithDataDir({"info", path}), folder.Path().string());
  std::this_thread::sleep_for(std::chrono::milliseconds{300});
  EXPECT_FALSE(info.Ended());
  other.reset();
  EXPECT_EQ(info.Wait(), 0) << info.Err();
}

TEST_F(WrongDatabases, OnADiskThatCannotBeWrittenCanBeRead) {
  const std::string output = RunWithMounts(
      R"(
      mkdir -p "$1/disk"
      mount -t tmpfs -o size=4m tmpfs "$1/disk"
      cp "$3" "$1/disk/FIXED.RDB"
      mount -o remount,bind,ro "$1/disk"
      "$2" --data-dir "$1/data" info "$1/disk/FIXED.RDB" >/dev/null && echo "read"
      "$2" --data-dir "$1/data" set pen "$1/disk/FIXED.RDB" 1 --name A01 || echo "exit $?"
      umount "$1/disk")",
      {folder.Path().string(), Bin("vrx2260ctl"), SitePath("SITE.RDB")});
  EXPECT_THAT(output, StartsWith("read\n"));
  EXPECT_THAT(output,
              EndsWith("cause: FIXED.RDB may not be written: it is write-protected\nexit 1\n"));
}

TEST_F(WrongDatabases, NewOnesOnAFullOrReadOnlyDiskNameTheCauseAndThePath) {
  for (const auto& [options, reason] : {std::pair{"size=4m,ro", "Read-only file system"},
                                        std::pair{"size=16k", "No space left on device"}}) {
    const std::string output = RunWithMounts(
        R"(
        mkdir -p "$1/disk"
        mount -t tmpfs -o "$3" tmpfs "$1/disk"
        "$2" --data-dir "$1/data" new recipe "$1/disk/YARD.RDB" || echo "exit $?"
        ls "$1/disk"
        umount "$1/disk")",
        {folder.Path().string(), Bin("vrx2260ctl"), options});
    EXPECT_THAT(output, HasSubstr("New recipe database file creation failed."));
    EXPECT_THAT(output, EndsWith((folder / "disk/YARD.RDB").string() +
                                 " cannot be written: " + reason + "\nexit 1\n"));
  }
}

// A superuser may write everywhere, so the tool runs as the user nobody, from a folder which that
// user can reach.
TEST_F(WrongDatabases, AReadOnlyOneCanBeListedAndNotEdited) {
  fs::permissions(folder.Path(), fs::perms::all);
  fs::permissions(folder / "data", fs::perms::all);
  fs::permissions(folder / "data/VRX-2260.INI", fs::perms::all);
  const std::string path = CopyOfSite("FIXED.RDB");
  fs::permissions(path, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
  fs::copy_file(Bin("vrx2260ctl"), folder / "vrx2260ctl");
  const std::string before = ReadAll(path);
  const auto run = [&](const std::vector<std::string>& args) {
    Program program((folder / "vrx2260ctl").string(), WithDataDir(args), folder.Path().string(),
                    Program::User::kNobody);
    const int code = program.Wait();
    return Result{code, program.Out(), program.Err()};
  };
  const Result list = run({"list", "pens", path});
  EXPECT_EQ(list.code, 0) << list.err;
  const Result set = run({"set", "pen", path, "1", "--name", "A01"});
  EXPECT_EQ(set.code, 1);
  EXPECT_NE(CauseOf(set.err), "") << set.err;
  EXPECT_TRUE(ReadAll(path) == before);
}

}  // namespace
}  // namespace vrx::testing
