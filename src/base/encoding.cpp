#include "base/encoding.h"

#include <algorithm>
#include <array>
#include <bit>
#include <iterator>

#include <utf8.h>

namespace vrx {
namespace {

constexpr unsigned kFirstSpecial = 0x80;

// Characters of the bytes 0x80 to 0x9F. Every other byte is the character of the same number.
constexpr std::array<char32_t, 32> kSpecials = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

bool IsContinuationByte(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; }

// The first byte and its continuation bytes, at most as many as the first byte announces.
std::string_view FirstSequence(std::string_view text) {
  const int announced = std::countl_one(static_cast<unsigned char>(text.front()));
  const std::size_t limit = announced >= 2 && announced <= 4 ? announced : 1;
  std::size_t length = 1;
  while (length < std::min(limit, text.size()) && IsContinuationByte(text[length])) {
    ++length;
  }
  return text.substr(0, length);
}

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

}  // namespace

DecodedCharacter DecodeUtf8(std::string_view text) {
  const std::string_view sequence = FirstSequence(text);
  if (!utf8::is_valid(sequence)) {
    return {std::nullopt, sequence.size()};
  }
  const auto* byte = sequence.data();
  return {utf8::unchecked::next(byte), sequence.size()};
}

void AppendUtf8(std::string& text, char32_t character) {
  utf8::unchecked::append(character, std::back_inserter(text));
}

std::size_t CountCharacters(std::string_view text) {
  return text.size() - static_cast<std::size_t>(std::ranges::count_if(text, IsContinuationByte));
}

std::string_view FirstCharacters(std::string_view text, std::size_t limit) {
  std::size_t count = 0;
  std::size_t length = 0;
  while (length < text.size() && (IsContinuationByte(text[length]) || ++count <= limit)) {
    ++length;
  }
  return text.substr(0, length);
}

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

}  // namespace vrx
