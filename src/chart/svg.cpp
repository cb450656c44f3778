#include <QFont>
#include <QPainterPath>
#include <charconv>
#include <string>
#include <string_view>
#include <variant>

#include "base/number.h"
#include "chart/look.h"
#include "chart/picture.h"

namespace vrx {
namespace {

// Hundredths are finer than any screen and keep the text short.
std::string Number(double value) {
  std::string text = Format(value, "0.00");
  text.erase(text.find_last_not_of('0') + 1);
  if (text.ends_with('.')) {
    text.pop_back();
  }
  return text;
}

std::string Number(QPointF at) { return Number(at.x()) + ' ' + Number(at.y()); }

std::string Color(Ink ink) { return ColorOf(ink, false).name().toStdString(); }

// The class of an ink that fills, or with "-line" of one that draws a line, and the light color.
std::string FillOf(Ink ink) {
  return " class=\"" + std::string(ClassOf(ink)) + "\" fill=\"" + Color(ink) + '"';
}

std::string Classes(std::optional<Ink> fill, std::optional<Ink> line) {
  std::string classes = fill ? std::string(ClassOf(*fill)) : "";
  if (line) {
    classes += (classes.empty() ? "" : " ") + std::string(ClassOf(*line)) + "-line";
  }
  return " class=\"" + classes + "\" fill=\"" + (fill ? Color(*fill) : "none") + '"' +
         (line ? " stroke=\"" + Color(*line) + '"' : "");
}

std::string PathData(const QPainterPath& path) {
  std::string data;
  for (int i = 0; i < path.elementCount(); ++i) {
    const QPainterPath::Element element = path.elementAt(i);
    data += (element.isMoveTo() ? 'M' : 'L') + Number(QPointF(element.x, element.y));
  }
  return data;
}

class SvgWriting {
 public:
  SvgWriting(std::string& svg, const Look& look) : svg_(svg), look_(look) {}

  void operator()(const PathShape& shape) const {
    svg_ += "<path" + Classes(shape.fill, shape.line);
    if (shape.fill && shape.opacity < 1) {
      svg_ += " fill-opacity=\"" + Number(shape.opacity) + '"';
    }
    if (shape.line && shape.width != 1) {
      svg_ += " stroke-width=\"" + Number(shape.width) + '"';
    }
    if (shape.dashed) {
      svg_ +=
          " stroke-dasharray=\"" + Number(5 * shape.width) + ' ' + Number(3 * shape.width) + '"';
    }
    svg_ += " d=\"" + PathData(shape.path) + "\"/>\n";
  }

  void operator()(const DotsShape& shape) const {
    const bool is_cross = shape.symbol == Symbol::kCross;
    svg_ += "<path" +
            (is_cross ? Classes({}, shape.ink) + " stroke-width=\"1.5\"" : Classes(shape.ink, {}));
    svg_ += " d=\"";
    for (const QPointF& at : shape.at) {
      AddSymbol(shape, at);
    }
    svg_ += "\"/>\n";
  }

  void operator()(const TextShape& shape) const {
    const QFont font = FontOf(look_, shape.letters);
    svg_ += "<text x=\"" + Number(shape.at.x()) + "\" y=\"" + Number(shape.at.y()) +
            "\" font-size=\"" + std::to_string(font.pixelSize()) + '"' + FillOf(shape.ink);
    if (shape.anchor != Anchor::kStart) {
      svg_ += shape.anchor == Anchor::kMiddle ? " text-anchor=\"middle\"" : " text-anchor=\"end\"";
    }
    svg_ += std::string(font.bold() ? " font-weight=\"bold\"" : "") + '>' + MarkupText(shape.text) +
            "</text>\n";
  }

 private:
  static std::string HalfCircle(const std::string& radius, const std::string& right) {
    return 'a' + radius + ' ' + radius + " 0 0 1 " + right + " 0";
  }

  void AddSymbol(const DotsShape& shape, QPointF at) const {
    const double half = shape.size / 2;
    const std::string size = Number(shape.size);
    const std::string part = Number(half);
    switch (shape.symbol) {
      case Symbol::kDot:
        // Two half circles. A line without length and with round ends is shorter, but not every
        // program draws it.
        svg_ += 'M' + Number(at - QPointF(half, 0)) + HalfCircle(part, size) +
                HalfCircle(part, '-' + size) + 'z';
        break;
      case Symbol::kSquare:
        svg_ +=
            'M' + Number(at - QPointF(half, half)) + 'h' + size + 'v' + size + "h-" + size + 'z';
        break;
      case Symbol::kDiamond:
        svg_ += 'M' + Number(at - QPointF(0, half)) + 'l' + part + ' ' + part + 'l' + '-' + part +
                ' ' + part + "l-" + part + " -" + part + 'z';
        break;
      case Symbol::kCross:
        svg_ += 'M' + Number(at - QPointF(half, half)) + 'l' + size + ' ' + size + 'm' + '-' +
                size + " 0l" + size + " -" + size;
        break;
    }
  }

  std::string& svg_;
  const Look& look_;
};

}  // namespace

std::string MarkupText(const QString& text) {
  QString allowed;
  for (const QChar character : text) {
    const bool is_control = character < QChar(' ') && character != QChar('\t');
    const bool is_missing = is_control || character >= QChar(0xFFFE);
    allowed += is_missing ? QChar(QChar::ReplacementCharacter) : character;
  }
  return allowed.toHtmlEscaped().toStdString();
}

std::string SvgText(const Picture& picture, const Look& look, SvgUse use) {
  const std::string width = Number(picture.size.width());
  const std::string height = Number(picture.size.height());
  std::string svg;
  if (use == SvgUse::kFile) {
    svg = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
  }
  svg += R"(<svg xmlns="http://www.w3.org/2000/svg" class="chart" role="img" width=")" + width +
         "\" height=\"" + height + "\" viewBox=\"0 0 " + width + ' ' + height +
         "\" font-family=\"" + MarkupText(look.family) + "\">\n";
  svg += "<title>" + MarkupText(picture.title) + "</title>\n";
  if (use == SvgUse::kFile) {
    svg += "<style>" + SvgStyle() + "</style>\n<rect width=\"" + width + "\" height=\"" + height +
           '"' + FillOf(Ink::kPaper) + "/>\n";
  }
  for (const Shape& shape : picture.shapes) {
    std::visit(SvgWriting(svg, look), shape.what);
  }
  return svg + "</svg>\n";
}

std::string SvgStyle() {
  std::string rules = "@media screen and (prefers-color-scheme:dark){";
  for (const Ink ink : kAllInks) {
    const std::string color = ColorOf(ink, true).name().toStdString();
    for (const std::string_view property : {"{fill:", "-line{stroke:"}) {
      rules.append(".").append(ClassOf(ink)).append(property).append(color).append("}");
    }
  }
  return rules + '}';
}

}  // namespace vrx
