#include "make_manual/text_box.h"

#include <QTextCharFormat>
#include <QTextOption>

#include "base/error.h"

namespace vrx::manual {
namespace {

struct StyledText {
  QString text;
  QList<QTextLayout::FormatRange> formats;
};

class SpanSetter {
 public:
  SpanSetter(const Spans& spans, const TextStyle& style, const ChapterPages& pages)
      : spans_(spans), style_(style), pages_(pages) {}

  StyledText Run() {
    for (std::size_t i = 0; i < spans_.size(); ++i) {
      const bool title = IsTitle(i);
      if (Opens(i) && !title) {
        Add(QStringLiteral("\u201c"), style_);
      }
      Add(TextOf(spans_[i]), StyleOf(spans_[i], title));
      if (Closes(i) && !title) {
        Add(QStringLiteral("\u201d"), style_);
      }
    }
    return std::move(set_);
  }

 private:
  int QuoteAt(std::size_t i) const { return i < spans_.size() ? spans_[i].quote : 0; }
  bool Opens(std::size_t i) const {
    return QuoteAt(i) != 0 && (i == 0 || QuoteAt(i - 1) != QuoteAt(i));
  }
  bool Closes(std::size_t i) const { return QuoteAt(i) != 0 && QuoteAt(i + 1) != QuoteAt(i); }

  // A quotation that ends in the break of its line is the title of the message below it.
  bool IsTitle(std::size_t i) const {
    if (QuoteAt(i) == 0) {
      return false;
    }
    std::size_t behind = i;
    while (QuoteAt(behind) == QuoteAt(i)) {
      ++behind;
    }
    return behind < spans_.size() && spans_[behind].style == SpanStyle::kLineBreak;
  }

  QString TextOf(const Span& span) const {
    if (span.style == SpanStyle::kLineBreak) {
      return QString(QChar::LineSeparator);
    }
    const QString text = QString::fromStdString(span.text);
    if (span.style != SpanStyle::kLink) {
      return text;
    }
    const auto page = pages_.find(span.target);
    if (page == pages_.end() && !pages_.empty()) {
      throw Error("there is no chapter " + span.target);
    }
    // What the number will be is not known yet, but how wide it is.
    constexpr int kSomePage = 10;
    return text +
           QStringLiteral(" (page\u00a0%1)").arg(page == pages_.end() ? kSomePage : page->second);
  }

  TextStyle StyleOf(const Span& span, bool title) const {
    TextStyle style = style_;
    switch (span.style) {
      case SpanStyle::kCaption:
        style.bold = true;
        break;
      case SpanStyle::kCode:
        style.fixed = true;
        break;
      case SpanStyle::kVariable:
      case SpanStyle::kLink:
        style.ink = kVariableInk;
        break;
      case SpanStyle::kPlain:
      case SpanStyle::kLineBreak:
        break;
    }
    style.bold = style.bold || title;
    return style;
  }

  void Add(const QString& text, const TextStyle& style) {
    QTextCharFormat format;
    format.setFont(FontOf(style));
    format.setForeground(style.ink);
    set_.formats.append(
        {static_cast<int>(set_.text.size()), static_cast<int>(text.size()), format});
    set_.text += text;
  }

  const Spans& spans_;
  const TextStyle& style_;
  const ChapterPages& pages_;
  StyledText set_;
};

}  // namespace

TextBox::TextBox(const Spans& spans, const TextStyle& style, double width,
                 const ChapterPages& pages)
    : leading_(Points(style.leading)) {
  const StyledText set = SpanSetter(spans, style, pages).Run();
  layout_ = std::make_shared<QTextLayout>(set.text, FontOf(style));
  QTextOption option;
  option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  option.setUseDesignMetrics(true);
  layout_->setTextOption(option);
  layout_->setFormats(set.formats);
  layout_->beginLayout();
  for (QTextLine line = layout_->createLine(); line.isValid(); line = layout_->createLine()) {
    line.setLineWidth(width);
    line.setPosition({0, 0});
  }
  layout_->endLayout();
}

// Lines stand by their base line, whatever fonts they are of.
void TextBox::DrawLine(QPainter& painter, QPointF at, int line) const {
  constexpr double kBaseLine = 0.74;  // of the leading
  const QTextLine drawn = layout_->lineAt(line);
  drawn.draw(&painter, at + QPointF(0, leading_ * kBaseLine - drawn.ascent()));
}

void TextBox::Draw(QPainter& painter, QPointF at) const {
  for (int line = 0; line < LineCount(); ++line) {
    DrawLine(painter, at + QPointF(0, line * leading_), line);
  }
}

}  // namespace vrx::manual
