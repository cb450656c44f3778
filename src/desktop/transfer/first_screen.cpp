#include "desktop/transfer/first_screen.h"

#include <QGridLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include <QLatin1String>

#include "desktop/app/captions.h"
#include "widgets/layout.h"
#include "widgets/qt_text.h"

namespace vrx {
namespace {

constexpr QChar kTick(0x2713);

QLabel* AddText(QWidget& parent, const char* name, int line) {
  QLabel* const label =
      AddLabel(parent, QStringLiteral("%1(%2)").arg(QLatin1String(name)).arg(line).toLatin1());
  label->setWordWrap(true);
  return label;
}

}  // namespace

FirstScreen::FirstScreen(FirstSteps& steps, QWidget* parent) : QScrollArea(parent), steps_(steps) {
  setObjectName(QStringLiteral("scrFirstSteps"));
  setAccessibleName(QTr("First steps"));
  setFocusPolicy(Qt::NoFocus);  // its buttons scroll into view when they get the focus
  setWidgetResizable(true);
  setWidget(LayOut());
  // The style draws a check box that is visible on the background of a page, also of a dark one.
  widget()->setAutoFillBackground(false);
  viewport()->setAutoFillBackground(false);
  Refresh();
}

QWidget* FirstScreen::LayOut() {
  auto* const whole = new QWidget;
  auto* const column = new QVBoxLayout(whole);
  column->setContentsMargins(kGroupSpacing, kGroupSpacing, kGroupSpacing, kGroupSpacing);
  column->setSpacing(kGroupSpacing);
  auto* const grid = new QGridLayout;
  grid->setHorizontalSpacing(kGroupSpacing);
  grid->setVerticalSpacing(kSpacing);
  grid->setColumnStretch(2, 1);
  for (std::size_t i = 0; i < kFirstStepCount; ++i) {
    const FirstStepRow& row = FirstStepRows().at(i);
    const int line = static_cast<int>(i);
    auto* const button = new QPushButton(QTr(row.caption), whole);
    button->setObjectName(ToQString(row.control));
    button->setAccessibleDescription(QTr(row.sentence));
    connect(button, &QPushButton::clicked, this, [this, &row] { Q_EMIT StepChosen(row.step); });
    ticks_.at(i) = AddText(*whole, "lblFirstTick", line);
    sentences_.at(i) = AddText(*whole, "lblFirstStep", line);
    ticks_.at(i)->setFixedWidth(ticks_.at(i)->fontMetrics().horizontalAdvance(kTick) + kSpacing);
    grid->addWidget(ticks_.at(i), line, 0);
    grid->addWidget(button, line, 1);
    grid->addWidget(sentences_.at(i), line, 2);
  }
  column->addLayout(grid);
  chk_open_at_start_ = new QCheckBox(QTr("Open these at every start"), whole);
  chk_open_at_start_->setObjectName(QStringLiteral("chkOpenAtStart"));
  chk_open_at_start_->setToolTip(QTr("The databases that are open when the program ends"));
  connect(chk_open_at_start_, &QCheckBox::clicked, this, [this] {
    steps_.OpenAtStart(!steps_.OpensAll());
    Refresh();
  });
  column->addWidget(chk_open_at_start_, 0, Qt::AlignLeft);
  column->addStretch(1);
  return whole;
}

void FirstScreen::Refresh() {
  for (std::size_t i = 0; i < kFirstStepCount; ++i) {
    const FirstStepRow& row = FirstStepRows().at(i);
    const bool done = steps_.Done(row.step);
    sentences_.at(i)->setText(QTr(row.sentence));
    ticks_.at(i)->setText(done ? QString(kTick) : QString());
    ticks_.at(i)->setAccessibleName(done ? QTr("Done") : QTr("Not done yet"));
  }
  chk_open_at_start_->setCheckState(steps_.OpensAll()    ? Qt::Checked
                                    : steps_.OpensSome() ? Qt::PartiallyChecked
                                                         : Qt::Unchecked);
}

}  // namespace vrx
