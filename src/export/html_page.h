#pragma once

#include <cstddef>
#include <filesystem>

#include "export/style_sheet.h"

namespace vrx {

// The longest XML document, in bytes, that a page is made of. Making the page would bear more; what
// does not is a browser, which needs some 5 KB for each cell (docs/formats.md).
inline constexpr std::size_t kLargestPageSource = std::size_t{8} * 1024 * 1024;

// Turns the XML document of a data group into one self-contained HTML page, by the group's own
// stylesheet in the program's directory. The page appears whole or not at all. False, the operator
// told, where there is no stylesheet.
//
// A stylesheet reads and writes nothing: one that tries, does not parse or does not come to an end
// is refused. Throws Error, which names the file at fault and gives the reason, and FileError.
bool WriteHtmlPage(const StyleSheets& style_sheets, int group, const std::filesystem::path& xml,
                   const std::filesystem::path& html);

}  // namespace vrx
