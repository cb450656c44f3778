#include "desktop/recipes/recipe_lines.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <cstddef>

#include "database/records.h"
#include "desktop/app/captions.h"
#include "desktop/dialogs/about_and_splash.h"
#include "feed/record_fields.h"
#include "widgets/labels.h"
#include "widgets/layout.h"
#include "widgets/qt_text.h"

namespace vrx {

namespace {

struct Face {
  const char* caption;
  std::string_view meaning;
};

constexpr std::array<Face, 4> kFaces{{{"|<<", TrMark("First ingredient")},
                                      {"<", TrMark("Previous ingredient")},
                                      {">", TrMark("Next ingredient")},
                                      {">>|", TrMark("Last ingredient")}}};

constexpr int kScanBarWidth = 320;

}  // namespace

LineNavigator::LineNavigator(QWidget* parent) : QWidget(parent) {
  setObjectName(QStringLiteral("grdREC.Navigator"));
  auto* const row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(kSpacing / 2);
  AddButton(kFirst);
  AddButton(kPrevious);
  text_ = AddLabel(*this, "grdREC.NavigatorText");
  text_->setAlignment(Qt::AlignCenter);
  row->addWidget(text_);
  AddButton(kNext);
  AddButton(kLast);
  Show(0, 0);
}

void LineNavigator::AddButton(Button button) {
  const Face& face = kFaces.at(static_cast<std::size_t>(button));
  auto* const made = new QToolButton(this);
  made->setObjectName(QStringLiteral("grdREC.Navigate(%1)").arg(static_cast<int>(button)));
  made->setText(QLatin1String(face.caption));
  made->setToolTip(QTr(face.meaning));
  made->setAccessibleName(made->toolTip());
  made->setFocusPolicy(Qt::TabFocus);
  layout()->addWidget(made);
  connect(made, &QToolButton::clicked, this, [this, button] {
    if (lines_ > 0) {
      Q_EMIT Moved(Target(button));
    }
  });
}

int LineNavigator::Target(Button button) const {
  switch (button) {
    case kFirst:
      return 1;
    case kPrevious:
      return row_ < 1 ? lines_ : std::max(1, row_ - 1);
    case kNext:
      return row_ < 1 ? lines_ : std::min(lines_, row_ + 1);
    case kLast:
      break;
  }
  return lines_;
}

void LineNavigator::Show(int row, int lines) {
  row_ = row;
  lines_ = lines;
  const QString number = row < 1 ? QTr("new") : QString::number(row);
  text_->setText(QTr("Ingredient: %1 of %2").arg(number).arg(lines));
  text_->setMinimumWidth(text_->fontMetrics().horizontalAdvance(QTr("Ingredient: new of 00")) +
                         kSpacing);
}

ScanPanel::ScanPanel(QWidget* parent)
    : QWidget(parent), text_(new QLabel(this)), bar_(new QProgressBar(this)) {
  text_->setObjectName(QStringLiteral("lblScanPrint"));
  bar_->setObjectName(QStringLiteral("prgScanPrint"));
  bar_->setAccessibleName(QTr("Recipes looked through"));
  bar_->setRange(1, kRecipeCount);
  bar_->setFixedWidth(kScanBarWidth);
  auto* const column = new QVBoxLayout(this);
  column->setSpacing(kSpacing);
  column->addWidget(text_, 0, Qt::AlignHCenter);
  column->addWidget(bar_, 0, Qt::AlignHCenter);
}

void ScanPanel::ShowText(const QString& text) {
  text_->setText(text);
  repaint();
}

void ScanPanel::GoTo(int position) {
  bar_->setValue(position);
  bar_->repaint();
}

RecipeLines::RecipeLines(RecipeGridEvents& events, QWidget* parent)
    : QWidget(parent),
      grid_(new RecipeGrid(events, this)),
      totals_(new RecipeTotalsRow(*grid_, this)) {
  auto* const place = new QGridLayout(this);
  place->setContentsMargins(0, 0, 0, 0);
  place->setSpacing(kSpacing);
  place->addWidget(MakeGridPlace(), 0, 0);
  place->addWidget(MakeUpDown(), 0, 1, Qt::AlignTop);
  place->addWidget(totals_, 1, 0);
  place->addLayout(MakeBottomRow(), 2, 0, 1, 2);
  place->setRowStretch(0, 1);
  place->setColumnStretch(0, 1);
  connect(totals_, &RecipeTotalsRow::MissesTotal, this, &RecipeLines::MissesTotal);
  connect(navigator_, &LineNavigator::Moved, this,
          [this](int line) { grid_->GoTo(line - 1, grid_->currentIndex().column()); });
  ShowFixedTexts();
}

QWidget* RecipeLines::MakeGridPlace() {
  auto* const place = new QWidget(this);
  auto* const layout = new QVBoxLayout(place);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(grid_);
  hint_ = AddLabel(*place, "lblChooseBatchType");
  hint_->setAlignment(Qt::AlignCenter);
  hint_->setWordWrap(true);
  hint_->setForegroundRole(QPalette::PlaceholderText);
  hint_->hide();
  layout->addWidget(hint_);
  scan_ = new ScanPanel(place);
  scan_->hide();
  layout->addWidget(scan_, 0, Qt::AlignCenter);
  return place;
}

QWidget* RecipeLines::MakeUpDown() {
  up_down_ = new QWidget(this);
  up_down_->setObjectName(QStringLiteral("UpDown1"));
  auto* const column = new QVBoxLayout(up_down_);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(kSpacing / 2);
  for (const MoveDirection direction : {MoveDirection::kUp, MoveDirection::kDown}) {
    const bool up = direction == MoveDirection::kUp;
    auto* const button = new QToolButton(up_down_);
    button->setObjectName(up ? QStringLiteral("UpDown1.Up") : QStringLiteral("UpDown1.Down"));
    button->setArrowType(up ? Qt::UpArrow : Qt::DownArrow);
    button->setToolTip(up ? QTr("Move the ingredient up") : QTr("Move the ingredient down"));
    button->setAccessibleName(button->toolTip());
    button->setFocusPolicy(Qt::TabFocus);
    column->addWidget(button, 0, Qt::AlignHCenter);
    connect(button, &QToolButton::clicked, this,
            [this, direction] { Q_EMIT MoveClicked(direction); });
  }
  move_legend_ = AddLabel(*up_down_, "rtbMove");
  column->addWidget(move_legend_, 0, Qt::AlignHCenter);
  return up_down_;
}

QLayout* RecipeLines::MakeBottomRow() {
  auto* const row = new QHBoxLayout;
  row->setSpacing(kSpacing);
  delete_ = new QPushButton(QTr("&Delete"), this);
  delete_->setObjectName(QStringLiteral("cmdDeleteIng"));
  delete_->setToolTip(QTr("Delete the ingredient from this recipe"));
  connect(delete_, &QPushButton::clicked, this, &RecipeLines::DeleteClicked);
  KeepPlace(*delete_);
  row->addWidget(delete_);
  row->addSpacing(kGroupSpacing - kSpacing);
  use_navigator_ = new QCheckBox(QTr("Show Navigator"), this);
  use_navigator_->setObjectName(QStringLiteral("chkUseRationNavigator"));
  row->addWidget(use_navigator_);
  navigator_ = new LineNavigator(this);
  navigator_->hide();
  KeepPlace(*navigator_);
  connect(use_navigator_, &QCheckBox::toggled, navigator_, &QWidget::setVisible);
  row->addWidget(navigator_);
  row->addSpacing(kGroupSpacing - kSpacing);
  pen_capacity_ = new ElidedLabel(this);
  pen_capacity_->setObjectName(QStringLiteral("lblRequiresIndicatorPenCapacityX"));
  MakeDemiBold(*pen_capacity_);
  pen_capacity_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  KeepPlace(*pen_capacity_);
  ShowPenCapacity(std::nullopt);
  row->addWidget(pen_capacity_, 1);
  return row;
}

void RecipeLines::Show(const CurrentRecipe& shown) {
  const bool typed = shown.Entry() != LineEntry::kNone;
  if (!typed) {
    grid_->GiveUpEdit();
  }
  grid_->Show(shown);
  hint_->setVisible(!typed);
  grid_->setVisible(typed);
  totals_->Show(shown);
  grid_->MakeRoomForTotals(totals_->Widths());
  navigator_->Show(shown.row, shown.LineCount());
}

void RecipeLines::DrawFigures(const CurrentRecipe& next) {
  grid_->ShowFigures(next);
  totals_->Show(next);
  grid_->viewport()->repaint();
  totals_->repaint();
}

void RecipeLines::SetReadOnly(const QString& reason) {
  grid_->SetReadOnly(!reason.isEmpty());
  grid_->setToolTip(reason);
  delete_->setEnabled(reason.isEmpty());
  up_down_->setEnabled(reason.isEmpty());
}

void RecipeLines::HideGrid() {
  grid_->hide();
  hint_->hide();
  totals_->HideTotals();
}

ScanPanel& RecipeLines::BeginScan() {
  grid_was_hidden_ = grid_->isHidden();
  hint_was_hidden_ = hint_->isHidden();
  grid_->hide();
  hint_->hide();
  delete_->hide();
  scan_->show();
  scan_->parentWidget()->layout()->activate();
  return *scan_;
}

void RecipeLines::EndScan() {
  scan_->hide();
  delete_->show();
  grid_->setHidden(grid_was_hidden_);
  hint_->setHidden(hint_was_hidden_);
}

void RecipeLines::ShowPenCapacity(std::optional<int> size) {
  if (size) {
    pen_capacity_->setText(ToQString(PenCapacityWarning(*size)));
  }
  pen_capacity_->setVisible(size.has_value());
}

void RecipeLines::ShowFixedTexts() {
  hint_->setText(QTr("Choose a batch type in \"Batch By\" to enter the ingredients."));
  move_legend_->setText(QTr("Move"));
}

}  // namespace vrx
