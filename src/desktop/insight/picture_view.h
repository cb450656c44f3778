#pragma once

#include <QAbstractScrollArea>
#include <QEvent>
#include <QImage>
#include <QPagedPaintDevice>
#include <QPixmap>
#include <QPoint>
#include <QSizeF>
#include <QString>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "chart/look.h"
#include "chart/picture.h"

namespace vrx {

// Lays a picture out in a size.
using DrawPicture = std::function<Picture(QSizeF, const Look&)>;

// Shows a picture in the colors of the desktop, laid out for the width of the view; scrolls if it
// is taller. A mark has a tip and can be clicked.
class PictureView : public QAbstractScrollArea {
  Q_OBJECT

 public:
  explicit PictureView(QWidget* parent);

  // An empty function shows nothing.
  void Show(DrawPicture draw);
  // The words for a mark, by Hit::index and Hit::count.
  void SetTips(std::function<QString(std::size_t, std::size_t)> tip) { tip_ = std::move(tip); }
  [[nodiscard]] const Picture& Shown() const { return picture_; }

 public Q_SLOTS:
  void copy();  // NOLINT(readability-identifier-naming): as the slot of text fields

 Q_SIGNALS:
  void MarkChosen(qulonglong index);
  void CopyChosen();

 protected:
  bool viewportEvent(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;

 private:
  void LayOut();
  [[nodiscard]] Look LookOf() const;
  [[nodiscard]] std::optional<Hit> HitUnder(const QPoint& point) const;

  DrawPicture draw_;
  std::function<QString(std::size_t, std::size_t)> tip_;
  Picture picture_;
  QPixmap drawn_;
};

// A picture as it is written, light and in a size for a page.
[[nodiscard]] QImage ImageOf(const DrawPicture& draw);

[[nodiscard]] std::string SvgOf(const DrawPicture& draw);

// Writes it as PNG if the name of the file ends in ".png", and as SVG otherwise. Throws FileError,
// and DatabaseInTheWay if the path is a database.
void WritePicture(const DrawPicture& draw, const std::filesystem::path& path);

// Draws it in the width of the sheet. Throws Error if the device refuses it.
void PrintPicture(const DrawPicture& draw, QPagedPaintDevice& device);

}  // namespace vrx
