#pragma once

#include <QTabWidget>
#include <array>
#include <functional>
#include <memory>
#include <string_view>
#include <utility>

#include "desktop/main_window/main_tab_page.h"
#include "presenter/command_states.h"

namespace vrx {

// What stands in the row below the tabs, to be combined.
enum BottomPanels : unsigned {
  kNoPanel = 0,
  kPicAction = 1,
  kPicNavigate = 2,
  kPicTransferStatus = 4,
  kPicImport = 8,
};

struct TabRow {
  std::string_view caption;
  std::string_view page;  // its page's name until one is put in its place
  unsigned panels = kNoPanel;
  bool abbreviates = false;  // the toolbar's "Abbreviate" is on
};

// By the number of the tab.
const std::array<TabRow, kTabCount>& TabRows();

// The tab folder `tabMainFolder`. A click on a tab gives the focus to the strip.
class MainTabFolder : public QTabWidget {
  Q_OBJECT

 public:
  explicit MainTabFolder(QWidget* parent = nullptr);

  // Asked before the operator turns to another tab; false holds the tab.
  void SetLeaving(std::function<bool()> leave) { leave_ = std::move(leave); }

  // Puts a page in the place of the one that the tab has had, and gives that one.
  std::unique_ptr<MainTabPage> SetPage(int tab, MainTabPage* page);
  MainTabPage& Page(int tab) const;

  // Brings a tab on show, as the program does; TabClicked is not sent.
  void ShowTab(int tab);

  // The tab on show stays on show when it is turned off.
  void TurnTab(int tab, bool on);

 Q_SIGNALS:
  // The operator has brought the tab on show.
  void TabClicked(int tab);

  // After TabClicked, where a key did it.
  void TabChosenByKey();

  // The strip took the focus, or a tab was clicked; that tab is on show then. A window that comes
  // to the front or a menu that closes gives no focus.
  void StripFocused();

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  bool MayLeave() const { return !leave_ || leave_(); }

  std::function<bool()> leave_;
  bool by_program_ = false;
};

}  // namespace vrx
