#pragma once

#include <QPrinter>
#include <string>

namespace vrx {

// Prints a Windows-1252 text without changes.
class TextPrinter {
 public:
  virtual ~TextPrinter() = default;

  // A form feed starts a new sheet. Throws Error if there is no printer or printing fails.
  virtual void Print(const std::string& text) = 0;
};

// Prints a text as described for TextPrinter on that printer.
void PrintText(QPrinter& printer, const std::string& text);

// The system's default printer, without a dialog.
class QtTextPrinter : public TextPrinter {
 public:
  void Print(const std::string& text) override;
};

}  // namespace vrx
