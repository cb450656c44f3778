#pragma once

#include <QPagedPaintDevice>
#include <QPainter>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "report/report.h"

namespace vrx {

// One document on a printer or in a PDF file: reports behind each other, each from a new sheet on
// and with page numbers of its own.
class ReportJob {
 public:
  // After each page: false ends the report behind it. None: to the end.
  using PageDone = std::function<bool(std::int64_t page, std::int64_t pages)>;

  // The device outlives it. Throws Error where it takes no document.
  explicit ReportJob(QPagedPaintDevice& device);

  // Reads the rows page by page and holds one page of them. False: it was ended. Throws Error where
  // the device takes no further page, and what the rows throw.
  bool Print(const Report& report, const PageDone& done = {});

  // The last page is out. Throws Error where the device refuses it.
  void End();

 private:
  QPagedPaintDevice& device_;
  QPainter painter_;
  bool fresh_ = true;  // the sheet at hand is empty
};

// Where a document goes.
class PrintTarget {
 public:
  virtual ~PrintTarget() = default;
  virtual QPagedPaintDevice& Device() = 0;

  // Called once, after the end of the job. Throws Error where the document has come to nothing.
  virtual void Finish() = 0;
};

// A PDF file that takes its name once it is whole; before that the path holds what it held. Needs a
// QGuiApplication. Throws FileError, and DatabaseInTheWay for a path that names a database.
std::unique_ptr<PrintTarget> MakePdfFile(const std::filesystem::path& path,
                                         const std::string& title);

// What every report has of its paper: upright, with these margins.
void SetUpPaper(QPagedPaintDevice& device);

// Runs a job on the paper: all of it, or nothing where it throws or `print` returns false, which
// comes back.
bool PrintOn(PrintTarget& paper, const std::function<bool(ReportJob&)>& print);

}  // namespace vrx
