#pragma once

#include <QPrinter>

#include "desktop/print/text_printer.h"

namespace vrx {

// Prints on that printer; a text of bytes as TextPrinter has it.
void PrintText(QPrinter& printer, const std::string& text);

// The system's default printer, without a dialog.
class QtTextPrinter : public TextPrinter {
 public:
  void Print(const std::string& text) override;
};

}  // namespace vrx
