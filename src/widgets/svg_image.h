#pragma once

#include <QSize>
#include <QString>
#include <QSvgRenderer>
#include <QWidget>

namespace vrx {

// A drawing, sharp at every scale of the screen.
class SvgImage : public QWidget {
  Q_OBJECT

 public:
  // `size` in logical pixels.
  SvgImage(const QString& path, QSize size, QWidget* parent);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QSvgRenderer renderer_;
};

}  // namespace vrx
