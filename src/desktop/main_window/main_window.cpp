#include "desktop/main_window/main_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QFocusEvent>
#include <QKeySequence>
#include <QLabel>
#include <QMenuBar>
#include <QPointer>
#include <QScreen>
#include <QShortcut>
#include <QStringList>
#include <QVBoxLayout>
#include <algorithm>

#include "base/files.h"
#include "desktop/app/captions.h"
#include "desktop/main_window/menus_and_toolbar.h"
#include "widgets/fields.h"
#include "widgets/layout.h"
#include "widgets/qt_text.h"

namespace vrx {
namespace {

constexpr int kMainTitleCaption = 1063;
constexpr QSize kOpeningSize{1024, 720};
constexpr QSize kSmallestSize{800, 600};

constexpr const char* UnitLabelOf(DatabaseKind kind) {
  return kind == DatabaseKind::kRecipe ? "lblDatabaseUoM" : "lblTransactionUoM";
}

}  // namespace

MainWindow::MainWindow(const PrivateINI& settings, const Calendar& calendar)
    : settings_(settings),
      toolbar_(new MainToolBar(actions_)),
      tab_folder_(new MainTabFolder),
      panels_(new PanelRow),
      recipe_bar_(new DatabaseStatusBar(DatabaseKind::kRecipe)),
      transaction_bar_(new DatabaseStatusBar(DatabaseKind::kTransaction)),
      central_sign_(new CentralSignButton(*transaction_bar_)) {
  setObjectName(QStringLiteral("VRXMAIN"));
  SetTag(*this, kMainTitleCaption);
  BuildMenus(*menuBar(), actions_);
  addToolBar(toolbar_);
  setContextMenuPolicy(Qt::NoContextMenu);
  LayOut();
  calendar_ = new CalendarPopup(calendar, this);
  new EnterAsTab(this);
  AddTabKeys();
  Connect();
  setMinimumSize(kSmallestSize);
  resize(kOpeningSize);
}

void MainWindow::FitIntoScreen() {
  const QSize room = screen()->availableSize() - kFrameSize;
  setMinimumSize(minimumSize().boundedTo(room));
  resize(size().boundedTo(room));
}

void MainWindow::ComeToFront() {
  if (!isVisible()) {
    return;
  }
  setWindowState(windowState() & ~Qt::WindowMinimized);
  raise();
  activateWindow();
}

void MainWindow::LayOut() {
  auto* whole = new QWidget(this);
  auto* column = new QVBoxLayout(whole);
  column->setContentsMargins(kSpacing, kSpacing, kSpacing, kSpacing);
  column->setSpacing(kSpacing);
  column->addWidget(tab_folder_, 1);
  column->addWidget(panels_);
  auto* bars = new QVBoxLayout;
  bars->setSpacing(kSpacing / 2);
  bars->addWidget(recipe_bar_);
  bars->addWidget(transaction_bar_);
  column->addLayout(bars);
  setCentralWidget(MakeScrollArea(whole));
  for (const DatabaseKind kind : {DatabaseKind::kRecipe, DatabaseKind::kTransaction}) {
    AddLabel(*whole, UnitLabelOf(kind))->hide();
  }
}

void MainWindow::Connect() {
  commands_.AddObserver(*this);
  tab_folder_->SetLeaving([this] { return LeaveEdits(); });
  connect(tab_folder_, &MainTabFolder::TabClicked, this, [this](int tab) {
    tabs_.Clicked(tab);
    tabs_.UpdatePrintCommands(tab);
  });
  connect(tab_folder_, &MainTabFolder::StripFocused, this, [this] {
    tab_folder_->Page(tab_folder_->currentIndex()).StripFocused();
    Q_EMIT StripFocused();
  });
  connect(tab_folder_, &MainTabFolder::TabChosenByKey, this, &MainWindow::TabChosen);
}

void MainWindow::ChooseTab(int tab) {
  tabs_.SelectTab(tab);
  TabChosen();
}

// Alt+1 for the first tab, and so on. A tab that is off stays so.
void MainWindow::AddTabKeys() {
  for (int tab = 0; tab < kTabCount; ++tab) {
    auto* const key =
        new QShortcut(QKeySequence(Qt::ALT | static_cast<Qt::Key>(Qt::Key_1 + tab)), this);
    connect(key, &QShortcut::activated, this, [this, tab] {
      if (commands_.TabOn(tab) && LeaveEdits()) {
        ChooseTab(tab);
      }
    });
  }
}

void MainWindow::TabChosen() {
  tab_folder_->Page(tab_folder_->currentIndex()).TabChosen();
  Q_EMIT StripFocused();
}

void MainWindow::SetHandler(MainCommand command, CommandActions::Handler handler) {
  // A copy takes the selection of the field, which leaving it would lose.
  const bool leaves = command != MainCommand::kCopy;
  actions_.SetHandler(command, [this, leaves, run = std::move(handler)] {
    if (!leaves || LeaveEdits()) {
      run();
    }
  });
}

bool MainWindow::LeaveEdits() {
  CommitFocus();
  return tab_folder_->Page(tab_folder_->currentIndex()).LeaveEdits(MayStay::kYes);
}

// A window in the background cannot move the focus, so send its field a focus-out event.
void MainWindow::CommitFocus() {
  const QPointer<QWidget> focus = focusWidget();
  if (!focus || !tab_folder_->currentWidget()->isAncestorOf(focus)) {
    return;
  }
  if (!isActiveWindow()) {
    QFocusEvent left(QEvent::FocusOut, Qt::OtherFocusReason);
    QApplication::sendEvent(focus, &left);
    return;
  }
  centralWidget()->setFocus(Qt::OtherFocusReason);
  if (focusWidget() != centralWidget()) {
    return;
  }
  for (QWidget* back = focus; back != nullptr && back != this; back = back->parentWidget()) {
    if (back->isVisible() && back->focusPolicy() != Qt::NoFocus) {
      back->setFocus(Qt::OtherFocusReason);
      return;
    }
  }
}

void MainWindow::ApplyCaptions() {
  ApplyCaptionTable(*this);
  ShowTitle();
  toolbar_->NameButtons();
  recipe_bar_->ShowCaptions();
  transaction_bar_->ShowCaptions();
  panels_->ShowRecordNumber(0);
  panels_->PicTransferStatus().SetMemorySize(0);
}

void MainWindow::UpdateAutoAbbrevUI(bool on) { actions_.Tick(MainCommand::kAutoAbbreviate, on); }

void MainWindow::ShowSystemUnits() {
  Label("lblSystemUoM").setText(ToQString(settings_.SystemUnits()));
}

void MainWindow::ShowTransferOption() {
  Label("lblTransfer")
      .setText(settings_.BatchTargetWtIsRecTargetOn() ? QTr("Batch Target") : QTr("Dry Matter"));
  Label("lblXfr").show();
  Label("lblTransfer").show();
}

void MainWindow::ToggleCalendar() { calendar_->Toggle(toolbar_->Button("Calendar")); }

void MainWindow::PageActivated() { tab_folder_->Page(tab_folder_->currentIndex()).Activated(); }

template <typename Call>
void MainWindow::OnEveryPage(const Call& call) {
  for (int tab = 0; tab < kTabCount; ++tab) {
    call(tab_folder_->Page(tab));
  }
}

void MainWindow::PrepareTab(int tab, int previous) {
  OnEveryPage([=](MainTabPage& page) { page.TabChanged(tab, previous); });
  const TabRow& row = TabRows().at(static_cast<std::size_t>(tab));
  panels_->ShowPanels(row.panels);
  commands_.Turn("Abbreviate", row.abbreviates);
  tab_folder_->Page(tab).Prepare();
}

std::vector<LostEdit> MainWindow::EndEdits() {
  CommitFocus();
  std::vector<LostEdit> lost;
  OnEveryPage([&](MainTabPage& page) {
    for (LostEdit& edit : page.EndEdits()) {
      lost.push_back(std::move(edit));
    }
  });
  return lost;
}

// Only the records of the recipe database are edited.
void MainWindow::LeaveEdits(DatabaseKind kind) {
  if (kind == DatabaseKind::kRecipe) {
    OnEveryPage([](MainTabPage& page) { page.LeaveEdits(MayStay::kNo); });
  }
}

void MainWindow::Rebind(DatabaseKind kind, const BoundDatabase& database) {
  Q_EMIT DatabaseBound(kind, database);
  OnEveryPage([&](MainTabPage& page) { page.Rebind(kind, database); });
  open_names_.at(static_cast<std::size_t>(kind)) =
      database.blank ? QString() : ToQString(FileTitle(database.path));
  ShowTitle();
}

// The names of the open databases follow the specified title.
void MainWindow::ShowTitle() {
  QStringList names(open_names_.begin(), open_names_.end());
  names.removeAll(QString());
  const QString title = QTr(CaptionText(kMainTitleCaption).value_or(""));
  setWindowTitle(names.isEmpty() ? title : title + QStringLiteral(" - ") + names.join(u", "));
}

void MainWindow::EndReads(DatabaseKind kind) {
  Q_EMIT WriteBegins(kind);
  OnEveryPage([=](MainTabPage& page) { page.EndReads(kind); });
}

void MainWindow::ReleaseViews() {
  OnEveryPage([](MainTabPage& page) { page.ReleaseViews(); });
}

void MainWindow::LoadIdLists() {
  OnEveryPage([](MainTabPage& page) { page.LoadIdLists(); });
}

void MainWindow::CheckPenCapacity() {
  OnEveryPage([](MainTabPage& page) { page.CheckPenCapacity(); });
}

void MainWindow::HidePenCapacityWarning() {
  OnEveryPage([](MainTabPage& page) { page.HidePenCapacityWarning(); });
}

void MainWindow::SelectPenItem(int list_index) {
  OnEveryPage([=](MainTabPage& page) { page.SelectPenItem(list_index); });
}

void MainWindow::ShowUnit(DatabaseKind kind, std::string_view unit) {
  Label(UnitLabelOf(kind)).setText(ToQString(unit));
}

void MainWindow::SetStatusPanel(DatabaseKind kind, StatusPanel panel, std::string_view text) {
  StatusBar(kind).SetPanel(panel, ToQString(text));
}

DatabaseStatusBar& MainWindow::StatusBar(DatabaseKind kind) const {
  return kind == DatabaseKind::kRecipe ? *recipe_bar_ : *transaction_bar_;
}

QLabel& MainWindow::Label(const char* name) const {
  return *findChild<QLabel*>(QLatin1String(name));
}

bool MainWindow::event(QEvent* event) {
  const bool done = QMainWindow::event(event);
  if (event->type() == QEvent::WindowActivate) {
    Q_EMIT Activated();
  }
  return done;
}

void MainWindow::paintEvent(QPaintEvent* event) {
  QMainWindow::paintEvent(event);
  Q_EMIT Painted();
}

void MainWindow::closeEvent(QCloseEvent* event) {
  event->ignore();
  if (LeaveEdits()) {
    Q_EMIT CloseRequested();
  }
}

}  // namespace vrx
