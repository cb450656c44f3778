#include "make_manual/boxes.h"

#include <QPen>
#include <algorithm>
#include <numeric>

#include "base/error.h"

namespace vrx::manual {
namespace {

constexpr double kParagraphGap = Points(6);
constexpr double kItemGap = Points(3);
constexpr double kSectionGap = Points(16);
constexpr double kFigureGap = Points(10);
constexpr double kCaptionGap = Points(4);
constexpr double kCellGap = Points(4);
constexpr double kIndent = Points(14);
constexpr double kCodeIndent = Points(10);

// A window of the program's own width fills the line; a smaller one keeps that scale.
constexpr double kWidestPicture = 960;  // logical pixels

Spans Plain(const QString& text) { return {{SpanStyle::kPlain, text.toStdString(), 0, {}}}; }

class BoxMaker {
 public:
  BoxMaker(const Chapter& chapter, int number, const Pictures& pictures, const ChapterPages& pages,
           int& figures)
      : chapter_(chapter), number_(number), pictures_(pictures), pages_(pages), figures_(figures) {}

  std::vector<Box> Run() {
    AddText(Plain(HeadingText(chapter_, number_, 0)), kChapterText, 0);
    EndHeading(Points(8));
    const Block* before = nullptr;
    for (const Block& block : chapter_.blocks) {
      try {
        KeepWith(before, block);
        Add(block);
        before = &block;
      } catch (const Error& error) {
        throw Error(chapter_.file + ":" + std::to_string(block.line) + ": " + error.what());
      }
    }
    return std::move(boxes_);
  }

 private:
  // What is announced stands on the page of its announcement: a list, a table, lines of code. A
  // list does not leave its first item behind.
  void KeepWith(const Block* before, const Block& block) {
    if (before == nullptr) {
      return;
    }
    const bool listed = block.kind == BlockKind::kBullet || block.kind == BlockKind::kNumbered;
    const bool announced =
        before->kind == BlockKind::kParagraph &&
        (listed || block.kind == BlockKind::kTable || block.kind == BlockKind::kCode);
    const bool second_item = listed && before->kind == block.kind && first_item_;
    first_item_ = listed && before->kind != block.kind;
    if (announced || second_item) {
      boxes_.back().keeps_next = true;
    }
  }

  void Add(const Block& block) {
    switch (block.kind) {
      case BlockKind::kSection:
        ++section_;
        AddText(Plain(HeadingText(chapter_, number_, section_)), kSectionText, kSectionGap);
        EndHeading(0);
        break;
      case BlockKind::kParagraph:
        AddText(block.spans, kBodyText, kParagraphGap);
        break;
      case BlockKind::kBullet:
        AddItem(block.spans, QStringLiteral("\u2022"));
        break;
      case BlockKind::kNumbered:
        AddItem(block.spans, QString::number(block.number) + u'.');
        break;
      case BlockKind::kCode:
        AddCode(block.text);
        break;
      case BlockKind::kFigure:
        AddFigure(block);
        break;
      case BlockKind::kTable:
        AddTable(block);
        break;
    }
  }

  // Two lines at least on either side of a page's end.
  void AddText(const Spans& spans, const TextStyle& style, double before, double indent = 0) {
    const TextBox text(spans, style, kTextWidth - indent, pages_);
    const int count = text.LineCount();
    for (int line = 0; line < count; ++line) {
      boxes_.push_back({.before = line == 0 ? before : 0,
                        .height = text.LineHeight(),
                        .keeps_next = line + 1 < count && (line == 0 || line + 2 == count),
                        .draw = [=](QPainter& painter, QPointF at) {
                          text.DrawLine(painter, at + QPointF(indent, 0), line);
                        }});
    }
  }

  void EndHeading(double behind) {
    boxes_.back().keeps_next = true;
    boxes_.back().heading = section_;
    boxes_.back().height += behind;
  }

  void AddItem(const Spans& spans, const QString& mark) {
    const auto first = boxes_.size();
    AddText(spans, kBodyText, kItemGap, kIndent);
    const TextBox mark_text(Plain(mark), kBodyText, kIndent, pages_);
    boxes_.at(first).draw = [mark_text, rest = boxes_.at(first).draw](QPainter& painter,
                                                                      QPointF at) {
      mark_text.Draw(painter, at);
      rest(painter, at);
    };
  }

  void AddCode(const std::string& text) {
    const QStringList lines = QString::fromStdString(text).split(u'\n');
    for (qsizetype i = 0; i < lines.size(); ++i) {
      const TextBox line(Plain(lines[i]), kCodeText, kTextWidth - kCodeIndent, pages_);
      if (line.LineCount() > 1) {
        throw Error("a line of code is wider than the page: " + lines[i].toStdString());
      }
      boxes_.push_back({.before = i == 0 ? kParagraphGap : 0,
                        .height = line.Height(),
                        .keeps_next = i + 1 < lines.size(),
                        .draw = [=](QPainter& painter, QPointF at) {
                          painter.fillRect(QRectF(at, QSizeF(kTextWidth, line.Height())), kShade);
                          line.Draw(painter, at + QPointF(kCodeIndent, 0));
                        }});
    }
  }

