#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "database/open_databases.h"
#include "exchange/imported_data.h"
#include "exchange/recording_progress.h"
#include "exchange/store.h"
#include "settings/settings.h"
#include "support/boxes.h"
#include "support/fixed_calendar.h"
#include "support/recording_operator.h"
#include "support/temp_folder.h"

namespace vrx::testing {

// Runs `on_value` at each step, for faults in the middle of a store.
class InterruptingProgress : public RecordingProgress {
 public:
  void SetProgressValue(int value) override;

  std::function<void(int)> on_value;
};

using RowCells = std::map<int, std::string>;  // text by import column

ImportedData MakeImport(const std::vector<RowCells>& rows);

RowCells BatchCells(int transaction, int recipe, int ingredient, std::string_view weight);
RowCells FeedCells(int transaction, int recipe, int pen, std::string_view weight);

// `count` rows in transactions of four: three ingredients and one pen.
ImportedData MakeManyRows(int count);

// The text of an ID as in a file.
std::string IdText(int id);

// Every column of every stored row in the order of storing, as text; "NULL" for a NULL.
using StoredRow = std::vector<std::string>;
std::vector<StoredRow> ReadStored(const std::filesystem::path& trans_db_path);

// The first column of the first row.
std::string QueryText(const std::filesystem::path& path, const std::string& query);
void Execute(const std::filesystem::path& path, const std::string& query);

// A recipe and a transaction database created from blank templates, and the services of a store.
class StoreFixture {
 public:
  StoreFixture();

  StoreOutcome Store(const ImportedData& rows);
  std::vector<StoredRow> Stored() const { return ReadStored(databases.trans_db_path); }

  TempFolder folder;
  OpenDatabases databases;
  RecordingOperator op;
  FixedCalendar calendar;
  PrivateINI settings;
  InterruptingProgress progress;
  int saves = 0;
  bool stored_flag = false;
  ImportSource source{.file = "01.QXT", .sha256 = "ab", .units = "LB"};
  RepeatedBatches repeated = RepeatedBatches::kAsk;
  TransactionStore store{op, settings, calendar, progress, [this] { ++saves; }};
};

}  // namespace vrx::testing
