#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "database/identity.h"

namespace vrx::testing {

// A word on a page, in points from the upper left corner of the page.
struct PrintedWord {
  std::string text;
  double left;
  double right;
  double top;
  double bottom;
};

struct PrintedPage {
  double width;
  double height;
  std::vector<PrintedWord> words;  // in reading order
};

// The pages of a PDF file as another program reads them.
std::vector<PrintedPage> TextsOf(const std::filesystem::path& pdf);

// The lines of each page, empty ones left out, the words of a line parted by one blank.
std::vector<std::vector<std::string>> LinesOf(const std::filesystem::path& pdf);

// Lines across most of the first page, as they are seen in its picture.
int RuledLinesOf(const std::filesystem::path& pdf);

}  // namespace vrx::testing
