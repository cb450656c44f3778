#pragma once

#include <QPlainTextEdit>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vrx {

// `txtDataWindow`: shows a text of bytes, Windows-1252, and lets the operator edit it. Bytes() is
// what was set, byte for byte, with what the operator has changed since.
class DataWindow : public QPlainTextEdit {
  Q_OBJECT

 public:
  explicit DataWindow(QWidget* parent = nullptr);

  // Nothing happens when it holds these bytes already; else the view goes to the top.
  void SetBytes(const std::string& bytes);
  const std::string& Bytes() const { return bytes_; }

 Q_SIGNALS:
  void Edited();  // by the operator

 private:
  void TakeText();

  std::string bytes_;
  bool by_program_ = false;
};

// A line of a text of bytes and what ends it: CR LF, CR or LF, or nothing behind the last one.
struct TextLine {
  std::string_view text;
  std::string_view end;
};

// At least one line, also of an empty text. The lines point into the text.
std::vector<TextLine> SplitLines(std::string_view text);

// The bytes after an edit, of which only the lines without their ends are known. A line that
// stands as it stood keeps its end, and so does one that took the place of another; any other is
// ended by CR LF. The last line has no end.
std::string TakeEdit(std::string_view before, std::span<const std::string> edited);

}  // namespace vrx
