#pragma once

#include <QPlainTextEdit>
#include <string_view>

namespace vrx {

// A text to be read and scrolled with the mouse. It does not keep the focus, which goes to where it
// is told.
class TextView : public QPlainTextEdit {
  Q_OBJECT

 public:
  TextView(const char* name, const QString& meaning, QWidget* parent);

  // The control must outlive this.
  void PassFocusTo(QWidget& control) { heir_ = &control; }

  // UTF-8; CR LF separates lines.
  void ShowText(std::string_view text);

 protected:
  void focusInEvent(QFocusEvent* event) override;

 private:
  QWidget* heir_ = nullptr;
};

}  // namespace vrx
