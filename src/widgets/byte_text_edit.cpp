#include "widgets/byte_text_edit.h"

#include <QFontDatabase>
#include <QScopedValueRollback>
#include <QTextBlock>
#include <algorithm>
#include <cstddef>
#include <vector>

#include "base/encoding.h"
#include "widgets/qt_text.h"

namespace vrx {

namespace {

constexpr std::string_view kNewLineEnd = "\r\n";

std::size_t EndLength(std::string_view text, std::size_t at) {
  return text.substr(at, kNewLineEnd.size()) == kNewLineEnd ? kNewLineEnd.size() : 1;
}

}  // namespace

DataWindow::DataWindow(QWidget* parent) : QPlainTextEdit(parent) {
  setObjectName(QStringLiteral("txtDataWindow"));
  setAccessibleName(QTr("Data"));
  setPlaceholderText(QTr("What is downloaded or uploaded shows here."));
  setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  setLineWrapMode(NoWrap);
  setTabChangesFocus(true);
  connect(this, &QPlainTextEdit::textChanged, this, [this] {
    if (!by_program_) {
      TakeText();
      Q_EMIT Edited();
    }
  });
}

void DataWindow::SetBytes(const std::string& bytes) {
  if (bytes == bytes_) {
    return;
  }
  bytes_ = bytes;
  QString shown;
  for (const TextLine& line : SplitLines(bytes_)) {
    shown += ToQString(Windows1252ToUtf8(line.text));
    if (!line.end.empty()) {
      shown += u'\n';
    }
  }
  const QScopedValueRollback by_program(by_program_, true);
  setPlainText(shown);
}

// Reads block by block, because toPlainText() replaces non-breaking spaces.
void DataWindow::TakeText() {
  std::vector<std::string> lines;
  for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
    lines.push_back(Utf8ToWindows1252(block.text().toStdString()));
  }
  bytes_ = TakeEdit(bytes_, lines);
}

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
