#pragma once

#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

#include "desktop/app/main_form_interface.h"

namespace vrx::testing {

// A main form that only records its calls, in order, and fails on request.
class RecordedMainForm : public MainForm {
 public:
  explicit RecordedMainForm(std::function<void(const std::string&)> note)
      : note_(std::move(note)) {}

  void Show() override { note_("Show"); }
  void CloseSerialPort() override { note_("CloseSerialPort"); }
  void UnloadSetup() override { note_("UnloadSetup"); }
  std::optional<WindowPlace> Place() const override { return place; }
  RecentFile Recent(DatabaseKind kind) const override {
    return kind == DatabaseKind::kRecipe ? recipe : transaction;
  }
  void CloseRecipeDatabase() override { Step("CloseRecipeDatabase"); }
  void CloseTransactionDatabase() override { Step("CloseTransactionDatabase"); }
  void ReleaseDataControls() override { Step("ReleaseDataControls"); }
  void ClearIngredientDropDown() override { Step("ClearIngredientDropDown"); }
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
