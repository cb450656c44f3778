#include "desktop/setup/setup_limits_tab.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>
#include <string_view>

#include "base/translation.h"
#include "desktop/app/captions.h"
#include "feed/key_filters.h"
#include "widgets/layout.h"
#include "widgets/qt_text.h"

namespace vrx {
namespace {

constexpr int kIntroCaption = 2052;
constexpr std::size_t kMostLetters = 7;

struct LimitField {
  const char* name;
  int caption;
  int unit;
  std::string_view meaning;
};

constexpr int kPercentUnit = 2046;
constexpr int kKilogramUnit = 2047;
constexpr int kDatabaseUnit = 2048;
constexpr int kOfLoadUnit = 2049;

// By InsightLimit.
constexpr std::array<LimitField, PrivateINI::kInsightLimits> kFields{{
    {"txtLimitPercent", 2040, kPercentUnit, TrMark("A load within this percentage is on target")},
    {"txtLimitWeight", 2041, kKilogramUnit, TrMark("A load within this weight is close")},
    {"txtLimitBeyond", 2042, kKilogramUnit, TrMark("A load beyond this weight is far off")},
    {"txtLimitDivision", 2043, kDatabaseUnit,
     TrMark("The smallest step of the scale: a difference up to it does not count")},
    {"txtLimitBalancePercent", 2044, kOfLoadUnit,
     TrMark("A batch is out of balance beyond this percentage and the weight below")},
    {"txtLimitBalanceWeight", 2045, kKilogramUnit,
     TrMark("A batch is out of balance beyond this weight and the percentage above")},
}};

}  // namespace

SetupLimitsTab::SetupLimitsTab() : usual_(new QPushButton(QTr("&Usual Values"), this)) {
  setObjectName(QStringLiteral("frmInsightLimits"));
  auto* const column = new QVBoxLayout(this);
  column->setContentsMargins(kGroupSpacing, kGroupSpacing, kGroupSpacing, kGroupSpacing);
  column->setSpacing(kSpacing);
  QLabel* const intro = AddLabel(*this, "lblLimits", kIntroCaption);
  intro->setWordWrap(true);
  column->addWidget(intro);
  auto* const rows = new QFormLayout;
  rows->setSpacing(kSpacing);
  for (std::size_t limit = 0; limit < fields_.size(); ++limit) {
    const LimitField& row = kFields.at(limit);
    FilteredEdit* const field =
        MakeBox([](std::string_view, int key) { return FilterDecimalKey(key); }, kMostLetters,
                row.name, this);
    field->setAccessibleName(QTr(row.meaning));
    field->setToolTip(QTr(row.meaning));
    field->setAlignment(Qt::AlignRight);
    field->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    field->Explain([](std::string_view, int) { return Tr("Only digits and a point"); },
                   FilteredEdit::Takes::kNumber);
    fields_.at(limit) = field;
    const std::string name = std::string("lbl") + (row.name + 3);
    QLabel* const caption = AddLabel(*this, name.c_str(), row.caption);
    caption->setBuddy(field);
    auto* const value = new QHBoxLayout;
    value->setSpacing(kSpacing);
    value->addWidget(field);
    value->addWidget(AddLabel(*this, (name + "Unit").c_str(), row.unit));
    value->addStretch();
    rows->addRow(caption, value);
  }
  column->addLayout(rows);
  usual_->setObjectName(QStringLiteral("cmdUsualLimits"));
  usual_->setToolTip(QTr("Set all limits of this tab as they are at first"));
  usual_->setAutoDefault(false);
  column->addWidget(usual_, 0, Qt::AlignLeft);
  column->addStretch();
  connect(usual_, &QPushButton::clicked, this, [this] { Show(UsualLimits()); });
}

void SetupLimitsTab::Show(const SetupLimits& limits) {
  for (std::size_t limit = 0; limit < fields_.size(); ++limit) {
    fields_.at(limit)->setText(ToQString(limits.at(limit)));
  }
}

SetupLimits SetupLimitsTab::Typed() const {
  SetupLimits limits;
  for (std::size_t limit = 0; limit < fields_.size(); ++limit) {
    limits.at(limit) = fields_.at(limit)->Text();
  }
  return limits;
}

void SetupLimitsTab::GoTo(std::size_t limit) {
  fields_.at(limit)->setFocus();
  fields_.at(limit)->selectAll();
}

}  // namespace vrx
