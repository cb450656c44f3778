#pragma once

#include <QDialog>
#include <QLabel>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QWidget>

#include "platform/conversion_display.h"
#include "platform/file_chooser.h"
#include "platform/operator.h"

namespace vrx {

// The progress dialog of a conversion, with a button that ends it.
class ConversionProgress : public QDialog {
  Q_OBJECT

 public:
  explicit ConversionProgress(QWidget* owner);

  QLabel& Message() { return *message_; }
  QProgressBar& Bar() { return *bar_; }
  [[nodiscard]] bool Cancelled() const { return cancelled_; }

  void reject() override;

 private:
  QLabel* message_;
  QProgressBar* bar_;
  QPushButton* cancel_;
  bool cancelled_ = false;
};

// The dialogs of the conversion of a database. All references outlive the object.
class QtConversionDisplay : public ConversionDisplay {
 public:
  QtConversionDisplay(QWidget& owner, FileChooser& files, Operator& op)
      : owner_(owner), files_(files), operator_(op) {}

  void BeginProgress() override;
  void EndProgress() override;
  [[nodiscard]] bool Cancelled() const override {
    return progress_ != nullptr && progress_->Cancelled();
  }
  void SetProgressMessage(std::string_view text) override;
  void SetProgressRange(int maximum) override;
  void SetProgressValue(int value) override;
  void ShowReport(std::string_view text, const std::string& file_name) override;

 private:
  QWidget& owner_;
  FileChooser& files_;
  Operator& operator_;
  QPointer<ConversionProgress> progress_;
};

}  // namespace vrx
