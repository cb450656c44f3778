#include "desktop/history/history_bars.h"

#include <QFontMetrics>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QShortcut>
#include <QVBoxLayout>
#include <algorithm>
#include <cstddef>
#include <string_view>

#include "desktop/app/captions.h"
#include "desktop/main_window/panels.h"
#include "feed/key_filters.h"
#include "widgets/layout.h"
#include "widgets/qt_text.h"

namespace vrx {

namespace {

// From the grid's design: the texts before and after the number.
const QString kNavigatorString = QStringLiteral("Transaction:|of");
constexpr int kDigits = 8;

struct MoveButton {
  const char* caption;
  std::string_view meaning;
};
constexpr std::array<MoveButton, 4> kMoveButtons{{{"|<<", TrMark("First row")},
                                                  {"<", TrMark("Previous row")},
                                                  {">", TrMark("Next row")},
                                                  {">>|", TrMark("Last row")}}};

constexpr int kPeriodCaption = 2001;
constexpr int kFromCaption = 2002;
constexpr int kToCaption = 2003;
constexpr int kFindCaption = 2006;
constexpr int kFindLength = 100;
constexpr int kFindCharacters = 20;

// In the order of PeriodChoice.
constexpr std::array<std::string_view, 6> kPeriods{TrMark("All"),         TrMark("Today"),
                                                   TrMark("Last 7 days"), TrMark("This month"),
                                                   TrMark("Last month"),  TrMark("From - to")};

}  // namespace

HistoryNavigator::HistoryNavigator(QWidget* parent)
    : QWidget(parent),
      number_(new FilteredEdit([](std::string_view, int key) { return FilterDigitKey(key); },
                               kDigits, this)),
      caption_(AddLabel(*this, "lblHistoryNavigator")),
      count_(AddLabel(*this, "lblHistoryCount")) {
  setObjectName(QStringLiteral("navHistory"));
  for (std::size_t i = 0; i < kMoveButtons.size(); ++i) {
    const auto& [caption, meaning] = kMoveButtons.at(i);
    auto* const button = new QPushButton(QString::fromLatin1(caption), this);
    button->setObjectName(QStringLiteral("cmdHistoryNavigate(%1)").arg(i));
    button->setToolTip(QTr(meaning));
    button->setAccessibleName(QTr(meaning));
    button->setFixedWidth(button->fontMetrics().horizontalAdvance(QStringLiteral("|<<")) +
                          3 * kSpacing);
    connect(button, &QPushButton::clicked, this, [this, i] { Move(static_cast<int>(i)); });
    buttons_.at(i) = button;
  }
  number_->Explain([](std::string_view, int key) { return std::string(DigitRefusal(key)); },
                   FilteredEdit::Takes::kNumber);
  caption_->setBuddy(number_);
  number_->setObjectName(QStringLiteral("txtHistoryRow"));
  number_->setAccessibleName(QTr("Row"));
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

// A number out of range selects the nearest row.
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

PeriodBar::PeriodBar(const Calendar& calendar, QWidget* form, const QByteArray& of)
    : QWidget(form),
      choices_(new ChoiceList(this)),
      from_(new DayEdit("txt" + of + "PeriodFrom", QTr("First day"), calendar, form)),
      to_(new DayEdit("txt" + of + "PeriodTo", QTr("Last day"), calendar, form)),
      note_(AddLabel(*this, "lbl" + of + "PeriodNote")) {
  setObjectName(QString::fromLatin1("bar" + of + "Period"));
  choices_->setObjectName(QString::fromLatin1("cbo" + of + "Period"));
  choices_->setAccessibleName(QTr("Period"));
  choices_->setSizeAdjustPolicy(QComboBox::AdjustToContents);
  for (const std::string_view period : kPeriods) {
    choices_->addItem(QTr(period));
  }
  LayOut(of);
  connect(choices_, &QComboBox::activated, this, [this](int item) {
    Q_EMIT Chosen(static_cast<PeriodChoice>(item));
    if (item == static_cast<int>(PeriodChoice::kFromTo)) {
      from_->Field().setFocus();
      from_->Field().selectAll();
    }
  });
  for (const DayEdit* const day : {from_, to_}) {
    connect(day, &DayEdit::Entered, this, [this] { Q_EMIT Typed(from_->Text(), to_->Text()); });
  }
}

void PeriodBar::LayOut(const QByteArray& of) {
  QLabel* const period = AddLabel(*this, "lbl" + of + "Period", kPeriodCaption);
  QLabel* const from = AddLabel(*this, "lbl" + of + "PeriodFrom", kFromCaption);
  QLabel* const to = AddLabel(*this, "lbl" + of + "PeriodTo", kToCaption);
  period->setBuddy(choices_);
  from->setBuddy(&from_->Field());
  to->setBuddy(&to_->Field());
  note_->setWordWrap(true);
  note_->hide();
  auto* const row = new QHBoxLayout;
  row->setSpacing(kSpacing);
  row->addWidget(period);
  row->addWidget(choices_);
  row->addSpacing(kGroupSpacing - kSpacing);
  row->addWidget(from);
  row->addWidget(from_);
  row->addSpacing(kGroupSpacing - kSpacing);
  row->addWidget(to);
  row->addWidget(to_);
  row->addStretch();
  auto* const column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(kSpacing);
  column->addLayout(row);
  column->addWidget(note_);
}

void PeriodBar::Show(const PeriodState& period) {
  choices_->setCurrentIndex(static_cast<int>(period.choice));
  from_->ShowText(ToQString(period.from));
  to_->ShowText(ToQString(period.to));
}

void PeriodBar::ShowNote(const QString& note) {
  note_->setText(note);
  note_->setVisible(!note.isEmpty());
}

FindBar::FindBar(QWidget* parent)
    : QWidget(parent),
      field_(new QLineEdit(this)),
      previous_(
          AddButton("cmdFindPrevious", QTr("Previous"), QTr("Previous one found (Shift+F3)"))),
      next_(AddButton("cmdFindNext", QTr("Next"), QTr("Next one found (F3)"))),
      count_(AddLabel(*this, "lblFindCount")),
      progress_(new QProgressBar(this)),
      cancel_(AddButton("cmdFindCancel", QTr("Cancel"), QTr("Stop searching"))),
      close_(AddButton("cmdFindClose", QTr("Close"), QTr("Close the search (Esc)"))),
      note_(AddLabel(*this, "lblFindNote")) {
  setObjectName(QStringLiteral("barFind"));
  field_->setObjectName(QStringLiteral("txtFind"));
  field_->setAccessibleName(QTr("Find"));
  field_->setPlaceholderText(QTr("Text, number or date"));
  field_->setMaxLength(kFindLength);
  field_->setMinimumWidth(kFindCharacters * fontMetrics().averageCharWidth());
  progress_->setObjectName(QStringLiteral("prgFind"));
  progress_->setAccessibleName(QTr("Progress of the search"));
  progress_->setRange(0, 100);
  LayOut();
  connect(field_, &QLineEdit::textEdited, this, &FindBar::Typed);
  connect(previous_, &QPushButton::clicked, this, [this] { Q_EMIT Moved(false); });
  connect(next_, &QPushButton::clicked, this, [this] { Q_EMIT Moved(true); });
  connect(cancel_, &QPushButton::clicked, this, &FindBar::Stopped);
  connect(close_, &QPushButton::clicked, this, &FindBar::Closed);
  auto* const escape = new QShortcut(QKeySequence(Qt::Key_Escape), this);
  escape->setContext(Qt::WidgetWithChildrenShortcut);
  connect(escape, &QShortcut::activated, this, &FindBar::Closed);
  hide();
}

QPushButton* FindBar::AddButton(const char* name, const QString& caption, const QString& meaning) {
  auto* const button = new QPushButton(caption, this);
  button->setObjectName(QString::fromLatin1(name));
  button->setToolTip(meaning);
  return button;
}

void FindBar::LayOut() {
  QLabel* const caption = AddLabel(*this, "lblFind", kFindCaption);
  caption->setBuddy(field_);
  count_->setMinimumWidth(count_->fontMetrics().horizontalAdvance(QStringLiteral("00 of 0000")));
  note_->setWordWrap(true);
  auto* const row = new QHBoxLayout;
  row->setSpacing(kSpacing);
  row->addWidget(caption);
  row->addWidget(field_, 2);
  row->addWidget(previous_);
  row->addWidget(next_);
  row->addWidget(count_);
  row->addWidget(progress_, 1);
  row->addWidget(cancel_);
  row->addStretch(1);
  row->addWidget(close_);
  auto* const column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(kSpacing);
  column->addLayout(row);
  column->addWidget(note_);
}

void FindBar::Show(const FindState& find) {
  count_->setText(ToQString(find.count));
  note_->setText(ToQString(find.note));
  note_->setVisible(!find.note.empty());
  const bool runs = find.percent >= 0;
  if (!runs && cancel_->hasFocus()) {
    field_->setFocus();
  }
  progress_->setVisible(runs);
  progress_->setValue(std::max(find.percent, 0));
  cancel_->setVisible(runs);
  setVisible(find.open);
}

bool FindBar::EnterPressed() {
  if (window()->focusWidget() != field_) {
    return false;
  }
  Q_EMIT Moved(!QGuiApplication::keyboardModifiers().testFlag(Qt::ShiftModifier));
  return true;
}

void FindBar::FocusField() {
  field_->setFocus();
  field_->selectAll();
}

}  // namespace vrx
