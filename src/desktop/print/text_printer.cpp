#include "desktop/print/text_printer.h"

#include <QFontDatabase>
#include <QPainter>
#include <QPrinter>
#include <QPrinterInfo>
#include <QStringList>
#include <QTextLayout>

#include "base/encoding.h"
#include "base/error.h"
#include "base/translation.h"
#include "widgets/byte_text_edit.h"
#include "widgets/qt_text.h"

namespace vrx {

namespace {

constexpr double kPointSize = 10;
constexpr double kMarginMillimetres = 15;
constexpr QChar kFormFeed = u'\f';

// Fills sheets from the top. A line that is too long continues in the next one.
class Sheets {
 public:
  Sheets(QPrinter& printer, QPainter& painter)
      : printer_(printer),
        painter_(painter),
        page_(0, 0, printer.pageLayout().paintRectPixels(printer.resolution()).width(),
              printer.pageLayout().paintRectPixels(printer.resolution()).height()) {}

  void NewSheet() {
    if (y_ > 0) {
      printer_.newPage();
      y_ = 0;
    }
  }

  void Print(const QString& text) {
    QTextLayout layout(text.isEmpty() ? QStringLiteral(" ") : text, painter_.font(), &printer_);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
      line.setLineWidth(page_.width());
      if (y_ + line.height() > page_.height()) {
        NewSheet();
      }
      line.setPosition({0, 0});
      line.draw(&painter_, {0, y_});
      y_ += line.height();
    }
    layout.endLayout();
  }

 private:
  QPrinter& printer_;
  QPainter& painter_;
  QRectF page_;
  double y_ = 0;
};

}  // namespace

void QtTextPrinter::Print(const std::string& text) {
  if (QPrinterInfo::defaultPrinter().isNull()) {
    throw Error(Tr("there is no default printer"));
  }
  QPrinter printer(QPrinterInfo::defaultPrinter());
  PrintText(printer, text);
}

void PrintText(QPrinter& printer, const std::string& text) {
  printer.setPageMargins(
      {kMarginMillimetres, kMarginMillimetres, kMarginMillimetres, kMarginMillimetres},
      QPageLayout::Millimeter);
  QPainter painter;
  if (!painter.begin(&printer)) {
    throw Error(
        Tr("the printer %1 does not accept the text", {printer.printerName().toStdString()}));
  }
  QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  font.setPointSizeF(kPointSize);
  painter.setFont(font);
  Sheets sheets(printer, painter);
  for (const TextLine& line : SplitLines(text)) {
    const QStringList parts = ToQString(Windows1252ToUtf8(line.text)).split(kFormFeed);
    if (parts.size() == 1 || !parts.front().isEmpty()) {
      sheets.Print(parts.front());
    }
    for (const QString& part : parts.mid(1)) {
      sheets.NewSheet();
      sheets.Print(part);
    }
  }
}

}  // namespace vrx
