#include "desktop/recipes/ingredient_drop_down.h"

#include <QEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>
#include <algorithm>
#include <cstddef>
#include <limits>

#include "widgets/qt_text.h"

namespace vrx {
namespace {

constexpr int kNoLimit = std::numeric_limits<short>::max();  // what is found ends the text

}  // namespace

IngredientDropDown::IngredientDropDown(IngredientList& list, QWidget* parent)
    : FilteredEdit(
          [&list](std::string_view text, int key) {
            const std::string typed = std::string(text) + static_cast<char>(key);
            return list.Find(QString::fromLatin1(typed.c_str())) < 0 ? 0 : key;
          },
          kNoLimit, parent),
      list_(list) {
  setObjectName(QStringLiteral("grdREC.Ingredient"));
  setAccessibleName(QStringLiteral("Ingredient"));
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

// The list drops down once the editor has its place, and does not stay behind when that moves.
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
