#pragma once

#include <QString>
#include <QTextBlock>
#include <QTextDocument>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/error.h"

namespace vrx::manual {

// The source of the manual is Markdown, one file for each chapter. Text about the program is
// marked, so that tests can check it against the program:
//
//   **Update**, **File > New > Recipe Database**   a caption, a command of the menus
//   ***Batch By***                                 a caption in the heading of a table
//   "The 'Name' field is mandatory."               the program's own words; *parts* of them vary
//   `VRX-2260.INI`                                 a file, a command line
//   [The window](window.md)                        another chapter
//   ![The Pens tab](screen:pens)                   a figure of the program, alone on its line
//
// \" is a quotation mark within a quotation; <br> breaks the line. The dashes below the heading of
// a table give the widths of its columns.
struct Chapter {
  std::string file;  // without its folder
  QString source;
  std::unique_ptr<QTextDocument> document;      // its first block is the title
  std::vector<std::vector<int>> column_widths;  // of each table
};

// Throws Error as "FILE:LINE: what is wrong". Needs the QGuiApplication.
Chapter ParseChapter(std::string_view file, std::string_view text);

// What is wrong in the first line with these words, as "FILE:LINE: what".
Error ErrorAt(const Chapter& chapter, const QString& words, const std::string& what);

// Quotations have curved marks in the document, other quotation marks are straight.
std::unique_ptr<QTextDocument> ReadMarkdown(const QString& source);

enum class BlockKind { kEmpty, kTitle, kSection, kParagraph, kBullet, kNumbered, kCode, kFigure };

// A cell of a table is a paragraph.
BlockKind KindOf(const QTextBlock& block);

bool IsTableHeading(const QTextBlock& block);

// Its name is that of the picture, with "screen:".
QTextImageFormat FigureIn(const QTextBlock& block);

// By the format of a part of a text. The letters of headings are bold without being captions.
enum class SpanStyle { kPlain, kCaption, kCode, kVariable, kLink };
SpanStyle StyleOf(const QTextBlock& block, const QTextCharFormat& format);

}  // namespace vrx::manual
