#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vrx::testing {

// The texts of a page's cells in order, including headings and totals. Cells of records and
// captions keep their blanks and are listed even if empty; empty cells of a total row are omitted.
std::vector<std::string> TextsOfPage(std::string_view html);

// The expected result of TextsOfPage for an XML export with at most 16 ingredients, computed from
// the XML document.
std::vector<std::string> TextsExpectedOf(std::string_view xml);

}  // namespace vrx::testing
