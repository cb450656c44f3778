// Push, verify and restore of a year's records against the tools of the engine: psql \copy of the
// same rows into a table with the same columns, checks and indexes, and its way back into SQLite.
//
//   central_bench --server CONNINFO [--rows N] [--rounds N]
//   central_bench --server CONNINFO --yards N [--rows N]
//
// The second form makes up a company: so many yards, whose rows are --rows together. It prints the
// times of all pushes, verifications and a month's accuracy, and the size on disk, and keeps the
// database for a look.
//
// The login of CONNINFO is a superuser of a server on this machine; its databases `vrx_bench` and
// its role `vrx_bench_yard` are made and dropped. The sockets must trust both logins.

#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <numeric>
#include <sstream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <sys/resource.h>
#include <unistd.h>

#include "central/administration.h"
#include "central/server.h"
#include "central/transfer.h"
#include "database/connection.h"
#include "database/identity.h"
#include "database/schema.h"
#include "figures.h"
#include "measure.h"
#include "support/fixed_calendar.h"
#include "support/temp_folder.h"
#include "support/yard_generator.h"

namespace {

namespace fs = std::filesystem;
using vrx::CentralConnection;
using vrx::CentralRows;
using vrx::bench::Figures;
using vrx::bench::Median;
using vrx::bench::Milliseconds;

constexpr int kLaterRows = 6000;
constexpr double kLimitFirstPush = 2.0;
constexpr double kLimitUnchecked = 1.5;
constexpr double kLimitLaterPush = 2.0;
constexpr double kLimitNothing = 300;    // ms
constexpr double kLimitVerify = 10'000;  // ms
constexpr double kLimitRestore = 1.0;
constexpr double kLimitMegabytes = 64;

constexpr const char* kColumns =
    "yard, source, row, number, recipe, type, user_id, ingredient, pen, target, actual_batch, "
    "time, "
    "date, actual_feed, ing_percent, weights, import, digest";

// Time that passes, and that all processors work for this program, the programs that it starts and
// the server. Other work on the machine makes the first longer.
struct Cost {
  double passed = 0;     // ms
  double processor = 0;  // ms
};

double TicksOf(const fs::path& stat, int fields, long* parent) {
  std::ifstream file(stat);
  std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  std::istringstream words(text.substr(std::min(text.size(), text.rfind(')') + 1)));
  std::string word;
  double ticks = 0;
  constexpr int kParent = 1;
  constexpr int kFirstTime = 11;  // user, system, those of children
  for (int field = 0; words >> word && field < kFirstTime + fields; ++field) {
    if (field == kParent && parent != nullptr) {
      *parent = std::stol(word);
    }
    ticks += field >= kFirstTime ? std::stod(word) : 0;
  }
  return ticks;
}

// Of the server's main process and all its children, ended or not.
double ServerProcessor(long server) {
  double ticks = TicksOf("/proc/" + std::to_string(server) + "/stat", 4, nullptr);
  for (const fs::directory_entry& entry : fs::directory_iterator("/proc")) {
    if (entry.path().filename().string().find_first_not_of("0123456789") != std::string::npos) {
      continue;  // not a process
    }
    long parent = 0;
    const double own = TicksOf(entry.path() / "stat", 2, &parent);
    ticks += parent == server ? own : 0;
  }
  return ticks * 1000 / static_cast<double>(sysconf(_SC_CLK_TCK));
}

double OwnProcessor() {
  double milliseconds = 0;
  for (const int who : {RUSAGE_SELF, RUSAGE_CHILDREN}) {
    rusage usage{};
    getrusage(who, &usage);
    for (const timeval& time : {usage.ru_utime, usage.ru_stime}) {
      milliseconds +=
          static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
    }
  }
  return milliseconds;
}

class Meter {
 public:
  explicit Meter(const std::string& server) {
    CentralConnection connection(server + " dbname=postgres");
    TicksOf("/proc/" + connection.Query("SELECT pg_backend_pid()").Text(0, 0) + "/stat", 0,
            &server_);
  }

