#include "desktop/insight/insight_table.h"

#include <QClipboard>
#include <QFont>
#include <QGuiApplication>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QStringList>
#include <algorithm>
#include <optional>

#include "base/date.h"
#include "widgets/labels.h"
#include "widgets/layout.h"
#include "widgets/qt_text.h"

namespace vrx {
namespace {

constexpr int kMostColumnWidth = 320;
constexpr int kMostShownRows = 40'000'000;  // a Qt table counts pixels in 32 bits
constexpr int kRowsToMeasure = 200;

// In two lines if it is long: more columns are seen at once. Broken where the longer line is
// shortest.
QString Broken(QString caption) {
  constexpr qsizetype kShort = 8;
  qsizetype best = -1;
  const auto longer = [&](qsizetype blank) { return std::max(blank, caption.size() - blank); };
  for (qsizetype blank = caption.indexOf(u' '); blank >= 0;
       blank = caption.indexOf(u' ', blank + 1)) {
    best = best < 0 || longer(blank) < longer(best) ? blank : best;
  }
  return caption.size() > kShort && best >= 0 ? caption.replace(best, 1, u'\n') : caption;
}

// As on the tab Batched/Fed: a day, or a day and a time.
QString DayText(const std::string& text) {
  constexpr std::size_t kDayLength = 10;
  const std::optional<Date> day = ParseStoredDate(text.substr(0, kDayLength));
  if (!day) {
    return ToQString(text);
  }
  const std::string time = text.size() > kDayLength ? " " + text.substr(kDayLength + 1) : "";
  return ToQString(MediumText(*day) + time);
}

Qt::Alignment AlignmentOf(CellKind kind) {
  return Qt::AlignVCenter | (IsNumber(kind) ? Qt::AlignRight : Qt::AlignLeft);
}

}  // namespace

void InsightTableModel::Show(const AnswerTable* table, const std::string& units) {
  constexpr std::size_t kMostColumnsAcross = 14;
  beginResetModel();
  table_ = table;
  units_ = units;
  upright_ = table != nullptr && table->rows.size() == 1 && table->total.empty() &&
             table->columns.size() > kMostColumnsAcross;
  endResetModel();
}

bool InsightTableModel::IsTotal(std::size_t row) const { return row >= table_->rows.size(); }

bool InsightTableModel::IsRow(int row) const {
  return table_ != nullptr && !upright_ && row >= 0 && !IsTotal(static_cast<std::size_t>(row));
}

int InsightTableModel::rowCount(const QModelIndex& parent) const {
  if (parent.isValid() || table_ == nullptr || table_->rows.empty()) {
    return 0;
  }
  if (upright_) {
    return static_cast<int>(table_->columns.size());
  }
  const std::size_t rows = table_->rows.size() + (table_->total.empty() ? 0 : 1);
  return static_cast<int>(std::min<std::size_t>(rows, kMostShownRows));
}

int InsightTableModel::columnCount(const QModelIndex& parent) const {
  if (parent.isValid() || table_ == nullptr) {
    return 0;
  }
  return upright_ ? 2 : static_cast<int>(table_->columns.size());
}

QString InsightTableModel::Caption(std::size_t column) const {
  const AnswerColumn& shown = table_->columns[column];
  const QString caption = QTr(shown.caption);
  switch (shown.kind) {
    case CellKind::kWeight:
      return caption + QStringLiteral(" (") + ToQString(units_) + u')';
    case CellKind::kMinutes:
      return caption + QStringLiteral(" (min)");
    default:
      return caption;
  }
}

QString InsightTableModel::Text(std::size_t row, std::size_t column) const {
  const AnswerColumn& shown = table_->columns[column];
  if (IsTotal(row)) {
    const AnswerCell& cell = table_->total.at(column);
    const bool is_empty = std::holds_alternative<std::monostate>(cell);
    return is_empty ? QString() : ToQString(ShownText(shown, cell));
  }
  const AnswerCell& cell = table_->rows[row].at(column);
  const std::string plain = ShownText(shown, cell);
  // A name of the records is no text of the window.
  const bool is_name = std::holds_alternative<std::string>(cell) && shown.kind != CellKind::kWord;
  const QString text = is_name ? ToQString(plain) : QTr(plain);
  if (upright_ && text.isEmpty()) {
    return shown.key == "from" ? QTr("first record")
           : shown.key == "to" ? QTr("last record")
                               : QTr("none");
  }
  if (shown.kind == CellKind::kDay || shown.key == "key.day" || shown.kind == CellKind::kMoment) {
    return DayText(plain);
  }
  return text;
}

QVariant InsightTableModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || table_ == nullptr) {
    return {};
  }
  const auto row = static_cast<std::size_t>(upright_ ? 0 : index.row());
  const auto column = static_cast<std::size_t>(upright_ ? index.row() : index.column());
  switch (role) {
    case Qt::DisplayRole:
      return upright_ && index.column() == 0 ? Caption(column) : Text(row, column);
    case Qt::ToolTipRole:
      return Text(row, column);
    case Qt::TextAlignmentRole:
      return QVariant::fromValue(upright_ ? Qt::AlignVCenter | Qt::AlignLeft
                                          : AlignmentOf(table_->columns[column].kind));
    case Qt::FontRole: {
      QFont font;
      font.setBold(!upright_ && IsTotal(row));
      return font;
    }
    default:
      return {};
  }
}

