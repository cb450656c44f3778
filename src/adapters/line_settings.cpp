#include "adapters/line_settings.h"

#include <array>
#include <charconv>
#include <string>

#include "platform/serial_control.h"

namespace vrx {

namespace {

constexpr std::string_view kParityLetters = "neoms";  // in the order of Parity

// Takes the text up to the next comma off the front.
std::string_view NextField(std::string_view& text) {
  const std::string_view field = text.substr(0, text.find(','));
  text.remove_prefix(std::min(text.size(), field.size() + 1));
  return field;
}

int Number(std::string_view field) {
  int value = 0;
  const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), value);
  return error == std::errc{} && end == field.data() + field.size() ? value : -1;
}

}  // namespace

LineSettings ParseLineSettings(std::string_view text) {
  std::string_view rest = text;
  LineSettings settings;
  settings.baud = Number(NextField(rest));
  const std::string_view letter = NextField(rest);
  const std::size_t parity =
      letter.size() == 1 ? kParityLetters.find(letter) : std::string_view::npos;
  settings.data_bits = Number(NextField(rest));
  settings.stop_bits = Number(rest);
  if (settings.baud < 1 || parity == std::string_view::npos || settings.data_bits < 5 ||
      settings.data_bits > 8 || settings.stop_bits < 1 || settings.stop_bits > 2) {
    throw SerialError("\"" + std::string(text) + "\" are no settings of a serial line");
  }
  settings.parity = static_cast<Parity>(parity);
  return settings;
}

}  // namespace vrx
