#pragma once

#include <QPlainTextEdit>
#include <string>

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

}  // namespace vrx
