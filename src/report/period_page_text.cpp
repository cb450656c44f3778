#include <algorithm>
#include <cstddef>
#include <string_view>

#include "report/period_page.h"

namespace vrx {
namespace {

constexpr std::size_t kLineLength = 100;
constexpr std::string_view kColumnGap = "  ";

// Characters, each of which takes a column of the terminal.
std::size_t LengthOf(std::string_view text) {
  constexpr unsigned kFollows = 0x80;  // the mark of a further byte of a character
  constexpr unsigned kMask = 0xC0;
  return static_cast<std::size_t>(std::ranges::count_if(
      text, [](char byte) { return (static_cast<unsigned char>(byte) & kMask) != kFollows; }));
}

// A control character in a name would act on the terminal.
std::string WithoutControls(std::string text) {
  std::ranges::replace_if(
      text,
      [](char character) {
        constexpr unsigned char kDelete = 0x7F;
        const auto byte = static_cast<unsigned char>(character);
        return byte < ' ' || byte == kDelete;
      },
      ' ');
  return text;
}

// Broken at blanks.
std::string Paragraph(const std::string& text) {
  std::string lines;
  std::string line;
  const auto add = [&](const std::string& word) {
    if (!line.empty() && LengthOf(line) + 1 + LengthOf(word) > kLineLength) {
      lines += line + '\n';
      line.clear();
    }
    line += (line.empty() ? "" : " ") + word;
  };
  for (std::size_t from = 0; from <= text.size();) {
    const std::size_t end = std::min(text.find(' ', from), text.size());
    add(WithoutControls(text.substr(from, end - from)));
    from = end + 1;
  }
  return lines + line + '\n';
}

using TextRow = std::vector<std::string>;

TextRow TextsOf(const AnswerTable& table, const std::vector<AnswerCell>& row) {
  TextRow texts;
  for (std::size_t i = 0; i < row.size(); ++i) {
    texts.push_back(WithoutControls(ShownText(table.columns.at(i), row[i])));
  }
  return texts;
}

std::string AlignedLine(const AnswerTable& table, const TextRow& texts,
                        const std::vector<std::size_t>& widths) {
  std::string line;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    const std::string blanks(widths[i] - LengthOf(texts[i]), ' ');
    line += i == 0 ? "" : kColumnGap;
    line += IsNumber(table.columns[i].kind) ? blanks + texts[i] : texts[i] + blanks;
  }
  line.erase(line.find_last_not_of(' ') + 1);
  return line + '\n';
}

std::string TableText(const AnswerTable& table) {
  std::vector<TextRow> rows(1);
  for (const AnswerColumn& column : table.columns) {
    rows[0].push_back(std::string(column.caption));
  }
  for (const std::vector<AnswerCell>& row : table.rows) {
    rows.push_back(TextsOf(table, row));
  }
  if (!table.total.empty()) {
    rows.push_back(TextsOf(table, table.total));
  }
  std::vector<std::size_t> widths(table.columns.size());
  for (const TextRow& row : rows) {
    for (std::size_t i = 0; i < row.size(); ++i) {
      widths[i] = std::max(widths[i], LengthOf(row[i]));
    }
  }
  std::string text;
  for (const TextRow& row : rows) {
    text += AlignedLine(table, row, widths);
  }
  return text;
}

std::string Underlined(const std::string& text, char line) {
  return text + '\n' + std::string(LengthOf(text), line) + '\n';
}

}  // namespace

std::string PlainText(const PeriodPage& page) {
  std::string text = Underlined(page.title, '=');
  std::string facts;
  for (const std::string& fact : page.facts) {
    facts += (facts.empty() ? "" : ", ") + fact;
  }
  text += Paragraph(facts);
  for (const std::string& note : page.notes) {
    text += '\n' + Paragraph(note);
  }
  text += page.figures.empty() ? "" : "\n";
  for (const PageFigure& figure : page.figures) {
    text += WithoutControls(figure.caption + ": " + figure.text) + '\n';
  }
  for (const PageSection& section : page.sections) {
    text += '\n' + Underlined(section.heading, '-') + Paragraph(section.how);
    for (const AnswerTable& table : section.tables) {
      text += '\n' + TableText(table);
    }
    text += section.sentences.empty() ? "" : "\n";
    for (const std::string& sentence : section.sentences) {
      text += Paragraph(sentence);
    }
  }
  return text;
}

}  // namespace vrx
