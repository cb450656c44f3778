#include "chart/picture.h"

#include <QColor>
#include <QImage>
#include <QPageSize>
#include <QPainter>
#include <QPainterPath>
#include <QPdfWriter>
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "chart/sample_charts.h"
#include "support/printed_pages.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;

QImage Painted(const Picture& picture, const Look& look, int scale) {
  QImage image((picture.size * scale).toSize(), QImage::Format_RGB32);
  image.setDevicePixelRatio(scale);
  image.fill(Qt::magenta);
  QPainter painter(&image);
  Paint(painter, picture, look);
  return image;
}

Picture WithEverySymbol() {
  Picture picture{.size = {100, 40}};
  int x = 10;
  for (const Symbol symbol : {Symbol::kDot, Symbol::kDiamond, Symbol::kSquare, Symbol::kCross}) {
    picture.shapes.push_back(
        {Layer::kMark, DotsShape{{{static_cast<double>(x), 10}}, symbol, 8, Ink::kFirst}});
    x += 20;
  }
  QPainterPath box;
  box.addRect(10, 22, 40, 12);
  picture.shapes.push_back({Layer::kMark, PathShape{.path = box, .fill = Ink::kSecond}});
  return picture;
}

TEST(PaintedPicture, HasTheColorsOfItsInksAtEveryScale) {
  const Picture picture = WithEverySymbol();
  for (const bool dark : {false, true}) {
    for (const int scale : {1, 2, 3}) {
      const QImage image = Painted(picture, Look{.dark = dark}, scale);
      const auto at = [&](int x, int y) { return image.pixelColor(x * scale, y * scale); };
      EXPECT_EQ(at(1, 1), ColorOf(Ink::kPaper, dark));
      EXPECT_EQ(at(98, 38), ColorOf(Ink::kPaper, dark));
      for (const int x : {10, 30, 50}) {
        EXPECT_EQ(at(x, 10), ColorOf(Ink::kFirst, dark)) << x << ' ' << scale;
      }
      EXPECT_NE(at(70, 10), ColorOf(Ink::kPaper, dark));  // thin lines cross here
      EXPECT_EQ(at(30, 28), ColorOf(Ink::kSecond, dark));
    }
  }
}

TEST(PaintedPicture, SymbolsHaveDifferentShapes) {
  const QImage image = Painted(WithEverySymbol(), Look{}, 4);
  const auto is_ink = [&](double x, double y) {
    return image.pixelColor(static_cast<int>(4 * x), static_cast<int>(4 * y)) ==
           ColorOf(Ink::kFirst, false);
  };
  // A corner of the box, a point halfway to it, and the right edge.
  EXPECT_FALSE(is_ink(13.5, 13.5));  // dot
  EXPECT_TRUE(is_ink(12.5, 12.4));
  EXPECT_FALSE(is_ink(33.5, 13.5));  // diamond
  EXPECT_FALSE(is_ink(32.5, 12.5));
  EXPECT_TRUE(is_ink(33, 10));
  EXPECT_TRUE(is_ink(53.5, 13.5));  // square
  EXPECT_FALSE(is_ink(73, 10));     // cross
}

TEST(PaintedPicture, APdfHasItsTextsInPlace) {
  const TempFolder folder;
  const std::filesystem::path file = folder.Path() / "picture.pdf";
  const Picture picture = SamplePictures().front().make({642, 400}, Look{});
  {
    QPdfWriter pdf(QString::fromStdString(file.string()));
    pdf.setPageSize(QPageSize(QPageSize::A4));
    pdf.setPageMargins({}, QPageLayout::Millimeter);
    pdf.setResolution(1200);
    QPainter painter(&pdf);
    painter.scale(1200.0 / 96, 1200.0 / 96);
    Paint(painter, picture, Look{});
  }
  const auto lines = LinesOf(file);
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_THAT(lines.front(), Contains(HasSubstr("Deviation over time")));
  EXPECT_THAT(lines.front(), Contains(HasSubstr("Each load's actual weight less its target")));
  for (const PrintedWord& word : TextsOf(file).front().words) {
    EXPECT_LE(word.right, 642 * 72.0 / 96) << word.text;
    EXPECT_LE(word.bottom, picture.size.height() * 72 / 96) << word.text;
  }
}

TEST(Hits, AreFoundInsideNearbyAndNotFarAway) {
  const Picture picture{.size = {100, 100}, .hits = {{{10, 10, 4, 4}, 7}, {{40, 10, 4, 4}, 8}}};
  EXPECT_EQ(HitAt(picture, {12, 12})->index, 7U);
  EXPECT_EQ(HitAt(picture, {35, 12})->index, 8U);
  EXPECT_FALSE(HitAt(picture, {26, 12}).has_value());
  EXPECT_TRUE(HitAt(picture, {26, 12}, 20).has_value());
}

TEST(Hits, OfSeveralTheOneWithTheNearestMiddleCounts) {
  const Picture picture{
      .size = {100, 100},
      .hits = {{{10, 10, 30, 30}, 1}, {{30, 10, 30, 30}, 2}, {{24, 22, 6, 6}, 3}}};
  EXPECT_EQ(HitAt(picture, {27, 25})->index, 3U);
  EXPECT_EQ(HitAt(picture, {33, 35})->index, 1U);
  EXPECT_EQ(HitAt(picture, {38, 35})->index, 2U);
}

}  // namespace
}  // namespace vrx::testing
