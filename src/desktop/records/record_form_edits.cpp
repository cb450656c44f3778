// Leaving the fields and cells of a record's form.

#include <QScopedValueRollback>
#include <memory>
#include <utility>

#include "base/date.h"
#include "base/undo.h"
#include "desktop/records/edit_gate.h"
#include "desktop/records/record_form_page.h"
#include "feed/record_fields.h"
#include "widgets/qt_text.h"

namespace vrx {
namespace {

constexpr std::string_view kNameField = "Name";
constexpr std::string_view kDescriptionField = "Description";

}  // namespace

void SetIfOther(FilteredEdit& box, std::string_view text) {
  const QString shown = ToQString(text);
  if (box.text() != shown) {
    box.setText(shown);
  }
}

std::string RecordFormPage::Left(std::string_view field, std::string_view text) const {
  return FieldOf(design_.kind, field).leave(text);
}

const std::string& RecordFormPage::StoredText(const FilteredEdit& box) const {
  if (&box == name_) {
    return stored_.name;
  }
  return &box == description_ ? stored_.description : stored_.number;
}

// The boxes.

void RecordFormPage::Leave(FilteredEdit& box) {
  if (!MayWrite()) {
    return;
  }
  if (&box == name_) {
    LeaveName();
  } else if (&box == description_) {
    LeaveDescription();
  } else {
    LeaveNumber();
  }
}

void RecordFormPage::LeaveBox(FilteredEdit& box, std::string_view field, StoreField store) {
  gate_.Leave({.field = &box,
               .what = FieldName(field),
               .text = box.Text(),
               .store = std::move(store),
               .discard = [this, &box] { SetIfOther(box, StoredText(box)); },
               .stay = [&box] { TakeFocus(box); },
               .entered = box.Text() != StoredText(box)});
}

// Also stores an empty name, and then returns the message for the operator.
std::string RecordFormPage::StoreName(std::string_view field) {
  const LeftField left = LeaveField(FieldOf(design_.kind, kNameField), NameText());
  SetIfOther(*name_, left.text);
  Store(field);
  id_list_->SetItem(position_, left.text);
  return left.refusal;
}

void RecordFormPage::LeaveName() {
  LeaveBox(*name_, kNameField, [this] { return StoreName(kNameField); });
}

// The list item keeps the old name until the name box is left.
void RecordFormPage::LeaveDescription() {
  const std::optional<std::string> abbreviation =
      abbreviation_.LeaveDescription(DescriptionText(), services_.settings.AutoAbbreviateOn());
  LeaveBox(*description_, kDescriptionField, [this, abbreviation] {
    const std::string old_name = NameText();
    SetIfOther(*description_, Left(kDescriptionField, DescriptionText()));
    SetIfOther(*name_, abbreviation.value_or(old_name));
    RunOrUndo([this] { Store(kDescriptionField); }, [&] { SetIfOther(*name_, old_name); });
    id_list_->SetItem(position_, old_name);
    return std::string();
  });
}

void RecordFormPage::LeaveNumber() {
  LeaveBox(*number_, design_.number_field, [this] {
    SetIfOther(*number_, Left(design_.number_field, NumberText()));
    Store(design_.number_field);
    return std::string();
  });
}

void RecordFormPage::LeaveOwnField(QWidget& field, std::string_view name, std::string text,
                                   std::function<void()> discard, bool entered) {
  gate_.Leave({.field = &field,
               .what = FieldName(name),
               .text = std::move(text),
               .store =
                   [this, name] {
                     Store(name);
                     return std::string();
                   },
               .discard = std::move(discard),
               .stay = [&field] { TakeFocus(field); },
               .entered = entered});
}

// The cells of the grid. Each edited cell stores its row, through the boxes. The editor of a cell
// that could not be stored stays open.

void RecordFormPage::RowTyped(const std::string& field, const QString& text) {
  if (!MayWrite()) {
    return;
  }
  const auto store = [this, field, text] {
    if (field == kNameField) {
      name_->setText(text);
    } else {
      FilteredEdit& box = field == kDescriptionField ? *description_ : *number_;
      SetIfOther(box, Left(field, text.toStdString()));
    }
    if (description_->text().isEmpty()) {
      description_->setText(name_->text());
    }
    return RunOrUndo([&] { return StoreName(field); }, [this] { ShowStored(); });
  };
  const auto nameless = std::make_shared<bool>(false);
  const FieldEdit edit{
      .field = grid_,
      .what = FieldName(field),
      .text = text.toStdString(),
      .store =
          [this, store, nameless] {
            std::string refusal = store();
            *nameless = !refusal.empty();
            if (!cell_closes_) {
              grid_->GiveUpEdit();
            }
            return refusal;
          },
      .discard = [this] { grid_->GiveUpEdit(); },
      // A cell without a name is stored and closed; the operator enters the name in its box.
      .stay = [this, nameless] { *nameless ? TakeFocus(*name_) : grid_->ReturnToEdit(); }};
  const QScopedValueRollback cell_closes(cell_closes_, true);
  if (!gate_.Leave(edit) && !gate_.IsStored(grid_)) {
    grid_->KeepEditor();
  }
}

// All of them.

void RecordFormPage::KeepOpenEdits() {
  if (!gate_.Holds(grid_)) {
    grid_->FinishEdit();
  }
  for (FilteredEdit* const box : Boxes()) {
    if (!gate_.Holds(box) && box->Text() != StoredText(*box)) {
      Leave(*box);
    }
  }
  if (MayWrite()) {
    LeaveOwnFields();
  }
}

bool RecordFormPage::LeaveEdits(MayStay may_stay) {
  if (database_ == nullptr) {
    return true;
  }
  KeepOpenEdits();
  return gate_.Settle(may_stay);
}

std::vector<LostEdit> RecordFormPage::EndEdits() {
  if (database_ == nullptr) {
    return {};
  }
  KeepOpenEdits();
  std::vector<LostEdit> lost = gate_.Drop();
  for (LostEdit& edit : lost) {
    edit.what = std::string(traits_.noun) + " " + std::to_string(position_) + " (" + stored_.name +
                "), " + edit.what;
  }
  ForgetEdits();
  ShowStored();
  return lost;
}

void RecordFormPage::ForgetEdits() {
  gate_.Forget();
  grid_->GiveUpEdit();
}

}  // namespace vrx
