#include "widgets/text_view.h"

#include <QFontDatabase>

#include "widgets/qt_text.h"

namespace vrx {

TextView::TextView(const char* name, const QString& meaning, QWidget* parent)
    : QPlainTextEdit(parent) {
  setObjectName(QString::fromLatin1(name));
  setAccessibleName(meaning);
  setReadOnly(true);
  setLineWrapMode(NoWrap);
  setTabChangesFocus(true);
  setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
}

void TextView::ShowText(std::string_view text) { setPlainText(ToScreenLines(text)); }

void TextView::focusInEvent(QFocusEvent* event) {
  QPlainTextEdit::focusInEvent(event);
  if (heir_ != nullptr && heir_->isVisible() && heir_->isEnabled()) {
    heir_->setFocus();
  }
}

}  // namespace vrx
