#include "desktop/history/history_painting.h"

#include <QPainter>
#include <QScrollBar>

#include <gmock/gmock.h>

#include "desktop/dialogs/about_and_splash.h"
#include "desktop/history/history_fixture.h"
#include "widgets/drawing.h"
#include "widgets/layout.h"

namespace vrx::testing {
namespace {

using enum HistoryRowKind;

QPalette Light() {
  QPalette palette(QColor(239, 239, 239));
  palette.setColor(QPalette::Base, Qt::white);
  palette.setColor(QPalette::Text, Qt::black);
  palette.setColor(QPalette::ToolTipBase, QColor(255, 255, 220));
  palette.setColor(QPalette::Highlight, QColor(48, 140, 198));
  palette.setColor(QPalette::HighlightedText, Qt::white);
  return palette;
}

QPalette Dark() {
  QPalette palette(QColor(42, 46, 50));
  palette.setColor(QPalette::Base, QColor(27, 30, 32));
  palette.setColor(QPalette::Text, Qt::white);
  palette.setColor(QPalette::ToolTipBase, QColor(49, 54, 59));
  return palette;
}

TEST(HistoryStylesTest, RowsHaveTheSpecifiedColorsOnALightPalette) {
  const HistoryStyles styles(Light());
  const HistoryLook& odd = styles.Row(kRecord, 1, false);
  EXPECT_EQ(odd.back, QColor(0xFF, 0xFF, 0xBF));
  EXPECT_EQ(odd.text, QColor(Qt::black));
  EXPECT_EQ(styles.Row(kRecord, 2, false).back, QColor(0xB0, 0xD7, 0xC1));
  const HistoryLook& group = styles.Row(kGroup, 1, false);
  EXPECT_EQ(group.text, QColor(0, 0, 0xC0));
  EXPECT_EQ(group.back, QColor(Qt::white));
  EXPECT_EQ(styles.Row(kTotal, 1, false).back, QColor(255, 255, 220));
  EXPECT_EQ(odd.font.family(), QStringLiteral("Courier New"));
  EXPECT_EQ(odd.font.pointSizeF(), 9.75);
}

// The specified red is slightly too light on white.
const QColor kReadableRed = Readable(QColor(0xFF, 0, 0), Qt::white, kTextContrast);

TEST(HistoryStylesTest, TheWeightsOfATotalAreDistinguished) {
  const HistoryStyles styles(Light());
  const HistoryLook& row = styles.Row(kTotal, 3, false);
  for (const auto& [column, color] : {std::pair{kTargetColumn, QColor(0, 0x80, 0)},
                                      {kActualBatchColumn, QColor(0, 0, 0xFF)},
                                      {kActualFeedColumn, kReadableRed}}) {
    const HistoryLook& cell = styles.Cell(kTotal, column, 3, false);
    EXPECT_EQ(cell.text, color);
    EXPECT_EQ(cell.back, QColor(Qt::white));
    EXPECT_TRUE(cell.font.bold());
    EXPECT_EQ(cell.font.pointSizeF(), 10);
  }
  EXPECT_EQ(styles.Cell(kTotal, kIngPercentColumn, 3, false).back, row.back);
}

TEST(HistoryStylesTest, ASelectedRowHasTheColorsOfThePalette) {
  const HistoryStyles styles(Light());
  for (const HistoryRowKind kind : {kGroup, kTotal, kRecord}) {
    const HistoryLook& row = styles.Row(kind, 1, true);
    EXPECT_EQ(row.back, QColor(48, 140, 198));
    EXPECT_EQ(row.text, QColor(Qt::white));
    EXPECT_EQ(styles.Cell(kind, kTargetColumn, 1, true).back, row.back);
  }
}

TEST(HistoryStylesTest, EveryTextCanBeReadInADarkPalette) {
  const HistoryStyles styles(Dark());
  for (const HistoryRowKind kind : {kGroup, kTotal, kRecord}) {
    for (const int number : {1, 2}) {
      for (int column = 1; column <= kIngPercentColumn; ++column) {
        const HistoryLook& cell = styles.Cell(kind, column, number, false);
        EXPECT_GE(ContrastRatio(cell.text, cell.back), kTextContrast) << column;
      }
    }
  }
  EXPECT_GE(ContrastRatio(HistoryStyles::HeaderColor(Dark()), Dark().color(QPalette::Button)),
            kTextContrast);
}

// What is really drawn.

class HistoryDrawing : public HistoryFixture {
 protected:
  QColor At(const QImage& picture, const QPoint& point) {
    return picture.pixelColor(point * picture.devicePixelRatio());
  }
  QImage Picture() { return Grid().viewport()->grab().toImage(); }
};

TEST_F(HistoryDrawing, RecordsAreStripedOverTheWholeWidth) {
  ShowTab();
  const QImage picture = Picture();
  for (const int x : {1, Grid().viewport()->width() - 2}) {
    EXPECT_EQ(At(picture, {x, Grid().rowViewportPosition(0) + 1}), QColor(0xFF, 0xFF, 0xBF));
    EXPECT_EQ(At(picture, {x, Grid().rowViewportPosition(1) + 1}), QColor(0xB0, 0xD7, 0xC1));
  }
}

TEST_F(HistoryDrawing, TheFirstColumnIsDrawnAlsoWhenItIsPartlyScrolledAway) {
  ShowTab();
  Window().resize(Window().minimumSize());
  RunEvents();
  const ShownColumn first = Header().Shown().front();
  for (const int scrolled : {0, 10}) {
    Grid().horizontalScrollBar()->setValue(scrolled);
    RunEvents();
    ASSERT_EQ(Grid().horizontalScrollBar()->value(), scrolled);
    const QImage picture = Picture();
    const int top = Grid().rowViewportPosition(0) + 2;
    const QColor back = At(picture, {0, top});
    bool drawn = false;
    for (int x = 0; x < first.width - scrolled - 2; ++x) {
      for (int y = top; y < top + Grid().rowHeight(0) - 4; ++y) {
        drawn = drawn || At(picture, {x, y}) != back;
      }
    }
    EXPECT_TRUE(drawn) << scrolled;
  }
}

TEST_F(HistoryDrawing, AGroupRowStaysWhereItIsWhileTheColumnsScroll) {
  ShowTab();
  ExpandAll(true);
  ChooseGroup(10);
  Window().resize(Window().minimumSize());
  Header().resizeSection(HistoryColumnOfKey("Pen") - 1, 2000);
  RunEvents();
  const QRect line{0, Grid().rowViewportPosition(0), 150, Grid().rowHeight(0)};
  const QImage before = Picture().copy(line);
  Grid().horizontalScrollBar()->setValue(300);
  RunEvents();
  EXPECT_EQ(Grid().horizontalScrollBar()->value(), 300);
  EXPECT_EQ(Picture().copy(line), before);
}

TEST(HistoryRowPainterTest, ATotalOfTenDigitsLosesNoneInAColumnAsWideAsWeightsUsuallyAre) {
  const QWidget view;
  const HistoryRowPainter rows(view);
  const QRect area{0, 0, 200, 24};
  const int width =
      QFontMetrics(HistoryStyles::CellFont()).horizontalAdvance(u"0000000.0"_qs) + 2 * kSpacing;
  const auto drawn = [&](const std::string& total) {
    ShownRow row{.kind = kTotal, .cells = std::vector<std::string>(kHistoryColumnCount)};
    row.cells.at(kTargetColumn - 1) = total;
    QImage picture(area.size(), QImage::Format_RGB32);
    QPainter painter(&picture);
    rows.Paint(painter, row, 1, area, {{.column = kTargetColumn, .left = 0, .width = width}},
               false);
    return picture;
  };
  EXPECT_EQ(drawn("1234567890"), drawn("1234567890"));
  EXPECT_NE(drawn("7234567890"), drawn("1234567890"));
  EXPECT_NE(drawn("1234567897"), drawn("1234567890"));
}

TEST(HistoryRowPainterTest, TheMarkOfAGroupIsIndentedByTheLevelsAboveIt) {
  const QRect line(10, 100, 500, 20);
  EXPECT_EQ(HistoryRowPainter::MarkOf(1, line).left(), 10 + kHistoryMargin);
  EXPECT_EQ(HistoryRowPainter::MarkOf(3, line).left(), 10 + kHistoryMargin + 2 * 2 * kSpacing);
  EXPECT_TRUE(line.contains(HistoryRowPainter::MarkOf(3, line)));
}

TEST_F(HistoryDrawing, AnEmptyGridShowsItsWords) {
  ShowTab();
  ChooseGroup(4);
  const QImage picture = Picture();
  const QColor back = At(picture, {2, 2});
  bool drawn = false;
  for (int x = 0; x < picture.width() && !drawn; ++x) {
    for (int y = picture.height() / 2 - 8; y < picture.height() / 2 + 8; ++y) {
      drawn = drawn || picture.pixelColor(x, y) != back;
    }
  }
  EXPECT_TRUE(drawn);
}

}  // namespace
}  // namespace vrx::testing
