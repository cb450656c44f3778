#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>

#include "platform/operator.h"
#include "platform/system_info.h"

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

// The stylesheets of the 13 data groups, in the folder XSL of the program's directory. An XML
// document names its own by a bare file name, so a copy has to lie beside it. References outlive
// the object.
class StyleSheets {
 public:
  // `data_folder` is the application's.
  StyleSheets(std::filesystem::path data_folder, const SystemInfo& system, Operator& op)
      : data_folder_(std::move(data_folder)), system_(system), op_(op) {}

  // The folder Export below the data folder. Nothing is written there, so an export goes on where
  // it cannot be made.
  void MakeExportFolder() const;

  // The program's folder of all stylesheets.
  std::filesystem::path SourceFolder() const;

  // Where a group's stylesheet is looked for; empty for an index that is no group.
  std::filesystem::path SourceOf(int group) const;

  // The same for one that is there; empty, the operator told, where it is not.
  std::filesystem::path PresentSourceOf(int group) const;

  // Copies it into the folder, over one of that name. False, the operator told, where there is
  // none; a folder that has gone is not told. Throws FileError when the copying fails.
  bool CopyStyleSheet(int group, const std::filesystem::path& destination_folder) const;

 private:
  void ReportMissing(const std::filesystem::path& source) const;

  std::filesystem::path data_folder_;
  const SystemInfo& system_;
  Operator& op_;
};

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
