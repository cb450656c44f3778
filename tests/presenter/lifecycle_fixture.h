#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "presenter/database_commands.h"
#include "support/database_files.h"
#include "support/test_services.h"

namespace vrx::testing {

inline constexpr auto kRecipe = DatabaseKind::kRecipe;
inline constexpr auto kTransaction = DatabaseKind::kTransaction;

// The recorded calls, in order.
using Diary = std::vector<std::string>;

class DiaryPump : public ManualPump {
 public:
  explicit DiaryPump(Diary& diary) : diary_(diary) {}
  void Pump(Milliseconds limit) override {
    diary_.push_back("wait " + std::to_string(limit.count()));
    ManualPump::Pump(limit);
  }

 private:
  Diary& diary_;
};

class DiaryOperator : public RecordingOperator {
 public:
  explicit DiaryOperator(Diary& diary) : diary_(diary) {}
  Answer ShowMessage(const MessageBox& box) override {
    diary_.push_back("box " + box.title);
    return RecordingOperator::ShowMessage(box);
  }
  void Beep() override {
    diary_.emplace_back("beep");
    RecordingOperator::Beep();
  }
  void SetBusy(bool on) override {
    const bool was_busy = busy;
    RecordingOperator::SetBusy(on);
    if (busy != was_busy) {
      diary_.emplace_back(on ? "busy" : "ready");
    }
  }

 private:
  Diary& diary_;
};

class DiaryChooser : public ScriptedFileChooser {
 public:
  explicit DiaryChooser(Diary& diary) : diary_(diary) {}
  FileChoice ShowOpen(const FileDialog& dialog) override {
    diary_.emplace_back("open dialog");
    return ScriptedFileChooser::ShowOpen(dialog);
  }
  FileChoice ShowSave(const FileDialog& dialog) override {
    diary_.emplace_back("save dialog");
    return ScriptedFileChooser::ShowSave(dialog);
  }

 private:
  Diary& diary_;
};

// The main window. Like real views, its views read the database that they are bound to.
class DiaryWindow : public MainView, public CommandObserver {
 public:
  explicit DiaryWindow(Diary& diary) : diary_(diary) {}

  void Rebind(DatabaseKind kind, const BoundDatabase& database) override;
  void EndReads(DatabaseKind kind) override;
  void ReleaseViews() override;
  void ShowUnit(DatabaseKind kind, std::string_view unit) override;
  void SetStatusPanel(DatabaseKind kind, StatusPanel panel, std::string_view text) override;
  void LoadIdLists() override;
  void ShowTransferOption() override { diary_.emplace_back("transfer option"); }
  void CheckPenCapacity() override { diary_.emplace_back("check pen capacity"); }
  void HidePenCapacityWarning() override { diary_.emplace_back("hide pen warning"); }
  void SelectPenItem(int list_index) override {
    diary_.push_back("pen item " + std::to_string(list_index));
  }

  void ShowTab(int tab) override { diary_.push_back("show tab " + std::to_string(tab)); }
  void PrepareTab(int tab, int previous) override;
  PrintSources Printable() const override { return {}; }

  // One command represents all of its side.
  void CommandChanged(std::string_view name, bool on) override;
  void TabChanged(int tab, bool on) override;

  // The current panels 2, 4, 6 and 8.
  std::vector<std::string> Panels(DatabaseKind kind) const;

  std::map<DatabaseKind, SQLite::Database*> views;
  std::map<DatabaseKind, std::string> units;
  std::function<void(DatabaseKind, const BoundDatabase&)> on_rebind;
  std::function<void()> on_end_reads;
  std::function<void()> on_load_id_lists;
  std::function<void()> on_prepare_tab;

 private:
  Diary& diary_;
  std::map<std::pair<DatabaseKind, StatusPanel>, std::string> panels_;
};

// Gives scripted answers for files of an earlier generation, and records the questions.
class ScriptedEarlierDatabases : public LegacyOpener {
 public:
  LegacyOpening Offer(DatabaseKind kind, const std::filesystem::path& path) override {
    asked.emplace_back(kind, path);
    return answer;
  }

  LegacyOpening answer;
  std::vector<std::pair<DatabaseKind, std::filesystem::path>> asked;
};

// A program's directory with both templates, an application data folder, and the database commands
// in a window that has just been loaded, with both databases closed.
class LifecycleFixture : public ::testing::Test {
 protected:
  LifecycleFixture();

  // A user's database in the data folder, created on 2025-03-01.
  std::filesystem::path MakeUserFile(const std::string& name, DatabaseKind kind,
                                     const std::string& unit = "LB",
                                     const std::string& modified = "NULL") const;
  std::filesystem::path Template(DatabaseKind kind) const;

  // The file that the views of that kind are bound to.
  std::string BoundName(DatabaseKind kind) const {
    return databases_.Bound(kind).path.filename().string();
  }

  std::vector<std::string> BoxTitles() const;

  TempFolder folder_;
  std::filesystem::path program_ = folder_ / "program";
  std::filesystem::path common_ = folder_ / "common";
  Diary diary_;
  DiaryPump pump_{diary_};
  DiaryOperator operator_{diary_};
  DiaryChooser chooser_{diary_};
  DiaryWindow window_{diary_};
  FixedSystemInfo system_;
  FixedCalendar calendar_;
  PrivateINI settings_;
  Folder app_folder_{system_};
  DatabaseIdentity identity_{operator_, calendar_, settings_, std::chrono::milliseconds(0)};
  GeneralDelay delay_{pump_};
  CommandStates commands_;
  TabFolder tabs_{commands_, window_};
  ScriptedEarlierDatabases earlier_;
  NoPrograms programs_;
  Services services_{.op = operator_,
                     .files = chooser_,
                     .pump = pump_,
                     .programs = programs_,
                     .calendar = calendar_,
                     .system = system_,
                     .settings = settings_,
                     .folder = app_folder_,
                     .identity = identity_};
  DatabaseCommands databases_{services_, delay_, commands_, tabs_, window_, &earlier_};
};

}  // namespace vrx::testing
