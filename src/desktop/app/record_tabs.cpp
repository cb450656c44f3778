#include "desktop/app/record_tabs.h"

#include <vector>

#include "desktop/recipes/recipes_page.h"
#include "desktop/records/ingredients_page.h"
#include "desktop/records/pens_page.h"
#include "presenter/command_states.h"

namespace vrx {

RecordTabs::RecordTabs(const Ports& ports) : ports_(ports) {
  const QPointer<RecipesPage> recipes = new RecipesPage(PagePorts());
  const QPointer<PensPage> pens = new PensPage(PagePorts());
  Add(kTabIngredients,
      new IngredientsPage(
          PagePorts(),
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
  ports_.window.Panels().PicAction().SetHandler([this](int button) { Act(button); });
  ports_.window.Panels().PicNavigate().SetHandler([this](int button) { Navigate(button); });
}

RecordTabs::~RecordTabs() {
  for (const QPointer<RecordPage>& page : pages_) {
    if (page) {
      page->ReleaseViews();
    }
  }
}

RecordPorts RecordTabs::PagePorts() {
  return {.feed = ports_.feed,
          .delay = ports_.delay,
          .abbreviation = abbreviation_,
          .record_loaded = [this] { CountLoaded(); }};
}

void RecordTabs::Add(int tab, RecordPage* page) {
  pages_.at(static_cast<std::size_t>(tab)) = page;
  ports_.window.SetPage(tab, page);
  connect(page, &RecordPage::Moved, this, [this, page](int position) {
    if (page == CurrentPage()) {
      ports_.window.Panels().ShowRecordNumber(position);
    }
  });
  connect(page, &RecordPage::CancelAllowed, this, [this](bool allowed) {
    ports_.window.Panels().PicAction().Button(kActionCancel).setEnabled(allowed);
  });
  // Of all pages: they show the same database.
  connect(page, &RecordPage::WritingAllowed, this, [this](bool allowed) {
    for (const int button : {kActionUpdate, kActionDefault}) {
      ports_.window.Panels().PicAction().Button(button).setEnabled(allowed);
    }
  });
}

RecordPage* RecordTabs::CurrentPage() const {
  const auto tab = static_cast<std::size_t>(ports_.window.Tabs().CurrentTab());
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
    ports_.window.SetStatusPanel(DatabaseKind::kRecipe, kPanelName,
                                 loading ? "Standby... Loading" : "Standby...");
  }
}

}  // namespace vrx
