#pragma once

#include <QPainter>
#include <QPointF>
#include <QTextLayout>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "make_manual/manual_style.h"
#include "make_manual/manual_text.h"

namespace vrx::manual {

// The page of each chapter by its file, for the links; a first pass has none yet.
using ChapterPages = std::map<std::string, int, std::less<>>;

// A text broken into lines of a width.
class TextBox {
 public:
  // Throws Error for a link to no chapter, unless there are no pages at all.
  TextBox(const Spans& spans, const TextStyle& style, double width, const ChapterPages& pages);

  int LineCount() const { return layout_->lineCount(); }
  double LineHeight() const { return leading_; }
  double Width() const { return layout_->maximumWidth(); }
  double Height() const { return leading_ * LineCount(); }

  // The point is the upper left corner of that line.
  void DrawLine(QPainter& painter, QPointF at, int line) const;
  void Draw(QPainter& painter, QPointF at) const;

 private:
  std::shared_ptr<QTextLayout> layout_;  // a box is copied into what draws it
  double leading_;
};

}  // namespace vrx::manual
