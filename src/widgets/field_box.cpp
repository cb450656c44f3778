#include "widgets/field_box.h"

#include "widgets/main_window_layout.h"

namespace vrx {
namespace {

// Gives way in a narrow window to the width of its text in ordinary characters.
class Box : public FilteredEdit {
 public:
  Box(Filter filter, std::size_t limit, QWidget* parent)
      : FilteredEdit(std::move(filter), static_cast<int>(limit), parent), limit_(limit) {
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
  }

  QSize sizeHint() const override {
    return {WidthFor(*this, limit_), FilteredEdit::sizeHint().height()};
  }
  QSize minimumSizeHint() const override {
    return {static_cast<int>(limit_) * fontMetrics().averageCharWidth() + kGroupSpacing,
            FilteredEdit::minimumSizeHint().height()};
  }

 private:
  std::size_t limit_;
};

}  // namespace

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

}  // namespace vrx
