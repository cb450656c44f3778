#pragma once

#include <QFont>
#include <QHeaderView>
#include <QLabel>
#include <QPlainTextEdit>
#include <QString>
#include <string_view>

#include "widgets/fields.h"

namespace vrx {

// Single-line label, elided in the middle. The tooltip has the full text, unless another tooltip is
// set.
class ElidedLabel : public QLabel {
  Q_OBJECT

 public:
  explicit ElidedLabel(QWidget* parent = nullptr);

  [[nodiscard]] QSize minimumSizeHint() const override;

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  [[nodiscard]] bool IsCut() const;
  [[nodiscard]] QRect Room() const;
};

// A rich text with one link. Tab goes to the link, and Enter opens it.
class LinkLabel : public QLabel, public EnterByCell {
  Q_OBJECT

 public:
  explicit LinkLabel(QWidget* parent);

  bool EnterPressed() override;

 protected:
  void focusInEvent(QFocusEvent* event) override;
};

// A read-only text that can be scrolled with the mouse. Passes the focus on to another control.
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

// The font for aligned columns of figures: the font itself if its digits have equal widths,
// otherwise the system's fixed-width font in its size and weight.
QFont TabularFigures(const QFont& font);

// The captions of a grid of records or lines, with the same margins as its cells.
class PaddedHeader : public QHeaderView {
  Q_OBJECT

 public:
  explicit PaddedHeader(QWidget* parent = nullptr);

  // A text with the margin that separates a number from the text in the next column.
  static QString Padded(const QString& text);

 protected:
  void initStyleOptionForIndex(QStyleOptionHeader* option, int logical_index) const override;
};

}  // namespace vrx
