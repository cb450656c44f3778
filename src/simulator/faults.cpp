#include "simulator/faults.h"

#include <charconv>
#include <stdexcept>
#include <string>
#include <system_error>

namespace vrx::simulator {
namespace {

[[noreturn]] void Refuse(std::string_view text, std::string_view reason) {
  throw std::invalid_argument("fault \"" + std::string(text) + "\": " + std::string(reason));
}

// A fault as it was written, taken apart: "stall=500" is the kind "stall" with the value "500".
struct Written {
  std::string_view text;
  std::string_view kind;
  std::optional<std::string_view> value;
};

Written TakeApart(std::string_view text) {
  const auto equals = text.find('=');
  if (equals == std::string_view::npos) {
    return {text, text, std::nullopt};
  }
  return {text, text.substr(0, equals), text.substr(equals + 1)};
}

void SetSwitch(bool& fault, const Written& written) {
  if (written.value) {
    Refuse(written.text, "takes no value");
  }
  if (fault) {
    Refuse(written.text, "given twice");
  }
  fault = true;
}

template <typename Number>
void SetNumber(std::optional<Number>& fault, const Written& written) {
  if (!written.value) {
    Refuse(written.text, "needs a number: " + std::string(written.kind) + "=N");
  }
  std::uint32_t number = 0;
  const char* end = written.value->data() + written.value->size();
  const auto [stop, error] = std::from_chars(written.value->data(), end, number);
  if (error != std::errc{} || stop != end) {
    Refuse(written.text, "needs a whole number from 0 to 4294967295");
  }
  if (fault) {
    Refuse(written.text, "given twice");
  }
  fault = Number{number};
}

}  // namespace

void AddFault(Faults& faults, std::string_view text) {
  const Written written = TakeApart(text);
  if (written.kind == "silent") {
    SetSwitch(faults.silent, written);
  } else if (written.kind == "garbage") {
    SetSwitch(faults.garbage, written);
  } else if (written.kind == "extra-us") {
    SetSwitch(faults.extra_us, written);
  } else if (written.kind == "cut-after") {
    SetNumber(faults.cut_after, written);
  } else if (written.kind == "stall") {
    SetNumber(faults.stall, written);
  } else if (written.kind == "hang-up") {
    SetNumber(faults.hang_up, written);
  } else if (written.kind == "strays") {
    SetNumber(faults.strays, written);
  } else if (written.kind == "xoff") {
    SetNumber(faults.xoff, written);
  } else if (written.kind == "deaf") {
    SetNumber(faults.deaf, written);
  } else {
    Refuse(text,
           "unknown; there are silent, garbage, cut-after=N, extra-us, stall=MS, hang-up=N, "
           "strays=N, xoff=N, deaf=N");
  }
}

}  // namespace vrx::simulator
