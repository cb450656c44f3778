#include "widgets/fields.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <algorithm>
#include <utility>

#include "base/encoding.h"
#include "widgets/field_box.h"
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
  const bool was_by_program = std::exchange(by_program_, true);
  QLineEdit::setText(text);
  by_program_ = was_by_program;
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
    const bool was_by_program = std::exchange(by_program_, true);
    insert(typed);
    by_program_ = was_by_program;
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

// `before` is the text without what comes in.
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

}  // namespace vrx
