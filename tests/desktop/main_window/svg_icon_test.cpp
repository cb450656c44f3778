#include <QApplication>
#include <QImage>
#include <QPalette>
#include <QPixmap>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "desktop/main_window/menus_and_toolbar.h"
#include "widgets/drawing.h"

namespace vrx::testing {
namespace {

QImage Draw(std::string_view name, int size, QIcon::Mode mode = QIcon::Normal) {
  return SvgIcon(name).pixmap(QSize(size, size), 1.0, mode).toImage();
}

// The darkest and fully covering colours are those of the lines.
bool Holds(const QImage& image, const QColor& color) {
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      const QColor pixel = image.pixelColor(x, y);
      if (pixel.alpha() == 255 && pixel.rgb() == color.rgb()) {
        return true;
      }
    }
  }
  return false;
}

class SvgIconTest : public ::testing::Test {
 protected:
  ~SvgIconTest() override { QApplication::setPalette(before_); }

  QPalette before_ = QApplication::palette();
};

TEST_F(SvgIconTest, EveryButtonOfTheToolbarHasADrawingOfItsOwn) {
  std::set<QByteArray> drawn;
  for (const ToolButton& button : ToolButtons()) {
    const QImage image = Draw(button.icon, 24);
    ASSERT_EQ(image.size(), QSize(24, 24)) << button.icon;
    drawn.insert(QByteArray(reinterpret_cast<const char*>(image.constBits()),
                            static_cast<qsizetype>(image.sizeInBytes())));
  }
  EXPECT_EQ(drawn.size(), ToolButtons().size());
}

TEST_F(SvgIconTest, TakesTheColorsOfThePaletteAsItIsNow) {
  const QIcon icon = SvgIcon("save");
  for (const QColor& text : {QColor(Qt::black), QColor(Qt::white), QColor(250, 240, 200)}) {
    QPalette palette = before_;
    palette.setColor(QPalette::ButtonText, text);
    palette.setColor(QPalette::Button, text.lightness() > 128 ? Qt::black : Qt::white);
    QApplication::setPalette(palette);
    EXPECT_TRUE(Holds(icon.pixmap(QSize(24, 24), 1.0).toImage(), text));
  }
}

TEST_F(SvgIconTest, IsInTheColorOfDisabledTextWhenItsButtonIsOff) {
  QPalette palette = before_;
  palette.setColor(QPalette::Disabled, QPalette::ButtonText, QColor(140, 140, 140));
  QApplication::setPalette(palette);
  const QImage image = Draw("save", 24, QIcon::Disabled);
  EXPECT_TRUE(Holds(image, QColor(140, 140, 140)));
  EXPECT_FALSE(Holds(image, palette.color(QPalette::Highlight)));
}

// A straight line of 2 pixels covers whole pixels: no grey beside it.
TEST_F(SvgIconTest, IsSharpAtEveryScale) {
  QPalette palette = before_;
  palette.setColor(QPalette::ButtonText, Qt::black);
  QApplication::setPalette(palette);
  for (const int size : {24, 36, 48}) {
    const QImage image = Draw("calendar", size);
    const int line = size / 12;
    const int middle = size * 3 / 4;  // a row that crosses the left side of the sheet alone
    for (int x = 0; x < size / 4; ++x) {
      const bool on_line = x >= line && x < 2 * line;
      EXPECT_EQ(qAlpha(image.pixel(x, middle)), on_line ? 255 : 0) << size << " at " << x;
    }
  }
}

TEST_F(SvgIconTest, IsNoIconForADrawingThatIsMissing) { EXPECT_TRUE(SvgIcon("nothing").isNull()); }

}  // namespace
}  // namespace vrx::testing
