#include "desktop/main_window_tabs.h"

#include <QFocusEvent>
#include <QMouseEvent>
#include <QSignalBlocker>
#include <QTabBar>
#include <QWheelEvent>
#include <functional>
#include <utility>

#include "desktop/qt_text.h"

namespace vrx {
namespace {

constexpr unsigned kRecordPanels = kPicAction | kPicNavigate;

constexpr std::array<TabRow, kTabCount> kTabRows{{
    {"Ingredients", "pageIngredients", kRecordPanels, true},
    {"Recipes", "pageRecipes", kRecordPanels, true},
    {"Pens", "pagePens", kRecordPanels, true},
    {"Data Transfer", "pageDataTransfer", kPicTransferStatus},
    {"Batched/Fed", "pageBatchedFed"},
    {"Import", "pageImport", kPicImport},
    {"Export", "pageExport"},
}};

// A strip that reports the focus, and every click on a tab, once the click has changed the tab. The
// strip has the focus from the start, so that the first click need not bring it.
class TabStrip : public QTabBar {
 public:
  TabStrip(QWidget* parent, std::function<void()> focused)
      : QTabBar(parent), focused_(std::move(focused)) {
    setFocusPolicy(Qt::StrongFocus);
  }

  bool IsPressed() const { return pressed_; }

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
    pressed_ = true;
    QTabBar::mousePressEvent(event);
    pressed_ = false;
    const bool on_tab =
        event->button() == Qt::LeftButton && tabAt(event->position().toPoint()) == currentIndex();
    if (std::exchange(by_mouse_, false) || on_tab) {
      focused_();
    }
  }

  // A turn of the wheel in passing must not leave the tab.
  void wheelEvent(QWheelEvent* event) override { event->ignore(); }

 private:
  std::function<void()> focused_;
  bool by_mouse_ = false;
  bool pressed_ = false;
};

}  // namespace

const std::array<TabRow, kTabCount>& TabRows() { return kTabRows; }

MainTabFolder::MainTabFolder(QWidget* parent) : QTabWidget(parent) {
  setObjectName(QStringLiteral("tabMainFolder"));
  setAccessibleName(QStringLiteral("Work"));
  auto* const strip = new TabStrip(this, [this] { Q_EMIT StripFocused(); });
  setTabBar(strip);
  for (const TabRow& row : kTabRows) {
    auto* page = new MainTabPage;
    page->setObjectName(ToQString(row.page));
    addTab(page, ToQString(row.caption));
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
  const bool was_by_program = std::exchange(by_program_, true);
  const int on_show = currentIndex();
  const bool on = isTabEnabled(tab);
  std::unique_ptr<MainTabPage> old(&Page(tab));
  removeTab(tab);
  insertTab(tab, page, ToQString(kTabRows.at(static_cast<std::size_t>(tab)).caption));
  old->setParent(nullptr);
  TurnTab(tab, on);
  setCurrentIndex(on_show);
  by_program_ = was_by_program;
  return old;
}

void MainTabFolder::ShowTab(int tab) {
  const bool was_by_program = std::exchange(by_program_, true);
  setCurrentIndex(tab);
  by_program_ = was_by_program;
}

// The strip of the toolkit leaves a tab that goes off for the next one that is on.
void MainTabFolder::TurnTab(int tab, bool on) {
  const QSignalBlocker silent(tabBar());
  const int on_show = currentIndex();
  setTabEnabled(tab, on);
  tabBar()->setCurrentIndex(on_show);
}

}  // namespace vrx