  [[nodiscard]] Cost Measure(const std::function<void()>& work) const {
    const double before = OwnProcessor() + ServerProcessor(server_);
    const double passed = Milliseconds(work);
    return {.passed = passed, .processor = OwnProcessor() + ServerProcessor(server_) - before};
  }

 private:
  long server_ = 0;
};

// Costs of work and of its peer, measured in turn.
class Pairs {
 public:
  void Add(const Cost& ours, const Cost& peer) {
    ours_.push_back(ours);
    peer_.push_back(peer);
  }

  void Report(Figures& figures, const std::string& name, double limit) const {
    figures.Limited(name, MedianOf(&Cost::passed, true), limit,
                    vrx::bench::Times(Ours(&Cost::passed), Peer(&Cost::passed)));
    figures.Specified("  processor time of both sides", MedianOf(&Cost::processor, true),
                      vrx::bench::Times(Ours(&Cost::processor), Peer(&Cost::processor)));
  }

  [[nodiscard]] double Ours(double Cost::*time) const { return MedianOf(time, false); }

 private:
  [[nodiscard]] double Peer(double Cost::*time) const {
    std::vector<double> times;
    for (const Cost& cost : peer_) {
      times.push_back(cost.*time);
    }
    return Median(times);
  }
  [[nodiscard]] double MedianOf(double Cost::*time, bool ratio) const {
    std::vector<double> values;
    for (std::size_t round = 0; round < ours_.size(); ++round) {
      values.push_back(ours_[round].*time / (ratio ? peer_[round].*time : 1));
    }
    return Median(values);
  }

  std::vector<Cost> ours_;
  std::vector<Cost> peer_;
};

class Bench {
 public:
  Bench(std::string server, int rows, int rounds)
      : server_(std::move(server)), rows_(rows), rounds_(rounds) {
    // In a process of its own: the memory of what is measured later begins with this one's.
    vrx::bench::PeakMegabytes([this] {
      vrx::testing::MakeYears({.rows = rows_}, {.program_directory = VRX_BIN_DIR,
                                                .transactions = folder_ / "YEARS.TDB"});
    });
    SQLite::Database database = vrx::OpenDatabase(folder_ / "YEARS.TDB", vrx::Access::kWrite);
    vrx::WriteField(database, vrx::kTypeField, vrx::kUserTransDb);
  }

  int Run() {
    MeasureFirstPush();
    MeasureLaterPushes();
    MeasureVerify();
    MeasureRestore();
    MeasureMemory();
    return figures_.Over();
  }

 private:
  [[nodiscard]] std::string Connection(const std::string& more) const {
    return server_ + " " + more;
  }
  [[nodiscard]] std::string Yard() const {
    return Connection("dbname=vrx_bench user=vrx_bench_yard");
  }

  void Execute(const std::string& database, const std::string& sql) const {
    CentralConnection(Connection("dbname=" + database)).Query(sql);
  }

  void Psql(const std::string& command) const {
    vrx::bench::RunProgram(
        {"psql", "-q", "-v", "ON_ERROR_STOP=1", Connection("dbname=vrx_bench"), "-c", command},
        "/dev/null");
  }

  // An empty central database, and a file that was never pushed.
  void MakeFresh() {
    Execute("postgres", "DROP DATABASE IF EXISTS vrx_bench");
    Execute("postgres", "CREATE DATABASE vrx_bench ENCODING 'UTF8' TEMPLATE template0");
    CentralConnection chief(Connection("dbname=vrx_bench"));
    vrx::InitCentral(chief);
    vrx::AddYard(chief, "Bench", "UTC", "vrx_bench_yard");
    fs::copy_file(folder_ / "YEARS.TDB", file_, fs::copy_options::overwrite_existing);
    // The later rounds write where the earlier ones did.
    Execute("postgres", "CHECKPOINT");
  }

  void Push() {
    CentralConnection server(Yard());
    vrx::Push(server, {.file = file_, .yard = "Bench", .machine = "bench"});
  }

  Cost CopyByPsql() {
    Execute("vrx_bench", "DROP TABLE IF EXISTS peer");
    Psql("CREATE TABLE peer (LIKE vrx.transaction INCLUDING ALL)");
    Execute("postgres", "CHECKPOINT");
    return meter_.Measure(
        [this] { Psql("\\copy peer (" + std::string(kColumns) + ") FROM '" + Rows() + "'"); });
  }

