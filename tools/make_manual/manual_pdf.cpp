#include "make_manual/manual_pdf.h"

#include <QAbstractTextDocumentLayout>
#include <QBuffer>
#include <QPainter>
#include <QPdfWriter>
#include <QSvgRenderer>
#include <algorithm>
#include <utility>

#include "base/error.h"
#include "make_manual/manual_style.h"
#include "make_manual/pages.h"

namespace vrx::manual {
namespace {

const QString kManualTitle = QStringLiteral("User\u2019s Manual");
constexpr int kFirstPage = 2;  // below the cover

class Manual {
 public:
  Manual(const Cover& cover, QPdfWriter& writer) : cover_(cover), writer_(writer) {
    writer.setResolution(kDotsPerInch);
    writer.setPageSize(QPageSize(QPageSize::A4));
    writer.setPageMargins({0, 0, 0, 0});
    writer.setTitle(cover.product + QStringLiteral(" - ") + kManualTitle);
    writer.setCreator(cover.product + u' ' + cover.version);
  }

  // The page numbers are not known until the text is set, and they change its length.
  void Set(const std::vector<Chapter>& chapters, const Pictures& pictures) {
    constexpr int kPasses = 5;
    for (int pass = 0; pass < kPasses; ++pass) {
      document_ = Typeset(chapters, pictures, contents_, writer_);
      boxes_ = BoxesOf(*document_);
      pages_ = BreakPages(boxes_, kTextHeight);
      if (std::exchange(contents_, ContentsLines()) == contents_) {
        return;
      }
    }
    throw Error("the page numbers do not settle");
  }

  void Draw() {
    QPainter painter;
    if (!painter.begin(&writer_)) {
      throw Error("cannot write a PDF");
    }
    painter.setRenderHint(QPainter::LosslessImageRendering);
    DrawCover(painter);
    QString chapter;
    int number = kFirstPage;
    for (const Page& page : pages_) {
      writer_.newPage();
      const Box& first = boxes_[page.first];
      DrawFrame(painter, number++, first.starts_page ? QString() : chapter);
      DrawPage(painter, page);
      chapter = first.starts_page ? first.heading.section(u' ', 2) : chapter;
    }
    if (!painter.end()) {
      throw Error("cannot end the PDF");
    }
  }

 private:
  [[nodiscard]] std::vector<ContentsLine> ContentsLines() const {
    std::vector<ContentsLine> lines;
    int number = kFirstPage;
    for (const Page& page : pages_) {
      for (std::size_t i = page.first; i < page.end; ++i) {
        if (!boxes_[i].heading.isEmpty()) {
          lines.push_back({boxes_[i].heading, number, boxes_[i].starts_page});
        }
      }
      ++number;
    }
    return lines;
  }

  void DrawPage(QPainter& painter, const Page& page) const {
    if (const auto head = boxes_[page.first].head) {
      DrawBox(painter, boxes_[*head], kTopMargin);
    }
    for (std::size_t i = page.first; i < page.end; ++i) {
      DrawBox(painter, boxes_[i], kTopMargin + PlaceOnPage(boxes_, page.first, i));
    }
  }

  void DrawBox(QPainter& painter, const Box& box, double top) const {
    const QRectF place(kSideMargin, top, box.width, box.bottom - box.top);
    if (box.decoration == Decoration::kShaded) {
      painter.fillRect(place, kShade);
    } else if (box.decoration == Decoration::kRuled) {
      DrawRule(painter, place.bottom());
    }
    QAbstractTextDocumentLayout::PaintContext context;
    context.clip = place.translated(-kSideMargin, box.top - top);
    painter.save();
    painter.translate(kSideMargin, top - box.top);
    painter.setClipRect(context.clip);
    document_->documentLayout()->draw(&painter, context);
    painter.restore();
    if (box.decoration == Decoration::kFramed) {
      painter.setPen(QPen(kRule, Points(0.5)));
      painter.drawRect(place);
    }
  }

  static void DrawRule(QPainter& painter, double top) {
    painter.setPen(QPen(kRule, Points(0.5)));
    painter.drawLine(QPointF(kSideMargin, top), QPointF(kSideMargin + kTextWidth, top));
  }

  void DrawCover(QPainter& painter) const {
    QSvgRenderer logo(cover_.logo);
    if (!logo.isValid()) {
      throw Error("the drawing " + cover_.logo.toStdString() + " cannot be used");
    }
    constexpr double kLogoSize = Millimetres(34);
    constexpr double kTop = Millimetres(70);
    logo.render(&painter, QRectF(kSideMargin, kTop, kLogoSize, kLogoSize));
    double top = kTop + kLogoSize + Millimetres(14);
    const auto line = [&](const QString& text, const TextStyle& style) {
      top += DrawText(painter, top, text, style);
    };
    line(cover_.product, kTitleText);
    line(kManualTitle, kChapterText);
    top += Millimetres(8);
    line(QStringLiteral("Version ") + cover_.version, kBodyText);
    top = kPageHeight - kBottomMargin - Millimetres(10);
    line(cover_.copyright, kBodyText);
  }

  // Returns its height.
  static double DrawText(QPainter& painter, double top, const QString& text, const TextStyle& style,
                         Qt::Alignment side = Qt::AlignLeft) {
    painter.setFont(FontOf(style));
    painter.setPen(style.ink);
    QRectF place;
    painter.drawText(QRectF(kSideMargin, top, kTextWidth, kTextHeight),
                     static_cast<int>(side | Qt::TextWordWrap), text, &place);
    return std::max(place.height(), Points(style.leading));
  }

  // The head and the foot that all pages but the cover have.
  void DrawFrame(QPainter& painter, int number, const QString& head) const {
    constexpr double kHeadTop = Millimetres(12);
    constexpr double kFootTop = kPageHeight - Millimetres(16);
    DrawText(painter, kHeadTop, head, kRunningText);
    DrawText(painter, kFootTop, cover_.product, kRunningText);
    DrawText(painter, kFootTop,
             QStringLiteral("Page %1 of %2").arg(number).arg(kFirstPage - 1 + pages_.size()),
             kRunningText, Qt::AlignRight);
    const double rule = kFootTop - Millimetres(2);
    DrawRule(painter, rule);
  }

  const Cover& cover_;
  QPdfWriter& writer_;
  std::unique_ptr<QTextDocument> document_;
  std::vector<Box> boxes_;
  std::vector<Page> pages_;
  std::vector<ContentsLine> contents_;
};

}  // namespace

QByteArray WriteManual(const std::vector<Chapter>& chapters, const Pictures& pictures,
                       const Cover& cover) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  QPdfWriter writer(&buffer);
  Manual manual(cover, writer);
  manual.Set(chapters, pictures);
  manual.Draw();
  return bytes;
}

}  // namespace vrx::manual
