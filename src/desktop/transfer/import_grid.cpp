#include "desktop/transfer/import_grid.h"

#include <QApplication>
#include <QFont>
#include <QFontMetrics>
#include <QHeaderView>
#include <QPainter>
#include <QStyledItemDelegate>
#include <algorithm>
#include <cstddef>

#include "base/encoding.h"
#include "desktop/dialogs/form_parts.h"
#include "widgets/qt_text.h"

namespace vrx {
namespace {

// Told as 12582911 and 12703664, blue in the highest byte.
constexpr QColor kOddRow{255, 255, 191};
constexpr QColor kEvenRow{176, 215, 193};

constexpr int kMostCharacters = 40;  // of a column's opening width
constexpr std::size_t kSampleRows = 500;
constexpr qsizetype kMostDrawn = 256;  // characters of a cell

// Laying out a text takes time by its length, and a damaged file has fields of 60,000 characters.
class ImportCells : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  QString displayText(const QVariant& value, const QLocale& /*locale*/) const override {
    const QString text = value.toString();
    return text.size() > kMostDrawn ? text.left(kMostDrawn) + QChar(0x2026) : text;
  }
};

QFont GridFont() {
  QFont font(QStringLiteral("Courier New"));
  font.setStyleHint(QFont::Monospace);
  return font;
}

bool IsText(int column) {
  return column == kImportedType || column == kImportedTime || column == kImportedDate;
}

}  // namespace

ImportModel::ImportModel(const ImportSession& session, QObject* parent)
    : QAbstractTableModel(parent), session_(session) {}

void ImportModel::Reset() {
  beginResetModel();
  endResetModel();
}

int ImportModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : session_.Form().grd_import_rows;
}

int ImportModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : kImportColumns;
}

// Ctrl+C asks for the current cell also where there is none.
QVariant ImportModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) {
    return {};
  }
  const int column = index.column() + 1;
  switch (role) {
    case Qt::DisplayRole:
      return ToQString(Windows1252ToUtf8(
          session_.File().Imported().Cell(static_cast<std::size_t>(index.row()) + 1, column)));
    case Qt::TextAlignmentRole:
      return QVariant::fromValue(Qt::AlignVCenter |
                                 (IsText(column) ? Qt::AlignLeft : Qt::AlignRight));
    case Qt::BackgroundRole:
      return index.row() % 2 == 0 ? kOddRow : kEvenRow;
    case Qt::ForegroundRole:
      return QColor(Qt::black);  // both stripes are light, in a dark theme too
    default:
      return {};
  }
}

QVariant ImportModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole) {
    return {};
  }
  return ToQString(
      session_.Form().grd_import_columns.at(static_cast<std::size_t>(section)).caption);
}

int ImportModel::LongestText(int column) const {
  const ImportedData& rows = session_.File().Imported();
  const std::size_t count = rows.FilledCount();
  const std::size_t samples = std::min(count, kSampleRows);
  std::size_t longest = 0;
  for (std::size_t i = 0; i < samples; ++i) {
    const std::size_t row = samples == 1 ? 1 : 1 + i * (count - 1) / (samples - 1);
    longest = std::max(longest, rows.Cell(row, column).size());
  }
  return static_cast<int>(longest);
}

ImportGrid::ImportGrid(const ImportSession& session, QWidget* parent)
    : QTableView(parent), session_(session), model_(new ImportModel(session, this)) {
  setObjectName(QStringLiteral("grdIMPORT"));
  setAccessibleName(QStringLiteral("Imported transactions"));
  setFont(GridFont());
  setModel(model_);
  setItemDelegate(new ImportCells(this));
  setSelectionBehavior(SelectRows);
  setEditTriggers(NoEditTriggers);
  setTabKeyNavigation(false);
  setWordWrap(false);
  setHorizontalScrollMode(ScrollPerPixel);
  verticalHeader()->hide();
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  verticalHeader()->setDefaultSectionSize(fontMetrics().height() + kSpacing / 2);
  horizontalHeader()->setHighlightSections(false);
}

void ImportGrid::ShowImport() {
  model_->Reset();
  ShowColumns();
  FitColumns();
}

void ImportGrid::ShowColumns() {
  const auto& columns = session_.Form().grd_import_columns;
  for (int i = 0; i < kImportColumns; ++i) {
    setColumnHidden(i, !columns.at(static_cast<std::size_t>(i)).visible);
  }
}

// Characters of this font are of one width: the longest text is the widest.
void ImportGrid::FitColumns() {
  const int character = fontMetrics().horizontalAdvance(u'0');
  const QFontMetrics header = horizontalHeader()->fontMetrics();
  for (int i = 0; i < kImportColumns; ++i) {
    if (isColumnHidden(i)) {
      continue;
    }
    const QString caption = model_->headerData(i, Qt::Horizontal, Qt::DisplayRole).toString();
    const int text = std::min(model_->LongestText(i + 1), kMostCharacters) * character;
    setColumnWidth(i, std::max(text, header.horizontalAdvance(caption)) + 2 * kSpacing);
  }
}

bool ImportGrid::Empty() const {
  const ImportedData& rows = session_.File().Imported();
  return rows.RowCount() == 0 || !rows.Filled(1);
}

void ImportGrid::paintEvent(QPaintEvent* event) {
  QTableView::paintEvent(event);
  if (Empty()) {
    QPainter painter(viewport());
    painter.setFont(QApplication::font());
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(viewport()->rect(), Qt::AlignCenter | Qt::TextWordWrap,
                     QStringLiteral("Import a transaction file (.QXT) to see its records here."));
  }
}

}  // namespace vrx
