// What holds for every picture, whatever it shows.

#include <QRectF>
#include <QSizeF>
#include <string>
#include <variant>
#include <vector>

#include <gmock/gmock.h>

#include "chart/drawn_shapes.h"
#include "chart/picture.h"
#include "chart/sample_charts.h"

namespace vrx::testing {
namespace {

const std::vector<QSizeF>& Sizes() {
  static const std::vector<QSizeF> kSizes = {{600, 300}, {642, 400}, {1400, 900},
                                             {360, 240}, {240, 180}, {90, 40}};
  return kSizes;
}

// Calls the function with every sample in every size.
template <typename Function>
void ForEachPicture(Function function) {
  for (const SamplePicture& sample : SamplePictures()) {
    for (const QSizeF& size : Sizes()) {
      SCOPED_TRACE(sample.name + ' ' + std::to_string(static_cast<int>(size.width())));
      function(sample.make(size, Look{}), sample.name);
    }
  }
}

bool IsInside(const QRectF& inner, const QRectF& outer) {
  return outer.adjusted(-1e-6, -1e-6, 1e-6, 1e-6).contains(inner);
}

std::string Describe(const QRectF& rect) {
  return std::to_string(rect.left()) + ' ' + std::to_string(rect.top()) + ' ' +
         std::to_string(rect.width()) + 'x' + std::to_string(rect.height());
}

TEST(PictureRules, MarksLieWithinThePlot) {
  ForEachPicture([](const Picture& picture, const std::string&) {
    for (const Shape& shape : picture.shapes) {
      if (shape.layer == Layer::kMark) {
        // A seam around a line may reach over the edge.
        const double seam = std::holds_alternative<PathShape>(shape.what) ? 2 : 0;
        EXPECT_TRUE(IsInside(ExtentOf(shape), picture.plot.adjusted(-seam, -seam, seam, seam)))
            << Describe(ExtentOf(shape)) << " in " << Describe(picture.plot);
      }
    }
  });
}

TEST(PictureRules, EverythingLiesWithinThePicture) {
  ForEachPicture([](const Picture& picture, const std::string&) {
    const QRectF all(QPointF(0, 0), picture.size);
    EXPECT_TRUE(picture.plot.isEmpty() || IsInside(picture.plot, all));
    for (const Shape& shape : picture.shapes) {
      EXPECT_TRUE(IsInside(ExtentOf(shape), all))
          << Describe(ExtentOf(shape)) << " in " << Describe(all);
    }
  });
}

TEST(PictureRules, TextsDoNotOverlap) {
  ForEachPicture([](const Picture& picture, const std::string&) {
    std::vector<const TextShape*> texts;
    for (const Shape& shape : picture.shapes) {
      if (const auto* text = std::get_if<TextShape>(&shape.what)) {
        texts.push_back(text);
      }
    }
    for (std::size_t i = 0; i < texts.size(); ++i) {
      for (std::size_t j = 0; j < i; ++j) {
        // The boxes have room for accents and descenders.
        const QRectF common = texts[i]->box.intersected(texts[j]->box);
        EXPECT_TRUE(common.width() < 0.5 || common.height() < 3)
            << texts[i]->text.toStdString() << " and " << texts[j]->text.toStdString();
      }
    }
  });
}

TEST(PictureRules, HitsLieWithinThePlotAndCanBeFound) {
  ForEachPicture([](const Picture& picture, const std::string&) {
    for (const Hit& hit : picture.hits) {
      ASSERT_TRUE(IsInside(hit.area, picture.plot.adjusted(-1, -1, 1, 1))) << Describe(hit.area);
      ASSERT_GE(hit.count, 1U);
    }
    for (std::size_t i = 0; i < picture.hits.size(); i += 97) {
      const auto found = HitAt(picture, picture.hits[i].area.center());
      ASSERT_TRUE(found.has_value());
      EXPECT_TRUE(found->area.contains(picture.hits[i].area.center()));
    }
  });
}

TEST(PictureRules, WithoutEntriesASentenceIsInTheMiddle) {
  int empty = 0;
  ForEachPicture([&](const Picture& picture, const std::string& name) {
    if (!name.ends_with("-empty")) {
      EXPECT_FALSE(picture.plot.isEmpty());
      EXPECT_FALSE(picture.hits.empty());
      return;
    }
    ++empty;
    EXPECT_TRUE(picture.plot.isEmpty());
    EXPECT_TRUE(picture.hits.empty());
    ASSERT_EQ(picture.shapes.size(), 1U);
    const auto& text = std::get<TextShape>(picture.shapes.front().what);
    EXPECT_TRUE(text.text.startsWith("No "));
    EXPECT_NEAR(text.box.center().x(), picture.size.width() / 2, 1);
  });
  EXPECT_EQ(empty, 6 * static_cast<int>(Sizes().size()));
}

TEST(PictureRules, PicturesAreAsWideAsAskedForDownToASmallestWidth) {
  for (const SamplePicture& sample : SamplePictures()) {
    EXPECT_EQ(sample.make({600, 300}, Look{}).size.width(), 600) << sample.name;
    EXPECT_EQ(sample.make({90, 40}, Look{}).size.width(), 240) << sample.name;
  }
}

}  // namespace
}  // namespace vrx::testing
