#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vrx::testing {

// The texts of a page's cells in their order, headings and totals included. A record's cells and
// the captions stand with their blanks and when empty; empty cells of a total row are left out.
std::vector<std::string> TextsOfPage(std::string_view html);

// What TextsOfPage gives for the page of an XML export with at most 16 ingredients, read from the
// document alone.
std::vector<std::string> TextsExpectedOf(std::string_view xml);

}  // namespace vrx::testing
