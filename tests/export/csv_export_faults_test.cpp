#include <algorithm>
#include <array>
#include <csignal>
#include <exception>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "base/files.h"
#include "database/connection.h"
#include "export/csv_export.h"
#include "export/export_fixture.h"
#include "support/database_files.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr int kTransactions = 20'000;  // more text than a pipe and the export itself hold back

// An export in a separate process, into a pipe that is not read: it blocks in the middle of its
// records until it is killed.
class StandingExport {
 public:
  explicit StandingExport(const ExportFixture& site) : pipe_(site.Folder() / "out.csv") {
    if (mkfifo(pipe_.c_str(), 0600) != 0) {
      throw std::runtime_error("cannot make " + pipe_.string());
    }
    process_ = fork();
    if (process_ == 0) {
      int status = 0;
      try {
        static_cast<void>(
            CSVExport(site.Names()).ExportData(1, pipe_, site.Database(), VisibleColumnsOf(1)));
      } catch (const std::exception&) {
        status = 1;
      }
      _exit(status);
    }
    reader_ = open(pipe_.c_str(), O_RDONLY | O_CLOEXEC);
  }

  ~StandingExport() {
    Kill();
    close(reader_);
  }
  StandingExport(const StandingExport&) = delete;
  StandingExport& operator=(const StandingExport&) = delete;

  // Waits for the first lines.
  std::string Read() const {
    std::array<char, 4096> block{};
    const ssize_t count = read(reader_, block.data(), block.size());
    return {block.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0))};
  }

  // How the process ended; 0 if it had already ended.
  int Kill() {
    if (process_ <= 0) {
      return 0;
    }
    int status = 0;
    kill(process_, SIGKILL);
    waitpid(process_, &status, 0);
    process_ = 0;
    return WIFSIGNALED(status) ? WTERMSIG(status) : 0;
  }

 private:
  fs::path pipe_;
  pid_t process_ = 0;
  int reader_ = -1;
};

std::vector<SiteRow> ManyRows() {
  std::vector<SiteRow> rows;
  for (int number = 1; number <= kTransactions; ++number) {
    rows.push_back({.transaction = number, .batch = 500.5});
  }
  return rows;
}

TEST(KilledCsvExport, LeavesTheDatabaseWholeAndFree) {
  const ExportFixture site;
  site.Store(ManyRows());
  const std::string before = ReadAll(site.Database());

  StandingExport running(site);
  EXPECT_THAT(running.Read(), StartsWith("Transaction,Type,Recipe,"));
  EXPECT_EQ(running.Kill(), SIGKILL);

  EXPECT_EQ(ReadAll(site.Database()), before);
  EXPECT_THAT(FileNames(site.Folder().Path()), ElementsAre("YARD.TDB", "out.csv"));
  EXPECT_NO_THROW(site.Store({{.transaction = kTransactions + 1}}));
}

// Overwrites all pages except the first few, like a failing disk.
void Damage(const fs::path& path) {
  std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
  file.seekp(std::streamoff{16} * 4096);
  file << std::string(std::size_t{64} * 4096, '\xA5');
}

TEST(CsvOfADamagedDatabase, IsAnErrorThatNamesTheDatabase) {
  const ExportFixture site;
  site.Store(ManyRows());
  Damage(site.Database());
  for (const int group : {0, 1, 5, 12}) {
    try {
      static_cast<void>(CSVExport(site.Names())
                            .ExportData(group, site.Folder() / "out.csv", site.Database(),
                                        VisibleColumnsOf(group)));
      FAIL() << "group " << group << " cannot have been read";
    } catch (const DatabaseError& error) {
      EXPECT_THAT(error.what(), HasSubstr("YARD.TDB"));
    }
  }
}

TEST(CsvIntoAReadOnlyFolder, IsReportedAndTheOldFileStays) {
  const ExportFixture site;
  site.StoreYard();
  const fs::path file = site.Folder().Write("out.csv", "old");
  {
    const WithoutWritePermission guard(site.Folder().Path());
    try {
      static_cast<void>(
          CSVExport(site.Names()).ExportData(1, file, site.Database(), VisibleColumnsOf(1)));
      FAIL() << "the folder may not be written";
    } catch (const FileError& error) {
      EXPECT_EQ(error.what(), "cannot write " + file.string() + ": Permission denied");
    }
  }
  EXPECT_EQ(ReadAll(file), "old");
}

}  // namespace
}  // namespace vrx::testing
