#pragma once

#include <QPlainTextEdit>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vrx {

// `txtDataWindow`: an editor for a Windows-1252 text. Bytes() returns the bytes that were set, with
// only the operator's changes.
class DataWindow : public QPlainTextEdit {
  Q_OBJECT

 public:
  explicit DataWindow(QWidget* parent = nullptr);

  // Does nothing if the bytes are the same; otherwise scrolls to the top.
  void SetBytes(const std::string& bytes);
  [[nodiscard]] const std::string& Bytes() const { return bytes_; }

 Q_SIGNALS:
  void Edited();  // by the operator

 private:
  void TakeText();

  std::string bytes_;
  bool by_program_ = false;
};

// A line of a text and its end: CR LF, CR or LF; empty for the last line.
struct TextLine {
  std::string_view text;
  std::string_view end;
};

// At least one line, even for an empty text. The lines point into the text.
std::vector<TextLine> SplitLines(std::string_view text);

// The bytes after an edit that is known only as lines without their ends. An unchanged or replaced
// line keeps its end; a new line ends in CR LF. The last line has no end.
std::string TakeEdit(std::string_view before, std::span<const std::string> edited);

}  // namespace vrx
