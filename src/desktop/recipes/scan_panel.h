#pragma once

#include <QLabel>
#include <QProgressBar>
#include <QWidget>

namespace vrx {

// `lblScanPrint` and `prgScanPrint`: how far a walk over all recipes has come. It is seen at once,
// with no event in between.
class ScanPanel : public QWidget {
  Q_OBJECT

 public:
  explicit ScanPanel(QWidget* parent = nullptr);

  void Tell(const QString& text);
  void GoTo(int position);

 private:
  QLabel* text_;
  QProgressBar* bar_;
};

}  // namespace vrx
