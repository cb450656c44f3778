#include "make_manual/chapter_pages.h"

#include <QBuffer>
#include <QByteArray>
#include <QTextFrame>
#include <QTextTable>
#include <algorithm>
#include <set>
#include <string>

#include "base/files.h"

namespace vrx::manual {
namespace {

namespace fs = std::filesystem;

constexpr int kWidestOnPage = 680;  // logical pixels

QString PageOf(const Chapter& chapter) {
  return QString::fromStdString(fs::path(chapter.file).replace_extension(".html").string());
}

// "screen:data-transfer" is the file data-transfer.png.
QString FileOf(const QString& figure) { return figure.section(u':', 1) + QStringLiteral(".png"); }

QString Escaped(const QString& text) {
  return text.toHtmlEscaped().replace(QChar::LineSeparator, QStringLiteral("<br>"));
}

QString Marked(const QString& tag, const QString& text) {
  return QStringLiteral("<%1>%2</%1>").arg(tag, text);
}

QString SpanHtml(const QTextBlock& block, const QTextCharFormat& format, const QString& text) {
  const QString plain = Escaped(text);
  switch (StyleOf(block, format)) {
    case SpanStyle::kCaption:
      return Marked(QStringLiteral("b"), plain);
    case SpanStyle::kCode:
      return Marked(QStringLiteral("code"), plain);
    case SpanStyle::kVariable:
      return Marked(QStringLiteral("i"), plain);
    case SpanStyle::kLink: {
      QString target = format.anchorHref();
      if (target.endsWith(QStringLiteral(".md"))) {
        target.replace(target.size() - 3, 3, QStringLiteral(".html"));
      }
      return QStringLiteral("<a href=\"%1\">%2</a>").arg(target.toHtmlEscaped(), plain);
    }
    case SpanStyle::kPlain:
      break;
  }
  return plain;
}

QString TextHtml(const QTextBlock& block) {
  QString html;
  for (const QTextLayout::FormatRange& part : block.textFormats()) {
    html += SpanHtml(block, part.format, block.text().mid(part.start, part.length));
  }
  return html;
}

// "accuracy-of-loading" of "Accuracy of loading".
QString AnchorOf(const QString& heading) {
  QString anchor = heading.toLower();
  for (QChar& letter : anchor) {
    letter = letter.isLetterOrNumber() ? letter : QChar(u'-');
  }
  return anchor;
}

// Writes blocks that belong together, the items of a list or the lines of code, into one element.
class PageWriter {
 public:
  explicit PageWriter(const Pictures& pictures) : pictures_(pictures) {}

  void Add(const QTextBlock& block) {
    const BlockKind kind = KindOf(block);
    if (kind != open_) {
      Close();
    }
    switch (kind) {
      case BlockKind::kEmpty:
        break;
      case BlockKind::kTitle:
        html_ += Marked(QStringLiteral("h1"), TextHtml(block)) + u'\n';
        break;
      case BlockKind::kSection:
        html_ += Marked(QStringLiteral("h2"), QStringLiteral("<a name=\"%1\">%2</a>")
                                                  .arg(AnchorOf(block.text()), TextHtml(block))) +
                 u'\n';
        break;
      case BlockKind::kParagraph:
        html_ += Marked(QStringLiteral("p"), TextHtml(block)) + u'\n';
        break;
      case BlockKind::kBullet:
        Open(kind, QStringLiteral("ul"));
        html_ += Marked(QStringLiteral("li"), TextHtml(block)) + u'\n';
        break;
      case BlockKind::kNumbered:
        Open(kind, QStringLiteral("ol"));
        html_ += Marked(QStringLiteral("li"), TextHtml(block)) + u'\n';
        break;
      case BlockKind::kCode:
        Open(kind, QStringLiteral("pre"));
        html_ += Escaped(block.text()) + u'\n';
        break;
      case BlockKind::kFigure:
        AddFigure(FigureIn(block));
        break;
    }
  }

