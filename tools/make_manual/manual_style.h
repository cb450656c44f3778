#pragma once

#include <QColor>
#include <QFont>

namespace vrx::manual {

// Everything is laid out in dots of the page, 1200 to the inch, so that a length means the same to
// fonts, pictures and lines.
inline constexpr int kDotsPerInch = 1200;

constexpr double Points(double points) { return points * kDotsPerInch / 72.0; }
constexpr double Millimetres(double millimetres) { return millimetres * kDotsPerInch / 25.4; }

// A4.
inline constexpr double kPageWidth = Millimetres(210);
inline constexpr double kPageHeight = Millimetres(297);
inline constexpr double kSideMargin = Millimetres(20);
inline constexpr double kTopMargin = Millimetres(24);
inline constexpr double kBottomMargin = Millimetres(24);
inline constexpr double kTextWidth = kPageWidth - 2 * kSideMargin;
inline constexpr double kTextHeight = kPageHeight - kTopMargin - kBottomMargin;

inline constexpr QColor kInk{0x1c, 0x1c, 0x1c};
inline constexpr QColor kHeadingInk{0x1b, 0x3a, 0x5c};
inline constexpr QColor kFaintInk{0x60, 0x68, 0x70};
inline constexpr QColor kVariableInk{0x2a, 0x5c, 0x94};
inline constexpr QColor kRule{0xb4, 0xbe, 0xc8};
inline constexpr QColor kShade{0xee, 0xf2, 0xf6};

// How a text is set; sizes in points.
struct TextStyle {
  double size = 9;
  double leading = 13.5;
  bool bold = false;
  bool fixed = false;  // all characters of one width
  QColor ink = kInk;
};

inline constexpr TextStyle kBodyText{};
inline constexpr TextStyle kTitleText{.size = 26, .leading = 34, .bold = true, .ink = kHeadingInk};
inline constexpr TextStyle kChapterText{
    .size = 20, .leading = 26, .bold = true, .ink = kHeadingInk};
inline constexpr TextStyle kSectionText{
    .size = 12, .leading = 16, .bold = true, .ink = kHeadingInk};
inline constexpr TextStyle kCellText{.size = 8, .leading = 11.5};
inline constexpr TextStyle kCellHeadText{.size = 8, .leading = 11.5, .bold = true};
inline constexpr TextStyle kCaptionText{.size = 8, .leading = 11.5, .ink = kFaintInk};
inline constexpr TextStyle kCodeText{.size = 8, .leading = 12, .fixed = true};
inline constexpr TextStyle kRunningText{.size = 7.5, .leading = 10, .ink = kFaintInk};

QFont FontOf(const TextStyle& style);

// Throws Error, with the name of the package, where a font of the manual is not installed or has no
// picture of a character of the text: a page of boxes is no manual.
void RequireFonts(const QString& text);

}  // namespace vrx::manual
