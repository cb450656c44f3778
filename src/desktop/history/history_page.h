#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QStackedLayout>
#include <QWidget>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "desktop/history/history_bars.h"
#include "desktop/history/history_table.h"
#include "desktop/main_window/tabs.h"
#include "presenter/history.h"
#include "widgets/fields.h"

namespace vrx {

// The `Batched/Fed` tab. Shows one of the data groups of the open transaction database, with the
// names of the open recipe database over its ingredient columns. Rows stored in the meantime appear
// when the databases are rebound, which every store does.
class HistoryPage final : public MainTabPage, private HistoryView {
  Q_OBJECT

 public:
  // Everything except the window outlives the page.
  // `active_ingredients_only` returns `chkShowActiveIngsOnly`.
  HistoryPage(Services& services, std::function<bool()> active_ingredients_only);

  // The shown data, for the export and the printed page; nullptr before the first database is bound
  // and after the last one is released.
  HistoryPresenter* View() { return view_ ? &*view_ : nullptr; }
  // Selects the first of the `count` records that were stored last which the current group shows.
  // Does nothing if it shows none of them.
  void GoToNewest(std::int64_t count);
  // Shows records that another tab leads to, and offers the way back.
  void GoTo(int group, const Period& period, const std::string& value);
  // Opens the bar of the search and puts the keyboard into it; does nothing unless MayFind.
  void ShowFind();
  // True while this tab shows an open transaction database.
  [[nodiscard]] bool MayFind() const { return shown_ && !closed_; }
  // `chkBatFitPage`
  [[nodiscard]] bool FitAllColumns() const { return chk_bat_fit_page_->isChecked(); }

  // MainTabPage.
  void TabChanged(int tab, int previous) override;
  void Prepare() override;
  void Activated() override;
  void Rebind(DatabaseKind kind, const BoundDatabase& database) override;
  void ReleaseViews() override;

 Q_SIGNALS:
  // MayFind may have changed.
  void FindAllowed(bool allowed);
  // The operator goes back to where GoTo was called.
  void BackChosen();

 private:
  // HistoryView.
  void HistoryChanged(HistoryPart part) override;

  void LayOut();
  QWidget* LayOutChoices();
  QCheckBox* AddCheck(const char* name, const QString& caption, const QString& meaning);
  void Connect();
  void ConnectGrid();
  void ConnectFind();
  void MoveFind(bool forward);
  void CloseFind();
  void Copy();
  // From 1; 0 for none.
  [[nodiscard]] std::int64_t CurrentRow() const;
  void Run(const std::function<void(HistoryPresenter&)>& action);
  void RebindTransactions(const BoundDatabase& database);
  void ShowPicker();
  void ShowPeriod();
  void ShowPeriodNote();
  void ShowGrid();
  QString EmptyText();

  Services& services_;
  std::function<bool()> active_ingredients_only_;
  ChoiceList* lst_group_by_;
  QLabel* lbl_name_;
  ChoiceList* cbo_col_name_;
  QCheckBox* chk_expand_all_;
  QCheckBox* chk_use_history_navigator_;
  QCheckBox* chk_bat_fit_page_;
  PeriodBar* period_;
  QCheckBox* chk_differences_;
  FindBar* find_;
  QPushButton* back_;
  QLabel* txt_standby_;
  HistoryTableView* grd_trans_;
  HistoryNavigator* navigator_;
  QStackedLayout* grid_or_standby_;
  std::optional<HistoryPresenter> view_;
  SQLite::Database* recipes_ = nullptr;
  bool closed_ = true;  // the transaction database
  bool shown_ = false;  // this tab
};

}  // namespace vrx
