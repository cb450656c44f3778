#pragma once

#include <QColor>
#include <QFont>
#include <QString>

namespace vrx::manual {

// The pages are drawn in dots, 1200 to the inch. Formats of a QTextDocument count lengths in 1/96
// inch, whatever the device.
inline constexpr int kDotsPerInch = 1200;

constexpr double Points(double points) { return points * kDotsPerInch / 72.0; }
constexpr double Millimetres(double millimetres) { return millimetres * kDotsPerInch / 25.4; }
constexpr double FormatPoints(double points) { return points * 96 / 72.0; }
constexpr double FormatDots(double dots) { return dots * 96 / kDotsPerInch; }

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

// Sizes in points.
struct TextStyle {
  double size = 9;
  double leading = 13.5;
  double before = 0;  // blank above the block
  double behind = 0;
  double indent = 0;
  bool keeps_next = false;  // on one page with the next block
  bool bold = false;
  bool fixed = false;  // all characters of one width
  QColor ink = kInk;
};

inline constexpr TextStyle kBodyText{.before = 6};
inline constexpr TextStyle kEmptyText{.size = 1, .leading = 0};
inline constexpr TextStyle kItemText{.before = 3, .indent = 14};
inline constexpr TextStyle kTitleText{.size = 26, .leading = 34, .bold = true, .ink = kHeadingInk};
inline constexpr TextStyle kChapterText{
    .size = 20, .leading = 26, .behind = 14, .keeps_next = true, .bold = true, .ink = kHeadingInk};
inline constexpr TextStyle kSectionText{
    .size = 12, .leading = 16, .before = 16, .keeps_next = true, .bold = true, .ink = kHeadingInk};
inline constexpr TextStyle kContentsChapterText{.before = 5, .keeps_next = true, .bold = true};
inline constexpr TextStyle kContentsText{.indent = 16};
inline constexpr TextStyle kCellText{.size = 8, .leading = 11.5};
inline constexpr TextStyle kCellHeadText{.size = 8, .leading = 11.5, .bold = true};
inline constexpr TextStyle kCaptionText{
    .size = 8, .leading = 11.5, .before = 4, .behind = 3, .ink = kFaintInk};
inline constexpr TextStyle kCodeText{
    .size = 8, .leading = 12, .before = 6, .indent = 10, .fixed = true};
inline constexpr TextStyle kNextCodeText{.size = 8, .leading = 12, .indent = 10, .fixed = true};
inline constexpr TextStyle kRunningText{.size = 7.5, .leading = 10, .ink = kFaintInk};

QFont FontOf(const TextStyle& style);

// Throws Error, with the name of the package, where a font of the manual is not installed or has no
// glyph for a character of the text.
void RequireFonts(const QString& text);

}  // namespace vrx::manual
