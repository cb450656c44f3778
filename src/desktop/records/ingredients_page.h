#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QPushButton>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "desktop/records/record_form_page.h"
#include "presenter/record_actions.h"

namespace vrx {

// `cboWhereUsed`: a read-only list. Item 0 is the status of the search and is shown while the list
// is closed; the open list shows only the recipes after it.
class WhereUsedList : public QComboBox {
  Q_OBJECT

 public:
  explicit WhereUsedList(QWidget* parent = nullptr);

  // UTF-8, the status first.
  void ShowItems(const std::vector<std::string>& items);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void showPopup() override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QString status_;
};

// The tab `Ingredients`. An edit immediately updates the lines of all recipes.
class IngredientsPage final : public RecordFormPage {
  Q_OBJECT

 public:
  // The connection to the tab of the recipes. All of it outlives the page.
  struct Recipes {
    // The code selected in `lstRecBatchType`. All lines are computed with it, whatever their recipe
    // is.
    std::function<std::string()> current_batch_type;
    // After a search the Recipes tab shows the recipe where the search ended.
    std::function<void(int position)> go_to;
  };

  IngredientsPage(Services& services, GeneralDelay& delay, AutoAbbreviation& abbreviation,
                  UndoCommands& undo, Recipes recipes, QWidget* parent = nullptr);

  void LoadIdLists() override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

  void ReadRecord(int id) override;
  bool StoreCurrentRecord() override;
  void ShowStored() override;
  void LeaveOwnFields() override;
  [[nodiscard]] QWidget* OwnField(std::string_view field) const override {
    return field == "HandAdd" ? hand_add_ : nullptr;
  }
  std::vector<RecordRow> ReadRows(bool active_only) override;
  void CameToAnother() override { where_used_->ShowItems({}); }
  void AnsweredDefault(ResetOutcome outcome) override;
  void ShowReadOnly(const QString& reason) override;

 private:
  static Design Controls();
  void LayOut();
  void LeaveHandAdd();
  void Search();

  GeneralDelay& delay_;
  Recipes recipes_;
  QCheckBox* hand_add_;
  bool stored_hand_add_ = false;
  WhereUsedList* where_used_;
  QPushButton* search_;
};

}  // namespace vrx
