#include <QPalette>
#include <random>

#include <gtest/gtest.h>

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

TEST(StatusTextColor, IsAsSpecifiedOnALightWindow) {
  const QColor window(239, 239, 239);
  EXPECT_EQ(StatusTextColor(StatusColor::kBlue, window), QColor(0, 0, 192));
  EXPECT_EQ(StatusTextColor(StatusColor::kRed, window), QColor(255, 0, 0));
  EXPECT_EQ(StatusTextColor(StatusColor::kGreen, window), QColor(0, 128, 0));
}

TEST(StatusTextColor, KeepsItsHueOnADarkWindow) {
  const QColor window(35, 35, 35);
  EXPECT_NEAR(StatusTextColor(StatusColor::kBlue, window).hslHue(), 240, 2);
  EXPECT_NEAR(StatusTextColor(StatusColor::kGreen, window).hslHue(), 120, 2);
  EXPECT_EQ(StatusTextColor(StatusColor::kRed, window).hslHue() % 360, 0);
}

TEST(WithReadableHints, TakesTheTextsColorOnADarkDeskWithoutOne) {
  QPalette palette(Qt::white, Qt::black, Qt::white, Qt::black, Qt::gray, Qt::white, Qt::white,
                   QColor(27, 30, 32), Qt::black);
  palette.setColor(QPalette::PlaceholderText, QColor(0, 0, 0, 128));
  const QColor hint = WithReadableHints(palette).color(QPalette::PlaceholderText);
  EXPECT_EQ(hint, QColor(255, 255, 255, 128));
}

TEST(WithReadableHints, LeavesHintsThatCanBeRead) {
  QPalette palette;
  palette.setColor(QPalette::Base, Qt::white);
  palette.setColor(QPalette::PlaceholderText, QColor(0, 0, 0, 128));
  EXPECT_EQ(WithReadableHints(palette).color(QPalette::PlaceholderText), QColor(0, 0, 0, 128));
  EXPECT_EQ(WithReadableHints(QPalette()).resolveMask(), QPalette().resolveMask());
}

TEST(WithReadableHints, ReplacesAHintThatItsTransparencyMakesFaint) {
  QPalette palette;
  palette.setColor(QPalette::Base, Qt::white);
  palette.setColor(QPalette::Text, Qt::black);
  palette.setColor(QPalette::PlaceholderText, QColor(0, 0, 0, 60));
  EXPECT_EQ(WithReadableHints(palette).color(QPalette::PlaceholderText), QColor(0, 0, 0, 128));
  const QColor readable(0, 0, 0, 200);
  palette.setColor(QPalette::PlaceholderText, readable);
  EXPECT_EQ(WithReadableHints(palette).color(QPalette::PlaceholderText), readable);
}

}  // namespace
}  // namespace vrx::testing