QVariant InsightTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || table_ == nullptr) {
    return {};
  }
  if (upright_) {
    switch (role) {
      case Qt::DisplayRole:
        return section == 0 ? QTr("What") : QTr("Value");
      case Qt::TextAlignmentRole:
        return QVariant::fromValue(Qt::AlignVCenter | Qt::AlignLeft);
      default:
        return {};
    }
  }
  const auto column = static_cast<std::size_t>(section);
  switch (role) {
    case Qt::DisplayRole:
      return Broken(Caption(column));
    case Qt::AccessibleTextRole:
      return Caption(column);
    case Qt::TextAlignmentRole:
      return QVariant::fromValue(AlignmentOf(table_->columns[column].kind));
    default:
      return {};
  }
}

InsightTable::InsightTable(QWidget* parent)
    : QTableView(parent), model_(new InsightTableModel(this)) {
  setObjectName(QStringLiteral("grdInsight"));
  setAccessibleName(QTr("Figures"));
  setHorizontalHeader(new PaddedHeader(this));
  setModel(model_);
  setSelectionBehavior(SelectRows);
  setSelectionMode(ExtendedSelection);
  setEditTriggers(NoEditTriggers);
  setTabKeyNavigation(false);
  setWordWrap(false);
  setCornerButtonEnabled(false);
  setVerticalScrollMode(ScrollPerPixel);
  setHorizontalScrollMode(ScrollPerPixel);
  verticalHeader()->hide();
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  verticalHeader()->setDefaultSectionSize(fontMetrics().height() + kSpacing);
  horizontalHeader()->setResizeContentsPrecision(kRowsToMeasure);
  horizontalHeader()->setMaximumSectionSize(kMostColumnWidth);
  horizontalHeader()->setHighlightSections(false);
  connect(this, &QTableView::doubleClicked, this, [this](const QModelIndex& index) {
    if (model_->IsRow(index.row())) {
      Q_EMIT RowChosen(index.row());
    }
  });
  connect(selectionModel(), &QItemSelectionModel::currentChanged, this, &InsightTable::RowChanged);
}

void InsightTable::Show(const AnswerTable* table, const std::string& units) {
  model_->Show(table, units);
  horizontalHeader()->setStretchLastSection(model_->IsUpright());
  resizeColumnsToContents();
  scrollToTop();
  setCurrentIndex(model_->index(0, 0));
}

int InsightTable::CurrentRow() const {
  return model_->IsRow(currentIndex().row()) ? currentIndex().row() : -1;
}

bool InsightTable::EnterPressed() {
  if (CurrentRow() < 0) {
    return false;
  }
  Q_EMIT RowChosen(CurrentRow());
  return true;
}

void InsightTable::copy() {
  QModelIndexList rows = selectionModel()->selectedRows();
  std::sort(rows.begin(), rows.end(), [](const QModelIndex& one, const QModelIndex& other) {
    return one.row() < other.row();
  });
  const auto line = [this](const auto& text_of) {
    QStringList cells;
    for (int column = 0; column < model_->columnCount(); ++column) {
      cells += text_of(column);
    }
    return cells.join(u'\t') + u'\n';
  };
  QString text = line([this](int column) {
    return model_->headerData(column, Qt::Horizontal, Qt::DisplayRole).toString().simplified();
  });
  for (const QModelIndex& row : rows) {
    text += line(
        [&](int column) { return row.siblingAtColumn(column).data().toString().simplified(); });
  }
  if (!rows.isEmpty()) {
    QGuiApplication::clipboard()->setText(text);
  }
}

}  // namespace vrx
