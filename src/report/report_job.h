#pragma once

#include <QPagedPaintDevice>
#include <QPainter>
#include <cstdint>
#include <functional>

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

}  // namespace vrx
