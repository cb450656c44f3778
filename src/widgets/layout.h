#pragma once

#include <QBoxLayout>
#include <QFont>
#include <QHeaderView>
#include <QScrollArea>
#include <QSize>
#include <QWidget>
#include <functional>

namespace vrx {

// Two groups of controls: at both ends of one line if there is space, otherwise below each other.
class TwoPartRow : public QWidget {
  Q_OBJECT

 public:
  explicit TwoPartRow(QWidget* parent);

  QBoxLayout* First() { return first_; }
  QBoxLayout* Second() { return second_; }

  // The minimum size of the wider group.
  [[nodiscard]] QSize minimumSizeHint() const override;

 protected:
  void resizeEvent(QResizeEvent* event) override;
  bool event(QEvent* event) override;

 private:
  void Arrange();

  QBoxLayout* both_;
  QBoxLayout* first_;
  QBoxLayout* second_;
};

// The contents in an area that scrolls where it is smaller than they need, as with large letters on
// a small screen; otherwise they fill it.
QScrollArea* MakeScrollArea(QWidget* contents);

// An estimate of a window's frame, whose real size is known only after the window is shown.
inline constexpr QSize kFrameSize{16, 48};

// The size of a form with contents in a scroll area and `around` them, such as margins and buttons:
// at least `wanted`, as large as the contents need, and within the screen.
[[nodiscard]] QSize FormSize(const QWidget& form, const QWidget& contents, QSize around,
                             QSize wanted = {});

// Gives each visible column its least width, and an equal share of what they leave of `width`.
void ShareWidth(QHeaderView& header, int width, const std::function<int(int column)>& least);

// Between controls, in logical pixels.
inline constexpr int kSpacing = 8;

// Between groups of controls, in logical pixels.
inline constexpr int kGroupSpacing = 2 * kSpacing;

// Distinguishes a value from its caption; everything else of the font remains the form's.
inline void MakeDemiBold(QWidget& widget) {
  QFont font;
  font.setWeight(QFont::DemiBold);
  widget.setFont(font);
}

// Reserves the widget's space while it is hidden, so that nothing moves when it appears.
void KeepPlace(QWidget& widget);

}  // namespace vrx
