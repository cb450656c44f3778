#include "desktop/recipes/ingredient_list.h"

#include <QAbstractTableModel>
#include <QEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScreen>
#include <QScrollBar>
#include <QVBoxLayout>
#include <QWheelEvent>
#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <utility>

#include "base/encoding.h"
#include "desktop/dialogs/about_and_splash.h"
#include "widgets/layout.h"
#include "widgets/qt_text.h"

namespace vrx {

namespace {

enum ListColumn : int { kId, kName, kDescription, kDryMatterPercent, kHandAdd, kColumnCount };

constexpr std::array<const char*, kColumnCount> kListCaptions{"ID", "Name", "Description",
                                                              "Dry Matter (%)", "Hand-Add"};

constexpr int kRowsInView = 12;

QString CellText(const IngredientRecord& ingredient, int column) {
  switch (column) {
    case kId:
      return QString::number(ingredient.id);
    case kName:
      return ToQString(ingredient.name);
    case kDescription:
      return ToQString(ingredient.description);
    case kDryMatterPercent:
      return QString::number(ingredient.dry_matter_percent);
    default:
      return ingredient.hand_add ? QTr("Yes") : QTr("No");
  }
}

// Separates a right-aligned number from the name after it.
QString Gap(int column) {
  constexpr QChar kEnSpace(0x2002);
  return column == kId ? QString(kEnSpace) : QString();
}

class Model : public QAbstractTableModel {
 public:
  Model(const std::vector<IngredientRecord>& ingredients, QObject* parent)
      : QAbstractTableModel(parent), ingredients_(ingredients) {}

  template <typename Change>
  void Reset(const Change& change) {
    beginResetModel();
    change();
    endResetModel();
  }

  [[nodiscard]] int rowCount(const QModelIndex& parent) const override {
    return parent.isValid() ? 0 : static_cast<int>(ingredients_.size());
  }
  [[nodiscard]] int columnCount(const QModelIndex& parent) const override {
    return parent.isValid() ? 0 : kColumnCount;
  }
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override {
    switch (role) {
      case Qt::DisplayRole:
        return CellText(ingredients_.at(static_cast<std::size_t>(index.row())), index.column()) +
               Gap(index.column());
      case Qt::TextAlignmentRole:
        return QVariant::fromValue((index.column() == kId ? Qt::AlignRight : Qt::AlignLeft) |
                                   Qt::AlignVCenter);
      default:
        return {};
    }
  }
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                    int role) const override {
    if (orientation != Qt::Horizontal) {
      return {};
    }
    switch (role) {
      case Qt::DisplayRole:
        return QTr(kListCaptions.at(static_cast<std::size_t>(section))) + Gap(section);
      case Qt::TextAlignmentRole:
        return QVariant::fromValue((section == kId ? Qt::AlignRight : Qt::AlignLeft) |
                                   Qt::AlignVCenter);
      default:
        return {};
    }
  }

 private:
  const std::vector<IngredientRecord>& ingredients_;
};

bool Begins(const QString& text, const QString& with) {
  return text.startsWith(with, Qt::CaseInsensitive);
}

// The ways in which a text may match, best first.
using Match = bool (*)(const IngredientRecord&, const QString&);
constexpr std::array<Match, 5> kMatches = {
    [](const IngredientRecord& row, const QString& text) { return CellText(row, kId) == text; },
    [](const IngredientRecord& row, const QString& text) {
      return Begins(CellText(row, kId), text);
    },
    [](const IngredientRecord& row, const QString& text) {
      return Begins(CellText(row, kName), text);
    },
    [](const IngredientRecord& row, const QString& text) {
      return Begins(CellText(row, kDescription), text);
    },
    [](const IngredientRecord& row, const QString& text) {
      return CellText(row, kDescription).contains(text, Qt::CaseInsensitive);
    },
};

QTableView* MakeGrid(QWidget* parent) {
  auto* const grid = new QTableView(parent);
  grid->setObjectName(QStringLiteral("grdINGSEL"));
  grid->setAccessibleName(QTr("Ingredients in use"));
  grid->setFrameShape(QFrame::NoFrame);
  grid->setFocusPolicy(Qt::NoFocus);
  grid->setSelectionBehavior(QAbstractItemView::SelectRows);
  grid->setSelectionMode(QAbstractItemView::SingleSelection);
  grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
  grid->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
  grid->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  grid->setShowGrid(false);
  grid->setWordWrap(false);
  grid->verticalHeader()->hide();
  grid->verticalHeader()->setDefaultSectionSize(grid->fontMetrics().height() + kSpacing / 2);
  grid->horizontalHeader()->setHighlightSections(false);
  grid->horizontalHeader()->setStretchLastSection(true);
  grid->horizontalHeader()->setSectionsClickable(false);
  return grid;
}

constexpr int kNoLimit = std::numeric_limits<short>::max();  // what is found ends the text

}  // namespace

