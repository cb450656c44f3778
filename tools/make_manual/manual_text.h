#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vrx::manual {

// The source of the manual is a small part of Markdown, one file a chapter. What the text says of
// the program is marked, so that it can be held against the program:
//
//   **Update**, **File > New > Recipe Database**   a caption, a command of the menus
//   "The 'Name' field is mandatory."               the program's own words; *parts* of them vary
//   `VRX-2260.INI`                                 a file, a command line
//   [The window](window.md)                        another chapter
//   ![The Pens tab](screen:pens)                   a figure of the program, alone on its line
//
// A backslash takes the next character as it stands; <br> breaks the line.
enum class SpanStyle { kPlain, kCaption, kCode, kVariable, kLink, kLineBreak };

struct Span {
  SpanStyle style = SpanStyle::kPlain;
  std::string text;
  int quote = 0;       // the number of the quotation it belongs to, from 1; 0 outside of any
  std::string target;  // kLink: the chapter's file
};
using Spans = std::vector<Span>;

enum class BlockKind { kSection, kParagraph, kBullet, kNumbered, kCode, kFigure, kTable };

struct Block {
  BlockKind kind = BlockKind::kParagraph;
  int line = 0;      // in the chapter's file, from 1
  Spans spans;       // the caption of a figure
  std::string text;  // kCode: its lines; kFigure: its name in the table of figures
  int number = 0;    // kNumbered
  std::vector<std::vector<Spans>> rows;  // kTable: the heading, then the rows, all of one width
  std::vector<int> widths;               // kTable: of the columns, by the dashes below the heading
};

struct Chapter {
  std::string file;  // without its folder
  std::string title;
  std::vector<Block> blocks;
};

// Throws Error as "FILE:LINE: what is wrong".
Chapter ParseChapter(std::string_view file, std::string_view text);

// All spans of a chapter, headings and cells included.
std::vector<const Spans*> TextsOf(const Chapter& chapter);

}  // namespace vrx::manual
