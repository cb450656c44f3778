#include "widgets/fields.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QFocusEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScopedValueRollback>
#include <QWheelEvent>
#include <algorithm>
#include <optional>
#include <utility>

#include "base/encoding.h"
#include "widgets/layout.h"
#include "widgets/qt_text.h"
#include "widgets/refusal_tip.h"

namespace vrx {

namespace {

// Windows-1252, 0 for a character that it does not have.
int KeyCode(QChar character) {
  const std::string code = Utf8ToWindows1252(QString(character).toStdString());
  const bool stands_in = code == "?" && character != QLatin1Char('?');
  return code.size() == 1 && !stands_in ? static_cast<unsigned char>(code.front()) : 0;
}

QString Character(int code) {
  return ToQString(Windows1252ToUtf8(std::string(1, static_cast<char>(code))));
}

// The decimal keys of the keyboards' languages.
bool IsDecimalMark(QChar character) {
  return character == u'.' || character == u',' || character == QChar(0x066B);
}

bool IsModifier(const QKeyEvent& key) {
  return key.key() == Qt::Key_Shift || key.key() == Qt::Key_Control || key.key() == Qt::Key_Alt ||
         key.key() == Qt::Key_AltGr || key.key() == Qt::Key_Meta;
}

bool IsUndo(const QKeyEvent& key) {
  return key.key() == Qt::Key_Z && key.modifiers() == Qt::ControlModifier;
}

bool IsRedo(const QKeyEvent& key) {
  const Qt::KeyboardModifiers shifted = Qt::ControlModifier | Qt::ShiftModifier;
  return (key.key() == Qt::Key_Y && key.modifiers() == Qt::ControlModifier) ||
         (key.key() == Qt::Key_Z && key.modifiers() == shifted);
}

// Whether a key brings a character in. AltGr may come as Ctrl and Alt.
bool IsTyped(const QKeyEvent& key) {
  const Qt::KeyboardModifiers held = key.modifiers() & (Qt::ControlModifier | Qt::AltModifier);
  return held != Qt::ControlModifier && !key.text().isEmpty() && key.text().front().isPrint();
}

qsizetype CommonPrefix(const QString& one, const QString& other) {
  const auto ends = std::mismatch(one.begin(), one.end(), other.begin(), other.end());
  return std::distance(one.begin(), ends.first);
}

qsizetype CommonSuffix(const QString& one, const QString& other) {
  const auto ends = std::mismatch(one.rbegin(), one.rend(), other.rbegin(), other.rend());
  return std::distance(one.rbegin(), ends.first);
}

// Shrinks in a narrow window to the width of its text in average characters.
class Box : public FilteredEdit {
 public:
  Box(Filter filter, std::size_t limit, QWidget* parent)
      : FilteredEdit(std::move(filter), static_cast<int>(limit), parent), limit_(limit) {
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
  }

  [[nodiscard]] QSize sizeHint() const override {
    return {WidthFor(*this, limit_), FilteredEdit::sizeHint().height()};
  }
  [[nodiscard]] QSize minimumSizeHint() const override {
    return {static_cast<int>(limit_) * fontMetrics().averageCharWidth() + kGroupSpacing,
            FilteredEdit::minimumSizeHint().height()};
  }

 private:
  std::size_t limit_;
};

bool IsEnter(const QKeyEvent& key) {
  const Qt::KeyboardModifiers others = key.modifiers() & ~(Qt::KeypadModifier | Qt::ShiftModifier);
  return (key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter) && others == Qt::NoModifier;
}

}  // namespace

class FilteredEdit::Gate : public QValidator {
 public:
  explicit Gate(FilteredEdit* edit) : QValidator(edit), edit_(edit) {}

  State validate(QString& text, int& cursor) const override { return edit_->Admit(text, cursor); }

