#include "chart/look.h"

#include <QColor>
#include <array>
#include <cmath>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

namespace vrx::testing {
namespace {

using Three = std::array<double, 3>;

double Linear(double part) {
  return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
}

Three LinearOf(const QColor& color) {
  return {Linear(color.redF()), Linear(color.greenF()), Linear(color.blueF())};
}

double LuminanceOf(const Three& linear) {
  return 0.2126 * linear[0] + 0.7152 * linear[1] + 0.0722 * linear[2];
}

// The contrast ratio of the accessibility guidelines, 1 to 21.
double Contrast(const QColor& one, const QColor& other) {
  const double a = LuminanceOf(LinearOf(one)) + 0.05;
  const double b = LuminanceOf(LinearOf(other)) + 0.05;
  return std::max(a, b) / std::min(a, b);
}

using Matrix = std::array<Three, 3>;

Three Times(const Matrix& matrix, const Three& value) {
  Three result{};
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) {
      result[i] += matrix[i][j] * value[j];
    }
    result[i] = std::clamp(result[i], 0.0, 1.0);
  }
  return result;
}

// Machado, Oliveira, Fernandes 2009, severity 1, on linear light.
struct Sight {
  std::string_view name;
  Matrix matrix;
};
constexpr std::array<Sight, 4> kSights = {{
    {"usual", {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}}},
    {"protanopia",
     {{{0.152286, 1.052583, -0.204868},
       {0.114503, 0.786281, 0.099216},
       {-0.003882, -0.048116, 1.051998}}}},
    {"deuteranopia",
     {{{0.367322, 0.860646, -0.227968},
       {0.280085, 0.672501, 0.047413},
       {-0.011820, 0.042940, 0.968881}}}},
    {"tritanopia",
     {{{1.255528, -0.076749, -0.178779},
       {-0.078411, 0.930809, 0.147602},
       {0.004733, 0.691367, 0.303900}}}},
}};

// CIE 1976 L*a*b*, D65.
Three LabOf(const Three& linear) {
  const Three xyz = {(0.4124 * linear[0] + 0.3576 * linear[1] + 0.1805 * linear[2]) / 0.9505,
                     LuminanceOf(linear),
                     (0.0193 * linear[0] + 0.1192 * linear[1] + 0.9505 * linear[2]) / 1.089};
  Three f{};
  for (std::size_t i = 0; i < 3; ++i) {
    f[i] = xyz[i] > 0.008856 ? std::cbrt(xyz[i]) : 7.787 * xyz[i] + 16.0 / 116;
  }
  return {116 * f[1] - 16, 500 * (f[0] - f[1]), 200 * (f[1] - f[2])};
}

double Distance(const QColor& one, const QColor& other, const Sight& sight) {
  const Three a = LabOf(Times(sight.matrix, LinearOf(one)));
  const Three b = LabOf(Times(sight.matrix, LinearOf(other)));
  return std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
}

QColor Blended(const QColor& over, const QColor& ground, double opacity) {
  const auto part = [&](double a, double b) {
    return static_cast<float>(a * opacity + b * (1 - opacity));
  };
  return QColor::fromRgbF(part(over.redF(), ground.redF()), part(over.greenF(), ground.greenF()),
                          part(over.blueF(), ground.blueF()));
}

constexpr double kTextRatio = 4.5;
constexpr double kMarkRatio = 3;

TEST(Look, TextsCanBeReadOnPaperAndOnEveryShade) {
  for (const bool dark : {false, true}) {
    const QColor paper = ColorOf(Ink::kPaper, dark);
    EXPECT_GE(Contrast(ColorOf(Ink::kText, dark), paper), kTextRatio);
    EXPECT_GE(Contrast(ColorOf(Ink::kQuiet, dark), paper), kTextRatio);
    for (double shade = 0; shade <= kMostShade; shade += 0.05) {
      EXPECT_GE(
          Contrast(ColorOf(Ink::kText, dark), Blended(ColorOf(Ink::kShade, dark), paper, shade)),
          kTextRatio)
          << dark << ' ' << shade;
    }
  }
}

TEST(Look, MarksAreSeenOnPaperAndOnTheBand) {
  for (const bool dark : {false, true}) {
    for (const Ink mark : {Ink::kFirst, Ink::kSecond}) {
      for (const Ink ground : {Ink::kPaper, Ink::kBand}) {
        EXPECT_GE(Contrast(ColorOf(mark, dark), ColorOf(ground, dark)), kMarkRatio)
            << dark << ' ' << ClassOf(mark) << " on " << ClassOf(ground);
      }
    }
  }
}

TEST(Look, MarksDifferForEveryColorSight) {
  constexpr double kClearlyOther = 20;
  const std::vector<std::pair<Ink, Ink>> met = {
      {Ink::kFirst, Ink::kSecond}, {Ink::kFirst, Ink::kText}, {Ink::kSecond, Ink::kText}};
  for (const bool dark : {false, true}) {
    for (const auto& [one, other] : met) {
      for (const Sight& sight : kSights) {
        EXPECT_GE(Distance(ColorOf(one, dark), ColorOf(other, dark), sight), kClearlyOther)
            << dark << ' ' << ClassOf(one) << ' ' << ClassOf(other) << ' ' << sight.name;
      }
    }
  }
}

TEST(Look, EveryInkHasAClassOfItsOwn) {
  std::set<std::string_view> classes;
  for (const Ink ink : kAllInks) {
    EXPECT_TRUE(ClassOf(ink).starts_with("chart-"));
    classes.insert(ClassOf(ink));
  }
  EXPECT_EQ(classes.size(), kAllInks.size());
}

TEST(Look, TitlesAreLargerThanMarksAndTheseThanNotes) {
  const Look look{.letter = 15};
  EXPECT_GT(FontOf(look, Letters::kTitle).pixelSize(), 15);
  EXPECT_EQ(FontOf(look, Letters::kMarks).pixelSize(), 15);
  EXPECT_LT(FontOf(look, Letters::kSmall).pixelSize(), 15);
}

}  // namespace
}  // namespace vrx::testing
