#include <QPalette>
#include <random>

#include <gtest/gtest.h>

#include "support/desktop_palettes.h"
#include "widgets/drawing.h"

namespace vrx::testing {
namespace {

TEST(ContrastRatio, GoesFromOneToTwentyOneAndMindsNoOrder) {
  EXPECT_DOUBLE_EQ(ContrastRatio(Qt::white, Qt::white), 1.0);
  EXPECT_DOUBLE_EQ(ContrastRatio(Qt::white, Qt::black), 21.0);
  EXPECT_DOUBLE_EQ(ContrastRatio(Qt::black, Qt::white), 21.0);
  EXPECT_NEAR(ContrastRatio(QColor(0, 128, 0), Qt::white), 5.14, 0.01);
}

TEST(Readable, LeavesAColorThatCanBeRead) {
  EXPECT_EQ(Readable(QColor(0, 0, 192), Qt::white, kTextContrast), QColor(0, 0, 192));
}

TEST(Readable, ReachesTheContrastOnAnyBackground) {
  std::mt19937 random(20260105);
  std::uniform_int_distribution<int> channel(0, 255);
  const auto color = [&] { return QColor(channel(random), channel(random), channel(random)); };
  for (int round = 0; round < 500; ++round) {
    const QColor background = color();
    EXPECT_GE(ContrastRatio(Readable(color(), background, kTextContrast), background),
              kTextContrast);
  }
}

TEST(StatusTextColor, IsAsSpecifiedWhereThatCanBeRead) {
  EXPECT_EQ(StatusTextColor(StatusColor::kBlue, QColor(239, 239, 239)), QColor(0, 0, 192));
  EXPECT_EQ(StatusTextColor(StatusColor::kGreen, Qt::white), QColor(0, 128, 0));
}

TEST(StatusTextColor, IsDarkerWhereALightWindowNeedsIt) {
  const QColor window(239, 239, 239);
  const QColor red = StatusTextColor(StatusColor::kRed, window);
  EXPECT_GE(ContrastRatio(red, window), kTextContrast);
  EXPECT_GT(red.red(), 190);
  EXPECT_EQ(red.green(), 0);
}

TEST(StatusTextColor, KeepsItsHueOnADarkWindow) {
  const QColor window(35, 35, 35);
  EXPECT_NEAR(StatusTextColor(StatusColor::kBlue, window).hslHue(), 240, 2);
  EXPECT_NEAR(StatusTextColor(StatusColor::kGreen, window).hslHue(), 120, 2);
  EXPECT_EQ(StatusTextColor(StatusColor::kRed, window).hslHue() % 360, 0);
}

class ReadableTexts : public ::testing::TestWithParam<QPalette (*)()> {};

TEST_P(ReadableTexts, HaveAContrastOfFourAndAHalf) {
  const QPalette palette = WithReadableTexts(GetParam()());
  const auto contrast = [&](QPalette::ColorGroup group, QPalette::ColorRole text,
                            QPalette::ColorRole background) {
    const QColor back = palette.color(group, background);
    const QColor color = palette.color(group, text);
    const auto mixed = [&](int above, int below) {
      return below + (above - below) * color.alpha() / 255;
    };
    const QColor seen(mixed(color.red(), back.red()), mixed(color.green(), back.green()),
                      mixed(color.blue(), back.blue()));
    return ContrastRatio(seen, back);
  };
  for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive}) {
    EXPECT_GE(contrast(group, QPalette::WindowText, QPalette::Window), 4.5);
    EXPECT_GE(contrast(group, QPalette::Text, QPalette::Base), 4.5);
    EXPECT_GE(contrast(group, QPalette::Text, QPalette::AlternateBase), 4.5);
    EXPECT_GE(contrast(group, QPalette::ButtonText, QPalette::Button), 4.5);
    EXPECT_GE(contrast(group, QPalette::ToolTipText, QPalette::ToolTipBase), 4.5);
    EXPECT_GE(contrast(group, QPalette::HighlightedText, QPalette::Highlight), 4.5);
    EXPECT_GE(contrast(group, QPalette::Link, QPalette::Base), 4.5);
    EXPECT_GE(contrast(group, QPalette::PlaceholderText, QPalette::Base), 4.5);
  }
}

INSTANTIATE_TEST_SUITE_P(OfTheDesktops, ReadableTexts,
                         ::testing::Values(&LightDesktop, &DarkDesktop));

TEST(WithReadableTexts, LeavesWhatCanBeRead) {
  QPalette palette = LightDesktop();
  palette.setColor(QPalette::Highlight, QColor(0, 60, 120));
  palette.setColor(QPalette::PlaceholderText, QColor(0, 0, 0, 200));
  palette.setColor(QPalette::LinkVisited, QColor(100, 0, 100));
  const QPalette readable = WithReadableTexts(palette);
  for (int role = 0; role < QPalette::NColorRoles; ++role) {
    const auto color_role = static_cast<QPalette::ColorRole>(role);
    EXPECT_EQ(readable.color(color_role).name(QColor::HexArgb).toStdString(),
              palette.color(color_role).name(QColor::HexArgb).toStdString())
        << role;
  }
}

TEST(WithReadableTexts, DarkensASelectionAndKeepsItsText) {
  const QPalette palette = WithReadableTexts(LightDesktop());
  EXPECT_EQ(palette.color(QPalette::HighlightedText), QColor(Qt::white));
  EXPECT_NEAR(palette.color(QPalette::Highlight).hslHue(), QColor(48, 140, 198).hslHue(), 3);
  EXPECT_LT(palette.color(QPalette::Highlight).lightness(), QColor(48, 140, 198).lightness());
}

TEST(WithReadableTexts, TakesTheTextsColorForTheHintsOfADarkDesktop) {
  const QColor hint = WithReadableTexts(DarkDesktop()).color(QPalette::PlaceholderText);
  EXPECT_EQ(hint.rgb(), QColor(252, 252, 252).rgb());
  EXPECT_LT(hint.alpha(), 255);
}

}  // namespace
}  // namespace vrx::testing
