#include "base/encoding.h"

#include <algorithm>
#include <array>
#include <optional>

namespace vrx {

namespace {

constexpr unsigned kFirstSpecial = 0x80;

// The characters of bytes 0x80 to 0x9F; all others stand for the character of their own number.
constexpr std::array<char32_t, 32> kSpecials = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

std::optional<char> Windows1252Byte(char32_t character) {
  const bool own_number = character < kFirstSpecial || (character >= 0xA0 && character <= 0xFF);
  if (own_number) {
    return static_cast<char>(character);
  }
  const auto* const found = std::find(kSpecials.begin(), kSpecials.end(), character);
  if (found == kSpecials.end()) {
    return std::nullopt;
  }
  return static_cast<char>(kFirstSpecial + static_cast<unsigned>(found - kSpecials.begin()));
}

struct LeadByte {
  std::size_t length = 0;  // of the whole sequence; 0 for a byte that begins none
  char32_t bits = 0;
  char32_t smallest = 0;  // a sequence for less than this is longer than it needs to be
};

LeadByte ReadLeadByte(unsigned byte) {
  if (byte < 0x80) {
    return {1, byte, 0};
  }
  if ((byte & 0xE0U) == 0xC0) {
    return {2, byte & 0x1FU, 0x80};
  }
  if ((byte & 0xF0U) == 0xE0) {
    return {3, byte & 0x0FU, 0x800};
  }
  if ((byte & 0xF8U) == 0xF0) {
    return {4, byte & 0x07U, 0x10000};
  }
  return {};
}

}  // namespace

std::string Windows1252ToUtf8(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  for (const char c : bytes) {
    const unsigned byte = static_cast<unsigned char>(c);
    const unsigned special = byte - kFirstSpecial;
    AppendUtf8(text, byte >= kFirstSpecial && special < kSpecials.size() ? kSpecials.at(special)
                                                                         : char32_t{byte});
  }
  return text;
}

std::string Utf8ToWindows1252(std::string_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  while (!text.empty()) {
    const DecodedCharacter decoded = DecodeUtf8(text);
    bytes += decoded.character ? Windows1252Byte(*decoded.character).value_or('?') : '?';
    text.remove_prefix(decoded.length);
  }
  return bytes;
}

DecodedCharacter DecodeUtf8(std::string_view text) {
  const LeadByte lead = ReadLeadByte(static_cast<unsigned char>(text.front()));
  if (lead.length == 0) {
    return {};
  }
  char32_t character = lead.bits;
  for (std::size_t at = 1; at < lead.length; ++at) {
    const unsigned byte = at < text.size() ? static_cast<unsigned char>(text[at]) : 0U;
    if ((byte & 0xC0U) != 0x80) {
      return {std::nullopt, at};
    }
    character = (character << 6U) | (byte & 0x3FU);
  }
  const bool surrogate = character >= 0xD800 && character <= 0xDFFF;
  if (character < lead.smallest || surrogate || character > 0x10FFFF) {
    return {std::nullopt, lead.length};
  }
  return {character, lead.length};
}

void AppendUtf8(std::string& text, char32_t character) {
  const auto append = [&text](char32_t byte) { text += static_cast<char>(byte); };
  const auto append_rest = [&](unsigned shift) { append(0x80U | ((character >> shift) & 0x3FU)); };
  if (character < 0x80) {
    append(character);
    return;
  }
  if (character < 0x800) {
    append(0xC0U | (character >> 6U));
  } else if (character < 0x10000) {
    append(0xE0U | (character >> 12U));
    append_rest(6);
  } else {
    append(0xF0U | (character >> 18U));
    append_rest(12);
    append_rest(6);
  }
  append_rest(0);
}

}  // namespace vrx
