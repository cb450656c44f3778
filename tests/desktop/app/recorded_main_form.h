#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "desktop/app/main_form.h"

namespace vrx::testing {

// A main form that only records its calls, in order, and fails on request.
class RecordedMainForm : public ProgramForm {
 public:
  explicit RecordedMainForm(std::function<void(const std::string&)> note)
      : note_(std::move(note)) {}

  void Show() override { note_("Show"); }
  void OpenFilesLater(const std::vector<std::filesystem::path>& files) override {
    for (const std::filesystem::path& file : files) {
      note_("open " + file.string());
    }
  }
  bool LeaveEdits() override { return true; }
  void CloseSerialPort() override { note_("CloseSerialPort"); }
  void UnloadSetup() override { note_("UnloadSetup"); }
  std::optional<WindowPlace> Place() const override { return place; }
  RecentFile Recent(DatabaseKind kind) const override {
    return kind == DatabaseKind::kRecipe ? recipe : transaction;
  }
  void CloseDatabase(DatabaseKind kind) override {
    Step(kind == DatabaseKind::kRecipe ? "CloseRecipeDatabase" : "CloseTransactionDatabase");
  }
  void ReleaseDataControls() override { Step("ReleaseDataControls"); }
  void UnloadOpenForms() override { Step("UnloadOpenForms"); }
  void Unload() override { Step("Unload"); }

  std::optional<WindowPlace> place = WindowPlace{100, 200, 15360, 10800};
  RecentFile recipe{"/data/YARD.RDB", "YARD.RDB"};
  RecentFile transaction{"/data/Y2026.TDB", "Y2026.TDB"};
  std::string fails_at;

 private:
  void Step(const std::string& step) {
    note_(step);
    if (step == fails_at) {
      throw std::runtime_error("fake: " + step + " failed");
    }
  }

  std::function<void(const std::string&)> note_;
};

}  // namespace vrx::testing