  [[nodiscard]] std::string Rows() const { return (folder_ / "rows.copy").string(); }

  void MeasureFirstPush() {
    Pairs pairs;
    Pairs unchecked;
    for (int round = 0; round < rounds_; ++round) {
      MakeFresh();
      const Cost ours = meter_.Measure([this] { Push(); });
      if (round == 0) {
        Psql("\\copy vrx.transaction (" + std::string(kColumns) + ") TO '" + Rows() + "'");
      }
      const Cost peer = CopyByPsql();
      pairs.Add(ours, peer);
      MakeFresh();
      Execute("vrx_bench", "ALTER TABLE vrx.transaction DROP CONSTRAINT row_equals_its_digest");
      unchecked.Add(meter_.Measure([this] { Push(); }), CopyByPsql());
    }
    first_push_ = pairs.Ours(&Cost::passed);
    pairs.Report(figures_, "first push with proof / psql \\copy", kLimitFirstPush);
    unchecked.Report(figures_, "the same without the check of each digest, on both sides",
                     kLimitUnchecked);
    MakeFresh();
    Push();
  }

  void MeasureLaterPushes() {
    std::vector<double> nothing;
    std::vector<double> later;
    for (int round = 0; round < rounds_; ++round) {
      nothing.push_back(Milliseconds([this] { Push(); }));
      SQLite::Database database = vrx::OpenDatabase(file_, vrx::Access::kWrite);
      const vrx::Table transactions = vrx::Schema(vrx::DatabaseKind::kTransaction).front();
      std::string columns;
      for (const vrx::Column& column : transactions.columns) {
        if (column.name != vrx::kRowNumberColumn) {
          columns += (columns.empty() ? "" : ", ") + vrx::Bracketed(column.name);
        }
      }
      database.exec("INSERT INTO Transactions (" + columns + ") SELECT " + columns +
                    " FROM Transactions WHERE RowNumber <= " + std::to_string(kLaterRows));
      later.push_back(Milliseconds([this] { Push(); }));
    }
    figures_.Limited("push with nothing to do, ms", Median(nothing), kLimitNothing);
    const double per_row = Median(later) / kLaterRows;
    figures_.Limited("push of 6,000 more rows / first push, per row",
                     per_row / (first_push_ / rows_), kLimitLaterPush,
                     vrx::bench::Times(Median(later), first_push_));
  }

  void MeasureVerify() {
    std::vector<double> times;
    std::vector<double> processor;
    for (int round = 0; round < rounds_; ++round) {
      const Cost cost = meter_.Measure([this] { Verify(); });
      times.push_back(cost.passed);
      processor.push_back(cost.processor);
    }
    figures_.Limited("verify, ms", Median(times), kLimitVerify * rows_ / 1'000'000);
    figures_.Specified("  processor time of both sides, ms", Median(processor));
  }

  void Verify() {
    CentralConnection server(Yard());
    if (vrx::Verify(server, file_, "Bench", vrx::kBusyTimeout).difference) {
      throw vrx::Error("the file and the central database differ");
    }
  }

  void Restore() {
    fs::remove(folder_ / "RESTORED.TDB");
    CentralConnection server(Yard());
    vrx::Restore(server, {.yard = "Bench", .out = folder_ / "RESTORED.TDB"}, calendar_);
  }

  // The rows as text, into a table with the same columns but the weights in one, and its indexes.
  void RestoreByTools() {
    const std::string csv = (folder_ / "rows.csv").string();
    Psql(
        "\\copy (SELECT number, recipe, type, user_id, ingredient, pen, target, actual_batch, "
        "time, "
        "date, actual_feed, ing_percent, weights, row FROM vrx.transaction ORDER BY row) TO '" +
        csv + "' (FORMAT csv)");
    fs::remove(folder_ / "PEER.TDB");
    std::ofstream script(folder_ / "import.sql");
    script << "CREATE TABLE Transactions ([Transaction] INTEGER, Recipe TEXT, Type TEXT, UserID "
              "TEXT, Ingredient TEXT, Pen TEXT, Target REAL, ActualBatch REAL, Time TEXT, Date "
              "TEXT, ActualFeed REAL, IngPercent REAL, Weights TEXT, RowNumber INTEGER PRIMARY "
              "KEY);\n.mode csv\n.import '"
           << csv << "' Transactions\n";
    for (const std::string& index : vrx::SchemaIndexes(vrx::DatabaseKind::kTransaction)) {
      script << index << ";\n";
    }
    script.close();
    vrx::bench::RunShell(folder_ / "PEER.TDB", folder_ / "import.sql");
  }

