#pragma once

#include <QDialog>
#include <QLabel>
#include <QPagedPaintDevice>
#include <QPrinterInfo>
#include <QProgressBar>
#include <QPushButton>
#include <QString>
#include <QWidget>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include "base/error.h"
#include "platform/file_chooser.h"
#include "presenter/services.h"
#include "report/print_target.h"

namespace vrx {

// There is no printer; what() is a remedy for the operator.
class NoPrinter : public Error {
 public:
  using Error::Error;
};

// The target of the reports until the program ends: the system's default printer, another one, or a
// PDF file chosen for each report.
class PrintSetup {
 public:
  // The chooser outlives the object.
  explicit PrintSetup(FileChooser& files) : files_(files) {}

  // Shows the form Print Setup. Returns whether the choice changed.
  bool Ask(QWidget* owner);

  // A new target for a document with that title; nullptr if the file dialog is canceled. Throws
  // NoPrinter and FileError.
  [[nodiscard]] std::unique_ptr<PrintTarget> Open(const std::string& title) const;

  // Resolution and size of the sheets of the next target; those of a PDF file if there is no
  // printer.
  [[nodiscard]] std::unique_ptr<QPagedPaintDevice> Paper() const;

 private:
  [[nodiscard]] QPrinterInfo Printer() const;  // null if there is none, or it is gone
  [[nodiscard]] std::unique_ptr<PrintTarget> OpenPdf(const std::string& title) const;

  FileChooser& files_;
  QString printer_;  // its name; empty: the system's default
  bool pdf_ = false;
};

// A file that the form Report wrote; no path if the operator left it.
struct WrittenReport {
  std::filesystem::path file = {};
  bool opens = false;  // the operator wants to see it
};

// Shows the form Report: the page of a day, a week or a month of a transaction database as a file.
[[nodiscard]] WrittenReport AskForReport(Services& services,
                                         const std::filesystem::path& transactions, QWidget* owner);

// The modal progress dialog of a long report, with a button that ends it.
class PrintProgress : public QDialog {
  Q_OBJECT

 public:
  explicit PrintProgress(QWidget* owner);

  void ShowPage(std::int64_t page, std::int64_t pages);
  [[nodiscard]] bool Cancelled() const { return cancelled_; }

  void reject() override;

 private:
  QLabel* page_;
  QProgressBar* bar_;
  QPushButton* cancel_;
  bool cancelled_ = false;
};

}  // namespace vrx
