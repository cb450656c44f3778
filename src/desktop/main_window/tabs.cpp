#include "desktop/main_window/tabs.h"

#include <QFocusEvent>
#include <QMouseEvent>
#include <QScopedValueRollback>
#include <QSignalBlocker>
#include <QTabBar>
#include <QWheelEvent>
#include <functional>
#include <utility>

#include "widgets/fields.h"
#include "widgets/qt_text.h"

namespace vrx {

namespace {

constexpr std::string_view kNeedsRecipes = TrMark("Open a recipe database to use this tab");
constexpr std::string_view kNeedsTransactions =
    TrMark("Open a transaction database to use this tab");

constexpr unsigned kRecordPanels = kPicAction | kPicNavigate;

constexpr std::array<TabRow, kTabCount> kTabRows{{
    {"Ingredients", "pageIngredients", kRecordPanels, true, kNeedsRecipes},
    {"Recipes", "pageRecipes", kRecordPanels, true, kNeedsRecipes},
    {"Pens", "pagePens", kRecordPanels, true, kNeedsRecipes},
    {"Data Transfer", "pageDataTransfer", kPicTransferStatus},
    {"Batched/Fed", "pageBatchedFed", kNoPanel, false, kNeedsTransactions},
    {"Import", "pageImport", kPicImport},
    {"Export", "pageExport", kNoPanel, false, kNeedsTransactions},
    {"Insight", "pageInsight", kNoPanel, false, kNeedsTransactions},
}};

// Reports the focus, and every click on a tab after the tab has changed. The strip has the focus
// from the start, so the first click need not move it. The tab changes only if `leave` allows it.
class TabStrip : public QTabBar {
 public:
  TabStrip(QWidget* parent, std::function<bool()> leave, std::function<void()> focused)
      : QTabBar(parent), leave_(std::move(leave)), focused_(std::move(focused)) {
    setFocusPolicy(Qt::StrongFocus);
  }

  [[nodiscard]] bool IsPressed() const { return pressed_; }

 protected:
  void focusInEvent(QFocusEvent* event) override {
    QTabBar::focusInEvent(event);
    switch (event->reason()) {
      case Qt::ActiveWindowFocusReason:
      case Qt::PopupFocusReason:
      case Qt::MenuBarFocusReason:
        break;
      case Qt::MouseFocusReason:
        by_mouse_ = true;
        break;
      default:
        focused_();
    }
  }

  void mousePressEvent(QMouseEvent* event) override {
    const bool by_left_button = event->button() == Qt::LeftButton;
    const int tab = tabAt(event->position().toPoint());
    const bool turns = by_left_button && tab >= 0 && tab != currentIndex() && isTabEnabled(tab);
    if (turns && !leave_()) {
      by_mouse_ = false;
      event->accept();
      return;
    }
    pressed_ = true;
    if (turns) {
      // Select it here, because a message box may have taken the release of the click.
      setCurrentIndex(tab);
    } else {
      QTabBar::mousePressEvent(event);
    }
    pressed_ = false;
    const bool on_tab = by_left_button && tab == currentIndex();
    if (std::exchange(by_mouse_, false) || on_tab) {
      focused_();
    }
  }

  void keyPressEvent(QKeyEvent* event) override {
    const bool turns = event->key() == Qt::Key_Left || event->key() == Qt::Key_Right;
    if (turns && !leave_()) {
      event->accept();
      return;
    }
    QTabBar::keyPressEvent(event);
  }

  // An accidental turn of the wheel must not change the tab.
  void wheelEvent(QWheelEvent* event) override { event->ignore(); }

 private:
  std::function<bool()> leave_;
  std::function<void()> focused_;
  bool by_mouse_ = false;
  bool pressed_ = false;
};

}  // namespace

const std::array<TabRow, kTabCount>& TabRows() { return kTabRows; }

MainTabFolder::MainTabFolder(QWidget* parent) : QTabWidget(parent) {
  setObjectName(QStringLiteral("tabMainFolder"));
  setAccessibleName(QTr("Work"));
  auto* const strip = new TabStrip(
      this, [this] { return MayLeave(); }, [this] { Q_EMIT StripFocused(); });
  setTabBar(strip);
  for (const TabRow& row : kTabRows) {
    auto* page = new MainTabPage;
    page->setObjectName(ToQString(row.page));
    addTab(page, QTr(row.caption));
  }
  connect(this, &QTabWidget::currentChanged, strip, [this, strip](int tab) {
    if (by_program_) {
      return;
    }
    const bool by_key = !strip->IsPressed();
    Q_EMIT TabClicked(tab);
    if (by_key) {
      Q_EMIT TabChosenByKey();
    }
  });
}

MainTabPage& MainTabFolder::Page(int tab) const { return *qobject_cast<MainTabPage*>(widget(tab)); }

std::unique_ptr<MainTabPage> MainTabFolder::SetPage(int tab, MainTabPage* page) {
  const QScopedValueRollback by_program(by_program_, true);
  const int on_show = currentIndex();
  const bool on = isTabEnabled(tab);
  std::unique_ptr<MainTabPage> old(&Page(tab));
  removeTab(tab);
  insertTab(tab, page, QTr(kTabRows.at(static_cast<std::size_t>(tab)).caption));
  old->setParent(nullptr);
  TurnTab(tab, on);
  setCurrentIndex(on_show);
  return old;
}

// Ctrl+Tab switches to another tab even from a field.
void MainTabFolder::keyPressEvent(QKeyEvent* event) {
  if (TurnsTabs(*event) && !MayLeave()) {
    event->accept();
    return;
  }
  QTabWidget::keyPressEvent(event);
}

void MainTabFolder::ShowTab(int tab) {
  const QScopedValueRollback by_program(by_program_, true);
  setCurrentIndex(tab);
}

// QTabBar would leave a tab that is disabled for the next enabled one.
void MainTabFolder::TurnTab(int tab, bool on) {
  const QSignalBlocker silent(tabBar());
  const int on_show = currentIndex();
  setTabEnabled(tab, on);
  setTabToolTip(tab, on ? QString() : QTr(kTabRows.at(static_cast<std::size_t>(tab)).needs));
  tabBar()->setCurrentIndex(on_show);
}

}  // namespace vrx
