#include "desktop/records/ingredients_page.h"

#include <QAbstractItemView>
#include <QEvent>
#include <utility>

#include "base/number.h"
#include "desktop/app/captions.h"
#include "feed/record_commit.h"
#include "feed/where_used.h"
#include "presenter/operation.h"
#include "presenter/record_actions.h"
#include "presenter/report_failure.h"
#include "widgets/fields.h"
#include "widgets/layout.h"
#include "widgets/qt_text.h"

namespace vrx {

namespace {

constexpr int kDryMatterCaption = 1057;
constexpr int kPercentCaption = 1058;
constexpr int kWhereUsedCaption = 1121;
constexpr Milliseconds kLoadDelay{10};

QString YesNo(bool yes) { return yes ? QTr("Yes") : QTr("No"); }

RecordRow RowOf(const IngredientRecord& record) {
  return {
      .id = record.id,
      .cells = {QString::number(record.id), ToQString(record.name), ToQString(record.description),
                QString::number(record.dry_matter_percent), YesNo(record.hand_add)}};
}

}  // namespace

WhereUsedList::WhereUsedList(QWidget* parent) : QComboBox(parent) {
  setObjectName(QStringLiteral("cboWhereUsed"));
  setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  constexpr int kCharacters = 14;
  setMinimumContentsLength(kCharacters);
  constexpr int kItemsInView = 20;
  setMaxVisibleItems(kItemsInView);
  view()->setAccessibleName(QTr("Where Used (in Recipes)"));
  connect(this, &QComboBox::currentIndexChanged, this, [this](int index) {
    if (index > 0) {
      setCurrentIndex(0);
    }
  });
}

void WhereUsedList::ShowItems(const std::vector<std::string>& items) {
  clear();
  status_.clear();
  for (const std::string& item : items) {
    addItem(ToQString(item));
  }
  if (!items.empty()) {
    status_ = itemText(0);
    setCurrentIndex(0);
  }
}

void WhereUsedList::showPopup() {
  if (count() > 0) {
    setItemText(0, QString());
    view()->window()->removeEventFilter(this);
    view()->window()->installEventFilter(this);
  }
  QComboBox::showPopup();
}

void WhereUsedList::keyPressEvent(QKeyEvent* event) {
  if (TurnsTabs(*event)) {
    event->ignore();
  } else {
    QComboBox::keyPressEvent(event);
  }
}

// Reacts to any way of closing the list.
bool WhereUsedList::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Hide && count() > 0) {
    setItemText(0, status_);
  }
  return QComboBox::eventFilter(watched, event);
}

RecordFormPage::Design IngredientsPage::Controls() {
  return {.kind = RecordKind::kIngredient,
          .page = "pageIngredients",
          .id_list = "cboIngID",
          .name = "txtIngName",
          .description = "txtIngDesc",
          .number = "txtIngDryMatter",
          .number_field = "DryMatter%",
          .number_caption = kDryMatterCaption,
          .view_all = "chkViewAllIngs",
          .view_all_caption = QTr("View Ingredient List"),
          .active_only = "chkShowActiveIngsOnly",
          .active_only_caption = QTr("Show/Print Active Ingredients Only"),
          .grid = "grdING",
          .columns = {{.field = "ID", .caption = QTr("ID"), .number = true},
                      {.field = "Name", .caption = QTr("Name"), .typed = true},
                      {.field = "Description", .caption = QTr("Description"), .typed = true},
                      {.field = "DryMatter%",
                       .caption = QTr("Dry Matter (%)"),
                       .number = true,
                       .typed = true},
                      {.field = "HandAdd", .caption = QTr("Hand-Add")}},
          .empty_grid = QTr("No ingredient is active yet. Giving one a name or a "
                            "description makes it active.")};
}

IngredientsPage::IngredientsPage(Services& services, GeneralDelay& delay,
                                 AutoAbbreviation& abbreviation, UndoCommands& undo,
                                 Recipes recipes, QWidget* parent)
    : RecordFormPage(services, abbreviation, undo, Controls(), parent),
      delay_(delay),
      recipes_(std::move(recipes)),
      hand_add_(new QCheckBox(QTr("Hand-Add"), this)),
      where_used_(new WhereUsedList(this)),
      search_(new QPushButton(QTr("Search"), this)) {
  hand_add_->setObjectName(QStringLiteral("chkIngHandAdd"));
  hand_add_->setToolTip(QTr("Added by hand, not by the loader"));
  hand_add_->installEventFilter(this);
  search_->setObjectName(QStringLiteral("cmdSearch"));
  search_->setToolTip(QTr("Look for the ingredient in the recipes"));
  connect(search_, &QPushButton::clicked, this, &IngredientsPage::Search);
  LayOut();
}