IngredientList::IngredientList(QWidget* parent)
    : QFrame(parent, Qt::ToolTip), grid_(MakeGrid(this)), empty_(new QLabel(this)) {
  setFrameShape(QFrame::StyledPanel);
  setAttribute(Qt::WA_ShowWithoutActivating);
  auto* const model = new Model(ingredients_, this);
  grid_->setModel(model);
  grid_->hideColumn(kDryMatterPercent);
  grid_->hideColumn(kHandAdd);
  empty_->setObjectName(QStringLiteral("lblNoIngredients"));
  empty_->setMargin(kSpacing);
  auto* const column = new QVBoxLayout(this);
  column->setContentsMargins(1, 1, 1, 1);
  column->setSpacing(0);
  column->addWidget(grid_);
  column->addWidget(empty_);
  connect(grid_, &QTableView::clicked, this,
          [this](const QModelIndex& index) { Q_EMIT Picked(index.row()); });
}

void IngredientList::SetIngredients(std::vector<IngredientRecord> ingredients) {
  static_cast<Model*>(grid_->model())->Reset([&] { ingredients_ = std::move(ingredients); });
}

int IngredientList::Find(const QString& text) const {
  for (const Match match : kMatches) {
    const auto found = std::find_if(ingredients_.begin(), ingredients_.end(),
                                    [&](const IngredientRecord& row) { return match(row, text); });
    if (found != ingredients_.end()) {
      return static_cast<int>(found - ingredients_.begin());
    }
  }
  return -1;
}

int IngredientList::RowOf(const QString& ingredient_name) const {
  const auto found = std::find_if(ingredients_.begin(), ingredients_.end(), [&](const auto& row) {
    return CellText(row, kName) == ingredient_name;
  });
  return found == ingredients_.end() ? -1 : static_cast<int>(found - ingredients_.begin());
}

int IngredientList::CurrentRow() const { return grid_->currentIndex().row(); }

void IngredientList::SetCurrentRow(int row) {
  if (row < 0) {
    grid_->clearSelection();
    grid_->setCurrentIndex({});
  } else {
    grid_->selectRow(row);
    grid_->scrollTo(grid_->model()->index(row, kName));
  }
}

int IngredientList::RowsPerPage() const {
  return std::max(1, grid_->viewport()->height() / std::max(1, grid_->rowHeight(0)) - 1);
}

void IngredientList::Fit() {
  const bool empty = ingredients_.empty();
  empty_->setText(QTr("No ingredient is in use: describe one on the Ingredients tab."));
  empty_->setVisible(empty);
  grid_->setVisible(!empty);
  if (empty) {
    resize(sizeHint());
    return;
  }
  int width = 2 + 2 * frameWidth() + grid_->verticalScrollBar()->sizeHint().width();
  for (const int column : {kId, kName, kDescription}) {
    grid_->resizeColumnToContents(column);
    grid_->setColumnWidth(column, grid_->columnWidth(column) + 2 * kSpacing);
    width += grid_->columnWidth(column);
  }
  const int rows = std::min(kRowsInView, static_cast<int>(ingredients_.size()));
  resize(width, 2 + 2 * frameWidth() + grid_->horizontalHeader()->sizeHint().height() +
                    rows * grid_->verticalHeader()->defaultSectionSize());
}

