#include <QHBoxLayout>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <string>
#include <string_view>

#include "base/translation.h"
#include "desktop/app/captions.h"
#include "desktop/insight/insight_page.h"
#include "feed/key_filters.h"
#include "widgets/layout.h"
#include "widgets/qt_text.h"

namespace vrx {
namespace {

constexpr int kTableCaption = 2030;
constexpr int kPictureCaption = 2031;
constexpr int kDaysCaption = 2036;
constexpr int kAsOfCaption = 2037;
constexpr int kNamesInView = 20;
constexpr int kNameLetters = 3;
constexpr std::size_t kDayDigits = 4;

struct NameField {
  const char* name;
  int caption;
  std::string_view meaning;
};

// By NameKind.
constexpr std::array<NameField, kNameKinds> kNameFields{{
    {"cboInsightRecipe", 2032, TrMark("Only batches of this recipe")},
    {"cboInsightIngredient", 2033, TrMark("Only loads of this ingredient")},
    {"cboInsightOperator", 2034, TrMark("Only batches of this operator")},
    {"cboInsightPen", 2035, TrMark("Only deliveries to this pen")},
}};

void ShowItems(QComboBox& list, const QStringList& items, int index) {
  const QSignalBlocker silent(&list);
  QStringList shown;
  for (int i = 0; i < list.count(); ++i) {
    shown += list.itemText(i);
  }
  if (shown != items) {
    list.clear();
    list.addItems(items);
  }
  list.setCurrentIndex(index);
}

template <typename Choices>
QStringList CaptionsOf(const Choices& choices) {
  QStringList items;
  for (const auto& choice : choices) {
    items += QTr(choice.caption);
  }
  return items;
}

}  // namespace

InsightFields::InsightFields(const Calendar& calendar, QWidget* form)
    : QWidget(form),
      period_(new PeriodBar(calendar, form, "Insight")),
      holding_(new QWidget(this)) {
  auto* const column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(kSpacing);
  column->addWidget(period_);
  column->addLayout(LayOutNames());
  auto* const row = new QHBoxLayout;
  row->setSpacing(kSpacing);
  table_ = AddChoice("cboInsightTable", kTableCaption, QTr("What the rows of the table are"));
  picture_ = AddChoice("cboInsightPicture", kPictureCaption, QTr("Picture of the figures"));
  for (const Choice& choice : {table_, picture_}) {
    choice.list->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    row->addWidget(choice.caption);
    row->addWidget(choice.list);
    row->addSpacing(kGroupSpacing - kSpacing);
  }
  row->addStretch();
  column->addLayout(LayOutHolding(calendar, form));
  column->addLayout(row);
  Connect();
}

InsightFields::Choice InsightFields::AddChoice(const char* name, int caption,
                                               const QString& meaning) {
  const Choice choice{AddLabel(*this, (std::string("lbl") + (name + 3)).c_str(), caption),
                      new ChoiceList(this)};
  choice.list->setObjectName(QString::fromLatin1(name));
  choice.list->setAccessibleName(meaning);
  choice.list->setToolTip(meaning);
  choice.list->setMaxVisibleItems(kNamesInView);
  choice.caption->setBuddy(choice.list);
  return choice;
}

QBoxLayout* InsightFields::LayOutNames() {
  auto* const row = new QHBoxLayout;
  row->setSpacing(kSpacing);
  for (std::size_t kind = 0; kind < names_.size(); ++kind) {
    const NameField& field = kNameFields.at(kind);
    names_.at(kind) = AddChoice(field.name, field.caption, QTr(field.meaning));
    ChoiceList& list = *names_.at(kind).list;
    list.setMinimumContentsLength(kNameLetters);
    list.setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    row->addWidget(names_.at(kind).caption);
    row->addWidget(&list, 1);
  }
  return row;
}

QBoxLayout* InsightFields::LayOutHolding(const Calendar& calendar, QWidget* form) {
  days_ = MakeBox([](std::string_view, int key) { return FilterDecimalKey(key); }, kDayDigits,
                  "txtInsightDays", holding_);
  days_->setAccessibleName(QTr("Days of the holding"));
  days_->setAlignment(Qt::AlignRight);
  days_->Explain([](std::string_view, int) { return Tr("Only digits and a point"); },
                 FilteredEdit::Takes::kNumber);
  on_ = new DayEdit("txtInsightOn", QTr("Day of the question"), calendar, form);
  on_->Field().setPlaceholderText(QTr("today"));
  QLabel* const days = AddLabel(*holding_, "lblInsightDays", kDaysCaption);
  QLabel* const on = AddLabel(*holding_, "lblInsightOn", kAsOfCaption);
  days->setBuddy(days_);
  on->setBuddy(&on_->Field());
  auto* const inner = new QHBoxLayout(holding_);
  inner->setContentsMargins(0, 0, 0, 0);
  inner->setSpacing(kSpacing);
  inner->addWidget(days);
  inner->addWidget(days_);
  inner->addSpacing(kGroupSpacing - kSpacing);
  inner->addWidget(on);
  inner->addWidget(on_);
  inner->addStretch();
  auto* const row = new QHBoxLayout;
  row->addWidget(holding_);
  return row;
}

void InsightFields::Connect() {
  connect(period_, &PeriodBar::Chosen, this, &InsightFields::PeriodChosen);
  connect(period_, &PeriodBar::Typed, this, &InsightFields::DaysTyped);
  for (std::size_t kind = 0; kind < names_.size(); ++kind) {
    connect(names_.at(kind).list, &QComboBox::activated, this,
            [this, kind](int item) { Q_EMIT NameChosen(static_cast<int>(kind), item); });
  }
  const auto typed = [this] { Q_EMIT HoldingTyped(days_->text(), on_->Text()); };
  connect(days_, &FilteredEdit::Left, this, typed);
  connect(on_, &DayEdit::Entered, this, typed);
  connect(table_.list, &QComboBox::activated, this, &InsightFields::TableChosen);
  connect(picture_.list, &QComboBox::activated, this, &InsightFields::PictureChosen);
}

void InsightFields::Show(const InsightState& state) {
  const InsightTopicRow& topic = RowOf(state.asked.topic);
  period_->setVisible(topic.has_period);
  period_->Show(state.period);
  period_->ShowNote(ToQString(state.period.refusal));
  for (std::size_t kind = 0; kind < names_.size(); ++kind) {
    const NameFilter& filter = state.names.at(kind);
    QStringList items{filter.needed ? QTr("(choose)") : QTr("(all)")};
    for (const std::string& name : filter.items) {
      items += ToQString(name);
    }
    ShowItems(*names_.at(kind).list, items, filter.index);
    names_.at(kind).list->setVisible(filter.visible);
    names_.at(kind).caption->setVisible(filter.visible);
  }
  holding_->setVisible(state.asked.topic == InsightTopic::kHolding);
  days_->setText(ToQString(state.days));
  on_->ShowText(ToQString(state.on));
  ShowItems(*table_.list, CaptionsOf(topic.tables), state.asked.table);
  ShowItems(*picture_.list, CaptionsOf(topic.pictures), state.asked.picture);
  for (const auto& [choice, count] :
       {std::pair(table_, topic.tables.size()), std::pair(picture_, topic.pictures.size())}) {
    choice.caption->setVisible(count > 1);
    choice.list->setVisible(count > 1);
  }
}

}  // namespace vrx
