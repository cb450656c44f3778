#pragma once

#include <QFont>
#include <QHeaderView>
#include <QLabel>
#include <QPlainTextEdit>
#include <QString>
#include <string_view>

namespace vrx {

// One line of text that gives way when there is no room: its middle is left out on the screen. What
// is left out can be read in its tooltip, unless it has one of its own.
class ElidedLabel : public QLabel {
  Q_OBJECT

 public:
  explicit ElidedLabel(QWidget* parent = nullptr);

  QSize minimumSizeHint() const override;

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  bool IsCut() const;
  QRect Room() const;
};

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

// The font for weights and counts that stand below each other: the font itself where its digits are
// of equal width, else the system's font of fixed width in its size and weight.
QFont TabularFigures(const QFont& font);

// The captions of a grid of records or lines. They keep as far from the edges as the cells below
// them.
class PaddedHeader : public QHeaderView {
  Q_OBJECT

 public:
  explicit PaddedHeader(QWidget* parent = nullptr);

  // A text with the margin that tells a number from the text in the column behind it.
  static QString Padded(const QString& text);

 protected:
  void initStyleOptionForIndex(QStyleOptionHeader* option, int logical_index) const override;
};

}  // namespace vrx
