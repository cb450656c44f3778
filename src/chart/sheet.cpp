#include "chart/sheet.h"

#include <QPainterPath>
#include <QStringList>
#include <algorithm>
#include <cmath>
#include <utility>

#include "base/translation.h"

namespace vrx {
namespace {

constexpr double kMargin = 8;
constexpr QSizeF kSmallest(240, 180);
constexpr double kLegendMark = 18;  // width of what is before a text of the legend
constexpr double kLegendGap = 16;
constexpr double kHatchingStep = 5;

}  // namespace

QString NameText(const std::optional<std::string>& name) {
  return ToText(name ? *name : Tr("(none)"));
}

std::string UnitText(std::string_view units) { return units == "KG" ? "kg" : "lb"; }

Sheet::Sheet(QSizeF size, const Look& look, const ChartTexts& texts)
    : look_(look),
      title_(FontOf(look, Letters::kTitle)),
      marks_(FontOf(look, Letters::kMarks)),
      small_(FontOf(look, Letters::kSmall)),
      top_(kMargin) {
  picture_.size = size.expandedTo(kSmallest);
  picture_.title = ToText(texts.title);
  AddParagraph(texts.title, Letters::kTitle, Ink::kText);
  AddParagraph(texts.how, Letters::kSmall, Ink::kQuiet);
  if (top_ > kMargin) {
    top_ += kMargin / 2;
  }
}

const QFontMetricsF& Sheet::MetricsOf(Letters letters) const {
  switch (letters) {
    case Letters::kTitle:
      return title_;
    case Letters::kMarks:
      return marks_;
    case Letters::kSmall:
      break;
  }
  return small_;
}

double Sheet::WidthOf(const QString& text, Letters letters) const {
  return MetricsOf(letters).horizontalAdvance(text);
}

double Sheet::LineOf(Letters letters) const { return MetricsOf(letters).height(); }

double Sheet::AscentOf(Letters letters) const { return MetricsOf(letters).ascent(); }

QString Sheet::Fitted(const QString& text, double width, Letters letters) const {
  return MetricsOf(letters).elidedText(text, Qt::ElideMiddle, width);
}

void Sheet::AddParagraph(const std::string& text, Letters letters, Ink ink) {
  const double width = picture_.size.width() - 2 * kMargin;
  QString line;
  const auto end_line = [&] {
    AddText(Layer::kFrame, {kMargin, top_ + AscentOf(letters)}, Anchor::kStart,
            Fitted(line, width, letters), letters, ink);
    top_ += LineOf(letters);
  };
  const QStringList words = ToText(text).simplified().split(' ', Qt::SkipEmptyParts);
  for (const QString& word : words) {
    const QString longer = line.isEmpty() ? word : line + ' ' + word;
    if (!line.isEmpty() && WidthOf(longer, letters) > width) {
      end_line();
      line = word;
    } else {
      line = longer;
    }
  }
  if (!line.isEmpty()) {
    end_line();
  }
}

void Sheet::AddLine(const std::string& text) {
  const double width = picture_.size.width() - 2 * kMargin;
  AddText(Layer::kFrame, {kMargin, top_ + AscentOf(Letters::kSmall)}, Anchor::kStart,
          Fitted(ToText(text), width, Letters::kSmall), Letters::kSmall, Ink::kQuiet);
  top_ += LineOf(Letters::kSmall) + 2;
}

void Sheet::AddLegend(const std::vector<LegendEntry>& entries) {
  const double right = picture_.size.width() - kMargin;
  const double line = LineOf(Letters::kSmall) + 3;
  double left = kMargin;
  for (const LegendEntry& entry : entries) {
    const QString text = Fitted(ToText(entry.text), right - kMargin - kLegendMark, Letters::kSmall);
    const double width = kLegendMark + WidthOf(text, Letters::kSmall);
    if (left > kMargin && left + width > right) {
      left = kMargin;
      top_ += line;
    }
    AddLegendMark(entry, {left + kLegendMark / 2 - 3, top_ + line / 2});
    AddText(Layer::kFrame, {left + kLegendMark, top_ + AscentOf(Letters::kSmall)}, Anchor::kStart,
            text, Letters::kSmall);
    left += width + kLegendGap;
  }
  if (!entries.empty()) {
    top_ += line + 2;
  }
}

void Sheet::AddLegendMark(const LegendEntry& entry, QPointF middle) {
  const QRectF box(middle.x() - 6, middle.y() - 6, 12, 10);
  switch (entry.mark) {
    case LegendMark::kSymbol:
      Add(Layer::kFrame, DotsShape{{middle}, entry.symbol, 7, entry.ink});
      break;
    case LegendMark::kLine:
    case LegendMark::kDashed:
      AddLine(Layer::kFrame, {box.left(), middle.y()}, {box.right() + 1, middle.y()}, entry.ink, 2,
              entry.mark == LegendMark::kDashed);
      break;
    case LegendMark::kBox:
      AddBox(Layer::kFrame, box, entry.ink);
      break;
    case LegendMark::kHatched:
      AddHatching(Layer::kFrame, box, entry.ink);
      break;
  }
}

QRectF Sheet::Room(double height) {
  picture_.size.setHeight(std::max(picture_.size.height(), top_ + height + kMargin));
  return {kMargin, top_, picture_.size.width() - 2 * kMargin,
          picture_.size.height() - top_ - kMargin};
}

void Sheet::EndAt(double bottom) { picture_.size.setHeight(bottom + kMargin); }

void Sheet::AddText(Layer layer, QPointF base, Anchor anchor, const QString& text, Letters letters,
                    Ink ink) {
  const double width = WidthOf(text, letters);
  const double part = anchor == Anchor::kStart ? 0 : anchor == Anchor::kMiddle ? 0.5 : 1;
  const QRectF box(base.x() - part * width, base.y() - AscentOf(letters), width, LineOf(letters));
  picture_.shapes.push_back({layer, TextShape{base, anchor, text, letters, ink, box}});
}

void Sheet::AddLine(Layer layer, QPointF from, QPointF to, Ink ink, double width, bool dashed) {
  QPainterPath path(from);
  path.lineTo(to);
  Add(layer, PathShape{.path = path, .line = ink, .width = width, .dashed = dashed});
}

void Sheet::AddBox(Layer layer, const QRectF& box, Ink ink, double opacity) {
  QPainterPath path;
  path.addRect(box);
  Add(layer, PathShape{.path = path, .fill = ink, .opacity = opacity});
}

void Sheet::AddHatching(Layer layer, const QRectF& box, Ink ink) {
  QPainterPath path;
  path.addRect(box);
  // Lines that rise to the right: x - left + y - top is the same along each.
  const int lines = static_cast<int>(std::ceil((box.width() + box.height()) / kHatchingStep));
  for (int line = 1; line < lines; ++line) {
    const double sum = line * kHatchingStep;
    const double right = std::min(sum, box.width());
    const double low = std::min(sum, box.height());
    path.moveTo(box.left() + sum - low, box.top() + low);
    path.lineTo(box.left() + right, box.top() + sum - right);
  }
  Add(layer, PathShape{.path = path, .line = ink});
}

void Sheet::Add(Layer layer, PathShape shape) {
  if (!shape.path.isEmpty()) {
    picture_.shapes.push_back({layer, std::move(shape)});
  }
}

void Sheet::Add(Layer layer, DotsShape shape) {
  if (!shape.at.empty()) {
    picture_.shapes.push_back({layer, std::move(shape)});
  }
}

Picture Sheet::Finish(const QRectF& plot) {
  picture_.plot = plot;
  return std::move(picture_);
}

Picture Sheet::FinishEmpty(const std::string& sentence) {
  const QRectF room = Room(3 * LineOf(Letters::kMarks));
  AddText(Layer::kFrame, room.center(), Anchor::kMiddle,
          Fitted(ToText(sentence), room.width(), Letters::kMarks), Letters::kMarks, Ink::kQuiet);
  return Finish({});
}

}  // namespace vrx
