#pragma once

#include <QString>
#include <QTextDocument>
#include <cstddef>
#include <optional>
#include <vector>

#include "make_manual/manual_style.h"

namespace vrx::manual {

enum class Decoration { kNone, kShaded, kRuled, kFramed };

// What one page takes in full: a paragraph, a row of a table, a figure. Lengths in dots from the
// top of the document.
struct Box {
  double top = 0;
  double bottom = 0;
  double width = kTextWidth;
  bool keeps_next = false;   // on one page with the next box
  bool starts_page = false;  // the title of a chapter
  Decoration decoration = Decoration::kNone;
  QString heading = {};  // the text of a heading
  std::optional<std::size_t> head =
      {};  // the head of the table, repeated if this box begins a page
};

// The document must be laid out. Two rows of a table stay together on either side of the end of a
// page. Throws Error for a line of code that is wider than the page.
std::vector<Box> BoxesOf(const QTextDocument& document);

// The boxes from `first` up to but without `end`.
struct Page {
  std::size_t first = 0;
  std::size_t end = 0;
};

// Boxes on as few pages as their rules allow. Throws Error where boxes that belong together are
// higher than a page.
std::vector<Page> BreakPages(const std::vector<Box>& boxes, double height);

// How far the box is below the top of the page that begins with box `first`.
double PlaceOnPage(const std::vector<Box>& boxes, std::size_t first, std::size_t box);

}  // namespace vrx::manual
