#include "desktop/history/history_header.h"

#include <QEvent>
#include <QFontMetrics>
#include <QProxyStyle>
#include <QScopedValueRollback>
#include <QStyleOptionHeader>
#include <algorithm>
#include <cstddef>
#include <numeric>

#include "desktop/history/history_painting.h"
#include "widgets/layout.h"
#include "widgets/qt_text.h"

namespace vrx {

namespace {

constexpr int kLeastHeight = 19;  // 285 twips

// A text as wide as the widest values of a column.
QString WidestValue(ColumnContent content) {
  switch (content) {
    case ColumnContent::kNumber:
      return QStringLiteral("0000000");
    case ColumnContent::kWeight:
      return QStringLiteral("0000000.0");
    case ColumnContent::kTime:
      return QStringLiteral("02:05 PM");
    case ColumnContent::kDate:
      return QStringLiteral("14-Mar-11");
    case ColumnContent::kText:
      break;
  }
  return QStringLiteral("MMMMMMMM");
}

// Aligns captions with the texts of their cells.
class CaptionMargins : public QProxyStyle {
 public:
  explicit CaptionMargins(QObject* parent) { setParent(parent); }

  int pixelMetric(PixelMetric metric, const QStyleOption* option,
                  const QWidget* widget) const override {
    return metric == PM_HeaderMargin ? kHistoryMargin
                                     : QProxyStyle::pixelMetric(metric, option, widget);
  }
};

}  // namespace

HistoryHeader::HistoryHeader(QWidget* parent) : QHeaderView(Qt::Horizontal, parent) {
  setSectionsClickable(true);
  setSectionsMovable(true);
  setFirstSectionMovable(true);
  setHighlightSections(false);
  setStyle(new CaptionMargins(this));
  setSectionResizeMode(Interactive);
  setTextElideMode(Qt::ElideRight);
  setResizeContentsPrecision(0);  // no row but those on the screen
  setFont(HistoryStyles::HeaderFont());
  setMinimumHeight(kLeastHeight);
  setMinimumSectionSize(3 * kSpacing);
  ApplyColors();
  connect(this, &QHeaderView::sectionClicked, this,
          [this](int section) { Q_EMIT SortChosen(section + 1); });
  connect(this, &QHeaderView::sectionMoved, this, [this](int section, int /*from*/, int to) {
    if (!by_program_) {
      Q_EMIT ColumnMoved(section + 1, to + 1);
    }
  });
  connect(this, &QHeaderView::sectionResized, this, [this](int section, int /*from*/, int /*to*/) {
    if (!by_program_) {
      sized_.insert(section + 1);
      least_.at(static_cast<std::size_t>(section)) = sectionSize(section);
    }
  });
}

void HistoryHeader::ShowColumns(const HistoryGrid& grid) {
  const QScopedValueRollback by_program(by_program_, true);
  const HistoryColumns& columns = grid.Columns();
  ShowOrder(columns);
  for (const HistoryColumn& column : HistoryColumnTable()) {
    const int section = column.index - 1;
    const bool visible = columns.IsVisible(column.index);
    if (isSectionHidden(section) == visible) {
      setSectionHidden(section, !visible);
    }
    least_.at(static_cast<std::size_t>(section)) =
        !visible                        ? 0
        : sized_.contains(column.index) ? sectionSize(section)
                                        : WidthFor(column.index, columns.Caption(column.index));
  }
  ShowSort(grid);
  setVisible(grid.ColumnHeaders());
}

void HistoryHeader::FillWidth(int width) {
  const QScopedValueRollback by_program(by_program_, true);
  const auto takes_more = [this](int section) {
    return !isSectionHidden(section) && !sized_.contains(section + 1);
  };
  int left = std::max(0, width - std::accumulate(least_.begin(), least_.end(), 0));
  int sharing = 0;
  for (int section = 0; section < count(); ++section) {
    sharing += takes_more(section) ? 1 : 0;
  }
  for (int visual = 0; visual < count(); ++visual) {
    const int section = logicalIndex(visual);
    if (!takes_more(section)) {
      continue;
    }
    const int share = left / sharing--;
    left -= share;
    const int size = least_.at(static_cast<std::size_t>(section)) + share;
    if (sectionSize(section) != size) {
      resizeSection(section, size);
    }
  }
}

void HistoryHeader::ShowOrder(const HistoryColumns& columns) {
  std::vector<int> by_position(kGridColumnCount);
  for (const HistoryColumn& column : HistoryColumnTable()) {
    by_position.at(static_cast<std::size_t>(columns.Position(column.index)) - 1) = column.index;
  }
  for (int visual = 0; visual < kGridColumnCount; ++visual) {
    const int section = by_position[static_cast<std::size_t>(visual)] - 1;
    if (visualIndex(section) != visual) {
      moveSection(visualIndex(section), visual);
    }
  }
}

void HistoryHeader::ShowSort(const HistoryGrid& grid) {
  setSortIndicatorShown(grid.SortColumn() != 0);
  if (grid.SortColumn() != 0) {
    setSortIndicator(grid.SortColumn() - 1,
                     grid.SortAscending() ? Qt::AscendingOrder : Qt::DescendingOrder);
  }
}

int HistoryHeader::WidthFor(int column, const std::string& caption) const {
  const QFontMetrics values{HistoryStyles::CellFont()};
  return 2 * kSpacing +
         std::max(values.horizontalAdvance(WidestValue(HistoryColumnAt(column).content)),
                  fontMetrics().horizontalAdvance(ToQString(caption)) + SortMarkWidth());
}

int HistoryHeader::CaptionRoom(int width, bool marked) const {
  QStyleOptionHeader option;
  initStyleOption(&option);
  option.rect = {0, 0, width, sizeHint().height()};
  option.sortIndicator = marked ? QStyleOptionHeader::SortDown : QStyleOptionHeader::None;
  return style()->subElementRect(QStyle::SE_HeaderLabel, &option, this).width();
}

int HistoryHeader::SortMarkWidth() const {
  constexpr int kAnyWidth = 1000;
  return CaptionRoom(kAnyWidth, false) - CaptionRoom(kAnyWidth, true);
}

// Elides a caption before the sort mark, which the base class does not do.
void HistoryHeader::initStyleOptionForIndex(QStyleOptionHeader* option, int section) const {
  QHeaderView::initStyleOptionForIndex(option, section);
  const bool marked = isSortIndicatorShown() && sortIndicatorSection() == section;
  option->text = option->fontMetrics.elidedText(
      model()->headerData(section, Qt::Horizontal, Qt::DisplayRole).toString(), textElideMode(),
      CaptionRoom(sectionSize(section), marked));
}

std::vector<ShownColumn> HistoryHeader::Shown() const {
  std::vector<ShownColumn> shown;
  for (int visual = 0; visual < count(); ++visual) {
    const int section = logicalIndex(visual);
    if (!isSectionHidden(section)) {
      shown.push_back({.column = section + 1, .width = sectionSize(section)});
    }
  }
  return shown;
}

void HistoryHeader::ApplyColors() {
  const QColor specified = HistoryStyles::HeaderColor(palette());
  if (palette().color(QPalette::ButtonText) != specified) {
    QPalette colors;  // all else stays the form's
    colors.setColor(QPalette::ButtonText, specified);
    setPalette(colors);
  }
}

void HistoryHeader::changeEvent(QEvent* event) {
  QHeaderView::changeEvent(event);
  if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange) {
    ApplyColors();
  }
}

}  // namespace vrx
