#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "database/records.h"
#include "desktop/recipe_head.h"
#include "desktop/record_page.h"
#include "feed/recipe_editor.h"

namespace vrx {

// The Recipes tab: shows what the editor of the recipes holds, and hands on to it what happens to
// the head and to the grid of the lines.
class RecipesPage : public RecordPage {
  Q_OBJECT

 public:
  // What the ports refer to outlives it.
  explicit RecipesPage(const RecordPorts& ports, QWidget* parent = nullptr);
  ~RecipesPage() override;

  // The rows of the pen grid as it is filtered, for the pen capacity warning. None until it is set.
  using PenRows = std::function<std::vector<PenRecord>()>;
  void SetPenRows(PenRows rows) { pen_rows_ = std::move(rows); }

  // The code of the recipe on show; empty before the first database.
  std::string BatchTypeOnShow() const;

  // RecordPage.
  void UpdateRecord() override;
  void CancelRecord() override;
  void DefaultRecord() override;
  void Navigate(NavigateButton button) override;
  void GoTo(int position) override;
  int Position() const override;

  // MainTabPage.
  void Prepare() override;
  void TabChanged(int tab, int previous) override;
  void Rebind(DatabaseKind kind, const BoundDatabase& database) override;
  void ReleaseViews() override;
  void LoadIdLists() override;
  void CheckPenCapacity() override;
  void HidePenCapacityWarning() override;

 private:
  struct Bound {
    SQLite::Database* connection = nullptr;
    bool blank = true;
  };

  void LayOut();
  void Connect();
  // Runs an event of the editor and shows what came of it. False: it failed, and was told.
  bool Run(const std::function<void(RecipeEditor&)>& event);
  void Show();

  void LeaveName();
  void LeaveDescription();
  void LeaveNumber(FilteredEdit& box, void (RecipeEditor::*leave)(std::string_view));
  void RewriteItem(std::string_view name);
  bool Select(int id);

  RecordPorts ports_;
  PenRows pen_rows_;
  Bound bound_;
  std::shared_ptr<RecipeEditor> editor_;
  bool stored_ = false;  // the event on its way has changed the database
  RecipeHead* head_;
  QLabel* pen_capacity_;
};

}  // namespace vrx
