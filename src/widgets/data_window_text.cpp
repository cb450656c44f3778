#include "widgets/data_window_text.h"

#include <algorithm>
#include <cstddef>

namespace vrx {
namespace {

constexpr std::string_view kNewLineEnd = "\r\n";

std::size_t EndLength(std::string_view text, std::size_t at) {
  return text.substr(at, kNewLineEnd.size()) == kNewLineEnd ? kNewLineEnd.size() : 1;
}

}  // namespace

std::vector<TextLine> SplitLines(std::string_view text) {
  std::vector<TextLine> lines;
  std::size_t start = 0;
  for (std::size_t at = text.find_first_of("\r\n"); at != std::string_view::npos;
       at = text.find_first_of("\r\n", start)) {
    const std::size_t length = EndLength(text, at);
    lines.push_back({text.substr(start, at - start), text.substr(at, length)});
    start = at + length;
  }
  lines.push_back({text.substr(start), {}});
  return lines;
}

std::string TakeEdit(std::string_view before, std::span<const std::string> edited) {
  const std::vector<TextLine> old = SplitLines(before);
  const std::size_t most = std::min(old.size(), edited.size());
  std::size_t head = 0;
  while (head < most && old[head].text == edited[head]) {
    ++head;
  }
  std::size_t tail = 0;
  while (tail < most - head &&
         old[old.size() - 1 - tail].text == edited[edited.size() - 1 - tail]) {
    ++tail;
  }
  const bool line_for_line = old.size() == edited.size();
  std::string bytes;
  for (std::size_t i = 0; i < edited.size(); ++i) {
    const std::size_t from_end = edited.size() - i;
    bytes += edited[i];
    if (from_end == 1) {
      continue;
    }
    if (i < head || line_for_line) {
      bytes += old[i].end.empty() ? kNewLineEnd : old[i].end;
    } else if (from_end <= tail) {
      bytes += old[old.size() - from_end].end;
    } else {
      bytes += kNewLineEnd;
    }
  }
  return bytes;
}

}  // namespace vrx
