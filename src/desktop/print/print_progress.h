#pragma once

#include <QDialog>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <cstdint>

namespace vrx {

// How far a long report has come, with a button that ends it. Nothing else can be done meanwhile.
class PrintProgress : public QDialog {
  Q_OBJECT

 public:
  explicit PrintProgress(QWidget* owner);

  void ShowPage(std::int64_t page, std::int64_t pages);
  bool Cancelled() const { return cancelled_; }

  void reject() override;

 private:
  QLabel* page_;
  QProgressBar* bar_;
  QPushButton* cancel_;
  bool cancelled_ = false;
};

}  // namespace vrx