  void MeasureRestore() {
    Pairs pairs;
    for (int round = 0; round < rounds_; ++round) {
      const Cost ours = meter_.Measure([this] { Restore(); });
      pairs.Add(ours, meter_.Measure([this] { RestoreByTools(); }));
    }
    pairs.Report(figures_, "restore with indexes and proof / psql \\copy, .import, indexes",
                 kLimitRestore);
  }

  void MeasureMemory() {
    figures_.Limited("memory of verify, MB", vrx::bench::PeakMegabytes([this] { Verify(); }),
                     kLimitMegabytes);
    figures_.Limited("memory of restore, MB", vrx::bench::PeakMegabytes([this] { Restore(); }),
                     kLimitMegabytes);
    MakeFresh();
    figures_.Limited("memory of the first push, MB", vrx::bench::PeakMegabytes([this] { Push(); }),
                     kLimitMegabytes);
  }

  std::string server_;
  int rows_;
  int rounds_;
  Meter meter_{server_};
  vrx::testing::TempFolder folder_;
  fs::path file_ = folder_ / "YARD.TDB";
  vrx::testing::FixedCalendar calendar_;
  double first_push_ = 0;  // ms
  Figures figures_;
};

constexpr int kMonthOfYears = 2;
constexpr double kLimitAccuracy = 0.2;

// Yards that push into one central database, and the office's question.
class Company {
 public:
  Company(std::string server, int yards, std::int64_t rows, int rounds)
      : server_(std::move(server)), yards_(yards), rows_(rows), rounds_(rounds) {}

  int Run() {
    Office("postgres").Query("DROP DATABASE IF EXISTS vrx_bench");
    Office("postgres").Query("CREATE DATABASE vrx_bench ENCODING 'UTF8' TEMPLATE template0");
    {
      CentralConnection chief = Office("vrx_bench");
      vrx::InitCentral(chief);
    }
    std::vector<double> pushes;
    std::vector<double> verifications;
    for (int yard = 1; yard <= yards_; ++yard) {
      MakeAndPush(yard, pushes, verifications);
    }
    const auto sum = [](const std::vector<double>& times) {
      return std::accumulate(times.begin(), times.end(), 0.0) / 1000;
    };
    figures_.Specified("push of all yards, s", sum(pushes));
    figures_.Specified("push of a yard, s", Median(pushes) / 1000);
    figures_.Specified("verify of all yards, s", sum(verifications));
    figures_.Specified("verify of a yard, s", Median(verifications) / 1000);
    CentralConnection chief = Office("vrx_bench");
    for (const auto& [what, query] :
         {std::pair("size of all, MB", "pg_database_size(current_database())"),
          std::pair("table of rows, MB", "pg_table_size('vrx.transaction')"),
          std::pair("its indexes, MB", "pg_indexes_size('vrx.transaction')"),
          std::pair("days of batches, MB", "pg_total_relation_size('vrx.batch_day')")}) {
      figures_.Specified(
          what,
          static_cast<double>(chief.Query("SELECT " + std::string(query)).Number(0, 0)) / 1e6);
    }
    MeasureAccuracy(chief);
    return figures_.Over();
  }

 private:
  [[nodiscard]] CentralConnection Office(const std::string& database) const {
    return CentralConnection(server_ + " dbname=" + database);
  }

