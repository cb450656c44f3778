#include "make_manual/manual_pdf.h"

#include <QBuffer>
#include <QPainter>
#include <QPdfWriter>
#include <QSvgRenderer>
#include <utility>

#include "base/error.h"
#include "make_manual/manual_style.h"
#include "make_manual/pages.h"

namespace vrx::manual {
namespace {

const QString kManualTitle = QStringLiteral("User\u2019s Manual");
const QString kContents = QStringLiteral("Contents");

Spans PlainSpans(const QString& text) { return {{SpanStyle::kPlain, text.toStdString(), 0, {}}}; }

struct SetChapter {
  std::vector<Page> pages;
  int first_page = 0;
};

struct ContentsLine {
  QString text;
  int page = 0;
  bool chapter = false;
};

Drawing ContentsDrawing(const ContentsLine& line, const TextStyle& style) {
  constexpr double kSectionIndent = Points(16);
  constexpr double kNumberWidth = Points(30);
  const double indent = line.chapter ? 0 : kSectionIndent;
  const double width = kTextWidth - indent - kNumberWidth;
  const TextBox text(PlainSpans(line.text), style, width, {});
  return [=](QPainter& painter, QPointF at) {
    text.DrawLine(painter, at + QPointF(indent, 0), 0);
    const TextBox number(PlainSpans(QString::number(line.page)), style, kNumberWidth, {});
    number.DrawLine(painter, at + QPointF(kTextWidth - number.Width(), 0), 0);
  };
}

std::vector<Box> ContentsBoxes(const std::vector<ContentsLine>& lines) {
  std::vector<Box> boxes;
  const TextBox head(PlainSpans(kContents), kChapterText, kTextWidth, {});
  boxes.push_back({.height = head.Height() + Points(8),
                   .keeps_next = true,
                   .draw = [head](QPainter& painter, QPointF at) { head.Draw(painter, at); }});
  for (const ContentsLine& line : lines) {
    const TextStyle style{.bold = line.chapter};
    boxes.push_back({.before = line.chapter ? Points(5) : 0,
                     .height = Points(style.leading),
                     .keeps_next = line.chapter,
                     .draw = ContentsDrawing(line, style)});
  }
  boxes.back().keeps_next = false;
  return boxes;
}

class Manual {
 public:
  Manual(const std::vector<Chapter>& chapters, const Pictures& pictures, const Cover& cover)
      : chapters_(chapters), pictures_(pictures), cover_(cover) {}

  // The numbers in the links are not known until the chapters are set; they seldom change a line.
  void Set() {
    constexpr int kPasses = 4;
    for (int pass = 0; pass < kPasses; ++pass) {
      const ChapterPages before = chapter_pages_;
      SetOnce();
      if (chapter_pages_ == before) {
        return;
      }
    }
    throw Error("the page numbers of the links do not settle");
  }

  QByteArray Write() const {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter writer(&buffer);
    writer.setResolution(kDotsPerInch);
    writer.setPageSize(QPageSize(QPageSize::A4));
    writer.setPageMargins({0, 0, 0, 0});
    writer.setTitle(cover_.product + QStringLiteral(" - ") + kManualTitle);
    writer.setCreator(cover_.product + u' ' + cover_.version);
    QPainter painter;
    if (!painter.begin(&writer)) {
      throw Error("cannot write a PDF");
    }
    painter.setRenderHint(QPainter::LosslessImageRendering);
    Draw(painter, writer);
    if (!painter.end()) {
      throw Error("cannot end the PDF");
    }
    return bytes;
  }

 private:
  void SetOnce() {
    set_.clear();
    int figures = 0;
    for (std::size_t i = 0; i < chapters_.size(); ++i) {
      const auto boxes =
          BoxesOf(chapters_[i], static_cast<int>(i) + 1, pictures_, chapter_pages_, figures);
      set_.push_back({BreakPages(boxes, kTextHeight), 0});
    }
    // How many pages the contents take does not depend on the numbers in them.
    contents_ = BreakPages(ContentsBoxes(ContentsLines()), kTextHeight);
    int page = 2 + static_cast<int>(contents_.size());
    for (std::size_t i = 0; i < set_.size(); ++i) {
      set_[i].first_page = page;
      chapter_pages_[chapters_[i].file] = page;
      page += static_cast<int>(set_[i].pages.size());
    }
    page_count_ = page - 1;
    contents_ = BreakPages(ContentsBoxes(ContentsLines()), kTextHeight);
  }

  std::vector<ContentsLine> ContentsLines() const {
    std::vector<ContentsLine> lines;
    for (std::size_t i = 0; i < set_.size(); ++i) {
      for (std::size_t page = 0; page < set_[i].pages.size(); ++page) {
        for (const int heading : set_[i].pages[page].headings) {
          lines.push_back({HeadingText(chapters_[i], static_cast<int>(i) + 1, heading),
                           set_[i].first_page + static_cast<int>(page), heading == 0});
        }
      }
    }
    return lines;
  }

  void Draw(QPainter& painter, QPdfWriter& writer) const {
    DrawCover(painter);
    int number = 1;
    const auto draw_page = [&](const Page& page, const QString& head) {
      writer.newPage();
      ++number;
      DrawFrame(painter, number, head);
      for (const PlacedDrawing& placed : page.drawings) {
        placed.draw(painter, {kSideMargin, kTopMargin + placed.top});
      }
    };
    for (const Page& page : contents_) {
      draw_page(page, {});
    }
    for (std::size_t i = 0; i < set_.size(); ++i) {
      for (const Page& page : set_[i].pages) {
        const bool first = &page == &set_[i].pages.front();
        draw_page(page, first ? QString() : QString::fromStdString(chapters_[i].title));
      }
    }
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
      const TextBox box(PlainSpans(text), style, kTextWidth, {});
      box.Draw(painter, {kSideMargin, top});
      top += box.Height();
    };
    line(cover_.product, kTitleText);
    line(kManualTitle, kChapterText);
    top += Millimetres(8);
    line(QStringLiteral("Version ") + cover_.version, kBodyText);
    top = kPageHeight - kBottomMargin - Millimetres(10);
    line(cover_.copyright, kBodyText);
  }

  // The head and the foot that all pages but the cover have.
  void DrawFrame(QPainter& painter, int number, const QString& head) const {
    constexpr double kHeadTop = Millimetres(12);
    constexpr double kFootTop = kPageHeight - Millimetres(16);
    const auto text = [&](double top, bool right, const QString& words) {
      const TextBox box(PlainSpans(words), kRunningText, kTextWidth, {});
      const double indent = right ? kTextWidth - box.Width() : 0;
      box.Draw(painter, {kSideMargin + indent, top});
    };
    text(kHeadTop, false, head);
    text(kFootTop, false, cover_.product);
    text(kFootTop, true, QStringLiteral("Page %1 of %2").arg(number).arg(page_count_));
    painter.setPen(QPen(kRule, Points(0.5)));
    const double rule = kFootTop - Millimetres(2);
    painter.drawLine(QPointF(kSideMargin, rule), QPointF(kSideMargin + kTextWidth, rule));
  }

  const std::vector<Chapter>& chapters_;
  const Pictures& pictures_;
  const Cover& cover_;
  std::vector<SetChapter> set_;
  std::vector<Page> contents_;
  ChapterPages chapter_pages_;
  int page_count_ = 0;
};

}  // namespace

QByteArray WriteManual(const std::vector<Chapter>& chapters, const Pictures& pictures,
                       const Cover& cover) {
  Manual manual(chapters, pictures, cover);
  manual.Set();
  return manual.Write();
}

}  // namespace vrx::manual
