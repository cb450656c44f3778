// Run by the build: writes the stylesheet of each data group to the given folder, from their common
// template.

#include <cstddef>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <string>
#include <string_view>

#include "base/files.h"
#include "export/xml_export.h"
#include "history/data_group.h"

namespace {

constexpr std::string_view kTitle = "@TITLE@";
constexpr std::size_t kLargestTemplate = std::size_t{1024} * 1024;

// `title` is markup.
std::string WithTitle(std::string text, std::string_view title) {
  for (std::size_t at = text.find(kTitle); at != std::string::npos;
       at = text.find(kTitle, at + title.size())) {
    text.replace(at, kTitle.size(), title);
  }
  return text;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fputs("usage: make_style_sheets TEMPLATE FOLDER\n", stderr);
    return 2;
  }
  try {
    const std::string text = vrx::ReadFileBytes(argv[1], kLargestTemplate);
    const std::filesystem::path folder = argv[2];
    std::filesystem::create_directories(folder);
    for (const vrx::DataGroup& group : vrx::DataGroups()) {
      std::string title;
      vrx::AppendXmlText(group.item, title);
      vrx::WriteFileBytes(folder / group.stylesheet, WithTitle(text, title));
    }
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "make_style_sheets: %s\n", error.what());
    return 1;
  }
}