 private:
  FilteredEdit* edit_;
};

FilteredEdit::FilteredEdit(Filter filter, int limit, QWidget* parent)
    : QLineEdit(parent), filter_(std::move(filter)), limit_(limit) {
  setValidator(new Gate(this));
  connect(this, &QLineEdit::textChanged, this, [this](const QString& text) { accepted_ = text; });
}

void FilteredEdit::Explain(Reason reason, Takes takes) {
  reason_ = std::move(reason);
  takes_ = takes;
}

void FilteredEdit::setText(const QString& text) {
  stopped_by_.clear();
  const QScopedValueRollback by_program(by_program_, true);
  QLineEdit::setText(text);
}

bool FilteredEdit::event(QEvent* event) {
  if (event->type() == QEvent::ShortcutOverride) {
    const auto& key = *static_cast<QKeyEvent*>(event);
    if (IsUndo(key) || IsRedo(key)) {
      event->setAccepted(IsUndo(key) ? isModified() && isUndoAvailable() : isRedoAvailable());
      return true;
    }
  }
  return QLineEdit::event(event);
}

void FilteredEdit::keyPressEvent(QKeyEvent* event) {
  if (IsUndo(*event) || IsRedo(*event)) {
    stopped_by_.clear();
    if (IsRedo(*event)) {
      redo();
    } else if (isModified()) {
      undo();
    }
    return;
  }
  if (isReadOnly() || !IsTyped(*event)) {
    if (!IsModifier(*event)) {
      stopped_by_.clear();
    }
    if (isReadOnly() && IsTyped(*event)) {
      ShowRefusal(*this, rect(), toolTip());
    } else if (event->key() == Qt::Key_Backspace) {
      Q_EMIT Backspace();
    }
    QLineEdit::keyPressEvent(event);
    return;
  }
  event->accept();
  QString before = text();
  if (hasSelectedText()) {
    stopped_by_.clear();
    before.remove(selectionStart(), selectionLength());
  }
  const QString typed = Filtered(before, event->text());
  if (!typed.isEmpty()) {
    const QScopedValueRollback by_program(by_program_, true);
    insert(typed);
  }
}

void FilteredEdit::mousePressEvent(QMouseEvent* event) {
  stopped_by_.clear();
  QLineEdit::mousePressEvent(event);
}

void FilteredEdit::focusOutEvent(QFocusEvent* event) {
  stopped_by_.clear();
  QLineEdit::focusOutEvent(event);
  if (LeavesField(*event)) {
    Q_EMIT Left();
  }
}

QValidator::State FilteredEdit::Admit(QString& text, int& cursor) {
  if (by_program_ || text == accepted_) {
    return QValidator::Acceptable;
  }
  const qsizetype prefix = CommonPrefix(accepted_, text);
  const qsizetype suffix =
      std::min(CommonSuffix(accepted_, text), std::min(accepted_.size(), text.size()) - prefix);
  const QString brought = text.mid(prefix, text.size() - prefix - suffix);
  if (brought.isEmpty()) {
    return QValidator::Acceptable;
  }
  if (takes_ == Takes::kNumber) {
    return AdmitNumber(text, cursor);
  }
  const QString tail = text.right(suffix);
  const QString admitted = Filtered(text.left(prefix) + tail, brought);
  if (admitted.isEmpty()) {
    return QValidator::Invalid;
  }
  if (admitted != brought) {
    text = text.left(prefix) + admitted + tail;
    cursor = static_cast<int>(prefix + admitted.size());
  }
  return QValidator::Acceptable;
}

// The whole number must be one that could be typed from its beginning.
QValidator::State FilteredEdit::AdmitNumber(QString& text, int& cursor) {
  const QString number = Filtered({}, text.trimmed());
  if (number.isEmpty()) {
    return QValidator::Invalid;
  }
  if (number != text) {
    text = number;
    cursor = static_cast<int>(number.size());
  }
  return QValidator::Acceptable;
}

// `before` is the text without the input.
QString FilteredEdit::Filtered(QString before, const QString& typed) {
  const bool one_key = typed.size() == 1;
  QString admitted;
  std::optional<std::pair<QString, QChar>> refused;
  for (const QChar character : typed) {
    const QString one = one_key ? TypedDigit(before, character) : OneFiltered(before, character);
    if (one.isEmpty() && !refused) {
      refused.emplace(before, character);
    }
    admitted += one;
    before += one;
  }
  if (refused) {
    Refuse(refused->first, refused->second);
  }
  return refused && takes_ == Takes::kNumber ? QString() : admitted;
}

// A key into a number: "4,5" typed into a field of whole numbers stays 4, and ",5" typed into one
// of decimals is 0.5.
QString FilteredEdit::TypedDigit(const QString& before, QChar character) {
  if (takes_ != Takes::kNumber) {
    return OneFiltered(before, character);
  }
  if (!stopped_by_.isEmpty() && character.isDigit()) {
    return {};
  }
  QString admitted = OneFiltered(before, character);
  if (admitted.isEmpty() && IsDecimalMark(character)) {
    const QString zero = before.isEmpty() ? OneFiltered(before, u'0') : QString();
    const QString point = zero.isEmpty() ? QString() : OneFiltered(zero, character);
    admitted = point.isEmpty() ? QString() : zero + point;
    stopped_by_ = admitted.isEmpty() ? QString(character) : QString();
  }
  return admitted;
}

void FilteredEdit::Refuse(const QString& before, QChar character) {
  if (reason_) {
    const QChar asked = stopped_by_.isEmpty() ? character : stopped_by_.front();
    ShowRefusal(*this, rect(),
                QTr(reason_(Utf8ToWindows1252(before.toStdString()), KeyCode(asked))));
  }
  Q_EMIT Refused();
}

QString FilteredEdit::OneFiltered(const QString& before, QChar character) const {
  const int code = filter_(Utf8ToWindows1252(before.toStdString()), KeyCode(character));
  return code == 0 || before.size() >= limit_ ? QString() : Character(code);
}

bool LeavesField(const QFocusEvent& event) {
  return event.reason() != Qt::ActiveWindowFocusReason && event.reason() != Qt::PopupFocusReason &&
         event.reason() != Qt::MenuBarFocusReason;
}

bool TurnsTabs(const QKeyEvent& key) {
  return (key.key() == Qt::Key_Tab || key.key() == Qt::Key_Backtab) &&
         (key.modifiers() & Qt::ControlModifier) != 0;
}

int WidthFor(const QWidget& box, std::size_t characters) {
  const int character = box.fontMetrics().horizontalAdvance(QLatin1Char('W'));
  return static_cast<int>(characters) * character + kGroupSpacing;
}

FilteredEdit* MakeBox(FilteredEdit::Filter filter, std::size_t limit, const char* name,
                      QWidget* parent) {
  auto* const box = new Box(std::move(filter), limit, parent);
  box->setObjectName(QString::fromLatin1(name));
  return box;
}

void ChoiceList::keyPressEvent(QKeyEvent* event) {
  if (TurnsTabs(*event)) {
    event->ignore();
    return;
  }
  const bool typed = !event->text().isEmpty() && event->text().front().isPrint() &&
                     (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier)) == 0;
  switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
    case Qt::Key_Home:
    case Qt::Key_End:
      showPopup();
      event->accept();
      return;
    default:
      break;
  }
  if (!typed) {
    QComboBox::keyPressEvent(event);
    return;
  }
  showPopup();
  event->accept();
  if (event->key() != Qt::Key_Space) {
    QApplication::sendEvent(view(), event);
  }
}

