#include "base/utf8.h"

namespace vrx {
namespace {

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
