#pragma once

#include <QComboBox>
#include <QDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QPagedPaintDevice>
#include <QPushButton>
#include <QScrollArea>
#include <QSpinBox>
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/operator.h"
#include "report/paged_report.h"
#include "report/report.h"

namespace vrx {

// The form Print Preview: the sheets of one or more reports as they are printed, one at a time. It
// is accepted by its button Print.
class PrintPreview : public QDialog {
  Q_OBJECT

 public:
  // Nothing is printed on `paper`, which has the resolution and the size of the sheets. The
  // operator outlives the form and sees the failures of later pages. Throws what the rows throw.
  PrintPreview(Operator& op, std::vector<Report> reports, std::unique_ptr<QPagedPaintDevice> paper,
               QWidget* owner);

  bool eventFilter(QObject* watched, QEvent* event) override;

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  QWidget* MakeBar();
  QPushButton* AddTurn(QLayout& row, const char* name, const QString& caption,
                       const QString& meaning, int step);
  void LayOut();
  void Turn(int step);
  void ScrollOrTurn(int step);
  bool TurnByKey(int key);  // whether it is a key for that
  void ShowPage();
  [[nodiscard]] QImage DrawPage(int page);
  // Pixels of the screen for each pixel of the paper.
  [[nodiscard]] double Scale() const;

  Operator& operator_;
  std::vector<Report> reports_;
  std::unique_ptr<QPagedPaintDevice> paper_;
  std::vector<std::unique_ptr<PagedReport>> pages_;  // by report
  QSpinBox* page_;
  QPushButton* previous_;
  QPushButton* next_;
  QComboBox* zoom_;
  QLabel* note_;
  QLabel* sheet_;
  QScrollArea* room_;
};

}  // namespace vrx
