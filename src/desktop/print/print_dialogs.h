#pragma once

#include <QDialog>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QString>
#include <QWidget>
#include <cstdint>
#include <memory>
#include <string>

#include "base/error.h"
#include "platform/file_chooser.h"
#include "report/print_target.h"

namespace vrx {

// There is no printer to print on; what() tells the operator what to do.
class NoPrinter : public Error {
 public:
  using Error::Error;
};

// Where the reports go until the program ends: the system's default printer, another one, or a PDF
// file that is asked for with each report.
class PrintSetup {
 public:
  // The chooser outlives it.
  explicit PrintSetup(FileChooser& files) : files_(files) {}

  // The form of Print Setup; whether another choice was made.
  bool Ask(QWidget* owner);

  // A fresh paper for a document of that title; nullptr after a cancel of the question for the
  // file. Throws NoPrinter, and FileError.
  std::unique_ptr<PrintTarget> Open(const std::string& title) const;

 private:
  std::unique_ptr<PrintTarget> OpenPdf(const std::string& title) const;

  FileChooser& files_;
  QString printer_;  // its name; empty: the system's default
  bool pdf_ = false;
};

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
