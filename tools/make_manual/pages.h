#pragma once

#include <QPointF>
#include <vector>

#include "make_manual/boxes.h"

namespace vrx::manual {

struct PlacedDrawing {
  double top = 0;  // below the top of the text, in dots
  Drawing draw;
};

struct Page {
  std::vector<PlacedDrawing> drawings;
  std::vector<int> headings;  // of the chapter, that stand on it
};

// Boxes on as few pages as their rules allow, the first box on a new one. Throws Error where boxes
// that belong together are higher than a page.
std::vector<Page> BreakPages(const std::vector<Box>& boxes, double height);

}  // namespace vrx::manual
