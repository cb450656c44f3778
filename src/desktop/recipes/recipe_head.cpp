#include "desktop/recipes/recipe_head.h"

#include <QFocusEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <algorithm>
#include <array>
#include <initializer_list>
#include <utility>

#include "base/number.h"
#include "desktop/app/captions.h"
#include "desktop/records/field_boxes.h"
#include "feed/batch_type.h"
#include "feed/record_fields.h"
#include "widgets/fields.h"
#include "widgets/labels.h"
#include "widgets/layout.h"
#include "widgets/qt_text.h"

namespace vrx {
namespace {

constexpr int kBatchByCaption = 1060;
constexpr int kHeadCountCaption = 1061;
constexpr int kRationTargetCaption = 1032;
constexpr int kAdjustCaption = 1114;
constexpr int kEnter100Caption = 1115;
constexpr int kMustTotalCaption = 1131;

void SetBox(FilteredEdit& box, const QString& text) {
  if (!box.isModified() && box.text() != text) {
    box.setText(text);
  }
}

int TypeIndex(const std::string& code) {
  const BatchType* type = FindBatchType(code);
  return type == nullptr ? 0 : static_cast<int>(type - BatchTypes().data());
}

}  // namespace

RecipeHead::RecipeHead(AutoAbbreviation& abbreviation, QWidget* parent)
    : QWidget(parent), abbreviation_(abbreviation) {
  MakeLists();
  MakeBoxes();
  LayOut();
  MakeGroups();
  OrderFields(false);
}

void RecipeHead::OrderFields(bool description_first) {
  QWidget* const first = description_first ? description_ : name_;
  QWidget* const second = description_first ? name_ : description_;
  QWidget* last = id_list_;
  for (QWidget* next : std::initializer_list<QWidget*>{first, second, batch_type_, head_count_,
                                                       ration_target_, adjust_}) {
    setTabOrder(last, next);
    last = next;
  }
}

QWidget* RecipeHead::Field(std::string_view field) const {
  const std::array<std::pair<std::string_view, QWidget*>, 6> fields{
      {{"Name", name_},
       {"Description", description_},
       {"BatchType", batch_type_},
       {"HeadCount", head_count_},
       {"RationTarget", ration_target_},
       {"AdjBatTotIndex", adjust_}}};
  const auto* const found = std::find_if(fields.begin(), fields.end(),
                                         [&](const auto& row) { return row.first == field; });
  return found == fields.end() ? nullptr : found->second;
}

void RecipeHead::MakeLists() {
  id_list_ = new RecordIdList(QStringLiteral("cboRecID"), kRecipeCount, this);
  id_list_->setToolTip(QTr("Current recipe"));
  batch_type_ = new ChoiceList(this);
  batch_type_->setObjectName(QStringLiteral("lstRecBatchType"));
  for (const BatchType& type : BatchTypes()) {
    batch_type_->addItem(QTr(type.list_text));
  }
  adjust_ = new ChoiceList(this);
  adjust_->setObjectName(QStringLiteral("lstAdjustBatchTotal"));
  for (int index = 0; index < kAdjustItemCount; ++index) {
    adjust_->addItem(ToQString(AdjustItemText(index)));
  }
  for (QComboBox* list : {batch_type_, adjust_}) {
    list->installEventFilter(this);
  }
}

void RecipeHead::MakeBoxes() {
  const auto field = [](const char* name) -> const RecordField& {
    return FieldOf(RecordKind::kRecipe, name);
  };
  name_ = MakeNameBox(field("Name"), "txtRecName", abbreviation_, this);
  description_ = MakeDescriptionBox("txtRecDesc", abbreviation_, this);
  head_count_ = MakeFieldBox(field("HeadCount"), "txtRecHeadCount", this);
  ration_target_ = MakeFieldBox(field("RationTarget"), "txtRecRationTarget", this);
  for (FilteredEdit* number : {head_count_, ration_target_}) {
    number->setAlignment(Qt::AlignRight);
    number->setFont(TabularFigures(number->font()));
  }
  for (FilteredEdit* box : {name_, description_, head_count_, ration_target_}) {
    connect(box, &FilteredEdit::Refused, this, &RecipeHead::Refused);
  }
}

QLabel* RecipeHead::Caption(const char* name, int caption, QWidget* buddy) {
  QLabel* const label = AddLabel(*this, name, caption);
  label->setBuddy(buddy);
  return label;
}

void RecipeHead::LayOut() {
  // An empty column has spacing on both sides, which forms the gap between groups.
  enum GridColumn {
    kCaption1,
    kField1,
    kGap1,
    kCaption2,
    kField2,
    kGap2,
    kCaption3,
    kField3,
    kRest
  };
  auto* const grid = new QGridLayout(this);
  grid->setContentsMargins(0, 0, 0, 0);
  grid->setHorizontalSpacing(kSpacing);
  grid->setVerticalSpacing(kSpacing);
  grid->setColumnStretch(kRest, 1);

  QLabel* const description = Caption("lblRecDesc", kDescriptionCaption, description_);
  description->setText(QTr("Description"));
  grid->addWidget(Caption("lblRecID", kIdCaption, id_list_), 0, kCaption1);
  grid->addWidget(id_list_, 0, kField1);
  grid->addWidget(Caption("lblRecName", kNameCaption, name_), 1, kCaption1);
  grid->addWidget(name_, 1, kField1, Qt::AlignLeft);
  grid->addWidget(description, 2, kCaption1);
  grid->addWidget(description_, 2, kField1, Qt::AlignLeft);
  grid->addWidget(Caption("lblRecBatchType", kBatchByCaption, batch_type_), 0, kCaption2);
  grid->addWidget(batch_type_, 0, kField2);
  grid->addWidget(Caption("lblRecHeadCount", kHeadCountCaption, head_count_), 1, kCaption2);
  grid->addWidget(head_count_, 1, kField2, Qt::AlignLeft);
  grid->addWidget(Caption("lblRecRationTarget", kRationTargetCaption, ration_target_), 1,
                  kCaption2);
  unit_ = AddLabel(*this, "lblRationTargetUoM");
  auto* const target = new QHBoxLayout;
  target->addWidget(ration_target_);
  target->addWidget(unit_, 1);
  grid->addLayout(target, 1, kField2);
  grid->addWidget(Caption("lblAdjustBatchTotal", kAdjustCaption, adjust_), 0, kCaption3);
  grid->addWidget(adjust_, 0, kField3);
  QLabel* const enter_100 = AddLabel(*this, "lblEnter100", kEnter100Caption);
  must_total_ = new ElidedLabel(this);
  must_total_->setObjectName(QStringLiteral("lblMustTotal100Pct"));
  SetTag(*must_total_, kMustTotalCaption);
  MakeDemiBold(*must_total_);
  grid->addWidget(enter_100, 2, kCaption2, 1, -1);
  grid->addWidget(must_total_, 2, kCaption2, 1, -1);
}

void RecipeHead::MakeGroups() {
  const auto find = [this](const char* name) {
    return findChild<QWidget*>(QLatin1String(name), Qt::FindDirectChildrenOnly);
  };
  head_count_group_ = {find("lblRecHeadCount"), head_count_, find("lblEnter100")};
  ration_target_group_ = {find("lblRecRationTarget"), ration_target_, unit_};
  adjust_group_ = {find("lblAdjustBatchTotal"), adjust_};
  for (const Group* group : {&head_count_group_, &ration_target_group_, &adjust_group_}) {
    for (QWidget* part : *group) {
      QSizePolicy kept = part->sizePolicy();
      kept.setRetainSizeWhenHidden(true);
      part->setSizePolicy(kept);
    }
  }
  HideInputs();
  ShowMustTotal100(false);
}

void RecipeHead::Show(const CurrentRecipe& shown) {
  const RecipeRecord& recipe = shown.ration.recipe;
  if (recipe.id != recipe_id_) {
    recipe_id_ = recipe.id;
    GiveUpTyping();
  }
  id_list_->setCurrentIndex(recipe.id);
  SetBox(*name_, ToQString(recipe.name));
  SetBox(*description_, ToQString(recipe.description));
  SetBox(*head_count_, QString::number(recipe.head_count));
  SetBox(*ration_target_, ToQString(recipe.ration_target));
  if (!KeepsChoice(*batch_type_)) {
    batch_type_->setCurrentIndex(TypeIndex(recipe.batch_type));
  }
  if (!KeepsChoice(*adjust_)) {
    adjust_->setCurrentIndex(TextToLong(recipe.adjust_batch_index));
  }
  ShowInputs(shown);
  batch_type_->setEnabled(shown.type_list_enabled && !read_only_);
}

void RecipeHead::SetReadOnly(const QString& reason) {
  read_only_ = !reason.isEmpty();
  for (FilteredEdit* const box : {name_, description_, head_count_, ration_target_}) {
    box->setReadOnly(read_only_);
    box->setToolTip(reason);
  }
  for (QComboBox* const list : {batch_type_, adjust_}) {
    list->setToolTip(reason);
  }
}

void RecipeHead::ShowInputs(const CurrentRecipe& shown) {
  const RecipeInputs visible = shown.Shown();
  const RecipeInputs& enabled = shown.enabled;
  ShowGroup(head_count_group_, visible.head_count, enabled.head_count);
  ShowGroup(ration_target_group_, visible.ration_target, enabled.ration_target);
  ShowGroup(adjust_group_, visible.adjust_batch, enabled.adjust_batch);
}

void RecipeHead::ShowGroup(const Group& group, bool visible, bool enabled) const {
  for (QWidget* part : group) {
    part->setEnabled(enabled && !read_only_);
    part->setVisible(visible);
    if (!read_only_) {
      part->setToolTip(enabled ? QString()
                               : QTr("Enter the ingredients first; percentages must total 100"));
    }
  }
}

void RecipeHead::HideInputs() {
  for (const Group* group : {&head_count_group_, &ration_target_group_, &adjust_group_}) {
    for (QWidget* part : *group) {
      part->hide();
    }
  }
}

void RecipeHead::GiveUpTyping() {
  for (FilteredEdit* const box : Boxes()) {
    box->setModified(false);
  }
  kept_choices_.clear();
}

void RecipeHead::ShowUnit(const QString& unit) { unit_->setText(unit); }

void RecipeHead::ShowMustTotal100(bool shown) { must_total_->setVisible(shown); }

bool RecipeHead::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::FocusOut && LeavesField(*static_cast<QFocusEvent*>(event))) {
    Q_EMIT ListLeft();
  }
  return QWidget::eventFilter(watched, event);
}

}  // namespace vrx