void ChoiceList::wheelEvent(QWheelEvent* event) { event->ignore(); }

bool GoToNextCell(QTableView& list) {
  const QHeaderView& columns = *list.horizontalHeader();
  const auto shown_from = [&columns](int place) {
    while (place < columns.count() && columns.isSectionHidden(columns.logicalIndex(place))) {
      ++place;
    }
    return place;
  };
  const QModelIndex cell = list.currentIndex();
  int row = cell.row();
  int place = shown_from(cell.isValid() ? columns.visualIndex(cell.column()) + 1 : 0);
  if (place == columns.count()) {
    ++row;
    place = shown_from(0);
  }
  const QModelIndex next = list.model()->index(std::max(row, 0), columns.logicalIndex(place));
  if (!next.isValid()) {
    return false;
  }
  list.setCurrentIndex(next);
  return true;
}

EnterAsTab::EnterAsTab(QWidget* form) : QObject(form), form_(form) {
  qApp->installEventFilter(this);
}

bool EnterAsTab::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::KeyPress) {
    return false;
  }
  const auto* const widget = qobject_cast<QWidget*>(watched);
  if (widget == nullptr || widget->window() != form_ || !IsEnter(*static_cast<QKeyEvent*>(event))) {
    return false;
  }
  for (QObject* part = watched; part != nullptr; part = part->parent()) {
    if (auto* const list = dynamic_cast<EnterByCell*>(part)) {
      if (list->EnterPressed()) {
        return true;
      }
      break;
    }
  }
  QKeyEvent tab(QEvent::KeyPress, Qt::Key_Tab, Qt::NoModifier, QStringLiteral("\t"));
  QApplication::sendEvent(watched, &tab);
  return true;
}

}  // namespace vrx
