#pragma once

#include <string>
#include <vector>

#include "make_manual/manual_text.h"

namespace vrx::testing {

// The chapters of the manual in their order, as the manual is made of them.
std::vector<manual::Chapter> ManualChapters();

// A part of a text in one style, outside of quotations or in one of them; empty for a line break.
struct Span {
  manual::SpanStyle style = manual::SpanStyle::kPlain;
  std::string text;
  int quote = 0;       // the number of the quotation it belongs to, from 1; 0 outside of any
  std::string target;  // of a link: the chapter's file
};
using Spans = std::vector<Span>;

// By the character formats; of a figure its caption.
Spans SpansOf(const QTextBlock& block);

// Of all blocks and cells but lines of code.
std::vector<Spans> TextsOf(const manual::Chapter& chapter);

// The blocks of one kind; cells of tables are paragraphs.
std::vector<QTextBlock> BlocksOf(const manual::Chapter& chapter, manual::BlockKind kind);

// The cells of a table, row by row, with the heading.
using Rows = std::vector<std::vector<Spans>>;
std::vector<Rows> TablesOf(const manual::Chapter& chapter);

}  // namespace vrx::testing
