#pragma once

#include <QPagedPaintDevice>
#include <QPainter>
#include <QPdfWriter>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "report/report.h"

namespace vrx {

// One document on a printer or in a PDF file. Each report starts on a new sheet and has its own
// page numbers.
class ReportJob {
 public:
  // Called after each page; false ends the report.
  using PageDone = std::function<bool(std::int64_t page, std::int64_t pages)>;

  // The device outlives the job. Throws Error if it does not accept a document.
  explicit ReportJob(QPagedPaintDevice& device);

  // Holds one page of rows in memory. Returns false if `done` ended the report. Throws Error if the
  // device refuses a page, and what the rows throw.
  bool Print(const Report& report, const PageDone& done = {});

  // Ends the document. Throws Error if the device refuses it.
  void End();

 private:
  QPagedPaintDevice& device_;
  QPainter painter_;
  bool fresh_ = true;  // the current sheet is empty
};

// A printer or a PDF file.
class PrintTarget {
 public:
  virtual ~PrintTarget() = default;
  virtual QPagedPaintDevice& Device() = 0;

  // The file that the document is written to; empty for a printer.
  [[nodiscard]] virtual std::filesystem::path File() const { return {}; }

  // Called once, after the end of the job. Throws Error if the document could not be written.
  virtual void Finish() = 0;
};

// A PDF file that replaces the one at the path when it is complete. Needs a QGuiApplication. Throws
// FileError, and DatabaseInTheWay if the path is a database.
std::unique_ptr<PrintTarget> MakePdfFile(const std::filesystem::path& path,
                                         const std::string& title);

// Sets the resolution and the paper of the PDF files: the paper size of the country, as SetUpPaper.
void SetUpPdf(QPdfWriter& writer);

// Sets portrait format and the margins of all reports.
void SetUpPaper(QPagedPaintDevice& device);

// Runs a job and finishes the document. Discards it if `print` throws or returns false. Returns the
// result of `print`.
bool PrintOn(PrintTarget& paper, const std::function<bool(ReportJob&)>& print);

}  // namespace vrx
