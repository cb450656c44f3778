// How the text of the manual may be split at the end of a page.

#include <QBuffer>
#include <QPdfWriter>
#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "base/error.h"
#include "make_manual/manual_style.h"
#include "make_manual/manual_text.h"
#include "make_manual/pages.h"
#include "make_manual/typeset.h"

namespace vrx::testing {
namespace {

using manual::Box;
using manual::Decoration;
using ::testing::ElementsAre;

const std::string kLongText = std::string(60, 'x') + " " + std::string(60, 'y') + " ";

constexpr int kBoxesBefore = 2;  // the heading of the contents, the chapter's title

// The boxes below the table of contents and the chapter's title.
class ManualBoxes : public ::testing::Test {
 protected:
  ManualBoxes() : writer_(&buffer_) {
    buffer_.open(QIODevice::WriteOnly);
    writer_.setResolution(manual::kDotsPerInch);
  }

  std::vector<Box> BoxesOf(const std::string& text) {
    std::vector<manual::Chapter> chapters;
    chapters.push_back(manual::ParseChapter("01-one.md", "# One\n\n" + text + "\n"));
    QImage picture(480, 240, QImage::Format_RGB32);
    picture.fill(Qt::gray);
    document_ = manual::Typeset(chapters, {{QStringLiteral("screen:one"), picture}}, {}, writer_);
    std::vector<Box> boxes = manual::BoxesOf(*document_);
    const auto title =
        std::find_if(boxes.begin(), boxes.end(), [](const Box& box) { return box.starts_page; });
    EXPECT_NE(title, boxes.end());
    EXPECT_EQ(title + 1 - boxes.begin(), kBoxesBefore);
    boxes.erase(boxes.begin(), title + 1);
    return boxes;
  }

  std::vector<bool> KeptIn(const std::string& text) {
    std::vector<bool> kept;
    for (const Box& box : BoxesOf(text)) {
      kept.push_back(box.keeps_next);
    }
    return kept;
  }

  QBuffer buffer_;
  QPdfWriter writer_;
  std::unique_ptr<QTextDocument> document_;
};

TEST_F(ManualBoxes, HoldAWholeParagraph) {
  const auto boxes = BoxesOf(kLongText + kLongText + "\n\nText");
  ASSERT_EQ(boxes.size(), 2U);
  EXPECT_NEAR(boxes[0].bottom - boxes[0].top, 4 * manual::Points(manual::kBodyText.leading), 1);
  EXPECT_FALSE(boxes[0].keeps_next);
}

TEST_F(ManualBoxes, KeepAHeadingWithWhatFollows) {
  const auto boxes = BoxesOf("Text\n\n## Section\n\nText");
  ASSERT_EQ(boxes.size(), 3U);
  EXPECT_FALSE(boxes[0].keeps_next);
  EXPECT_TRUE(boxes[1].keeps_next);
  EXPECT_EQ(boxes[1].heading, QStringLiteral("1.1  Section"));
}

TEST_F(ManualBoxes, KeepAnAnnouncementWithTwoItemsOfItsList) {
  EXPECT_THAT(KeptIn("Text:\n\n- a\n- b\n- c"), ElementsAre(true, true, false, false));
  EXPECT_THAT(KeptIn("Text:\n\n1. a\n2. b\n3. c"), ElementsAre(true, true, false, false));
}

TEST_F(ManualBoxes, KeepAllLinesOfCodeWithTheirAnnouncement) {
  const auto boxes = BoxesOf("Text:\n\n    a\n    b\n    c\n\nText");
  ASSERT_EQ(boxes.size(), 5U);
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    const bool code = i > 0 && i < 4;
    EXPECT_EQ(boxes[i].keeps_next, i < 3) << i;
    EXPECT_EQ(boxes[i].decoration, code ? Decoration::kShaded : Decoration::kNone) << i;
  }
  EXPECT_NEAR(boxes[1].bottom, boxes[2].top, 1);  // the shade has no gap
}

TEST_F(ManualBoxes, RefuseALineOfCodeThatIsWiderThanThePage) {
  EXPECT_NO_THROW(BoxesOf("Text:\n\n    " + std::string(90, 'x')));
  EXPECT_THROW(BoxesOf("Text:\n\n    " + std::string(150, 'x')), Error);
}

TEST_F(ManualBoxes, KeepTwoRowsAtEitherEndOfATableAndRepeatItsHead) {
  const auto boxes = BoxesOf("Text:\n\n| a | b |\n|---|---|\n| 1 | " + kLongText +
                             " |\n| 2 | |\n| 3 | x |\n| 4 | x |");
  ASSERT_EQ(boxes.size(), 6U);
  EXPECT_THAT((std::vector<bool>{boxes[0].keeps_next, boxes[1].keeps_next, boxes[2].keeps_next,
                                 boxes[3].keeps_next, boxes[4].keeps_next, boxes[5].keeps_next}),
              ElementsAre(true, true, true, false, true, false));
  EXPECT_EQ(boxes[1].decoration, Decoration::kShaded);
  EXPECT_EQ(boxes[2].decoration, Decoration::kRuled);
  EXPECT_FALSE(boxes[2].head);
  ASSERT_TRUE(boxes[3].head);
  EXPECT_EQ(*boxes[3].head, std::size_t{kBoxesBefore} + 1);
  for (std::size_t i = 2; i < boxes.size(); ++i) {
    EXPECT_NEAR(boxes[i - 1].bottom, boxes[i].top, 1) << i;
  }
  const auto height = [&](std::size_t i) { return boxes[i].bottom - boxes[i].top; };
  EXPECT_GT(height(2), height(3) + manual::Points(10));  // the text of two lines
}

TEST_F(ManualBoxes, KeepAFigureWithItsCaption) {
  const auto boxes = BoxesOf("Text\n\n![Caption](screen:one)\n\nText");
  ASSERT_EQ(boxes.size(), 4U);
  EXPECT_THAT((std::vector<bool>{boxes[0].keeps_next, boxes[1].keeps_next, boxes[2].keeps_next}),
              ElementsAre(false, true, false));
  const double height = boxes[1].bottom - boxes[1].top;
  EXPECT_NEAR(height, manual::kTextWidth / 4, manual::Points(5));
}

TEST_F(ManualBoxes, FollowEachOther) {
  const auto boxes = BoxesOf(
      "Text\n\n- a\n- b\n\n## S\n\n![C](screen:one)\n\nText\n\n| a |\n|---|\n| b |\n\n    c\n");
  for (std::size_t i = 1; i < boxes.size(); ++i) {
    EXPECT_GE(boxes[i].top, boxes[i - 1].bottom - 1) << i;
    EXPECT_LT(boxes[i].top, boxes[i - 1].bottom + manual::Points(20)) << i;
  }
}

}  // namespace
}  // namespace vrx::testing
