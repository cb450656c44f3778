#pragma once

#include <QPagedPaintDevice>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "report/report_job.h"

namespace vrx {

// Where a document goes.
class Paper {
 public:
  virtual ~Paper() = default;
  virtual QPagedPaintDevice& Device() = 0;

  // Called once, after the end of the job. Throws Error where the document has come to nothing.
  virtual void Finish() = 0;
};

// A PDF file that takes its name once it is whole; before that the path holds what it held. Needs a
// QGuiApplication. Throws FileError, and DatabaseInTheWay for a path that names a database.
std::unique_ptr<Paper> MakePdfFile(const std::filesystem::path& path, const std::string& title);

// What every report has of its paper: upright, with these margins.
void SetUpPaper(QPagedPaintDevice& device);

// Runs a job on the paper: all of it, or nothing where it throws or `print` returns false, which
// comes back.
bool PrintOn(Paper& paper, const std::function<bool(ReportJob&)>& print);

}  // namespace vrx
