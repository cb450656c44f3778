#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>

#include "history/period.h"
#include "platform/operator.h"
#include "platform/system_info.h"

namespace vrx {

// A text with its name for messages.
struct NamedText {
  std::string name;
  std::string_view text;
};

// Applies an XSLT 1.0 stylesheet to an XML document. The result has the encoding that the
// stylesheet specifies. Both texts are rejected if they have a document type, so there are no
// entities. The stylesheet cannot read or write other documents, and its steps are limited in
// proportion to the document's length. Throws Error with the name of the faulty text and the
// library's message.
[[nodiscard]] std::string Transform(const NamedText& style_sheet, const NamedText& document);

// The stylesheets of the 13 data groups, in the folder XSL of the program's directory. An XML
// document refers to its stylesheet by file name only, so it needs a copy in its own folder. The
// references outlive the object.
class StyleSheets {
 public:
  // `data_folder` is the application's data folder.
  StyleSheets(std::filesystem::path data_folder, const SystemInfo& system, Operator& op)
      : data_folder_(std::move(data_folder)), system_(system), op_(op) {}

  // Creates the folder Export in the data folder. The export writes nothing there, so a failure is
  // ignored.
  void MakeExportFolder() const;

  // The program's folder of all stylesheets.
  [[nodiscard]] std::filesystem::path SourceFolder() const;

  // The path of a group's stylesheet, which may not exist; empty for an index that is not a group.
  [[nodiscard]] std::filesystem::path SourceOf(int group) const;

  // The path of a group's existing stylesheet. Reports a missing one and returns an empty path.
  [[nodiscard]] std::filesystem::path PresentSourceOf(int group) const;

  // Copies the stylesheet into a folder and replaces a file of that name. Reports a missing
  // stylesheet and returns false. A missing destination folder is not an error. Throws FileError if
  // the copy fails.
  [[nodiscard]] bool CopyStyleSheet(int group,
                                    const std::filesystem::path& destination_folder) const;

 private:
  void ReportMissing(const std::filesystem::path& source) const;

  std::filesystem::path data_folder_;
  const SystemInfo& system_;
  Operator& op_;
};

// The longest XML document, in bytes, that is made into a page. The limit is the browser, which
// needs some 5 KB for each cell (docs/formats.md).
inline constexpr std::size_t kLargestPageSource = std::size_t{8} * 1024 * 1024;

// Turns the XML document of a data group into one self-contained HTML page, with the group's
// stylesheet from the program's directory. A line below the title names the period, unless it is
// all days. Replaces the page atomically. Reports a missing stylesheet and returns false. Throws
// FileError, and Error with the faulty file and the reason.
bool WriteHtmlPage(const StyleSheets& style_sheets, int group, const std::filesystem::path& xml,
                   const std::filesystem::path& html, const Period& period = {});

}  // namespace vrx
