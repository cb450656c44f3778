#include "report/print_target.h"

#include <QIODevice>
#include <QLocale>
#include <QPageLayout>
#include <QPageSize>
#include <QPdfWriter>
#include <optional>
#include <string_view>
#include <utility>

#include "base/error.h"
#include "base/files.h"
#include "base/translation.h"
#include "database/keep_database.h"
#include "report/paged_report.h"

namespace vrx {

namespace {

constexpr double kMarginMillimetres = 12;
constexpr int kDotsPerInch = 1200;

// Receives the output of QPdfWriter. QPdfWriter ignores write errors, so Finish throws the first
// one.
class OutFile : public QIODevice {
 public:
  explicit OutFile(const std::filesystem::path& path) : path_(path), file_(path) {
    open(WriteOnly);
  }

  bool isSequential() const override { return true; }

  void CloseAndCommit() {
    close();
    if (failure_) {
      throw FileError(*failure_);
    }
    KeepDatabase(path_);  // a database may have been created there during printing
    file_.Commit();
  }

 protected:
  qint64 readData(char* /*data*/, qint64 /*most*/) override { return -1; }

  qint64 writeData(const char* data, qint64 size) override {
    if (failure_) {
      return size;
    }
    try {
      file_.Write(std::string_view(data, static_cast<std::size_t>(size)));
    } catch (const FileError& failure) {
      failure_ = failure.what();
    }
    return size;
  }

 private:
  std::filesystem::path path_;
  AtomicFile file_;
  std::optional<std::string> failure_;
};

class PdfTarget : public PrintTarget {
 public:
  PdfTarget(const std::filesystem::path& path, const std::string& title)
      : path_(path), file_(path) {
    writer_.emplace(&file_);
    SetUpPdf(*writer_);
    writer_->setTitle(QString::fromStdString(title));
    writer_->setCreator(QStringLiteral("VRX-2260 Transfer Data Software"));
  }

  QPagedPaintDevice& Device() override { return *writer_; }

  [[nodiscard]] std::filesystem::path File() const override { return path_; }

  void Finish() override {
    writer_.reset();
    file_.CloseAndCommit();
  }

 private:
  std::filesystem::path path_;
  OutFile file_;
  std::optional<QPdfWriter> writer_;
};

}  // namespace

ReportJob::ReportJob(QPagedPaintDevice& device) : device_(device) {
  if (!painter_.begin(&device_)) {
    throw Error(Tr("the printer accepts no document"));
  }
}

bool ReportJob::Print(const Report& report, const PageDone& done) {
  PagedReport pages(report, device_);
  for (std::int64_t page = 1; page <= pages.Count(); ++page) {
    if (!std::exchange(fresh_, false) && !device_.newPage()) {
      throw Error(Tr("the printer accepts no further page"));
    }
    pages.Draw(page, painter_);
    if (done && !done(page, pages.Count())) {
      return false;
    }
  }
  return true;
}

void ReportJob::End() {
  if (!painter_.end()) {
    throw Error(Tr("the printer does not accept the end of the document"));
  }
}

std::unique_ptr<PrintTarget> MakePdfFile(const std::filesystem::path& path,
                                         const std::string& title) {
  KeepDatabase(path);
  return std::make_unique<PdfTarget>(path, title);
}

void SetUpPdf(QPdfWriter& writer) {
  writer.setResolution(kDotsPerInch);
  const bool letter = QLocale::system().measurementSystem() == QLocale::ImperialUSSystem;
  writer.setPageSize(QPageSize(letter ? QPageSize::Letter : QPageSize::A4));
  SetUpPaper(writer);
}

void SetUpPaper(QPagedPaintDevice& device) {
  device.setPageOrientation(QPageLayout::Portrait);
  device.setPageMargins(
      {kMarginMillimetres, kMarginMillimetres, kMarginMillimetres, kMarginMillimetres},
      QPageLayout::Millimeter);
}

bool PrintOn(PrintTarget& paper, const std::function<bool(ReportJob&)>& print) {
  {
    ReportJob job(paper.Device());
    if (!print(job)) {
      return false;
    }
    job.End();
  }
  paper.Finish();
  return true;
}

}  // namespace vrx
