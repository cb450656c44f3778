#include "desktop/history/history_navigator.h"

#include <QFontMetrics>
#include <QHBoxLayout>
#include <algorithm>
#include <cstddef>

#include "base/text.h"
#include "desktop/dialogs/form_parts.h"
#include "desktop/main_window/panels.h"
#include "feed/key_filters.h"

namespace vrx {
namespace {

// The grid's design: what stands ahead of the number and behind it.
const QString kNavigatorString = QStringLiteral("Transaction:|of");
constexpr int kDigits = 8;

struct MoveButton {
  const char* caption;
  const char* meaning;
};
constexpr std::array<MoveButton, 4> kMoves{
    {{"|<<", "First row"}, {"<", "Previous row"}, {">", "Next row"}, {">>|", "Last row"}}};

}  // namespace

HistoryNavigator::HistoryNavigator(QWidget* parent)
    : QWidget(parent),
      number_(new FilteredEdit([](std::string_view, int key) { return FilterDigitKey(key); },
                               kDigits, this)),
      caption_(AddLabel(*this, "lblHistoryNavigator")),
      count_(AddLabel(*this, "lblHistoryCount")) {
  setObjectName(QStringLiteral("navHistory"));
  for (std::size_t i = 0; i < kMoves.size(); ++i) {
    const auto& [caption, meaning] = kMoves.at(i);
    auto* const button = new QPushButton(QString::fromLatin1(caption), this);
    button->setObjectName(QStringLiteral("cmdHistoryNavigate(%1)").arg(i));
    button->setToolTip(QString::fromLatin1(meaning));
    button->setAccessibleName(QString::fromLatin1(meaning));
    button->setFixedWidth(button->fontMetrics().horizontalAdvance(QStringLiteral("|<<")) +
                          3 * kSpacing);
    connect(button, &QPushButton::clicked, this, [this, i] { Move(static_cast<int>(i)); });
    buttons_.at(i) = button;
  }
  caption_->setBuddy(number_);
  number_->setObjectName(QStringLiteral("txtHistoryRow"));
  number_->setAccessibleName(QStringLiteral("Row"));
  number_->setAlignment(Qt::AlignRight);
  number_->setFixedWidth(number_->fontMetrics().horizontalAdvance(QString(kDigits, u'0')) +
                         2 * kSpacing);
  connect(number_, &FilteredEdit::Left, this, &HistoryNavigator::GoToTyped);
  auto* const row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(kSpacing);
  row->addWidget(caption_);
  row->addWidget(buttons_[kNavigateFirst]);
  row->addWidget(buttons_[kNavigatePrevious]);
  row->addWidget(number_);
  row->addWidget(buttons_[kNavigateNext]);
  row->addWidget(buttons_[kNavigateLast]);
  row->addWidget(count_);
  row->addStretch();
  ShowState();
}

void HistoryNavigator::ShowRow(int row) {
  row_ = row;
  ShowState();
}

void HistoryNavigator::ShowCount(int rows) {
  rows_ = rows;
  ShowState();
}

void HistoryNavigator::ShowState() {
  caption_->setText(kNavigatorString.section(u'|', 0, 0));
  number_->setText(row_ < 0 ? QString() : QString::number(row_ + 1));
  number_->setEnabled(rows_ > 0);
  count_->setText(QStringLiteral("%1 %2").arg(kNavigatorString.section(u'|', 1, 1)).arg(rows_));
  buttons_[kNavigateFirst]->setEnabled(rows_ > 0 && row_ != 0);
  buttons_[kNavigatePrevious]->setEnabled(row_ > 0);
  buttons_[kNavigateNext]->setEnabled(row_ + 1 < rows_);
  buttons_[kNavigateLast]->setEnabled(rows_ > 0 && row_ + 1 != rows_);
}

void HistoryNavigator::Move(int button) {
  const std::array<int, 4> targets{0, row_ - 1, row_ + 1, rows_ - 1};
  const int target = targets.at(static_cast<std::size_t>(button));
  if (target >= 0 && target < rows_) {
    Q_EMIT RowChosen(target);
  }
}

// What is out of range goes to the nearest row.
void HistoryNavigator::GoToTyped() {
  bool is_number = false;
  const int number = number_->text().toInt(&is_number);
  if (is_number && rows_ > 0) {
    const int target = std::clamp(number - 1, 0, rows_ - 1);
    if (target != row_) {
      Q_EMIT RowChosen(target);
    }
  }
  ShowState();
}

}  // namespace vrx
