#include "chart/time_plot.h"

#include <QRectF>
#include <variant>
#include <vector>

#include <gmock/gmock.h>

#include "chart/drawn_shapes.h"
#include "chart/sheet.h"

namespace vrx::testing {
namespace {

TEST(TimePlotAxes, LabelsDoNotOverlapWhateverTheFirstHour) {
  for (const double days : {0.25, 0.5, 0.75, 1.0, 1.5, 3.0, 9.0, 400.0}) {
    for (double first = 20464; first < 20465.9; first += 0.06) {
      Sheet sheet({360, 240}, Look{}, {});
      const TimePlot plot(sheet, first, first + days, {.title = "Weight", .from = 0, .to = 5000});
      std::vector<QRectF> boxes;
      for (const Shape& shape : sheet.Finish(plot.Plot()).shapes) {
        if (const auto* text = std::get_if<TextShape>(&shape.what)) {
          for (const QRectF& box : boxes) {
            EXPECT_LT(box.intersected(text->box).height(), 3)
                << first << ' ' << days << ' ' << text->text.toStdString();
          }
          boxes.push_back(text->box);
        }
      }
      EXPECT_GT(boxes.size(), 4U);
    }
  }
}

TEST(TimePlotAxes, ValuesBeyondTheAxisAreInTheirLanes) {
  Sheet sheet({600, 300}, Look{}, {});
  const TimePlot plot(sheet, 20464, 20474,
                      {.title = "Weight", .from = -10, .to = 10, .above = true, .below = true});
  EXPECT_LT(plot.Height(10.1), plot.Inner().top());
  EXPECT_GT(plot.Height(-10.1), plot.Inner().bottom());
  EXPECT_EQ(plot.Height(10.1), plot.Height(9999));
  EXPECT_EQ(plot.Height(10), plot.Inner().top());
  EXPECT_EQ(plot.Height(0), plot.Inner().center().y());
}

}  // namespace
}  // namespace vrx::testing
