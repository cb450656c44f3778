#include "support/printed_pages.h"

#include <QString>
#include <regex>
#include <sstream>
#include <stdexcept>

#include "database/identity.h"
#include "support/program.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

std::string OutputOf(const std::vector<std::string>& command) {
  const TempFolder folder;
  Program program("/usr/bin/env", command, folder.Path().string());
  if (program.Wait() != 0) {
    throw std::runtime_error(command.front() + ": " + program.Err());
  }
  return program.Out();
}

// A font may join letters, which then read as one.
std::string TextOf(const std::vector<std::string>& command) {
  return QString::fromStdString(OutputOf(command))
      .normalized(QString::NormalizationForm_KC)
      .toStdString();
}

std::string Unescaped(std::string text) {
  for (const auto& [name, character] : {std::pair{"&lt;", "<"}, {"&gt;", ">"}, {"&amp;", "&"}}) {
    text = std::regex_replace(text, std::regex(name), character);
  }
  return text;
}

}  // namespace

std::vector<PrintedPage> TextsOf(const std::filesystem::path& pdf) {
  static const std::regex kPage(R"re(<page width="([\d.]+)" height="([\d.]+)">)re");
  static const std::regex kWord(
      R"re(<word xMin="([-\d.]+)" yMin="([-\d.]+)" xMax="([-\d.]+)" yMax="([-\d.]+)">(.*)</word>)re");
  std::vector<PrintedPage> pages;
  std::istringstream lines(TextOf({"pdftotext", "-bbox", pdf.string(), "-"}));
  std::smatch match;
  for (std::string line; std::getline(lines, line);) {
    if (std::regex_search(line, match, kPage)) {
      pages.push_back({std::stod(match[1]), std::stod(match[2]), {}});
    } else if (std::regex_search(line, match, kWord)) {
      pages.back().words.push_back({.text = Unescaped(match[5]),
                                    .left = std::stod(match[1]),
                                    .right = std::stod(match[3]),
                                    .top = std::stod(match[2]),
                                    .bottom = std::stod(match[4])});
    }
  }
  return pages;
}

std::vector<std::vector<std::string>> LinesOf(const std::filesystem::path& pdf) {
  std::vector<std::vector<std::string>> pages;
  std::istringstream text(TextOf({"pdftotext", "-layout", pdf.string(), "-"}));
  for (std::string page; std::getline(text, page, '\f');) {
    pages.emplace_back();
    std::istringstream lines(page);
    for (std::string line; std::getline(lines, line);) {
      std::istringstream words(line);
      std::string joined;
      for (std::string word; words >> word;) {
        joined += (joined.empty() ? "" : " ") + word;
      }
      if (!joined.empty()) {
        pages.back().push_back(joined);
      }
    }
  }
  return pages;
}

int RuledLinesOf(const std::filesystem::path& pdf) {
  std::istringstream picture(
      OutputOf({"pdftoppm", "-gray", "-r", "144", "-f", "1", "-l", "1", pdf.string()}));
  std::string kind;
  std::size_t width = 0;
  std::size_t height = 0;
  int white = 0;
  picture >> kind >> width >> height >> white;
  picture.get();
  std::string row(width, '\0');
  int lines = 0;
  bool on_line = false;
  for (std::size_t y = 0; y < height; ++y) {
    picture.read(row.data(), static_cast<std::streamsize>(width));
    std::size_t dark = 0;
    for (const char dot : row) {
      dark += static_cast<unsigned char>(dot) < static_cast<unsigned>(white) * 3 / 4 ? 1 : 0;
    }
    const bool ruled = dark > width / 2;
    lines += ruled && !on_line ? 1 : 0;
    on_line = ruled;
  }
  return lines;
}

}  // namespace vrx::testing
