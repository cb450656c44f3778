#include "desktop/recipes/recipe_totals_row.h"

#include <QEvent>
#include <QHeaderView>
#include <chrono>

#include "desktop/app/captions.h"
#include "desktop/dialogs/about_and_splash.h"
#include "desktop/recipes/recipe_grid_cells.h"
#include "widgets/drawing.h"
#include "widgets/labels.h"
#include "widgets/layout.h"
#include "widgets/qt_text.h"

namespace vrx {
namespace {

constexpr int kTotalsCaption = 1110;
constexpr std::chrono::milliseconds kFlashInterval{600};
constexpr QColor kAlarmColor(0xFF, 0x80, 0x80);

bool IsLeft(int column) { return column == kColumnIngredient; }

// The operator may make a column narrower than its total, which is then visibly elided.
QLabel* AddTotal(QWidget& strip, const char* name) {
  auto* const label = new ElidedLabel(&strip);
  label->setObjectName(QLatin1String(name));
  return label;
}

void Paint(QLabel& label, const QColor& background, const QColor& text) {
  QPalette palette = label.palette();
  palette.setColor(QPalette::Window, background);
  palette.setColor(QPalette::WindowText, text);
  label.setPalette(palette);
}

}  // namespace

RecipeTotalsRow::RecipeTotalsRow(const RecipeGrid& grid, QWidget* parent)
    : QWidget(parent), grid_(grid), strip_(new QWidget(this)), timer_(new QTimer(this)) {
  for (int column = 0; column < kRecipeColumnCount; ++column) {
    const RecipeColumnRow& row = RecipeColumns()[static_cast<std::size_t>(column)];
    QLabel* const label = IsLeft(column) ? AddLabel(*strip_, "lblTarTot", kTotalsCaption)
                                         : AddTotal(*strip_, row.total_label);
    label->setAlignment((IsLeft(column) ? Qt::AlignLeft : Qt::AlignRight) | Qt::AlignVCenter);
    label->setIndent(kCellMargin);
    MakeDemiBold(*label);
    if (!IsLeft(column)) {
      label->setFont(TabularFigures(label->font()));
      label->setAccessibleDescription(QTr("Total of %1").arg(ToQString(row.caption)));
      label->setAutoFillBackground(true);
    }
    labels_.at(static_cast<std::size_t>(column)) = label;
  }
  IngPctTotal().installEventFilter(this);
  timer_->setObjectName(QStringLiteral("timPercentTotalError"));
  timer_->setInterval(kFlashInterval);
  connect(timer_, &QTimer::timeout, this, &RecipeTotalsRow::Flash);
  connect(&grid_, &RecipeGrid::LaidOut, this, &RecipeTotalsRow::Follow);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  PaintLabels();
  HideTotals();
}

QSize RecipeTotalsRow::sizeHint() const {
  return {0, labels_.front()->sizeHint().height() + kSpacing};
}

void RecipeTotalsRow::Show(const CurrentRecipe& shown) {
  entry_ = shown.Entry();
  for (int column = 0; column < kRecipeColumnCount; ++column) {
    const auto total = RecipeColumns()[static_cast<std::size_t>(column)].total;
    QLabel& label = *labels_.at(static_cast<std::size_t>(column));
    if (total != nullptr) {
      label.setText(ToQString(shown.totals.*total));
    }
    label.setVisible(entry_ != LineEntry::kNone && IsColumnShown(column, entry_));
  }
  Follow();
  ApplyPercentRule();
}

RecipeColumnWidths RecipeTotalsRow::Widths() const {
  RecipeColumnWidths widths{};
  for (std::size_t column = kColumnIngredient + 1; column < kRecipeColumnCount; ++column) {
    const QLabel& label = *labels_.at(column);
    widths.at(column) = label.fontMetrics().horizontalAdvance(label.text()) + 2 * kCellMargin;
  }
  return widths;
}

void RecipeTotalsRow::HideTotals() {
  entry_ = LineEntry::kNone;
  for (QLabel* label : labels_) {
    label->hide();
  }
  ApplyPercentRule();
}

void RecipeTotalsRow::Follow() {
  const QWidget& viewport = *grid_.viewport();
  const QHeaderView& header = *grid_.horizontalHeader();
  const int left = mapFromGlobal(viewport.mapToGlobal(QPoint(0, 0))).x();
  strip_->setGeometry(left, 0, viewport.width(), height());
  for (int column = 0; column < kRecipeColumnCount; ++column) {
    labels_.at(static_cast<std::size_t>(column))
        ->setGeometry(header.sectionViewportPosition(column), 0, header.sectionSize(column),
                      sizeHint().height());
  }
}

void RecipeTotalsRow::PaintLabels() {
  const RecipeCellLook look = LookOfCell(CellRole::kComputed, false, palette());
  for (int column = 0; column < kRecipeColumnCount; ++column) {
    QLabel& label = *labels_.at(static_cast<std::size_t>(column));
    if (IsLeft(column)) {
      continue;
    }
    const bool warns = alarm_ && &label == &IngPctTotal();
    const QColor background = warns ? kAlarmColor : look.background;
    Paint(label, background, Readable(look.text, background, kTextContrast));
  }
}

// The 100 % rule.
void RecipeTotalsRow::ApplyPercentRule() {
  const bool by_percent = entry_ == LineEntry::kPercent;
  const bool misses = by_percent && !Totals100Percent(IngPctTotal().text().toStdString());
  if (misses != timer_->isActive()) {
    misses ? timer_->start() : timer_->stop();
  }
  if (misses != alarm_) {
    alarm_ = misses;
    PaintLabels();
  }
  Q_EMIT MissesTotal(misses);
}

void RecipeTotalsRow::Flash() {
  if (!IngPctTotal().isVisible()) {
    Q_EMIT MissesTotal(false);
    return;
  }
  alarm_ = !alarm_;
  PaintLabels();
}

bool RecipeTotalsRow::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::MouseButtonRelease) {
    ApplyPercentRule();
  }
  return QWidget::eventFilter(watched, event);
}

void RecipeTotalsRow::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) {
    PaintLabels();
  }
}

}  // namespace vrx
