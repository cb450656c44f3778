#pragma once

#include <string>
#include <vector>

namespace vrx::testing {

using HtmlRow = std::vector<std::string>;

// A table below a heading; the first row has the captions.
struct HtmlTable {
  std::string heading;
  std::vector<HtmlRow> rows;

  // The texts of a column. Fails the test if there is none.
  [[nodiscard]] HtmlRow Column(const std::string& caption) const;
};

// The tables of a page that is well-formed XML, in their order. Fails the test if it is not.
std::vector<HtmlTable> HtmlTables(const std::string& html);

// The first table below the heading. Fails the test if there is none.
HtmlTable HtmlTableBelow(const std::string& html, const std::string& heading);

}  // namespace vrx::testing
