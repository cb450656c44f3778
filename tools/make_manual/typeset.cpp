#include "make_manual/typeset.h"

#include <QAbstractTextDocumentLayout>
#include <QRegularExpression>
#include <QTextCursor>
#include <QTextLayout>
#include <QTextList>
#include <QTextOption>
#include <QTextTable>
#include <QUrl>
#include <algorithm>
#include <numeric>

#include "make_manual/manual_style.h"

namespace vrx::manual {
namespace {

constexpr double kFigureGap = 10;    // points
constexpr double kParagraphGap = 6;  // points
constexpr double kCellGap = 4;       // points

// A window of the program's own width fills the line; a smaller one keeps that scale.
constexpr double kWidestPicture = 960;  // logical pixels

// A part of a block by its place there.
QTextCursor Part(const QTextBlock& block, qsizetype begin, qsizetype length) {
  QTextCursor cursor(block);
  cursor.setPosition(block.position() + static_cast<int>(begin));
  cursor.setPosition(cursor.position() + static_cast<int>(length), QTextCursor::KeepAnchor);
  return cursor;
}

QTextCharFormat Letters(const TextStyle& style, SpanStyle span) {
  TextStyle letters = style;
  letters.bold = style.bold || span == SpanStyle::kCaption;
  letters.fixed = style.fixed || span == SpanStyle::kCode;
  QTextCharFormat format;
  format.setFont(FontOf(letters));
  const bool colored = span == SpanStyle::kVariable || span == SpanStyle::kLink;
  format.setForeground(colored ? kVariableInk : style.ink);
  return format;
}

// Without the target of a link, which would be a file beside the PDF.
void SetStyle(const QTextBlock& block, const TextStyle& style) {
  QTextCursor cursor(block);
  QTextBlockFormat format = block.blockFormat();  // of the list, of the heading
  format.setTopMargin(FormatPoints(style.before));
  format.setBottomMargin(FormatPoints(style.behind));
  format.setLeftMargin(Points(style.indent));  // the layout does not scale indents
  format.setIndent(0);
  format.setRightMargin(0);
  format.setLineHeight(FormatPoints(style.leading), QTextBlockFormat::FixedHeight);
  format.setProperty(kKeepsNext, style.keeps_next);
  cursor.setBlockFormat(format);
  cursor.setBlockCharFormat(Letters(style, SpanStyle::kPlain));
  for (const QTextLayout::FormatRange& part : block.textFormats()) {
    Part(block, part.start, part.length).setCharFormat(Letters(style, StyleOf(block, part.format)));
  }
}

void Keep(const QTextBlock& block) {
  QTextBlockFormat keep;
  keep.setProperty(kKeepsNext, true);
  QTextCursor(block).mergeBlockFormat(keep);
}

// A quotation that ends in the break of its line is the title of the message below it: bold, and
// without quotation marks.
void SetTitles(const QTextBlock& block) {
  static const QRegularExpression title(QStringLiteral("\u201c([^\u201d]*)\u201d(?=\u2028)"));
  QTextCharFormat bold;
  bold.setFontWeight(QFont::Bold);
  for (auto found = title.match(block.text()); found.hasMatch();
       found = title.match(block.text())) {
    Part(block, found.capturedStart(), found.capturedLength()).mergeCharFormat(bold);
    Part(block, found.capturedEnd() - 1, 1).removeSelectedText();
    Part(block, found.capturedStart(), 1).removeSelectedText();
  }
}

class Typesetter {
 public:
  Typesetter(const std::vector<Chapter>& chapters, const Pictures& pictures,
             const std::vector<ContentsLine>& contents)
      : pictures_(pictures), contents_(contents) {
    QString source;
    auto line = contents.begin();
    for (const Chapter& chapter : chapters) {
      source += chapter.source + QStringLiteral("\n\n");
      line = std::find_if(line, contents.end(), [](const auto& each) { return each.chapter; });
      // The page is not known in the first pass, but how wide its number is.
      constexpr int kSomePage = 10;
      pages_[QString::fromStdString(chapter.file)] =
          line == contents.end() ? kSomePage : line++->page;
      widths_.insert(widths_.end(), chapter.column_widths.begin(), chapter.column_widths.end());
    }
    document_ = ReadMarkdown(source);
  }

