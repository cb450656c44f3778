#include "desktop/records/record_form_page.h"

#include <QHBoxLayout>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <utility>

#include "base/text.h"
#include "desktop/app/captions.h"
#include "desktop/records/field_boxes.h"
#include "presenter/record_actions.h"
#include "presenter/report_failure.h"
#include "settings/settings.h"
#include "widgets/fields.h"
#include "widgets/layout.h"
#include "widgets/qt_text.h"

namespace vrx {
namespace {

constexpr std::string_view kName = "Name";
constexpr std::string_view kDescription = "Description";
// The columns in the grid of either kind.
constexpr std::size_t kNameColumn = 1;
constexpr std::size_t kDescriptionColumn = 2;

int TargetOf(NavigateButton button, int position, int count) {
  switch (button) {
    case kNavigateFirst:
      return 1;
    case kNavigatePrevious:
      return position < 2 ? count : position - 1;
    case kNavigateNext:
      return position == count ? 1 : position + 1;
    case kNavigateLast:
      break;
  }
  return count;
}

QCheckBox* AddCheckBox(QWidget* page, const char* name, const QString& caption) {
  auto* const box = new QCheckBox(caption, page);
  box->setObjectName(QString::fromLatin1(name));
  return box;
}

}  // namespace

RecordFormPage::RecordFormPage(Services& services, AutoAbbreviation& abbreviation,
                               UndoCommands& undo, Design design, QWidget* parent)
    : RecordPage(parent),
      services_(services),
      abbreviation_(abbreviation),
      undo_(undo),
      design_(std::move(design)),
      traits_(TraitsOf(design_.kind)),
      gate_(services.op) {
  setObjectName(QString::fromLatin1(design_.page));
  MakeControls();
  LayOut();
  Connect();
}

void RecordFormPage::MakeControls() {
  id_list_ = new RecordIdList(QString::fromLatin1(design_.id_list), traits_.count, this);
  name_ = MakeNameBox(FieldOf(design_.kind, kName), design_.name, abbreviation_, this);
  description_ = MakeDescriptionBox(design_.description, abbreviation_, this);
  number_ = MakeFieldBox(FieldOf(design_.kind, design_.number_field), design_.number, this);
  number_->setAlignment(Qt::AlignRight);
  view_all_ = AddCheckBox(this, design_.view_all, design_.view_all_caption);
  view_all_->setChecked(true);
  active_only_ = AddCheckBox(this, design_.active_only, design_.active_only_caption);
  grid_ = new RecordListGrid(design_.kind, QString::fromLatin1(design_.grid), design_.columns,
                             design_.empty_grid, this);
  grid_->setAccessibleName(view_all_->text());
}

QLabel* RecordFormPage::Caption(const char* name, int caption, QWidget* buddy) {
  QLabel* const label = AddLabel(*this, name, caption);
  label->setBuddy(buddy);
  return label;
}

void RecordFormPage::LayOut() {
  form_ = new QGridLayout;
  form_->setHorizontalSpacing(kSpacing);
  form_->setVerticalSpacing(kSpacing);
  constexpr int kGap = kFreeColumn - 1;
  constexpr int kRest = kFreeColumn + 2;
  form_->setColumnMinimumWidth(kGap, 2 * kGroupSpacing);
  form_->setColumnStretch(kRest, 1);
  QLabel* const description = Caption("lblDescription", kDescriptionCaption, description_);
  description->setText(QTr("Description"));
  form_->addWidget(Caption("lblID", kIdCaption, id_list_), kIdRow, 0);
  form_->addWidget(id_list_, kIdRow, 1);
  form_->addWidget(Caption("lblName", kNameCaption, name_), kNameRow, 0);
  form_->addWidget(name_, kNameRow, 1, Qt::AlignLeft);
  form_->addWidget(description, kDescriptionRow, 0);
  form_->addWidget(description_, kDescriptionRow, 1, Qt::AlignLeft);
  form_->addWidget(Caption("lblNumber", design_.number_caption, number_), kNumberRow, 0);
  number_row_ = new QHBoxLayout;
  number_row_->setSpacing(kSpacing);
  number_row_->addWidget(number_);
  form_->addLayout(number_row_, kNumberRow, 1, 1, -1);

  auto* const choices = new QHBoxLayout;
  choices->setSpacing(kGroupSpacing);
  choices->addWidget(view_all_);
  choices->addWidget(active_only_);
  choices->addStretch();
  auto* const list = new QVBoxLayout;
  list->setSpacing(kSpacing);
  list->addLayout(choices);
  list->addWidget(grid_, 1);
  auto* const page = new QVBoxLayout(this);
  page->setContentsMargins(kGroupSpacing, kGroupSpacing, kGroupSpacing, kGroupSpacing);
  page->setSpacing(kGroupSpacing);
  page->addLayout(form_);
  page->addLayout(list, 1);
}

void RecordFormPage::TabBehindNumber(std::initializer_list<QWidget*> controls) {
  QWidget* last = number_;
  for (QWidget* const control : controls) {
    setTabOrder(last, control);
    last = control;
  }
}

void RecordFormPage::OrderFields(bool description_first) {
  FilteredEdit* const first = description_first ? description_ : name_;
  FilteredEdit* const second = description_first ? name_ : description_;
  setTabOrder(id_list_, first);
  setTabOrder(first, second);
  setTabOrder(second, number_);
}

void RecordFormPage::FocusFirstField() {
  auto* const first = qobject_cast<FilteredEdit*>(id_list_->nextInFocusChain());
  FilteredEdit& box = first == nullptr ? *name_ : *first;
  box.setFocus();
  box.selectAll();
}

void RecordFormPage::Connect() {
  connect(id_list_, &QComboBox::activated, this, &RecordFormPage::ChooseItem);
  connect(id_list_, &RecordIdList::Typed, description_, [this] { description_->setFocus(); });
  const auto beep = [this] { BeepIfEnabled(services_.op, services_.settings); };
  for (FilteredEdit* const box : Boxes()) {
    connect(box, &FilteredEdit::Left, this, [this, box] { Leave(*box); });
    connect(box, &FilteredEdit::Refused, this, beep);
  }
  connect(grid_, &RecordListGrid::Refused, this, beep);
  connect(grid_, &RecordListGrid::RowChosen, this, &RecordFormPage::ChooseRow);
  connect(
      &grid_->Model(), &RecordListModel::Typed, this,
      [this](int /*id*/, const std::string& field, const QString& text) { RowTyped(field, text); });
  grid_->SetLeaving([this] { return LeaveEdits(MayStay::kYes); });
  connect(view_all_, &QCheckBox::toggled, this, [this] {
    ChooseView(*view_all_, [this] { grid_->setVisible(view_all_->isChecked()); });
  });
  connect(active_only_, &QCheckBox::toggled, this,
          [this] { ChooseView(*active_only_, [this] { RefreshGrid(); }); });
}

// The database.

void RecordFormPage::Rebind(DatabaseKind kind, const BoundDatabase& database) {
  if (kind != DatabaseKind::kRecipe) {
    return;
  }
  ForgetEdits();
  ShowStored();
  database_ = database.connection.get();
  blank_ = database.blank;
  read_only_ = !database.read_only_note.empty();
  ShowReadOnly(ToQString(database.read_only_note));
  Q_EMIT WritingAllowed(!read_only_);
  FillIdList([] {});
  GoTo(1);
  RefreshGrid();
  CameToAnother();
}

void RecordFormPage::ReleaseViews() {
  ForgetEdits();
  database_ = nullptr;
}

void RecordFormPage::ShowReadOnly(const QString& reason) {
  for (FilteredEdit* const box : Boxes()) {
    box->setReadOnly(!reason.isEmpty());
    box->setToolTip(reason);
  }
  grid_->Model().SetReadOnly(!reason.isEmpty());
}

void RecordFormPage::FillIdList(const std::function<void()>& filled) {
  for (const RecordRow& row : ReadRows(false)) {
    const bool active = !row.cells.at(kDescriptionColumn).isEmpty();
    id_list_->SetItem(row.id, active ? row.cells.at(kNameColumn).toStdString() : std::string());
    filled();
  }
}

void RecordFormPage::LoadIdLists() {
  if (!HasDatabase()) {
    return;
  }
  grid_->hide();
  FillIdList([this] { Q_EMIT RecordLoaded(); });
  GoTo(1);
  grid_->setVisible(view_all_->isChecked());
}

void RecordFormPage::Prepare() {
  GoTo(1);
  RefreshGrid();
}

// The position.

// Shows another record for the program, which an open edit does not prevent.
void RecordFormPage::GoTo(int position) {
  if (database_ == nullptr || position <= 0) {
    return;
  }
  LeaveEdits(MayStay::kNo);
  if (Show(position)) {
    ShowAllRecords();
    grid_->Select(position_);
  }
}

bool RecordFormPage::Show(int position) {
  const bool read = RunReported<Error>(services_.op, EventFailure, [&] { ReadRecord(position); });
  if (read) {
    ForgetEdits();
  }
  const bool another = read && position != position_;
  position_ = read ? position : position_;
  id_list_->setCurrentIndex(position_);
  grid_->Select(position_);
  if (another) {
    CameToAnother();
  }
  if (read) {
    Q_EMIT Moved(Position());
  }
  return read;
}

// The blank item is not a choice.
void RecordFormPage::ChooseItem(int list_index) {
  if (list_index == 0 || !LeaveEdits(MayStay::kYes)) {
    id_list_->setCurrentIndex(position_);
    return;
  }
  GoTo(list_index);
}

// The list of active records does not change, because its rows are found by their ID.
void RecordFormPage::ChooseRow(int id) {
  if (LeaveEdits(MayStay::kYes)) {
    Show(id);
  } else {
    grid_->Select(position_);
  }
}

// The box changes the rows of the grid, which would close a cell that is being edited.
void RecordFormPage::ChooseView(QCheckBox& box, const std::function<void()>& show) {
  if (LeaveEdits(MayStay::kYes)) {
    show();
  } else {
    const QSignalBlocker silent(box);
    box.setChecked(!box.isChecked());
  }
}

void RecordFormPage::Navigate(NavigateButton button) {
  if (Commit()) {
    GoTo(TargetOf(button, position_, traits_.count));
    RefreshGrid();
  }
}

// Storage.

EditStep RecordFormPage::StepOn(EditAct act, std::string_view field) const {
  EditStep step;
  step.act = act;
  step.place.kind = design_.kind;
  step.place.id = position_;
  step.place.field = std::string(field);
  step.subject = stored_.name;
  return step;
}

void RecordFormPage::Store(std::string_view field) {
  if (!MayWrite()) {
    return;
  }
  undo_.Begin();
  const EditStep step = StepOn(EditAct::kSet, field);
  const bool changed = StoreCurrentRecord();
  if (changed) {
    undo_.Stored(step);
    Q_EMIT RecordChanged();
  }
  RefreshGrid();
  Stored();
}

bool RecordFormPage::Commit() {
  return RunReported<Error>(services_.op, EventFailure, [this] { Store(); });
}

void RecordFormPage::RefreshGrid() {
  if (database_ != nullptr) {
    RunReported<Error>(services_.op, EventFailure,
                       [this] { grid_->Show(ReadRows(active_only_->isChecked()), position_); });
  }
}

void RecordFormPage::CancelRecord() {
  ForgetEdits();
  ShowStored();
  GoTo(position_);
  RefreshGrid();
  Stored();
}

void RecordFormPage::DefaultRecord() {
  if (!MayWrite()) {
    return;
  }
  const EditStep step = StepOn(EditAct::kDefaults, {});
  RunReported<Error>(services_.op, EventFailure, [this] { undo_.Begin(); });
  const ResetOutcome outcome = AskAndReset(*database_, design_.kind, position_, services_);
  if (outcome == ResetOutcome::kReset) {
    RunReported<Error>(services_.op, EventFailure, [&] { undo_.Stored(step); });
    Q_EMIT RecordChanged();
  }
  if (outcome != ResetOutcome::kNotReset) {
    ForgetEdits();
    ShowStored();
    GoTo(position_);
    RefreshGrid();
    id_list_->SetItem(position_);
  }
  AnsweredDefault(outcome);
}

void RecordFormPage::ShowRestored(const EditPlace& place) {
  ForgetEdits();
  ShowStored();
  GoTo(place.id);
  RefreshGrid();
  Stored();
  Q_EMIT RecordChanged();
  QWidget* field = OwnField(place.field);
  if (place.field == kName) {
    field = name_;
  } else if (place.field == kDescription) {
    field = description_;
  } else if (place.field == design_.number_field) {
    field = number_;
  }
  if (field != nullptr) {
    field->setFocus();
  }
  // Last, because a name that is left is listed even if the record is not in use.
  id_list_->SetItem(position_, DescriptionText().empty() ? std::string() : NameText());
}

void RecordFormPage::ShowTexts(std::string_view name, std::string_view description,
                               std::string_view number) {
  stored_ = {.name = std::string(name),
             .description = std::string(description),
             .number = std::string(number)};
  ShowStored();
  for (FilteredEdit* const box : Boxes()) {
    box->setModified(false);
  }
}

void RecordFormPage::ShowStored() {
  SetIfOther(*name_, stored_.name);
  SetIfOther(*description_, stored_.description);
  SetIfOther(*number_, stored_.number);
}

}  // namespace vrx
