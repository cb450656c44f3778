#pragma once

#include <string>
#include <string_view>

namespace vrx {

// A text and what messages call it.
struct NamedText {
  std::string name;
  std::string_view text;
};

// What an XSLT 1.0 stylesheet makes of an XML document, in the encoding that the stylesheet asks
// for. Neither may have a document type, and so no entities; the stylesheet reads no other
// document, writes none and has a bounded number of steps, in proportion to the document's length.
// Throws Error with the name of the text at fault and the library's words. Nothing is printed.
std::string Transform(const NamedText& style_sheet, const NamedText& document);

}  // namespace vrx