void IngredientsPage::LayOut() {
  NumberRow().addWidget(AddLabel(*this, "lblPercent", kPercentCaption));
  NumberRow().addSpacing(kSpacing);
  NumberRow().addWidget(hand_add_);
  NumberRow().addStretch();
  FormLayout().addWidget(Caption("lblWhereUsed", kWhereUsedCaption, where_used_), kIdRow,
                         kFreeColumn);
  FormLayout().addWidget(where_used_, kNameRow, kFreeColumn);
  FormLayout().addWidget(search_, kNameRow, kFreeColumn + 1);
  TabBehindNumber({hand_add_, where_used_, search_});
}

bool IngredientsPage::eventFilter(QObject* watched, QEvent* event) {
  if (watched == hand_add_ && event->type() == QEvent::FocusOut &&
      LeavesField(*static_cast<QFocusEvent*>(event))) {
    LeaveHandAdd();
  }
  return RecordFormPage::eventFilter(watched, event);
}

// Finishes pending work in the window before reading the lists.
void IngredientsPage::LoadIdLists() {
  const BusyCursor busy(GetServices().op);
  Grid().hide();
  if (delay_.Wait(kLoadDelay)) {
    RecordFormPage::LoadIdLists();
  }
}

void IngredientsPage::ReadRecord(int id) {
  const IngredientRecord record = ReadIngredient(Database(), id);
  stored_hand_add_ = record.hand_add;
  ShowTexts(record.name, record.description, std::to_string(record.dry_matter_percent));
}

void IngredientsPage::ShowStored() {
  RecordFormPage::ShowStored();
  hand_add_->setChecked(stored_hand_add_);
}

void IngredientsPage::LeaveHandAdd() {
  LeaveOwnField(
      *hand_add_, "HandAdd", hand_add_->isChecked() ? "Yes" : "No",
      [this] { hand_add_->setChecked(stored_hand_add_); },
      hand_add_->isChecked() != stored_hand_add_);
}

void IngredientsPage::LeaveOwnFields() {
  if (hand_add_->isChecked() != stored_hand_add_ && !Keeps(*hand_add_)) {
    LeaveHandAdd();
  }
}

bool IngredientsPage::StoreCurrentRecord() {
  IngredientRecord record{.id = Id(),
                          .name = NameText(),
                          .description = DescriptionText(),
                          .dry_matter_percent = TextToLong(NumberText()),
                          .hand_add = hand_add_->isChecked()};
  const std::string batch_type = recipes_.current_batch_type();
  const bool changed = StoreRecord(Database(), record, batch_type, GetServices().calendar);
  stored_hand_add_ = record.hand_add;
  ShowTexts(record.name, record.description, std::to_string(record.dry_matter_percent));
  return changed;
}

std::vector<RecordRow> IngredientsPage::ReadRows(bool active_only) {
  std::vector<RecordRow> rows;
  for (const IngredientRecord& record : ReadIngredients(Database())) {
    if (!active_only || IsActive(record)) {
      rows.push_back(RowOf(record));
    }
  }
  return rows;
}

void IngredientsPage::Search() {
  if (Position() == 0 || !LeaveEdits(MayStay::kYes)) {
    return;
  }
  where_used_->setEnabled(false);
  where_used_->ShowItems({"Searching..."});
  where_used_->repaint();
  where_used_->ShowItems(SearchWhereUsed(Database(), Id(), GetServices()));
  recipes_.go_to(kRecipeCount);
  ShowAllRecords();
  where_used_->setEnabled(true);
}

// The search of a reset ends at the first recipe that contains the ingredient.
void IngredientsPage::AnsweredDefault(ResetOutcome outcome) {
  if (outcome == ResetOutcome::kNotReset) {
    return;
  }
  int position = kRecipeCount;
  if (outcome == ResetOutcome::kInUse) {
    RunReported<Error>(GetServices().op, EventFailure, [&] {
      const std::vector<WhereUsed> found = FindWhereIngUsed(Database(), Id(), true);
      position = found.empty() ? position : found.front().recipe_id;
    });
  }
  recipes_.go_to(position);
}

void IngredientsPage::ShowReadOnly(const QString& reason) {
  RecordFormPage::ShowReadOnly(reason);
  hand_add_->setEnabled(reason.isEmpty());
}

}  // namespace vrx
