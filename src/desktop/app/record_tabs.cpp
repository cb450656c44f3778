#include "desktop/app/record_tabs.h"

#include <vector>

#include "desktop/recipes/recipes_page.h"
#include "desktop/records/ingredients_page.h"
#include "desktop/records/pens_page.h"
#include "presenter/command_states.h"

namespace vrx {

RecordTabs::RecordTabs(Services& services, GeneralDelay& delay, MainWindow& window)
    : window_(window) {
  const QPointer<RecipesPage> recipes = new RecipesPage(services, delay, abbreviation_);
  const QPointer<PensPage> pens = new PensPage(services, abbreviation_);
  Add(kTabIngredients,
      new IngredientsPage(
          services, delay, abbreviation_,
          {.current_batch_type = [recipes] { return recipes ? recipes->CurrentBatchType() : ""; },
           .go_to =
               [recipes](int position) {
                 if (recipes) {
                   recipes->GoTo(position);
                 }
               }}));
  Add(kTabRecipes, recipes);
  Add(kTabPens, pens);
  recipes->SetPenRows([pens] { return pens ? pens->PensShown() : std::vector<PenRecord>(); });
  connect(pens, &PensPage::PenCapacityChecked, recipes, &RecipesPage::CheckPenCapacity);
  window_.Panels().PicAction().SetHandler([this](int button) { Act(button); });
  window_.Panels().PicNavigate().SetHandler([this](int button) { Navigate(button); });
}

RecordTabs::~RecordTabs() {
  for (const QPointer<RecordPage>& page : pages_) {
    if (page) {
      page->ReleaseViews();
    }
  }
}

void RecordTabs::Add(int tab, RecordPage* page) {
  pages_.at(static_cast<std::size_t>(tab)) = page;
  window_.SetPage(tab, page);
  connect(page, &RecordPage::Moved, this, [this, page](int position) {
    if (page == CurrentPage()) {
      window_.Panels().ShowRecordNumber(position);
    }
  });
  connect(page, &RecordPage::RecordLoaded, this, [this] { CountLoaded(); });
  connect(page, &RecordPage::CancelAllowed, this, [this](bool allowed) {
    window_.Panels().PicAction().Button(kActionCancel).setEnabled(allowed);
  });
  // Of all pages: they show the same database.
  connect(page, &RecordPage::WritingAllowed, this, [this](bool allowed) {
    for (const int button : {kActionUpdate, kActionDefault}) {
      window_.Panels().PicAction().Button(button).setEnabled(allowed);
    }
  });
}

RecordPage* RecordTabs::CurrentPage() const {
  const auto tab = static_cast<std::size_t>(window_.Tabs().CurrentTab());
  return tab < pages_.size() ? pages_[tab] : nullptr;
}

void RecordTabs::Act(int button) {
  RecordPage* const page = CurrentPage();
  if (page == nullptr || page->Position() == 0) {
    return;
  }
  switch (button) {
    case kActionUpdate:
      if (page->LeaveEdits(MayStay::kYes)) {
        page->UpdateRecord();
      }
      break;
    case kActionCancel:
      page->CancelRecord();
      break;
    default:
      page->DefaultRecord();
  }
}

void RecordTabs::Navigate(int button) {
  RecordPage* const page = CurrentPage();
  if (page != nullptr && page->Position() != 0 && page->LeaveEdits(MayStay::kYes)) {
    page->Navigate(static_cast<NavigateButton>(button));
  }
}

// The name's panel shows that the lists are being loaded.
void RecordTabs::CountLoaded() {
  constexpr int kRecordsPerText = 20;
  if (++loaded_ % kRecordsPerText == 0) {
    const bool loading = loaded_ / kRecordsPerText % 2 == 0;
    window_.SetStatusPanel(DatabaseKind::kRecipe, kPanelName,
                           loading ? "Standby... Loading" : "Standby...");
  }
}

}  // namespace vrx
