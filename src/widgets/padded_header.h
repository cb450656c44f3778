#pragma once

#include <QHeaderView>
#include <QString>

namespace vrx {

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