void IngredientList::DropDown(const QWidget& editor) {
  if (isVisible()) {
    return;
  }
  Fit();
  const QPoint below = editor.mapToGlobal(QPoint(0, editor.height()));
  const QRect room = editor.screen()->availableGeometry();
  QRect place(below, size());
  if (place.bottom() > room.bottom()) {
    place.moveBottom(editor.mapToGlobal(QPoint(0, 0)).y() - 1);
  }
  place.moveLeft(std::max(room.left(), std::min(place.left(), room.right() - width())));
  move(place.topLeft());
  show();
}

IngredientDropDown::IngredientDropDown(IngredientList& list, QWidget* parent)
    : FilteredEdit(
          [&list](std::string_view text, int key) {
            const std::string typed = std::string(text) + static_cast<char>(key);
            return list.Find(QString::fromLatin1(typed.c_str())) < 0 ? 0 : key;
          },
          kNoLimit, parent),
      list_(list) {
  Explain([](std::string_view text, int key) {
    return Tr("No ingredient in use matches \"%1\"",
              {Windows1252ToUtf8(std::string(text) + static_cast<char>(key))});
  });
  setObjectName(QStringLiteral("grdREC.Ingredient"));
  setAccessibleName(QTr("Ingredient"));
  connect(this, &QLineEdit::textEdited, this, &IngredientDropDown::Find);
  connect(&list_, &IngredientList::Picked, this, [this](int row) {
    if (isVisible()) {
      Choose(row);
      Q_EMIT Picked();
    }
  });
}

void IngredientDropDown::Begin(const QString& ingredient_name) {
  chosen_.reset();
  setText(ingredient_name);
  selectAll();
  list_.SetCurrentRow(list_.RowOf(ingredient_name));
}

void IngredientDropDown::Find() {
  const int row = text().isEmpty() ? -1 : list_.Find(text());
  list_.SetCurrentRow(row);
  chosen_ = row < 0 ? std::nullopt
                    : std::optional(list_.Ingredients().at(static_cast<std::size_t>(row)).id);
  list_.DropDown(*this);
}

void IngredientDropDown::Choose(int row) {
  const IngredientRecord& ingredient = list_.Ingredients().at(static_cast<std::size_t>(row));
  chosen_ = ingredient.id;
  setText(ToQString(ingredient.name));
  selectAll();
  list_.SetCurrentRow(row);
}

void IngredientDropDown::Move(int rows) {
  const int count = static_cast<int>(list_.Ingredients().size());
  if (count == 0) {
    return;
  }
  if (!list_.isVisible()) {
    list_.DropDown(*this);
  }
  const int current = list_.CurrentRow();
  Choose(current < 0 ? (rows > 0 ? 0 : count - 1) : std::clamp(current + rows, 0, count - 1));
}

void IngredientDropDown::keyPressEvent(QKeyEvent* event) {
  const bool list_key = (event->modifiers() & Qt::AltModifier) != 0;
  event->accept();
  switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
      if (list_key) {
        list_.isVisible() ? list_.hide() : list_.DropDown(*this);
      } else {
        Move(event->key() == Qt::Key_Down ? 1 : -1);
      }
      return;
    case Qt::Key_F4:
      list_.isVisible() ? list_.hide() : list_.DropDown(*this);
      return;
    case Qt::Key_PageDown:
      Move(list_.RowsPerPage());
      return;
    case Qt::Key_PageUp:
      Move(-list_.RowsPerPage());
      return;
    default:
      FilteredEdit::keyPressEvent(event);
  }
}

void IngredientDropDown::mousePressEvent(QMouseEvent* event) {
  FilteredEdit::mousePressEvent(event);
  list_.DropDown(*this);
}

void IngredientDropDown::wheelEvent(QWheelEvent* event) { event->accept(); }

// Opens the list once the editor has its position, and moves the list with it.
bool IngredientDropDown::event(QEvent* event) {
  const bool done = FilteredEdit::event(event);
  switch (event->type()) {
    case QEvent::Show:
      window()->installEventFilter(this);
      list_.DropDown(*this);
      break;
    case QEvent::Hide:
      list_.hide();
      break;
    default:
      break;
  }
  return done;
}

bool IngredientDropDown::eventFilter(QObject* watched, QEvent* event) {
  if (watched == window() && (event->type() == QEvent::Move || event->type() == QEvent::Resize)) {
    list_.hide();
  }
  return FilteredEdit::eventFilter(watched, event);
}

}  // namespace vrx