  void AddFigure(const Block& block) {
    const auto found = pictures_.find(block.text);
    if (found == pictures_.end()) {
      throw Error("there is no figure \"" + block.text + "\"");
    }
    const QImage& image = found->second;
    Spans spans = Plain(QStringLiteral("Figure %1. ").arg(++figures_));
    spans.insert(spans.end(), block.spans.begin(), block.spans.end());
    const TextBox caption(spans, kCaptionText, kTextWidth, pages_);
    const double width =
        std::min(1.0, image.width() / image.devicePixelRatio() / kWidestPicture) * kTextWidth;
    const QSizeF size(width, width * image.height() / image.width());
    boxes_.push_back({.before = kFigureGap,
                      .height = size.height() + kCaptionGap + caption.Height() + kItemGap,
                      .draw = [=](QPainter& painter, QPointF at) {
                        const QRectF place(at, size);
                        painter.drawImage(place, image);
                        painter.setPen(QPen(kRule, Points(0.5)));
                        painter.drawRect(place);
                        caption.Draw(painter, at + QPointF(0, size.height() + kCaptionGap));
                      }});
  }

  struct Row {
    std::vector<TextBox> cells;
    std::vector<double> places;
    double height = 0;

    void Draw(QPainter& painter, QPointF at) const {
      for (std::size_t i = 0; i < cells.size(); ++i) {
        cells[i].Draw(painter, at + QPointF(places[i] + kCellGap, kCellGap));
      }
      painter.setPen(QPen(kRule, Points(0.5)));
      painter.drawLine(at + QPointF(0, height), at + QPointF(kTextWidth, height));
    }
  };

  Row RowOf(const std::vector<Spans>& cells, const std::vector<int>& widths,
            const TextStyle& style) const {
    Row row;
    const int all = std::accumulate(widths.begin(), widths.end(), 0);
    double place = 0;
    for (std::size_t i = 0; i < cells.size(); ++i) {
      const double width = kTextWidth * widths[i] / all;
      row.cells.emplace_back(cells[i], style, width - 2 * kCellGap, pages_);
      row.places.push_back(place);
      row.height = std::max(row.height, row.cells.back().Height() + 2 * kCellGap);
      place += width;
    }
    return row;
  }

  void AddTable(const Block& block) {
    if (block.rows.size() < 2 || block.widths.empty()) {
      throw Error("a table has a heading, a row of dashes and rows");
    }
    const auto head = std::make_shared<RunningHead>();
    const Row heading = RowOf(block.rows.front(), block.widths, kCellHeadText);
    head->height = heading.height;
    head->draw = [heading](QPainter& painter, QPointF at) {
      painter.fillRect(QRectF(at, QSizeF(kTextWidth, heading.height)), kShade);
      heading.Draw(painter, at);
    };
    boxes_.push_back(
        {.before = kParagraphGap, .height = head->height, .keeps_next = true, .draw = head->draw});
    for (std::size_t i = 1; i < block.rows.size(); ++i) {
      const Row row = RowOf(block.rows[i], block.widths, kCellText);
      boxes_.push_back({.height = row.height,
                        .keeps_next = i == 1 || i + 2 == block.rows.size(),
                        .draw = [row](QPainter& painter, QPointF at) { row.Draw(painter, at); },
                        .running_head = i == 1 ? nullptr : head});
    }
    boxes_.back().height += kParagraphGap;
    boxes_.back().keeps_next = false;
  }

  const Chapter& chapter_;
  int number_;
  const Pictures& pictures_;
  const ChapterPages& pages_;
  int& figures_;
  int section_ = 0;
  bool first_item_ = false;  // the block before began a list
  std::vector<Box> boxes_;
};

}  // namespace

std::vector<Box> BoxesOf(const Chapter& chapter, int number, const Pictures& pictures,
                         const ChapterPages& pages, int& figures) {
  return BoxMaker(chapter, number, pictures, pages, figures).Run();
}

QString HeadingText(const Chapter& chapter, int number, int section) {
  if (section == 0) {
    return QStringLiteral("%1  %2").arg(number).arg(QString::fromStdString(chapter.title));
  }
  int left = section;
  for (const Block& block : chapter.blocks) {
    if (block.kind == BlockKind::kSection && --left == 0) {
      QString text;
      for (const Span& span : block.spans) {
        text += QString::fromStdString(span.text);
      }
      return QStringLiteral("%1.%2  %3").arg(number).arg(section).arg(text);
    }
  }
  throw Error(chapter.file + " has no section " + std::to_string(section));
}

}  // namespace vrx::manual
