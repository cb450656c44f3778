#pragma once

#include <QObject>
#include <QPointer>
#include <array>

#include "desktop/main_window/main_window.h"
#include "desktop/records/record_page.h"
#include "feed/key_filters.h"
#include "presenter/command_states.h"
#include "presenter/services.h"

namespace vrx {

// The tabs of ingredients, recipes and pens in the main window: their pages, and the action bar and
// the navigator, which work on the page on show.
class RecordTabs : public QObject {
 public:
  // Adds the pages to the window, before its caption pass. Everything outlives it.
  RecordTabs(Services& services, GeneralDelay& delay, MainWindow& window);

  // The pages belong to the window and live as long: they let go of the database.
  ~RecordTabs() override;

  RecordTabs(const RecordTabs&) = delete;
  RecordTabs& operator=(const RecordTabs&) = delete;
  RecordTabs(RecordTabs&&) = delete;
  RecordTabs& operator=(RecordTabs&&) = delete;

 private:
  void Add(int tab, RecordPage* page);
  RecordPage* CurrentPage() const;
  void Act(int button);
  void Navigate(int button);
  void CountLoaded();

  MainWindow& window_;
  AutoAbbreviation abbreviation_;
  std::array<QPointer<RecordPage>, 3> pages_;  // by tab; the window may put others in their place
  int loaded_ = 0;
};

}  // namespace vrx
