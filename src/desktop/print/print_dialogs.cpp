#include "desktop/print/print_dialogs.h"

#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPdfWriter>
#include <QPrinter>
#include <QVBoxLayout>

#include "base/translation.h"
#include "widgets/layout.h"
#include "widgets/qt_text.h"

namespace vrx {

namespace {

// Cancels a document that is not finished.
class PrinterTarget : public PrintTarget {
 public:
  PrinterTarget(const QPrinterInfo& printer, const std::string& title)
      : printer_(printer, QPrinter::HighResolution) {
    printer_.setDocName(ToQString(title));
    SetUpPaper(printer_);
  }
  ~PrinterTarget() override {
    if (!finished_ && printer_.printerState() == QPrinter::Active) {
      printer_.abort();
    }
  }

  QPagedPaintDevice& Device() override { return printer_; }

  void Finish() override {
    finished_ = true;
    if (printer_.printerState() == QPrinter::Error) {
      throw Error(Tr("the printer %1 refuses the report", {printer_.printerName().toStdString()}));
    }
  }

 private:
  QPrinter printer_;
  bool finished_ = false;
};

constexpr int kPrintBarWidth = 320;
constexpr int kNoteWidth = 320;

}  // namespace

bool PrintSetup::Ask(QWidget* owner) {
  QDialog form(owner);
  form.setObjectName(QStringLiteral("dlgPrintDialog"));
  form.setWindowTitle(QTr("Print Setup"));
  auto* const printers = new QComboBox(&form);
  printers->setObjectName(QStringLiteral("lstPrinter"));
  const QString default_name = QPrinterInfo::defaultPrinterName();
  for (const QString& name : QPrinterInfo::availablePrinterNames()) {
    printers->addItem(name == default_name ? name + QTr(" (default)") : name, name);
  }
  printers->addItem(QTr("PDF file"));
  const int pdf = printers->count() - 1;
  const int chosen = printers->findData(printer_.isEmpty() ? default_name : printer_);
  printers->setCurrentIndex(pdf_ || chosen < 0 ? pdf : chosen);

  auto* const fields = new QFormLayout;
  fields->addRow(QTr("&Printer"), printers);
  auto* const note =
      new QLabel(QTr("A PDF file is asked for its name each time something is printed."), &form);
  note->setForegroundRole(QPalette::PlaceholderText);
  note->setWordWrap(true);
  note->setFixedWidth(kNoteWidth);
  auto* const buttons =
      new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &form);
  QObject::connect(buttons, &QDialogButtonBox::accepted, &form, &QDialog::accept);
  QObject::connect(buttons, &QDialogButtonBox::rejected, &form, &QDialog::reject);
  auto* const column = new QVBoxLayout(&form);
  column->setContentsMargins(kGroupSpacing, kGroupSpacing, kGroupSpacing, kGroupSpacing);
  column->setSpacing(kGroupSpacing);
  column->addLayout(fields);
  column->addWidget(note);
  column->addWidget(buttons);
  column->setSizeConstraint(QLayout::SetFixedSize);
  if (form.exec() != QDialog::Accepted) {
    return false;
  }
  pdf_ = printers->currentIndex() == pdf;
  printer_ = printers->currentData().toString();
  return true;
}

std::unique_ptr<PrintTarget> PrintSetup::Open(const std::string& title) const {
  if (pdf_) {
    return OpenPdf(title);
  }
  const QPrinterInfo printer = Printer();
  if (printer.isNull()) {
    throw NoPrinter((printer_.isEmpty() ? Tr("There is no printer.")
                                        : Tr("The printer %1 is gone.", {printer_.toStdString()})) +
                    " " + Tr("Choose a printer or a PDF file under File, Print Setup."));
  }
  return std::make_unique<PrinterTarget>(printer, title);
}

QPrinterInfo PrintSetup::Printer() const {
  return printer_.isEmpty() ? QPrinterInfo::defaultPrinter() : QPrinterInfo::printerInfo(printer_);
}

std::unique_ptr<QPagedPaintDevice> PrintSetup::Paper() const {
  const QPrinterInfo printer = Printer();
  if (pdf_ || printer.isNull()) {
    auto paper = std::make_unique<QPdfWriter>(QString());
    SetUpPdf(*paper);
    return paper;
  }
  auto paper = std::make_unique<QPrinter>(printer, QPrinter::HighResolution);
  SetUpPaper(*paper);
  return paper;
}

std::unique_ptr<PrintTarget> PrintSetup::OpenPdf(const std::string& title) const {
  const FileChoice file = files_.ShowSave({.title = Tr("Print to PDF File"),
                                           .filter = "PDF Files (*.pdf)|*.pdf",
                                           .default_extension = "pdf",
                                           .flags = kOverwritePrompt | kHideReadOnly});
  return file.Cancelled() ? nullptr : MakePdfFile(file.path, title);
}

PrintProgress::PrintProgress(QWidget* owner)
    : QDialog(owner),
      page_(new QLabel(this)),
      bar_(new QProgressBar(this)),
      cancel_(new QPushButton(QTr("Cancel"), this)) {
  setObjectName(QStringLiteral("dlgPrinting"));
  setWindowTitle(QTr("Print"));
  setModal(true);
  bar_->setAccessibleName(QTr("Pages printed"));
  bar_->setMinimumWidth(kPrintBarWidth);
  cancel_->setObjectName(QStringLiteral("cmdCancel"));
  connect(cancel_, &QPushButton::clicked, this, &PrintProgress::reject);
  auto* const column = new QVBoxLayout(this);
  column->setContentsMargins(kGroupSpacing, kGroupSpacing, kGroupSpacing, kGroupSpacing);
  column->setSpacing(kSpacing);
  column->addWidget(page_);
  column->addWidget(bar_);
  column->addSpacing(kSpacing);
  column->addWidget(cancel_, 0, Qt::AlignRight);
  column->setSizeConstraint(QLayout::SetFixedSize);
  show();
}

void PrintProgress::ShowPage(std::int64_t page, std::int64_t pages) {
  page_->setText(QTr("Printing page %1 of %2").arg(page).arg(pages));
  bar_->setRange(0, static_cast<int>(pages));
  bar_->setValue(static_cast<int>(page));
}

// The dialog stays open until the current page is finished.
void PrintProgress::reject() {
  cancelled_ = true;
  cancel_->setEnabled(false);
}

}  // namespace vrx