  std::unique_ptr<QTextDocument> Run() {
    SetTables();
    BlockKind before = BlockKind::kEmpty;
    for (QTextBlock block = document_->begin(); block.isValid(); block = block.next()) {
      const BlockKind kind = KindOf(block);
      KeepBefore(block, kind, before);
      before = kind;
      AddPages(block);
      Set(block, kind);
    }
    AddContents();
    return std::move(document_);
  }

 private:
  void SetTables() {
    auto dashes = widths_.begin();
    for (QTextFrame* const frame : document_->rootFrame()->childFrames()) {
      QList<QTextLength> widths;
      const int all = std::accumulate(dashes->begin(), dashes->end(), 0);
      for (const int width : *dashes++) {
        widths.append(QTextLength(QTextLength::PercentageLength, 100.0 * width / all));
      }
      QTextTableFormat format;
      format.setWidth(QTextLength(QTextLength::PercentageLength, 100));
      format.setColumnWidthConstraints(widths);
      format.setBorder(0);
      format.setCellSpacing(0);
      format.setCellPadding(FormatPoints(kCellGap));
      format.setTopMargin(FormatPoints(kParagraphGap));
      format.setBottomMargin(FormatPoints(kParagraphGap));
      frame->setFrameFormat(format);
    }
  }

  // What a paragraph announces is on its page: a list, a table, lines of code. A list does not
  // leave its first item behind.
  void KeepBefore(const QTextBlock& block, BlockKind kind, BlockKind before) {
    const bool item = kind == BlockKind::kBullet || kind == BlockKind::kNumbered;
    const bool code = kind == BlockKind::kCode;
    const bool in_table = QTextCursor(block).currentTable() != nullptr;
    const bool announced = before == BlockKind::kParagraph && (item || code || in_table);
    item_ = item && before == kind ? item_ + 1 : 1;
    if (announced || (item && item_ == 2) || (code && before == kind)) {
      Keep(block.previous());
    }
  }

  void Set(QTextBlock& block, BlockKind kind) {
    switch (kind) {
      case BlockKind::kTitle:
        section_ = 0;
        SetHeading(block, QString::number(++chapter_), kChapterText);
        break;
      case BlockKind::kSection:
        SetHeading(block, QStringLiteral("%1.%2").arg(chapter_).arg(++section_), kSectionText);
        break;
      case BlockKind::kBullet:
        SetItem(block, QStringLiteral("\u2022"));
        break;
      case BlockKind::kNumbered:
        SetItem(block, QString::number(item_) + u'.');
        break;
      case BlockKind::kCode:
        SetStyle(block, KindOf(block.previous()) == kind ? kNextCodeText : kCodeText);
        break;
      case BlockKind::kFigure:
        SetFigure(block);
        break;
      case BlockKind::kParagraph:
      case BlockKind::kEmpty:
        SetText(block);
        break;
    }
  }

  static void SetHeading(const QTextBlock& block, const QString& number, const TextStyle& style) {
    QTextCursor(block).insertText(number + QStringLiteral("  "));
    SetStyle(block, style);
  }

  // The mark hangs before the text.
  static void SetItem(const QTextBlock& block, const QString& mark) {
    block.textList()->remove(block);
    QTextCursor(block).insertText(mark + u'\t', {});
    SetStyle(block, kItemText);
    QTextBlockFormat format;
    format.setTextIndent(-Points(kItemText.indent));
    format.setTabPositions(
        {QTextOption::Tab(FormatPoints(kItemText.indent), QTextOption::LeftTab)});
    QTextCursor(block).mergeBlockFormat(format);
  }

  static void SetText(const QTextBlock& block) {
    if (QTextCursor(block).currentTable() == nullptr) {
      SetStyle(block, block.length() == 1 ? kEmptyText : kBodyText);
    } else {
      SetStyle(block, IsTableHeading(block) ? kCellHeadText : kCellText);
    }
    SetTitles(block);
  }

  void AddPages(const QTextBlock& block) {
    auto parts = block.textFormats();
    std::reverse(parts.begin(), parts.end());
    for (const QTextLayout::FormatRange& part : parts) {
      if (StyleOf(block, part.format) == SpanStyle::kLink) {
        const int page = pages_.at(part.format.anchorHref());
        Part(block, part.start + part.length, 0)
            .insertText(QStringLiteral(" (page\u00a0%1)").arg(page), part.format);
      }
    }
  }

