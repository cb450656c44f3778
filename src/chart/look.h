#pragma once

#include <QColor>
#include <QFont>
#include <QString>
#include <array>
#include <string_view>

namespace vrx {

// What a color of a picture is for. A picture names inks, never colors: the same picture is drawn
// light, dark and printed. The marks have the colors of Okabe and Ito, which color-blind eyes tell
// apart; shape, hatching or a text always says the same as the color.
enum class Ink {
  kPaper,
  kText,
  kQuiet,   // texts of axes and notes
  kGrid,    // lines that only guide the eye
  kBand,    // the range within a limit
  kFirst,   // loads, deliveries, batches
  kSecond,  // medians, what was called, what is out of a limit
  kShade,   // a share, with an opacity up to kMostShade; kText is readable on it
};
inline constexpr std::array kAllInks = {Ink::kPaper, Ink::kText,  Ink::kQuiet,  Ink::kGrid,
                                        Ink::kBand,  Ink::kFirst, Ink::kSecond, Ink::kShade};
inline constexpr double kMostShade = 0.8;

[[nodiscard]] QColor ColorOf(Ink ink, bool dark);

// A word for the ink, as a class of CSS: "chart-text".
[[nodiscard]] std::string_view ClassOf(Ink ink);

// How a picture is drawn. Sizes are in units of the picture: logical pixels on a screen, 1/96 inch
// on paper.
struct Look {
  bool dark = false;
  QString family = QStringLiteral("sans-serif");
  int letter = 12;  // letters of the marks; the title is larger, axes and notes are smaller
};

enum class Letters { kTitle, kMarks, kSmall };

// With sizes in pixels and without hinting, so that a text is as wide on every device.
[[nodiscard]] QFont FontOf(const Look& look, Letters letters);

}  // namespace vrx
