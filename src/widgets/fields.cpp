#include "widgets/fields.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QScopedValueRollback>
#include <QWheelEvent>
#include <algorithm>
#include <utility>

#include "base/encoding.h"
#include "widgets/layout.h"
#include "widgets/qt_text.h"

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

void FilteredEdit::setText(const QString& text) {
  const QScopedValueRollback by_program(by_program_, true);
  QLineEdit::setText(text);
}

void FilteredEdit::keyPressEvent(QKeyEvent* event) {
  if (isReadOnly() || !IsTyped(*event)) {
    if (event->key() == Qt::Key_Backspace && !isReadOnly()) {
      Q_EMIT Backspace();
    }
    QLineEdit::keyPressEvent(event);
    return;
  }
  event->accept();
  QString before = text();
  if (hasSelectedText()) {
    before.remove(selectionStart(), selectionLength());
  }
  const QString typed = Filtered(before, event->text());
  if (!typed.isEmpty()) {
    const QScopedValueRollback by_program(by_program_, true);
    insert(typed);
  }
}

void FilteredEdit::focusOutEvent(QFocusEvent* event) {
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

// `before` is the text without the input.
QString FilteredEdit::Filtered(QString before, const QString& typed) {
  QString admitted;
  for (const QChar character : typed) {
    const QString one = OneFiltered(before, character);
    admitted += one;
    before += one;
  }
  if (admitted.size() < typed.size()) {
    Q_EMIT Refused();
  }
  return admitted;
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
  QKeyEvent tab(QEvent::KeyPress, Qt::Key_Tab, Qt::NoModifier, QStringLiteral("\t"));
  QApplication::sendEvent(watched, &tab);
  return true;
}

}  // namespace vrx
