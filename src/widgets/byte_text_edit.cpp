#include "widgets/byte_text_edit.h"

#include <QFontDatabase>
#include <QTextBlock>
#include <utility>
#include <vector>

#include "base/encoding.h"
#include "widgets/data_window_text.h"
#include "widgets/qt_text.h"

namespace vrx {

DataWindow::DataWindow(QWidget* parent) : QPlainTextEdit(parent) {
  setObjectName(QStringLiteral("txtDataWindow"));
  setAccessibleName(QStringLiteral("Data"));
  setPlaceholderText(QStringLiteral("What is downloaded or uploaded shows here."));
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
  const bool was_by_program = std::exchange(by_program_, true);
  setPlainText(shown);
  by_program_ = was_by_program;
}

// By blocks: the plain text of the document has ordinary blanks for those that do not break.
void DataWindow::TakeText() {
  std::vector<std::string> lines;
  for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
    lines.push_back(Utf8ToWindows1252(block.text().toStdString()));
  }
  bytes_ = TakeEdit(bytes_, lines);
}

}  // namespace vrx