  void Add(const QTextTable& table) {
    Close();
    html_ += QStringLiteral("<table border=\"1\" cellspacing=\"0\" cellpadding=\"5\">\n");
    for (int row = 0; row < table.rows(); ++row) {
      html_ += QStringLiteral("<tr>");
      for (int column = 0; column < table.columns(); ++column) {
        const QString tag = row == 0 ? QStringLiteral("th") : QStringLiteral("td");
        html_ += Marked(tag, TextHtml(table.cellAt(row, column).firstCursorPosition().block()));
      }
      html_ += QStringLiteral("</tr>\n");
    }
    html_ += QStringLiteral("</table>\n");
  }

  QString Take() {
    Close();
    return html_;
  }

  // The pictures that the page shows, by their names.
  const std::set<QString>& Figures() const { return figures_; }

 private:
  void AddFigure(const QTextImageFormat& figure) {
    const auto picture = pictures_.find(figure.name());
    if (picture == pictures_.end()) {
      throw Error("there is no picture " + figure.name().toStdString());
    }
    const QSize size = picture->second.deviceIndependentSize().toSize();
    const QString caption = Escaped(figure.property(QTextFormat::ImageAltText).toString());
    html_ += QStringLiteral("<p><img src=\"%1\" width=\"%2\" alt=\"%3\"><br><i>%3</i></p>\n")
                 .arg(FileOf(figure.name()).toHtmlEscaped())
                 .arg(std::min(size.width(), kWidestOnPage))
                 .arg(caption);
    figures_.insert(figure.name());
  }

  void Open(BlockKind kind, const QString& tag) {
    if (open_ != kind) {
      html_ += QStringLiteral("<%1>\n").arg(tag);
      open_ = kind;
      tag_ = tag;
    }
  }

  void Close() {
    if (!tag_.isEmpty()) {
      html_ += QStringLiteral("</%1>\n").arg(tag_);
    }
    tag_.clear();
    open_ = BlockKind::kEmpty;
  }

  const Pictures& pictures_;
  QString html_;
  QString tag_;  // of the open element
  BlockKind open_ = BlockKind::kEmpty;
  std::set<QString> figures_;
};

// Links to all chapters, with the words of their titles.
QString ContentsHtml(const std::vector<Chapter>& chapters, const Chapter& current) {
  QString html = QStringLiteral("<hr>\n<p>");
  for (const Chapter& chapter : chapters) {
    const QString title = Escaped(chapter.document->begin().text());
    html += &chapter == &current
                ? Marked(QStringLiteral("b"), title)
                : QStringLiteral("<a href=\"%1\">%2</a>").arg(PageOf(chapter), title);
    html += &chapter == &chapters.back() ? QStringLiteral("</p>\n") : QStringLiteral(" | ");
  }
  return html;
}

void WritePicture(const QImage& picture, const fs::path& file) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  if (!picture.save(&buffer, "PNG")) {
    throw Error("cannot make " + file.string());
  }
  WriteFileBytes(file, {bytes.constData(), static_cast<std::size_t>(bytes.size())});
}

}  // namespace

void WriteChapterPages(const std::vector<Chapter>& chapters, const Pictures& pictures,
                       const fs::path& folder) {
  fs::remove_all(folder);
  fs::create_directories(folder);
  std::set<QString> figures;
  for (const Chapter& chapter : chapters) {
    PageWriter page(pictures);
    const QTextFrame& whole = *chapter.document->rootFrame();
    for (auto part = whole.begin(); part != whole.end(); ++part) {
      if (const auto* const table = qobject_cast<QTextTable*>(part.currentFrame())) {
        page.Add(*table);
      } else if (part.currentBlock().isValid()) {
        page.Add(part.currentBlock());
      }
    }
    const QString head = QStringLiteral(
        "<!DOCTYPE html>\n<html lang=\"en\"><head><meta "
        "charset=\"utf-8\"><title>%1</title></head>\n"
        "<body>\n");
    const std::string html = (head.arg(Escaped(chapter.document->begin().text())) + page.Take() +
                              ContentsHtml(chapters, chapter) + QStringLiteral("</body></html>\n"))
                                 .toStdString();
    WriteFileBytes(folder / PageOf(chapter).toStdString(), html);
    figures.insert(page.Figures().begin(), page.Figures().end());
  }
  for (const QString& figure : figures) {
    WritePicture(pictures.at(figure), folder / FileOf(figure).toStdString());
  }
}

}  // namespace vrx::manual
