#include "export/html_page.h"

#include <string>

#include "base/error.h"
#include "base/files.h"
#include "base/replacing_file.h"
#include "export/html_export.h"

namespace vrx {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kMegabyte = std::size_t{1024} * 1024;
constexpr std::size_t kLargestStyleSheet = 4 * kMegabyte;

std::string Megabytes(std::size_t bytes) {
  return std::to_string((bytes + kMegabyte - 1) / kMegabyte) + " MB";
}

std::string ReadDocument(const fs::path& xml) {
  std::error_code unknown;
  const auto size = fs::file_size(xml, unknown);
  if (!unknown && size > kLargestPageSource) {
    throw Error("The page would be too large for a browser: " + Megabytes(size) +
                " of data, at most " + Megabytes(kLargestPageSource) +
                ". Choose XML or CSV, or a group by name.");
  }
  return ReadFileBytes(xml, kLargestPageSource);
}

std::string ReadStyleSheet(const fs::path& file) {
  std::string text = ReadFileBytes(file, kLargestStyleSheet);
  if (text.size() > kLargestStyleSheet) {
    throw Error(file.string() + ": longer than a stylesheet may be, " +
                Megabytes(kLargestStyleSheet));
  }
  return text;
}

}  // namespace

bool WriteHtmlPage(const StyleSheets& style_sheets, int group, const fs::path& xml,
                   const fs::path& html) {
  const fs::path source = style_sheets.PresentSourceOf(group);
  if (source.empty()) {
    return false;
  }
  const std::string document = ReadDocument(xml);
  const std::string style_sheet = ReadStyleSheet(source);
  const std::string page = Transform({source.string(), style_sheet}, {xml.string(), document});
  ReplacingFile file(html);
  file.Write(page);
  file.TakePlace();
  return true;
}

}  // namespace vrx
