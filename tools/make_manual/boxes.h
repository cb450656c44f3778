#pragma once

#include <QImage>
#include <QPainter>
#include <QPointF>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "make_manual/manual_text.h"
#include "make_manual/text_box.h"

namespace vrx::manual {

using Drawing = std::function<void(QPainter&, QPointF)>;

// A heading of a table, drawn again where the table goes on.
struct RunningHead {
  double height = 0;
  Drawing draw;
};

// What stays on one page: a line of text, a row of a table, a figure with its caption. Lengths in
// dots.
struct Box {
  double before = 0;  // blank above it, but for the top of a page
  double height = 0;
  bool keeps_next = false;  // on one page with the next box
  Drawing draw = {};        // the point is the box's upper left corner
  int heading = -1;  // of a heading its number in the chapter: 0 the title, 1 the first section
  std::shared_ptr<const RunningHead> running_head = {};
};

using Pictures = std::map<std::string, QImage, std::less<>>;

// A chapter cut into boxes, its title first. Counts the figures on from `figures`.
std::vector<Box> BoxesOf(const Chapter& chapter, int number, const Pictures& pictures,
                         const ChapterPages& pages, int& figures);

// "2.1 Text", as the heading reads; `section` is 0 for the chapter itself.
QString HeadingText(const Chapter& chapter, int number, int section);

}  // namespace vrx::manual
