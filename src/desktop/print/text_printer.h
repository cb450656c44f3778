#pragma once

#include <string>

namespace vrx {

// Prints a text of bytes, Windows-1252, as it stands.
class TextPrinter {
 public:
  virtual ~TextPrinter() = default;

  // A form feed begins a new sheet. Throws Error when there is no printer or it refuses.
  virtual void Print(const std::string& text) = 0;
};

}  // namespace vrx
