#include "make_manual/manual_text.h"

#include <QRegularExpression>
#include <QTextCursor>
#include <QTextFrame>
#include <QTextLayout>
#include <QTextList>
#include <QTextTable>

namespace vrx::manual {
namespace {

bool IsCodeLine(const QString& line) { return line.startsWith(QStringLiteral("    ")); }

// Refuses what Markdown accepts but the manual does not have; Markdown also drops or adds cells
// where a row has too many or too few.
void CheckLines(Chapter& chapter) {
  static const QRegularExpression figure(QStringLiteral(R"(^!\[[^\]]+\]\(screen:[^)]+\)$)"));
  static const QRegularExpression only_marks(QStringLiteral(R"(^([*_=-]\s*){3,}$)"));
  static const QRegularExpression bar(QStringLiteral(R"((?<!\\)\|)"));
  static const QRegularExpression bar_in_code(QStringLiteral(R"(`[^`]*\\\|[^`]*`)"));
  bool titled = false;
  int rows = 0;  // of the table so far
  qsizetype columns = 0;
  int number = 0;
  const auto refuse_if = [&](bool wrong, const std::string& what) {
    if (wrong) {
      throw Error(chapter.file + ":" + std::to_string(number) + ": " + what);
    }
  };
  for (const QString& untrimmed : chapter.source.split(u'\n')) {
    ++number;
    const QString line = untrimmed.trimmed();
    rows = line.startsWith(u'|') ? rows + 1 : 0;
    if (IsCodeLine(untrimmed) || line.isEmpty()) {
      continue;
    }
    const bool title = line.startsWith(QStringLiteral("# "));
    refuse_if(title && titled, "a chapter has one title");
    refuse_if(!title && !titled, "a chapter begins with its title");
    titled = true;
    refuse_if(line.startsWith(QStringLiteral("![")) && !figure.match(line).hasMatch(),
              "a figure reads ![CAPTION](screen:NAME)");
    refuse_if(only_marks.match(line).hasMatch(), "marks without a text");
    if (rows > 0) {
      refuse_if(
          rows == 1 && QString(line).remove(QStringLiteral("***")).contains(QStringLiteral("**")),
          "a caption in the heading of a table has three stars");
      refuse_if(line.contains(bar_in_code), "a bar in code");
      QStringList cells = line.mid(1).split(bar);
      refuse_if(!cells.takeLast().isEmpty(), "the row does not end in a bar");
      columns = rows == 1 ? cells.size() : columns;
      refuse_if(cells.size() != columns,
                std::to_string(cells.size()) + " cells instead of " + std::to_string(columns));
      if (rows == 2) {
        std::vector<int>& widths = chapter.column_widths.emplace_back();
        for (const QString& dashes : cells) {
          widths.push_back(static_cast<int>(dashes.count(u'-')));
        }
      }
    }
  }
  if (!titled) {
    throw Error(chapter.file + ": the chapter has no title");
  }
}

// The reader puts an empty block before the first cell of a table that follows lines of code.
void RemoveEmptyBlocksOfCells(const QTextDocument& document) {
  for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
    const QTextTable* const table = QTextCursor(block).currentTable();
    if (table != nullptr && block.length() == 1 && block.next().isValid() &&
        table->cellAt(block.position()) == table->cellAt(block.next().position())) {
      QTextCursor(block).deleteChar();
    }
  }
}

// A mark that is still in the text was not closed.
void CheckMarks(const Chapter& chapter, const QTextBlock& block) {
  static const QRegularExpression quotation(QStringLiteral("\u201c[^\u201c\u201d]*\u201d"));
  static const QRegularExpression mark(QStringLiteral("[*`\\[\\]\\\\\u201c\u201d]\\S*"));
  QString text;
  for (const QTextLayout::FormatRange& part : block.textFormats()) {
    if (!part.format.fontFixedPitch()) {
      text += block.text().mid(part.start, part.length);
    }
  }
  if (const auto found = mark.match(text.remove(quotation)); found.hasMatch()) {
    const QString words = found.captured().replace(u'\u201c', u'"');
    throw ErrorAt(chapter, words, "a mark is not closed: " + words.toStdString());
  }
}

}  // namespace

