#include "make_manual/pages.h"

#include <QAbstractTextDocumentLayout>
#include <QTextFrame>
#include <QTextLayout>
#include <QTextTable>
#include <algorithm>
#include <string>

#include "base/error.h"
#include "make_manual/manual_text.h"
#include "make_manual/typeset.h"

namespace vrx::manual {
namespace {

constexpr double Dots(double format_length) { return format_length / FormatDots(1); }

Box BoxOf(const QTextBlock& block) {
  const BlockKind kind = KindOf(block);
  Box box;
  box.top = block.document()->documentLayout()->blockBoundingRect(block).top();
  box.bottom = box.top + block.layout()->lineCount() * Dots(block.blockFormat().lineHeight());
  box.keeps_next = block.blockFormat().boolProperty(kKeepsNext);
  box.starts_page = kind == BlockKind::kTitle;
  if (kind == BlockKind::kTitle || kind == BlockKind::kSection) {
    box.heading = block.text();
  } else if (kind == BlockKind::kCode) {
    box.decoration = Decoration::kShaded;
    if (block.layout()->lineCount() > 1) {
      throw Error("a line of code is wider than the page: " + block.text().toStdString());
    }
  } else if (kind == BlockKind::kFigure) {
    box.decoration = Decoration::kFramed;
    box.width = Dots(FigureIn(block).width());
    box.bottom = box.top + Dots(FigureIn(block).height());
  }
  return box;
}

void AddTable(const QTextTable& table, std::vector<Box>& boxes) {
  const double padding = Dots(table.format().cellPadding());
  const std::size_t head = boxes.size();
  const int rows = table.rows();
  for (int row = 0; row < rows; ++row) {
    Box& box = boxes.emplace_back();
    for (int column = 0; column < table.columns(); ++column) {
      const Box cell = BoxOf(table.cellAt(row, column).firstCursorPosition().block());
      box.top = cell.top - padding;
      box.bottom = std::max(box.bottom, cell.bottom + padding);
    }
    box.decoration = row == 0 ? Decoration::kShaded : Decoration::kRuled;
    box.keeps_next = row < 2 ? row + 1 < rows : row + 2 == rows;
    if (row > 1) {
      box.head = head;
    }
  }
}

}  // namespace

std::vector<Box> BoxesOf(const QTextDocument& document) {
  std::vector<Box> boxes;
  for (auto part = document.rootFrame()->begin(); !part.atEnd(); ++part) {
    if (const auto* const table = qobject_cast<QTextTable*>(part.currentFrame())) {
      AddTable(*table, boxes);
    } else if (KindOf(part.currentBlock()) != BlockKind::kEmpty) {
      boxes.push_back(BoxOf(part.currentBlock()));
    }
  }
  return boxes;
}

double PlaceOnPage(const std::vector<Box>& boxes, std::size_t first, std::size_t box) {
  const auto head = boxes[first].head;
  const double head_height = head ? boxes[*head].bottom - boxes[*head].top : 0;
  return head_height + boxes[box].top - boxes[first].top;
}

std::vector<Page> BreakPages(const std::vector<Box>& boxes, double height) {
  std::vector<Page> pages;
  const auto fits = [&](std::size_t first, std::size_t last) {
    return PlaceOnPage(boxes, first, last) + boxes[last].bottom - boxes[last].top <= height;
  };
  for (std::size_t first = 0; first < boxes.size();) {
    std::size_t last = first;
    while (last + 1 < boxes.size() && boxes[last].keeps_next) {
      ++last;
    }
    if (pages.empty() || boxes[first].starts_page || !fits(pages.back().first, last)) {
      if (!fits(first, last)) {
        throw Error("what belongs together is higher than a page: box " + std::to_string(first));
      }
      pages.push_back({first, last});
    }
    first = last + 1;
    pages.back().end = first;
  }
  return pages;
}

}  // namespace vrx::manual
