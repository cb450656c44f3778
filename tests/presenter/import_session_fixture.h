#pragma once

#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/files.h"
#include "database/connection.h"
#include "exchange/imported_data.h"
#include "exchange/store_fixture.h"
#include "exchange/transaction_texts.h"
#include "presenter/database_identity.h"
#include "presenter/import.h"
#include "support/fixed_system_info.h"
#include "support/scripted_file_chooser.h"
#include "support/test_services.h"

namespace vrx::testing {

class ImportSessionTest : public ::testing::Test, public ImportView {
 protected:
  ImportSessionTest() {
    system_.common_app_data_folder = "/var/common";
    site_.op.beeps = 0;
  }

  OpenDatabases Databases() const override { return databases_; }
  std::vector<IngredientRecord> GridIngredients() override {
    if (grid_fails_) {
      throw DatabaseError(kTableLockedError, "YARD.RDB is locked");
    }
    return grid_ingredients_;
  }
  void SelectImportTab() override {
    ++tab_selections_;
    session_.EnterImportTab();
  }
  void FocusControl(std::string_view name) override { focused_.emplace_back(name); }
  void SaveTransactionDatabase() override { ++site_.saves; }
  void ImportChanged() override { ++changes_; }
  void FileShown(const std::string& path) override {
    shown_.push_back(std::filesystem::path(path).filename());
  }

  bool Import(std::string_view text) {
    files_.Choose(site_.folder.Write("load1.qxt", text));
    return session_.ImportXFile();
  }

  void OpenBoth() { databases_ = site_.databases; }

  std::string Caption(int column) const { return Column(column).caption; }
  const ImportGridColumn& Column(int column) const {
    return session_.Form().grd_import_columns.at(static_cast<std::size_t>(column - 1));
  }

  StoreFixture site_;
  FixedSystemInfo system_;
  ScriptedFileChooser files_;
  OpenDatabases databases_;
  std::vector<IngredientRecord> grid_ingredients_;
  bool grid_fails_ = false;
  int tab_selections_ = 0;
  std::vector<std::string> focused_;
  std::vector<std::string> shown_;
  int changes_ = 0;
  DatabaseIdentity identity_{site_.op, site_.calendar, site_.settings};
  TestServices rest_;
  Services services_{.op = site_.op,
                     .files = files_,
                     .pump = rest_.pump,
                     .programs = rest_.programs,
                     .calendar = site_.calendar,
                     .system = system_,
                     .settings = site_.settings,
                     .folder = rest_.folder,
                     .identity = identity_};
  ImportPresenter session_{services_, site_.progress, *this};
};

}  // namespace vrx::testing
