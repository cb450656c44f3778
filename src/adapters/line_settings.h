#pragma once

#include <string_view>

namespace vrx {

enum class Parity { kNone, kEven, kOdd, kMark, kSpace };

// "19200,n,8,1" in its parts.
struct LineSettings {
  int baud = 9600;
  Parity parity = Parity::kNone;
  int data_bits = 8;
  int stop_bits = 1;

  bool operator==(const LineSettings&) const = default;
};

// Throws SerialError for a text of another form.
LineSettings ParseLineSettings(std::string_view text);

}  // namespace vrx