  void MakeAndPush(int yard, std::vector<double>& pushes, std::vector<double>& verifications) {
    const std::string name = "Yard " + std::to_string(yard);
    const std::string login = "vrx_bench_yard" + std::to_string(yard);
    const fs::path file = folder_ / "YARD.TDB";
    fs::remove(file);
    vrx::testing::MakeYears({.seed = static_cast<std::uint64_t>(yard), .rows = rows_ / yards_},
                            {.program_directory = VRX_BIN_DIR, .transactions = file});
    SQLite::Database database = vrx::OpenDatabase(file, vrx::Access::kWrite);
    vrx::WriteField(database, vrx::kTypeField, vrx::kUserTransDb);
    {
      CentralConnection chief = Office("vrx_bench");
      vrx::AddYard(chief, name, "UTC", login);
    }
    CentralConnection server(server_ + " dbname=vrx_bench user=" + login);
    pushes.push_back(
        Milliseconds([&] { vrx::Push(server, {.file = file, .yard = name, .machine = "bench"}); }));
    verifications.push_back(
        Milliseconds([&] { vrx::Verify(server, file, name, vrx::kBusyTimeout); }));
    std::printf("%s: push %.1f s, verify %.1f s\n", name.c_str(), pushes.back() / 1000,
                verifications.back() / 1000);
    std::fflush(stdout);
  }

  // The peer may read the table only, and adds up no more than counts and sums.
  void MeasureAccuracy(CentralConnection& chief) {
    chief.Query("VACUUM vrx.transaction, vrx.batch_day");
    const std::string first =
        chief
            .Query("SELECT date_trunc('month', min(day))::date + interval '" +
                   std::to_string(kMonthOfYears) + " months' FROM vrx.batch_day")
            .Text(0, 0)
            .substr(0, 10);
    const std::string last =
        chief.Query("SELECT ($1::date + interval '1 month - 1 day')::date", {first}).Text(0, 0);
    const std::string accuracy =
        "SELECT count(*), sum(n) FROM vrx.accuracy($1, $2, '{yard,ingredient}')";
    const std::string peer =
        "SELECT count(*), sum(n) FROM (SELECT y.name, t.ingredient, count(*) AS n, sum(t.target), "
        "sum(t.actual_batch), sum(abs(t.actual_batch - t.target)), count(*) FILTER (WHERE "
        "abs(t.actual_batch - t.target) < t.target * 0.02) FROM vrx.transaction t JOIN vrx.yard y "
        "USING (yard) WHERE t.type = 'BATCH' AND t.day BETWEEN $1 AND $2 GROUP BY 1, 2) g";
    CentralConnection plain = Office("vrx_bench");
    plain.Query("SET enable_indexscan = off; SET enable_bitmapscan = off");
    plain.Query("SET enable_indexonlyscan = off; SET jit = on");
    const CentralRows groups = chief.Query(accuracy, {first, last});
    const std::vector<double> medians =
        vrx::bench::InterleavedMedians(rounds_, {[&] {
                                                   chief.Query(accuracy, {first, last});
                                                 },
                                                 [&] {
                                                   plain.Query(peer, {first, last});
                                                 }});
    figures_.Limited("a month's accuracy by yard and ingredient / GROUP BY without indexes",
                     medians[0] / medians[1], kLimitAccuracy,
                     vrx::bench::Times(medians[0], medians[1]));
    std::printf("%s groups of %s loads from %s to %s\n", groups.Text(0, 0).c_str(),
                groups.Text(0, 1).c_str(), first.c_str(), last.c_str());
  }

  std::string server_;
  int yards_;
  std::int64_t rows_;
  int rounds_;
  vrx::testing::TempFolder folder_;
  Figures figures_;
};

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("Push, verify and restore against psql and sqlite3");
  std::string server;
  int rows = 1'000'000;
  int rounds = 5;
  app.add_option("--server", server, "Connection of a superuser")->required();
  app.add_option("--rows", rows);
  app.add_option("--rounds", rounds);
  int yards = 0;
  app.add_option("--yards", yards);
  CLI11_PARSE(app, argc, argv);
  try {
    const int over =
        yards > 0 ? Company(server, yards, rows, rounds).Run() : Bench(server, rows, rounds).Run();
    return over == 0 ? 0 : 1;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "central_bench: %s\n", error.what());
    return 1;
  }
}
