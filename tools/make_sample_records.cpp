// Creates the transaction database of the sample site from its transaction files, each stored when
// the last of its records was made.
//
//   make_sample_records RECIPES BLANK_TEMPLATE TARGET DAY_FILE...

#include <chrono>
#include <exception>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include "base/date.h"
#include "base/error.h"
#include "base/files.h"
#include "base/number.h"
#include "database/identity.h"
#include "exchange/imported_data.h"
#include "exchange/store.h"
#include "exchange/store_plan.h"
#include "exchange/store_row.h"
#include "exchange/transaction_parser.h"
#include "platform/calendar.h"
#include "platform/operator.h"
#include "platform/progress_display.h"
#include "presenter/database_identity.h"
#include "settings/settings.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* kUnit = "LB";
constexpr vrx::Date kFirstDay{std::chrono::year{2026}, std::chrono::January, std::chrono::day{1}};

// Shows when a file's last record was made, so that every build creates the same database.
class RecordsCalendar : public vrx::Calendar {
 public:
  explicit RecordsCalendar(vrx::Date first) : now_{.date = first} {}

  [[nodiscard]] vrx::LocalTime Now() const override { return now_; }

  void AdvanceTo(const vrx::ImportedData& records) {
    const std::size_t last = records.FilledCount();
    const auto date = vrx::ParseTransactionDate(records.Cell(last, vrx::kImportedDate));
    const auto clock = vrx::ParseLong(records.Cell(last, vrx::kImportedTime));
    if (!date || !clock) {
      throw vrx::Error("the last record has no date and time");
    }
    constexpr int kHours = 100;  // "1405" is 14:05
    now_ = {
        .date = *date,
        .time_of_day = std::chrono::hours(*clock / kHours) + std::chrono::minutes(*clock % kHours)};
  }

 private:
  vrx::LocalTime now_;
};

class StrictOperator : public vrx::Operator {
 public:
  vrx::Answer ShowMessage(const vrx::MessageBox& box) override {
    throw vrx::Error(box.title + ": " + box.text + (box.cause.empty() ? "" : ": " + box.cause));
  }
  void Beep() override {}
  void SetBusy(bool /*busy*/) override {}
  void SetStatusLine(std::string_view /*text*/) override {}
  void SetStatusColor(vrx::StatusColor /*color*/) override {}
};

class NoProgress : public vrx::ProgressDisplay {
 public:
  void SetProgressMessage(std::string_view /*text*/) override {}
  void SetProgressRange(int /*maximum*/) override {}
  void SetProgressValue(int /*value*/) override {}
};

class SampleMonth {
 public:
  SampleMonth(fs::path recipes, fs::path transactions)
      : databases_{.recipe_db_path = std::move(recipes),
                   .trans_db_path = std::move(transactions),
                   .trans_db_uom = kUnit} {}

  void Begin() {
    const fs::path& path = databases_.trans_db_path;
    identity_.SetDatabaseType(path, vrx::kUserTransDb);
    identity_.SetDatabaseUoM(path, kUnit);
    identity_.SetDatabaseDate(path, vrx::DateSelector::kCreated);
  }

  // What the database has of the file already is left out.
  void Store(const fs::path& day) {
    vrx::TransFile file;
    file.SetFilePath(day.string());
    file.SetFileName(vrx::FileTitle(day));
    if (!file.LoadTransactionFile(op_, [] {})) {
      throw vrx::Error("cannot read " + day.string());
    }
    const vrx::ImportHooks hooks{.configure_columns = [] {},
                                 .show_grid = [](std::int32_t /*rows*/) {}};
    const std::string error = file.ParseTransactionFile(progress_, hooks, op_, settings_);
    if (!error.empty()) {
      throw vrx::Error(day.string() + ": " + error);
    }
    const vrx::ImportSource source{
        .file = file.FileName(), .sha256 = vrx::Sha256(file.Text()), .units = file.FileUnits()};
    calendar_.AdvanceTo(file.Imported());
    bool stored = false;
    if (!store_
             .StoreImportedTransactions(file.Imported(), source, databases_, stored,
                                        vrx::RepeatedBatches::kNew)
             .complete) {
      throw vrx::Error(day.string() + " was not stored");
    }
  }

 private:
  StrictOperator op_;
  NoProgress progress_;
  RecordsCalendar calendar_{kFirstDay};
  vrx::PrivateINI settings_;
  vrx::DatabaseIdentity identity_{op_, calendar_, settings_};
  vrx::OpenDatabases databases_;
  vrx::TransactionStore store_{op_, settings_, calendar_, progress_, [] {}};
};

void MakeRecords(const std::vector<std::string>& args) {
  const fs::path target = args[3];
  // Written to a temporary file first, so that an invalid text leaves no incomplete database.
  const fs::path fresh = target.string() + ".new";
  fs::create_directories(target.parent_path());
  fs::remove(fresh);
  if (!vrx::CopyFileNoOverwrite(args[2], fresh)) {
    throw vrx::Error("cannot copy " + args[2] + " to " + fresh.string());
  }
  SampleMonth month(args[1], fresh);
  month.Begin();
  for (std::size_t i = 4; i < args.size(); ++i) {
    month.Store(args[i]);
  }
  fs::rename(fresh, target);
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> args(argv, argv + argc);
  if (args.size() < 5) {
    std::cerr << "usage: make_sample_records RECIPES BLANK_TEMPLATE TARGET DAY_FILE...\n";
    return 2;
  }
  try {
    MakeRecords(args);
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "make_sample_records: " << error.what() << '\n';
    return 1;
  }
}
