#include "legacy/jet_text.h"

#include <cstddef>
#include <string>

#include "base/encoding.h"

namespace vrx {
namespace {

constexpr std::string_view kCompressedMark = "\xFF\xFE";
constexpr char32_t kReplacement = 0xFFFD;

bool IsHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool IsLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

char32_t ByteAt(std::string_view bytes, std::size_t index) {
  return static_cast<unsigned char>(bytes[index]);
}

std::u32string Utf16Units(std::string_view bytes) {
  std::u32string units;
  for (std::size_t at = 0; at < bytes.size(); at += 2) {
    const bool whole = at + 1 < bytes.size();
    units.push_back(whole ? ByteAt(bytes, at) | ByteAt(bytes, at + 1) << 8U : kReplacement);
  }
  return units;
}

std::u32string CompressedUnits(std::string_view bytes) {
  std::u32string units;
  bool single = true;
  for (std::size_t at = 0; at < bytes.size();) {
    const bool pair = !single && at + 1 < bytes.size();
    if (bytes[at] == '\0') {
      single = !single;
    } else if (pair) {
      units.push_back(ByteAt(bytes, at) | ByteAt(bytes, at + 1) << 8U);
      ++at;
    } else {
      units.push_back(single ? ByteAt(bytes, at) : kReplacement);
    }
    ++at;
  }
  return units;
}

}  // namespace

std::string DecodeJetText(std::string_view stored) {
  const std::u32string units = stored.starts_with(kCompressedMark)
                                   ? CompressedUnits(stored.substr(kCompressedMark.size()))
                                   : Utf16Units(stored);
  std::string text;
  for (std::size_t at = 0; at < units.size(); ++at) {
    const char32_t unit = units[at];
    if (IsHighSurrogate(unit) && at + 1 < units.size() && IsLowSurrogate(units[at + 1])) {
      ++at;
      AppendUtf8(text, 0x10000 + ((unit - 0xD800) << 10U) + (units[at] - 0xDC00));
    } else {
      AppendUtf8(text, IsHighSurrogate(unit) || IsLowSurrogate(unit) ? kReplacement : unit);
    }
  }
  return text;
}

}  // namespace vrx
