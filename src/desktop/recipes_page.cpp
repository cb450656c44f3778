#include "desktop/recipes_page.h"

#include <QVBoxLayout>
#include <utility>

#include "desktop/elided_label.h"
#include "desktop/main_window_layout.h"
#include "desktop/qt_text.h"
#include "feed/edit_event.h"
#include "feed/pen_capacity.h"
#include "feed/record_commit.h"
#include "feed/record_kind.h"
#include "feed/record_reset.h"
#include "frame/text.h"

namespace vrx {
namespace {

int Target(NavigateButton button, int position) {
  switch (button) {
    case kNavigateFirst:
      return 1;
    case kNavigatePrevious:
      return position < 2 ? kRecipeCount : position - 1;
    case kNavigateNext:
      return position == kRecipeCount ? 1 : position + 1;
    case kNavigateLast:
      break;
  }
  return kRecipeCount;
}

}  // namespace

RecipesPage::RecipesPage(const RecordPorts& ports, QWidget* parent)
    : RecordPage(parent), ports_(ports), head_(new RecipeHead(ports.abbreviation, this)) {
  setObjectName(QStringLiteral("pageRecipes"));
  LayOut();
  Connect();
}

RecipesPage::~RecipesPage() = default;

void RecipesPage::LayOut() {
  auto* const column = new QVBoxLayout(this);
  column->setContentsMargins(kSpacing, kSpacing, kSpacing, kSpacing);
  column->setSpacing(kSpacing);
  column->addWidget(head_);
  column->addStretch(1);
  pen_capacity_ = new ElidedLabel(this);
  pen_capacity_->setObjectName(QStringLiteral("lblRequiresIndicatorPenCapacityX"));
  column->addWidget(pen_capacity_);
  HidePenCapacityWarning();
}

void RecipesPage::Connect() {
  connect(head_, &RecipeHead::Refused, this,
          [this] { BeepIfEnabled(ports_.feed.op, ports_.feed.settings); });
  connect(head_, &RecipeHead::ListLeft, this, [this] { UpdateRecord(); });
  connect(&head_->CboRecId(), &QComboBox::activated, this, [this](int index) { Select(index); });
  connect(&head_->CboRecId(), &RecordIdList::Typed, &head_->TxtRecDesc(),
          qOverload<>(&QWidget::setFocus));
  connect(&head_->TxtRecName(), &FilteredEdit::Left, this, &RecipesPage::LeaveName);
  connect(&head_->TxtRecDesc(), &FilteredEdit::Left, this, &RecipesPage::LeaveDescription);
  connect(&head_->TxtRecHeadCount(), &FilteredEdit::Left, this,
          [this] { LeaveNumber(head_->TxtRecHeadCount(), &RecipeEditor::LeaveHeadCount); });
  connect(&head_->TxtRecRationTarget(), &FilteredEdit::Left, this,
          [this] { LeaveNumber(head_->TxtRecRationTarget(), &RecipeEditor::LeaveRationTarget); });
  connect(&head_->LstRecBatchType(), &QComboBox::activated, this, [this](int index) {
    Run([index](RecipeEditor& editor) { editor.ChooseBatchType(index); });
  });
  connect(&head_->LstAdjustBatchTotal(), &QComboBox::activated, this, [this](int index) {
    Run([index](RecipeEditor& editor) { editor.ChooseAdjustItem(index); });
  });
}

bool RecipesPage::Run(const std::function<void(RecipeEditor&)>& event) {
  const std::shared_ptr<RecipeEditor> editor = editor_;
  if (!editor) {
    return false;
  }
  const bool done = HandleEditEvent(ports_.feed.op, [&] { event(*editor); });
  Show();
  if (std::exchange(stored_, false)) {
    ports_.record_changed();
  }
  return done;
}

void RecipesPage::Show() {
  if (editor_) {
    head_->Show(editor_->OnShow());
  }
}

std::string RecipesPage::BatchTypeOnShow() const {
  return editor_ ? editor_->OnShow().ration.recipe.batch_type : std::string();
}

// The events of the head.

void RecipesPage::LeaveName() {
  FilteredEdit& box = head_->TxtRecName();
  bool named = true;
  Run([&](RecipeEditor& editor) {
    named = editor.LeaveName(box.Text());
    RecipeHead::Stored(box);
  });
  RewriteItem(box.Text());
  if (!named && box.isVisible() && box.isEnabled()) {
    box.setFocus();
  }
}

void RecipesPage::LeaveDescription() {
  FilteredEdit& box = head_->TxtRecDesc();
  FilteredEdit& name = head_->TxtRecName();
  RewriteItem(name.Text());
  const std::optional<std::string> abbreviation =
      ports_.abbreviation.LeaveDescription(box.Text(), ports_.feed.settings.AutoAbbreviateOn());
  Run([&](RecipeEditor& editor) {
    editor.LeaveDescription(box.Text(), abbreviation);
    RecipeHead::Stored(box);
    if (abbreviation) {
      RecipeHead::Stored(name);
    }
  });
}

void RecipesPage::LeaveNumber(FilteredEdit& box, void (RecipeEditor::*leave)(std::string_view)) {
  Run([&](RecipeEditor& editor) {
    (editor.*leave)(box.Text());
    RecipeHead::Stored(box);
  });
}

void RecipesPage::RewriteItem(std::string_view name) {
  if (editor_) {
    head_->CboRecId().SetItem(editor_->OnShow().ration.recipe.id, name);
  }
}

// The action bar and the navigator.

void RecipesPage::UpdateRecord() {
  Run([](RecipeEditor& editor) { editor.CommitRecipeRecord(); });
}

void RecipesPage::CancelRecord() {
  head_->GiveUpTyping();
  Run([](RecipeEditor& editor) { editor.CommitRow(); });
}

void RecipesPage::DefaultRecord() {
  const int id = Position();
  if (id == 0 || !ResetRecord(*bound_.connection, RecordKind::kRecipe, id, ports_.feed)) {
    return;
  }
  head_->GiveUpTyping();
  Select(id);
  head_->CboRecId().SetItem(id);
  ports_.record_changed();
}

void RecipesPage::Navigate(NavigateButton button) {
  if (const int position = Position(); position != 0) {
    Select(Target(button, position));
  }
}

void RecipesPage::GoTo(int position) { Select(position); }

int RecipesPage::Position() const {
  return editor_ && !bound_.blank ? editor_->OnShow().ration.recipe.id : 0;
}

bool RecipesPage::Select(int id) {
  if (!Run([id](RecipeEditor& editor) { editor.Select(id); })) {
    return false;
  }
  Q_EMIT Moved(Position());
  return true;
}

// The main window's events.

void RecipesPage::TabChanged(int /*tab*/, int /*previous*/) { head_->ShowMustTotal100(false); }

void RecipesPage::Prepare() {
  Select(kRecipeCount);
  Select(1);
}

void RecipesPage::Rebind(DatabaseKind kind, const BoundDatabase& database) {
  if (kind != DatabaseKind::kRecipe) {
    return;
  }
  SQLite::Database& connection = *database.connection;
  editor_ = std::make_shared<RecipeEditor>(connection, ports_.feed.op, ports_.feed.settings, 1,
                                           [this, &connection] {
                                             TouchDatabase(connection, ports_.feed.calendar);
                                             stored_ = true;
                                           });
  bound_ = {.connection = &connection, .blank = database.blank};
  head_->GiveUpTyping();
  head_->ShowUnit(ToQString(ports_.feed.settings.SystemUnits()));
  Show();
}

void RecipesPage::ReleaseViews() {
  editor_.reset();
  bound_ = {};
}

void RecipesPage::LoadIdLists() {
  const SQLite::Database* const connection = bound_.connection;
  Run([&](RecipeEditor& /*editor*/) {
    for (const RecipeRecord& recipe : ReadRecipes(*bound_.connection)) {
      head_->CboRecId().SetItem(recipe.id, IsActive(recipe) ? recipe.name : std::string());
      ports_.record_loaded();
      if (bound_.connection != connection) {
        return;
      }
    }
  });
  if (bound_.connection == connection) {
    Select(1);
  }
}

void RecipesPage::CheckPenCapacity() {
  const std::vector<PenRecord> rows = pen_rows_ ? pen_rows_() : std::vector<PenRecord>();
  const std::optional<int> size = vrx::CheckPenCapacity(rows);
  if (size) {
    pen_capacity_->setText(ToQString(PenCapacityWarning(*size)));
  }
  pen_capacity_->setVisible(size.has_value());
}

void RecipesPage::HidePenCapacityWarning() { pen_capacity_->hide(); }

}  // namespace vrx
