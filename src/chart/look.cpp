#include "chart/look.h"

namespace vrx {
namespace {

struct InkColors {
  std::string_view css_class;
  QRgb light;
  QRgb dark;
};

// In the order of Ink.
constexpr std::array<InkColors, kAllInks.size()> kInks = {{
    {"chart-paper", 0xFFFFFF, 0x1B1E20},
    {"chart-text", 0x1A1A1A, 0xF2F2F2},
    {"chart-quiet", 0x595959, 0xB4B8BC},
    {"chart-grid", 0xD9D9D9, 0x3C4145},
    {"chart-band", 0xE3F1EB, 0x29453B},
    {"chart-first", 0x0072B2, 0x56B4E9},
    {"chart-second", 0xD55E00, 0xE69F00},
    {"chart-shade", 0x0072B2, 0x0072B2},
}};

const InkColors& EntryOf(Ink ink) { return kInks[static_cast<std::size_t>(ink)]; }

}  // namespace

QColor ColorOf(Ink ink, bool dark) {
  return QColor::fromRgb(dark ? EntryOf(ink).dark : EntryOf(ink).light);
}

std::string_view ClassOf(Ink ink) { return EntryOf(ink).css_class; }

QFont FontOf(const Look& look, Letters letters) {
  QFont font(look.family);
  font.setHintingPreference(QFont::PreferNoHinting);
  switch (letters) {
    case Letters::kTitle:
      font.setPixelSize(look.letter + 2);
      font.setBold(true);
      break;
    case Letters::kMarks:
      font.setPixelSize(look.letter);
      break;
    case Letters::kSmall:
      font.setPixelSize(look.letter - 1);
      break;
  }
  return font;
}

}  // namespace vrx
