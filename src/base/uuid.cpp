#include "base/uuid.h"

#include <array>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <random>

namespace vrx {
namespace {

constexpr std::string_view kUuidForm = "xxxxxxxx-xxxx-4xxx-Nxxx-xxxxxxxxxxxx";
constexpr std::string_view kHexDigits = "0123456789abcdef";
constexpr std::size_t kVariants = 4;
constexpr std::size_t kFirstVariant = 8;

}  // namespace

std::string NewUuid() {
  std::random_device device;  // the system's source, not a generator with a seed
  std::uniform_int_distribution<std::size_t> digit(0, kHexDigits.size() - 1);
  std::uniform_int_distribution<std::size_t> variant(kFirstVariant, kFirstVariant + kVariants - 1);
  std::string text(kUuidForm);
  for (char& place : text) {
    if (place == 'x') {
      place = kHexDigits[digit(device)];
    } else if (place == 'N') {
      place = kHexDigits[variant(device)];
    }
  }
  return text;
}

bool IsUuid(std::string_view text) {
  if (text.size() != kUuidForm.size()) {
    return false;
  }
  for (std::size_t index = 0; index < text.size(); ++index) {
    const bool hyphen = kUuidForm[index] == '-';
    if (hyphen ? text[index] != '-' : std::isxdigit(static_cast<unsigned char>(text[index])) == 0) {
      return false;
    }
  }
  return true;
}

}  // namespace vrx
