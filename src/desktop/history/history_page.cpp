#include "desktop/history/history_page.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QMimeData>
#include <QShortcut>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <algorithm>
#include <cstddef>
#include <exception>
#include <string>
#include <utility>

#include "base/text.h"
#include "desktop/app/captions.h"
#include "desktop/history/history_bars.h"
#include "desktop/history/history_header.h"
#include "history/copied_rows.h"
#include "presenter/command_states.h"
#include "presenter/find.h"
#include "presenter/name_picker.h"
#include "presenter/operation.h"
#include "widgets/layout.h"
#include "widgets/qt_text.h"

namespace vrx {

namespace {

constexpr int kDataGroupCaption = 1080;
constexpr int kNameCharacters = 14;
constexpr int kItemsInView = 20;

ChoiceList* MakeList(const char* name, const QString& meaning, QWidget* parent) {
  auto* const list = new ChoiceList(parent);
  list->setObjectName(QString::fromLatin1(name));
  list->setAccessibleName(meaning);
  list->setSizeAdjustPolicy(QComboBox::AdjustToContents);
  list->setMaxVisibleItems(kItemsInView);
  return list;
}

bool Holds(const QComboBox& list, const std::vector<std::string>& items) {
  if (list.count() != static_cast<int>(items.size())) {
    return false;
  }
  for (int i = 0; i < list.count(); ++i) {
    if (list.itemText(i) != ToQString(items[static_cast<std::size_t>(i)])) {
      return false;
    }
  }
  return true;
}

// The selected rows, ascending; the current one if none is selected.
std::vector<CopiedRange> SelectedRows(const QTableView& grid) {
  std::vector<CopiedRange> ranges;
  for (const QItemSelectionRange& selected : grid.selectionModel()->selection()) {
    ranges.push_back({.first = selected.top() + 1, .last = selected.bottom() + 1});
  }
  if (const QModelIndex current = grid.currentIndex(); ranges.empty() && current.isValid()) {
    ranges.push_back({.first = current.row() + 1, .last = current.row() + 1});
  }
  std::sort(ranges.begin(), ranges.end(), [](const CopiedRange& one, const CopiedRange& other) {
    return one.first < other.first;
  });
  // A row can be in several of them.
  std::vector<CopiedRange> joined;
  for (const CopiedRange& range : ranges) {
    if (!joined.empty() && range.first <= joined.back().last + 1) {
      joined.back().last = std::max(joined.back().last, range.last);
    } else {
      joined.push_back(range);
    }
  }
  return joined;
}

}  // namespace

HistoryPage::HistoryPage(Services& services, std::function<bool()> active_ingredients_only)
    : services_(services),
      active_ingredients_only_(std::move(active_ingredients_only)),
      lst_group_by_(MakeList("lstGroupBy", QTr("Data Group"), this)),
      lbl_name_(AddLabel(*this, "lblName", kNameCaption)),
      cbo_col_name_(MakeList("cboColName", QTr("Name"), this)),
      chk_expand_all_(AddCheck("chkExpandAll", QTr(" E&xpand All"), QTr("Show every group open"))),
      chk_use_history_navigator_(AddCheck("chkUseHistoryNavigator", QTr("&Navigator"),
                                          QTr("Show the position in the list"))),
      chk_bat_fit_page_(AddCheck("chkBatFitPage", QTr("F&it/Print All Columns on Page"),
                                 QTr("Print every column on one page, in smaller letters"))),
      period_(new PeriodBar(services.calendar, this)),
      chk_differences_(
          AddCheck("chkDifferences", QTr("&Differences"),
                   QTr("Show how far each weight was from its target, in bold letters beyond the "
                       "tolerance of the setup"))),
      find_(new FindBar(this)),
      back_(new QPushButton(QTr("Back to Insight"), this)),
      txt_standby_(new QLabel(this)),
      grd_trans_(new HistoryTableView(this)),
      navigator_(new HistoryNavigator(this)) {
  setObjectName(QStringLiteral("pageBatchedFed"));
  for (const DataGroup& group : DataGroups()) {
    lst_group_by_->addItem(ToQString(group.item));
  }
  cbo_col_name_->setMinimumContentsLength(kNameCharacters);
  txt_standby_->setObjectName(QStringLiteral("txtStandby"));
  txt_standby_->setAlignment(Qt::AlignCenter);
  back_->setObjectName(QStringLiteral("cmdBackToInsight"));
  back_->setToolTip(QTr("Return to the figures that these records are of (Alt+Left)"));
  back_->hide();
  LayOut();
  Connect();
  ConnectGrid();
  ConnectFind();
  ShowPicker();
}

QCheckBox* HistoryPage::AddCheck(const char* name, const QString& caption, const QString& meaning) {
  auto* const box = new QCheckBox(caption, this);
  box->setObjectName(QString::fromLatin1(name));
  box->setToolTip(meaning);
  return box;
}

void HistoryPage::LayOut() {
  auto* const column = new QVBoxLayout(this);
  column->setContentsMargins(kGroupSpacing, kGroupSpacing, kGroupSpacing, kGroupSpacing);
  column->setSpacing(kSpacing);
  column->addWidget(LayOutChoices());
  auto* const narrowed = new QHBoxLayout;
  narrowed->setSpacing(kGroupSpacing);
  narrowed->addWidget(back_, 0, Qt::AlignTop);
  narrowed->addWidget(period_, 1);
  narrowed->addWidget(chk_differences_, 0, Qt::AlignTop);
  chk_differences_->setMinimumHeight(lst_group_by_->sizeHint().height());
  column->addLayout(narrowed);
  column->addWidget(find_);
  grid_or_standby_ = new QStackedLayout;
  grid_or_standby_->addWidget(grd_trans_);
  grid_or_standby_->addWidget(txt_standby_);
  column->addLayout(grid_or_standby_, 1);
  column->addWidget(navigator_);
  navigator_->hide();
}

QWidget* HistoryPage::LayOutChoices() {
  auto* const row = new TwoPartRow(this);
  QLabel* const group = AddLabel(*this, "lblGroupBy", kDataGroupCaption);
  group->setBuddy(lst_group_by_);
  lbl_name_->setBuddy(cbo_col_name_);
  KeepPlace(*lbl_name_);
  KeepPlace(*cbo_col_name_);
  row->First()->addWidget(group);
  row->First()->addWidget(lst_group_by_);
  row->First()->addSpacing(kGroupSpacing - kSpacing);
  row->First()->addWidget(lbl_name_);
  row->First()->addWidget(cbo_col_name_);
  row->Second()->addWidget(chk_expand_all_);
  row->Second()->addSpacing(kGroupSpacing - kSpacing);
  row->Second()->addWidget(chk_use_history_navigator_);
  row->Second()->addSpacing(kGroupSpacing - kSpacing);
  row->Second()->addWidget(chk_bat_fit_page_);
  return row;
}

void HistoryPage::Connect() {
  connect(lst_group_by_, &QComboBox::activated, this, [this](int index) {
    Run([&](HistoryPresenter& view) {
      view.SetShowActiveIngredientsOnly(active_ingredients_only_());
      view.SelectGroup(index);
      grd_trans_->GoToTop();
    });
  });
  connect(cbo_col_name_, &QComboBox::activated, this, [this](int index) {
    Run([&](HistoryPresenter& view) {
      view.PickName(index);
      grd_trans_->GoToTop();
    });
  });
  connect(chk_expand_all_, &QCheckBox::toggled, this, [this](bool on) {
    Run([&](HistoryPresenter& view) {
      view.SetExpandAll(on);
      grd_trans_->GoToTop();
    });
  });
  connect(period_, &PeriodBar::Chosen, this, [this](PeriodChoice choice) {
    Run([&](HistoryPresenter& view) {
      view.ChoosePeriod(choice);
      grd_trans_->GoToTop();
    });
  });
  connect(period_, &PeriodBar::Typed, this, [this](const QString& from, const QString& to) {
    Run([&](HistoryPresenter& view) {
      const Period before = view.Grid().ShownPeriod();
      view.TypeDays(from.toStdString(), to.toStdString());
      if (view.Grid().ShownPeriod() != before) {
        grd_trans_->GoToTop();
      }
    });
  });
  connect(chk_differences_, &QCheckBox::toggled, this,
          [this](bool on) { Run([&](HistoryPresenter& view) { view.ShowDifferences(on); }); });
  connect(back_, &QPushButton::clicked, this, &HistoryPage::BackChosen);
  auto* const back_key = new QShortcut(QKeySequence(Qt::ALT | Qt::Key_Left), this);
  back_key->setContext(Qt::WidgetWithChildrenShortcut);
  connect(back_key, &QShortcut::activated, this, [this] {
    if (!back_->isHidden()) {
      Q_EMIT BackChosen();
    }
  });
  connect(chk_use_history_navigator_, &QCheckBox::toggled, navigator_, &QWidget::setVisible);
  connect(navigator_, &HistoryNavigator::RowChosen, grd_trans_, &HistoryTableView::GoToRow);
  connect(grd_trans_, &HistoryTableView::RowChanged, navigator_, &HistoryNavigator::ShowRow);
}

void HistoryPage::ConnectGrid() {
  connect(grd_trans_, &HistoryTableView::GroupChosen, this, [this](int row, bool open) {
    Run([&](HistoryPresenter& view) {
      const std::int64_t number = std::int64_t{row} + 1;
      if (open) {
        view.OpenGroup(number);
      } else {
        view.CloseGroup(number);
      }
    });
  });
  connect(&grd_trans_->Header(), &HistoryHeader::SortChosen, this, [this](int column) {
    Run([&](HistoryPresenter& view) {
      const std::int64_t row = std::int64_t{grd_trans_->currentIndex().row()} + 1;
      grd_trans_->GoToRow(static_cast<int>(view.SortByColumn(column, row)) - 1);
    });
  });
  connect(&grd_trans_->Header(), &HistoryHeader::ColumnMoved, this, [this](int column, int to) {
    Run([&](HistoryPresenter& view) { view.MoveColumn(column, to); });
  });
  connect(
      &grd_trans_->Model(), &HistoryTableModel::Failed, this,
      [this](const std::exception_ptr& failure) {
        if (view_) {
          view_->ReportFailure(failure);
        }
      },
      Qt::QueuedConnection);
}

void HistoryPage::ConnectFind() {
  connect(find_, &FindBar::Typed, this, [this](const QString& text) {
    if (view_) {
      view_->Find().Type(text.toStdString(), CurrentRow());
    }
  });
  connect(find_, &FindBar::Moved, this, &HistoryPage::MoveFind);
  connect(find_, &FindBar::Stopped, this, [this] {
    if (view_) {
      view_->Find().Stop();
    }
  });
  connect(find_, &FindBar::Closed, this, &HistoryPage::CloseFind);
  auto* const escape = new QShortcut(QKeySequence(Qt::Key_Escape), grd_trans_);
  escape->setContext(Qt::WidgetShortcut);
  connect(escape, &QShortcut::activated, this, &HistoryPage::CloseFind);
  for (const auto& [key, forward] : {std::pair(QKeySequence(Qt::Key_F3), true),
                                     std::pair(QKeySequence(Qt::SHIFT | Qt::Key_F3), false)}) {
    auto* const move = new QShortcut(key, this);
    move->setContext(Qt::WidgetWithChildrenShortcut);
    connect(move, &QShortcut::activated, this, [this, forward = forward] { MoveFind(forward); });
  }
  connect(grd_trans_, &HistoryTableView::CopyChosen, this, &HistoryPage::Copy);
  connect(grd_trans_, &HistoryTableView::GroupTyped, this, [this](const QString& typed) {
    Run([&](HistoryPresenter& view) {
      const std::int64_t row = std::max<std::int64_t>(CurrentRow(), 1);
      if (row <= view.Grid().RowCount()) {
        grd_trans_->GoToRow(static_cast<int>(view.GroupBeginning(row, typed.toStdString()) - 1));
      }
    });
  });
}

void HistoryPage::ShowFind() {
  if (view_ && MayFind()) {
    view_->Find().Open();
    find_->FocusField();
  }
}

// Without a text there is nothing to go to.
void HistoryPage::MoveFind(bool forward) {
  if (find_->isHidden() || find_->Text().isEmpty()) {
    ShowFind();
  }
  if (view_ && MayFind() && !find_->Text().isEmpty()) {
    view_->Find().Move(forward, CurrentRow());
  }
}

void HistoryPage::CloseFind() {
  if (view_ && !find_->isHidden()) {
    view_->Find().Close();
    grd_trans_->setFocus();
  }
}

void HistoryPage::Copy() {
  Run([this](HistoryPresenter& view) {
    const std::vector<CopiedRange> selected = SelectedRows(*grd_trans_);
    if (selected.empty()) {
      return;
    }
    if (const std::optional<CopiedRows> rows = view.Copy(selected)) {
      auto* const both = new QMimeData;  // the clipboard owns it
      both->setText(ToQString(rows->text));
      both->setHtml(ToQString(rows->html));
      QGuiApplication::clipboard()->setMimeData(both);
    }
  });
}

std::int64_t HistoryPage::CurrentRow() const {
  return std::int64_t{grd_trans_->currentIndex().row()} + 1;
}

void HistoryPage::Run(const std::function<void(HistoryPresenter&)>& action) {
  if (view_) {
    const BusyCursor busy(services_.op);
    action(*view_);
  }
}

void HistoryPage::GoToNewest(std::int64_t count) {
  if (count < 1) {
    return;
  }
  Run([&](HistoryPresenter& view) {
    if (const std::int64_t row = view.OpenNewest(count); row > 0) {
      grd_trans_->GoToRow(static_cast<int>(row - 1));
      grd_trans_->scrollTo(grd_trans_->currentIndex(), QAbstractItemView::PositionAtTop);
      grd_trans_->setFocus();
    }
  });
}

void HistoryPage::GoTo(int group, const Period& period, const std::string& value) {
  Run([&](HistoryPresenter& view) {
    const std::int64_t row = view.GoTo(group, period, value);
    grd_trans_->GoToRow(static_cast<int>(std::max<std::int64_t>(row, 1)) - 1);
    grd_trans_->scrollTo(grd_trans_->currentIndex(), QAbstractItemView::PositionAtTop);
    grd_trans_->setFocus();
    back_->show();
  });
}

// MainTabPage.

void HistoryPage::TabChanged(int tab, int /*previous*/) {
  shown_ = tab == kTabBatchedFed;
  back_->hide();
  Q_EMIT FindAllowed(MayFind());
  if (view_) {
    view_->TabChanged();
    grd_trans_->GoToTop();
  }
}

void HistoryPage::Prepare() {
  Run([this](HistoryPresenter& view) {
    view.SetShowActiveIngredientsOnly(active_ingredients_only_());
    view.TabEntered();
  });
}

void HistoryPage::Activated() {
  if (view_) {
    view_->FollowTolerance();
  }
}

void HistoryPage::Rebind(DatabaseKind kind, const BoundDatabase& database) {
  if (kind == DatabaseKind::kTransaction) {
    RebindTransactions(database);
    return;
  }
  SQLite::Database* const recipes = database.blank ? nullptr : database.connection.get();
  if (view_) {
    view_->SetRecipeDatabase(recipes);
  }
  recipes_ = recipes;
}

void HistoryPage::RebindTransactions(const BoundDatabase& database) {
  closed_ = database.blank;
  if (closed_ && view_) {
    view_->Find().Close();
  }
  Q_EMIT FindAllowed(MayFind());
  if (view_) {
    view_->SetTransactionDatabase(*database.connection);
    grd_trans_->GoToTop();
    return;
  }
  view_.emplace(*database.connection, services_, static_cast<HistoryView&>(*this));
  grd_trans_->Model().SetGrid(&view_->Grid());
  view_->SetRecipeDatabase(recipes_);
  view_->SetExpandAll(chk_expand_all_->isChecked());
  view_->ShowDifferences(chk_differences_->isChecked());
  view_->SelectGroup(0);  // that of no name, which runs no events
}

void HistoryPage::ReleaseViews() {
  grd_trans_->Model().SetGrid(nullptr);
  view_.reset();
  recipes_ = nullptr;
}

// The shown data.

void HistoryPage::HistoryChanged(HistoryPart part) {
  switch (part) {
    case HistoryPart::kGroupList:
      lst_group_by_->setCurrentIndex(view_->GroupIndex());
      break;
    case HistoryPart::kNamePicker:
      ShowPicker();
      break;
    case HistoryPart::kPeriod:
      ShowPeriod();
      break;
    case HistoryPart::kGrid:
      ShowGrid();
      break;
    case HistoryPart::kFind:
      find_->Show(view_->Find().State());
      break;
    case HistoryPart::kFoundCell:
      grd_trans_->GoToCell(static_cast<int>(view_->LastFound().row) - 1,
                           view_->LastFound().column - 1);
      break;
  }
}

void HistoryPage::ShowPicker() {
  const NamePickerState picker = view_ ? view_->Picker() : NamePickerState{};
  if (!Holds(*cbo_col_name_, picker.items)) {
    cbo_col_name_->clear();
    for (const std::string& item : picker.items) {
      cbo_col_name_->addItem(ToQString(item));
    }
  }
  cbo_col_name_->setCurrentIndex(picker.index);
  cbo_col_name_->setEnabled(picker.enabled);
  cbo_col_name_->setVisible(picker.visible);
  lbl_name_->setVisible(picker.visible);
  txt_standby_->setText(ToQString(picker.standby));
}

void HistoryPage::ShowPeriod() {
  period_->Show(view_->ChosenPeriod());
  ShowPeriodNote();
}

void HistoryPage::ShowPeriodNote() {
  const std::string& refusal = view_->ChosenPeriod().refusal;
  period_->ShowNote(
      ToQString(refusal.empty() ? LeftOutText(view_->Grid().UndatedCount()) : refusal));
}

void HistoryPage::ShowGrid() {
  QWidget* const shown = view_->GridVisible() ? static_cast<QWidget*>(grd_trans_)
                                              : static_cast<QWidget*>(txt_standby_);
  if (view_->GridVisible()) {
    grd_trans_->ShowGrid();
    grd_trans_->SetEmptyText(EmptyText());
    navigator_->ShowCount(grd_trans_->Model().rowCount());
    ShowPeriodNote();
  }
  grid_or_standby_->setCurrentWidget(shown);
}

QString HistoryPage::EmptyText() {
  return closed_ ? QTr("Open a transaction database to see its records here.")
                 : ToQString(view_->EmptyText());
}

}  // namespace vrx
