#pragma once

#include <QPrinter>
#include <string>

namespace vrx {

// Prints a text of bytes, Windows-1252, as it stands.
class TextPrinter {
 public:
  virtual ~TextPrinter() = default;

  // A form feed begins a new sheet. Throws Error when there is no printer or it refuses.
  virtual void Print(const std::string& text) = 0;
};

// Prints on that printer; a text of bytes as TextPrinter has it.
void PrintText(QPrinter& printer, const std::string& text);

// The system's default printer, without a dialog.
class QtTextPrinter : public TextPrinter {
 public:
  void Print(const std::string& text) override;
};

}  // namespace vrx
