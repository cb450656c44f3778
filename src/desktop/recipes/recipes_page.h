#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "database/records.h"
#include "desktop/recipes/recipe_head.h"
#include "desktop/recipes/recipe_lines.h"
#include "desktop/records/edit_gate.h"
#include "desktop/records/record_page.h"
#include "feed/recipe_editor.h"
#include "presenter/operation.h"
#include "presenter/record_actions.h"

namespace vrx {

// The Recipes tab: shows the state of the recipe editor, and passes on the events of the head and
// of the grid of the lines.
class RecipesPage final : public RecordPage, private RecipeGridEvents {
  Q_OBJECT

 public:
  // All references outlive the page. The three description boxes share the abbreviation.
  RecipesPage(Services& services, GeneralDelay& delay, AutoAbbreviation& abbreviation,
              UndoCommands& undo, QWidget* parent = nullptr);
  ~RecipesPage() override;

  // The rows of the filtered pen grid, for the pen capacity warning. None until it is set.
  using PenRows = std::function<std::vector<PenRecord>()>;
  void SetPenRows(PenRows rows) { pen_rows_ = std::move(rows); }

  // The code of the current recipe; empty before the first database.
  [[nodiscard]] std::string CurrentBatchType() const;

  // The current recipe, for the printed page; nullptr before the first database.
  [[nodiscard]] const CurrentRecipe* Current() const {
    return editor_ ? &editor_->Current() : nullptr;
  }

  // The columns of its grid, for the printed page of a recipe with that way of entry.
  [[nodiscard]] std::vector<int> ColumnsInSight(LineEntry entry) const {
    return lines_->GrdRec().ColumnsInSight(entry);
  }

  // The part with the grid, which shows the progress of printing all recipes.
  [[nodiscard]] RecipeLines& Lines() const { return *lines_; }

  // The operator chooses a free recipe, which becomes a copy of the current one.
  void CopyRecipe();
  // Whether a recipe is shown to be copied or compared.
  [[nodiscard]] bool MayCopy() const { return MayCompare() && !read_only_; }
  [[nodiscard]] bool MayCompare() const { return in_front_ && Position() != 0; }

  // RecordPage.
  void UpdateRecord() override;
  void CancelRecord() override;
  void DefaultRecord() override;
  void Navigate(NavigateButton button) override;
  void GoTo(int position) override { Select(position, MayStay::kNo); }
  void OrderFields(bool description_first) override { head_->OrderFields(description_first); }
  void FocusFirstField() override;
  void ShowRestored(const EditPlace& place) override;
  [[nodiscard]] int Position() const override;

  // MainTabPage.
  bool LeaveEdits(MayStay may_stay) override;
  std::vector<LostEdit> EndEdits() override;
  void TabChanged(int tab, int previous) override;
  void Prepare() override;
  void StripFocused() override;
  void TabChosen() override;
  void Activated() override;
  void Rebind(DatabaseKind kind, const BoundDatabase& database) override;
  void ReleaseViews() override;
  void LoadIdLists() override;
  void CheckPenCapacity() override;
  void HidePenCapacityWarning() override { lines_->ShowPenCapacity(std::nullopt); }

 Q_SIGNALS:
  // MayCopy or MayCompare may have changed.
  void CommandsChanged();

 private:
  // RecipeGridEvents.
  void GridGotFocus() override;
  void GridLostFocus() override;
  bool GoToRow(int row) override;
  bool CommitRow() override;
  void DiscardEntry() override;
  void BeforeCellEdit(LineColumn column) override;
  void AfterCellEdit(LineColumn column) override;
  bool EnterCell(LineColumn column, std::string_view text) override;
  bool ChooseIngredient(int id) override;
  void KeyRefused() override;

  void LayOut();
  void ConnectHead();
  void ConnectLines();

  // Runs an edit and refreshes the view. Throws what the edit throws. `act` and `field` name the
  // edit to be undone, if it stores anything.
  using Event = std::function<void(RecipeEditor&)>;
  void Do(const Event& event, EditAct act = EditAct::kRecompute, std::string_view field = {});
  // Returns false after reporting a failure.
  bool Run(const Event& event);
  // The same for a command of the operator, with a database failure reported as text.
  bool RunCommand(const Event& event, EditAct act);
  [[nodiscard]] EditStep StepBefore(EditAct act, std::string_view field) const;
  void EndStep(EditStep step);
  void FocusPlace(const EditPlace& place);
  // The same for an edit that adds the line of the entry row. If it fails, keeps that line and asks
  // the operator.
  bool RunWithNewLine(const Event& event);
  void Show();
  std::shared_ptr<RecipeEditor> MakeEditor(SQLite::Database& connection, int id);

  // Returns false if the operator stays with an edit or the recipe cannot be shown.
  bool ComeTo(int id, MayStay may_stay);
  bool Select(int id, MayStay may_stay);
  void CommitPending();
  void ShowFirstRecipe();
  void ReadIngredients();
  // The file is read-only for that reason, or writable for an empty one.
  void CloseFields(const QString& reason);
  void ShowUnit();
  // Returns false if the caller must not continue.
  bool Waited(Milliseconds interval);

  // Leaving the fields (recipes_page_edits.cpp).
  using StoreBox = std::function<std::string()>;
  void LeaveBox(FilteredEdit& box, std::string_view field, StoreBox store);
  void LeaveName();
  void LeaveDescription();
  void LeaveNumber(FilteredEdit& box, std::string_view field,
                   void (RecipeEditor::*leave)(std::string_view));
  void Leave(FilteredEdit& box);
  void Choose(QComboBox& list, int index);
  void StoreChoice(QComboBox& list, int index);
  void LeaveChoices();
  bool StoreCell(LineColumn column, std::string text, const Event& event);
  bool FinishCell();
  void DiscardCell();
  FieldEdit NewLine();
  void LeaveEntryRow();
  void KeepOpenEdits();
  void RewriteItem(std::string_view name);

  Services& services_;
  GeneralDelay& delay_;
  AutoAbbreviation& abbreviation_;
  UndoCommands& undo_;
  PenRows pen_rows_;
  SQLite::Database* connection_ = nullptr;  // none before the first database and after the last
  bool closed_ = true;                      // the blank template is shown
  bool read_only_ = false;
  RecipeMessages messages_;
  std::shared_ptr<RecipeEditor> editor_;  // exactly while there is a connection
  bool stored_ = false;                   // the event on its way has changed the database
  bool entering_ = false;                 // a cell of a line is being stored
  bool leaving_ = false;                  // the grid as a whole is being left
  bool discarding_ = false;               // the edit of a cell is given up by the operator
  bool ended_ = false;                    // no edit of this database is stored any more
  bool preparing_ = false;
  bool in_front_ = false;           // the tab is the current one
  std::optional<BusyCursor> busy_;  // while the tab is being prepared
  int visit_ = 0;                   // of a tab; another one ends what waits
  EditGate gate_;
  RecipeHead* head_;
  RecipeLines* lines_;
};

}  // namespace vrx
