#pragma once

#include <QImage>
#include <QPaintDevice>
#include <QTextDocument>
#include <map>
#include <memory>
#include <vector>

#include "make_manual/manual_text.h"

namespace vrx::manual {

// By name, with "screen:".
using Pictures = std::map<QString, QImage>;

struct ContentsLine {
  QString text;
  int page = 0;
  bool chapter = false;
  bool operator==(const ContentsLine&) const = default;
};

// In the format of a block: it is on one page with the next block.
inline constexpr int kKeepsNext = QTextFormat::UserProperty;

// All chapters as they are printed, below a table of contents: in styles, with numbers of headings
// and figures, and with the pages of links where the contents have them. Laid out for the device,
// which must outlive the document, as one page of any height. Throws Error for a figure or a linked
// chapter that does not exist.
std::unique_ptr<QTextDocument> Typeset(const std::vector<Chapter>& chapters,
                                       const Pictures& pictures,
                                       const std::vector<ContentsLine>& contents,
                                       QPaintDevice& device);

}  // namespace vrx::manual
