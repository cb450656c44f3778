// Creates the transaction database of the sample site from its transaction files, each stored on
// the day of its records.
//
//   make_sample_records RECIPES BLANK_TEMPLATE TARGET DAY_FILE...

#include <chrono>
#include <exception>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include "base/error.h"
#include "base/files.h"
#include "database/identity.h"
#include "exchange/store.h"
#include "exchange/transaction_parser.h"
#include "platform/calendar.h"
#include "platform/operator.h"
#include "platform/progress_display.h"
#include "presenter/database_identity.h"
#include "settings/settings.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* kUnit = "LB";

// Fixed days, so that every build creates the same database.
class WeekCalendar : public vrx::Calendar {
 public:
  [[nodiscard]] vrx::LocalTime Now() const override {
    return {.date = {std::chrono::year{2026}, std::chrono::January, std::chrono::day{day_}},
            .time_of_day = std::chrono::hours{18}};
  }
  void NextDay() { ++day_; }

 private:
  unsigned day_ = 5;  // a Monday
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

class SampleWeek {
 public:
  SampleWeek(fs::path recipes, fs::path transactions)
      : databases_{.recipe_db_path = std::move(recipes),
                   .trans_db_path = std::move(transactions),
                   .trans_db_uom = kUnit} {}

  void Begin() {
    const fs::path& path = databases_.trans_db_path;
    identity_.SetDatabaseType(path, vrx::kUserTransDb);
    identity_.SetDatabaseUoM(path, kUnit);
    identity_.SetDatabaseDate(path, vrx::DateSelector::kCreated);
  }

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
    bool stored = false;
    if (!store_.StoreImportedTransactions(file.Imported(), source, databases_, stored).complete) {
      throw vrx::Error(day.string() + " was not stored");
    }
    calendar_.NextDay();
  }

 private:
  StrictOperator op_;
  NoProgress progress_;
  WeekCalendar calendar_;
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
  SampleWeek week(args[1], fresh);
  week.Begin();
  for (std::size_t i = 4; i < args.size(); ++i) {
    week.Store(args[i]);
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