  // Leaves `block` at the caption, which is a block of its own.
  void SetFigure(QTextBlock& block) {
    QTextImageFormat figure = FigureIn(block);
    const QImage& picture = pictures_.at(figure.name());
    const double width =
        std::min(1.0, picture.width() / picture.devicePixelRatio() / kWidestPicture) * kTextWidth;
    document_->addResource(QTextDocument::ImageResource, QUrl(figure.name()), picture);
    figure.setWidth(FormatDots(width));
    figure.setHeight(FormatDots(width * picture.height() / picture.width()));
    QTextCursor cursor = Part(block, 0, 1);
    cursor.setCharFormat(figure);
    QTextBlockFormat format;
    format.setTopMargin(FormatPoints(kFigureGap));
    format.setLineHeight(100, QTextBlockFormat::ProportionalHeight);  // a fixed one cuts it off
    format.setProperty(kKeepsNext, true);
    cursor.setBlockFormat(format);
    cursor.movePosition(QTextCursor::EndOfBlock);
    cursor.insertBlock({}, {});
    const QString caption = figure.property(QTextFormat::ImageAltText).toString();
    cursor.insertText(QStringLiteral("Figure %1. %2").arg(++figures_).arg(caption));
    block = cursor.block();
    SetStyle(block, kCaptionText);
  }

  void AddContents() {
    QTextCursor cursor(document_.get());
    const auto add_line = [&](const QString& text, const TextStyle& style) {
      cursor.insertBlock();  // the first chapter's title moves down
      const QTextBlock line = cursor.block().previous();
      QTextBlockFormat format;
      const double right = FormatDots(kTextWidth) - FormatPoints(style.indent);
      format.setTabPositions({QTextOption::Tab(right, QTextOption::RightTab)});
      QTextCursor(line).setBlockFormat(format);
      QTextCursor(line).insertText(text, {});
      SetStyle(line, style);
    };
    add_line(QStringLiteral("Contents"), kChapterText);
    for (const ContentsLine& line : contents_) {
      add_line(QStringLiteral("%1\t%2").arg(line.text).arg(line.page),
               line.chapter ? kContentsChapterText : kContentsText);
    }
  }

  const Pictures& pictures_;
  const std::vector<ContentsLine>& contents_;
  std::map<QString, int> pages_;  // of the chapters, by file
  std::vector<std::vector<int>> widths_;
  std::unique_ptr<QTextDocument> document_;
  int chapter_ = 0;
  int section_ = 0;
  int figures_ = 0;
  int item_ = 0;  // its number in the list
};

// Markdown accepts any target.
void CheckTargets(const std::vector<Chapter>& chapters, const Pictures& pictures) {
  const auto is_chapter = [&](const QString& target) {
    return std::any_of(chapters.begin(), chapters.end(), [&](const Chapter& each) {
      return target == QString::fromStdString(each.file);
    });
  };
  for (const Chapter& chapter : chapters) {
    for (const QTextFormat& format : chapter.document->allFormats()) {
      const QString target = format.toCharFormat().anchorHref();
      if (!target.isEmpty() && !is_chapter(target)) {
        throw ErrorAt(chapter, target, "there is no chapter " + target.toStdString());
      }
      const QString figure = format.toImageFormat().name();
      if (!figure.isEmpty() && !pictures.contains(figure)) {
        throw ErrorAt(chapter, figure,
                      "there is no figure \"" + figure.section(u':', 1).toStdString() + '"');
      }
    }
  }
}

}  // namespace

std::unique_ptr<QTextDocument> Typeset(const std::vector<Chapter>& chapters,
                                       const Pictures& pictures,
                                       const std::vector<ContentsLine>& contents,
                                       QPaintDevice& device) {
  CheckTargets(chapters, pictures);
  auto document = Typesetter(chapters, pictures, contents).Run();
  QTextOption option;
  option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  option.setUseDesignMetrics(true);
  document->setDefaultTextOption(option);
  document->setDocumentMargin(0);
  document->documentLayout()->setPaintDevice(&device);
  document->setTextWidth(kTextWidth);
  return document;
}

}  // namespace vrx::manual