Error ErrorAt(const Chapter& chapter, const QString& words, const std::string& what) {
  const auto before = chapter.source.left(chapter.source.indexOf(words));
  return Error{chapter.file + ":" + std::to_string(before.count(u'\n') + 1) + ": " + what};
}

// A table of Markdown ends at <br>, so it becomes a character. The blank before it, which goes
// again, lets a mark close there.
std::unique_ptr<QTextDocument> ReadMarkdown(const QString& source) {
  static const QRegularExpression not_in_code(QStringLiteral(R"((?<code>^    .*$|`[^`]*`|\\.)|")"),
                                              QRegularExpression::MultilineOption);
  QString text;
  bool quoting = false;
  qsizetype done = 0;
  for (auto found = not_in_code.globalMatch(source); found.hasNext();) {
    const auto match = found.next();
    text += source.mid(done, match.capturedStart() - done);
    done = match.capturedEnd();
    if (match.hasCaptured(QStringLiteral("code"))) {
      text += match.captured();
    } else {
      quoting = !quoting;
      text += quoting ? u'\u201c' : u'\u201d';
    }
  }
  text += source.mid(done);
  const QString line_break = QStringLiteral(" ") + QChar::LineSeparator;
  text.replace(QStringLiteral("<br>"), line_break);
  auto document = std::make_unique<QTextDocument>();
  document->setMarkdown(text,
                        QTextDocument::MarkdownFeatures(QTextDocument::MarkdownDialectGitHub) |
                            QTextDocument::MarkdownNoHTML);
  for (QTextCursor found = document->find(line_break); !found.isNull();
       found = document->find(line_break, found)) {
    found.setPosition(found.selectionStart());
    found.deleteChar();
  }
  RemoveEmptyBlocksOfCells(*document);
  return document;
}

Chapter ParseChapter(std::string_view file, std::string_view text) {
  Chapter chapter{.file = std::string(file),
                  .source = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())),
                  .document = {},
                  .column_widths = {}};
  CheckLines(chapter);
  chapter.document = ReadMarkdown(chapter.source);
  for (QTextBlock block = chapter.document->begin(); block.isValid(); block = block.next()) {
    if (KindOf(block) != BlockKind::kCode) {
      CheckMarks(chapter, block);
    }
  }
  const auto tables = chapter.document->rootFrame()->childFrames().size();
  if (static_cast<std::size_t>(tables) != chapter.column_widths.size()) {
    throw Error(chapter.file + ": a table has a heading and a row of dashes");
  }
  return chapter;
}

bool IsTableHeading(const QTextBlock& block) {
  const QTextTable* const table = QTextCursor(block).currentTable();
  return table != nullptr && table->cellAt(block.position()).row() == 0;
}

BlockKind KindOf(const QTextBlock& block) {
  const QTextBlockFormat format = block.blockFormat();
  if (format.headingLevel() > 0) {
    return format.headingLevel() == 1 ? BlockKind::kTitle : BlockKind::kSection;
  }
  if (format.hasProperty(QTextFormat::BlockCodeLanguage)) {
    return BlockKind::kCode;
  }
  if (block.textList() != nullptr) {
    const bool numbered = block.textList()->format().style() == QTextListFormat::ListDecimal;
    return numbered ? BlockKind::kNumbered : BlockKind::kBullet;
  }
  if (block.length() == 1) {
    return BlockKind::kEmpty;
  }
  return FigureIn(block).isValid() ? BlockKind::kFigure : BlockKind::kParagraph;
}

QTextImageFormat FigureIn(const QTextBlock& block) {
  const auto formats = block.textFormats();
  return formats.isEmpty() ? QTextImageFormat() : formats.first().format.toImageFormat();
}

SpanStyle StyleOf(const QTextBlock& block, const QTextCharFormat& format) {
  if (block.blockFormat().headingLevel() > 0) {
    return SpanStyle::kPlain;
  }
  if (format.isAnchor()) {
    return SpanStyle::kLink;
  }
  if (format.fontFixedPitch()) {
    return SpanStyle::kCode;
  }
  const bool bold_itself = IsTableHeading(block) && !format.fontItalic();
  if (format.fontWeight() >= QFont::Bold && !bold_itself) {
    return SpanStyle::kCaption;
  }
  return format.fontItalic() ? SpanStyle::kVariable : SpanStyle::kPlain;
}

}  // namespace vrx::manual
