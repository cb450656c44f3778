#include <QRegularExpression>
#include <QString>
#include <QXmlStreamReader>
#include <map>
#include <set>
#include <string>

#include <gmock/gmock.h>

#include "chart/drawn_shapes.h"
#include "chart/picture.h"
#include "chart/sample_charts.h"

namespace vrx::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

struct Elements {
  std::map<std::string, int> counts;
  std::set<std::string> attributes;
  std::set<std::string> classes;
  std::vector<std::string> texts;
  std::string error;
};

Elements Read(const std::string& svg) {
  Elements elements;
  QXmlStreamReader xml(QString::fromStdString(svg));
  while (!xml.atEnd()) {
    if (xml.readNext() != QXmlStreamReader::StartElement) {
      continue;
    }
    const std::string name = xml.name().toString().toStdString();
    ++elements.counts[name];
    for (const QXmlStreamAttribute& attribute : xml.attributes()) {
      elements.attributes.insert(attribute.qualifiedName().toString().toStdString());
    }
    const QString names = xml.attributes().value(QLatin1String("class")).toString();
    for (const QString& each : names.split(' ', Qt::SkipEmptyParts)) {
      elements.classes.insert(each.toStdString());
    }
    if (name == "text") {
      elements.texts.push_back(xml.readElementText().toStdString());
    }
  }
  elements.error = xml.errorString().toStdString();
  return elements;
}

TEST(Svg, IsWellFormedAndHasTheTextsOfThePicture) {
  for (const SamplePicture& sample : SamplePictures()) {
    SCOPED_TRACE(sample.name);
    const Picture picture = sample.make(kPictureSize, Look{});
    for (const SvgUse use : {SvgUse::kFile, SvgUse::kInPage}) {
      const Elements elements = Read(SvgText(picture, Look{}, use));
      EXPECT_EQ(elements.error, "");
      EXPECT_EQ(elements.texts, TextsOf(picture));
    }
  }
}

TEST(Svg, HasNoScriptAndNoReference) {
  for (const SamplePicture& sample : SamplePictures()) {
    SCOPED_TRACE(sample.name);
    const std::string svg = SvgText(sample.make(kPictureSize, Look{}), Look{}, SvgUse::kFile);
    const Elements elements = Read(svg);
    for (const auto& [name, count] : elements.counts) {
      EXPECT_THAT(name, ::testing::AnyOf("svg", "title", "style", "rect", "path", "text"));
    }
    for (const std::string& attribute : elements.attributes) {
      EXPECT_THAT(attribute, Not(HasSubstr("href")));
      EXPECT_FALSE(attribute.starts_with("on")) << attribute;
    }
    EXPECT_THAT(svg, Not(HasSubstr("url(")));
    EXPECT_THAT(svg, Not(HasSubstr("@import")));
  }
}

TEST(Svg, BringsItsStyleAndGroundInAFileOnly) {
  const Picture picture = SamplePictures().front().make(kPictureSize, Look{});
  const Elements file = Read(SvgText(picture, Look{}, SvgUse::kFile));
  EXPECT_EQ(file.counts.at("style"), 1);
  EXPECT_EQ(file.counts.at("rect"), 1);
  const std::string in_page = SvgText(picture, Look{}, SvgUse::kInPage);
  EXPECT_EQ(Read(in_page).counts.count("style") + Read(in_page).counts.count("rect"), 0U);
  EXPECT_TRUE(in_page.starts_with("<svg ")) << in_page.substr(0, 50);
}

TEST(Svg, EveryColorCanBeReplacedByItsClass) {
  std::set<std::string> known = {"chart"};
  for (const Ink ink : kAllInks) {
    known.insert(std::string(ClassOf(ink)));
    known.insert(std::string(ClassOf(ink)) + "-line");
    EXPECT_THAT(SvgStyle(), HasSubstr('.' + std::string(ClassOf(ink)) +
                                      "{fill:" + ColorOf(ink, true).name().toStdString() + '}'));
    EXPECT_THAT(SvgStyle(), HasSubstr('.' + std::string(ClassOf(ink)) + "-line{stroke:" +
                                      ColorOf(ink, true).name().toStdString() + '}'));
  }
  // Dark colors are for screens; paper has those of the attributes.
  EXPECT_TRUE(SvgStyle().starts_with("@media screen and (prefers-color-scheme:dark){"));
  static const QRegularExpression kColored(QStringLiteral("<[^>]*(fill|stroke)=\"#[^>]*>"));
  for (const SamplePicture& sample : SamplePictures()) {
    const std::string svg = SvgText(sample.make(kPictureSize, Look{}), Look{}, SvgUse::kInPage);
    for (const std::string& name : Read(svg).classes) {
      EXPECT_TRUE(known.contains(name)) << name;
    }
    auto colored = kColored.globalMatch(QString::fromStdString(svg));
    while (colored.hasNext()) {
      const QString element = colored.next().captured();
      EXPECT_TRUE(element.contains(QLatin1String("class=\"chart-"))) << element.toStdString();
    }
  }
}

TEST(Svg, HasTheLightColorsWhateverTheLookOfTheScreen) {
  const SamplePicture sample = SamplePictures().front();
  const Look dark{.dark = true};
  EXPECT_EQ(SvgText(sample.make(kPictureSize, dark), dark, SvgUse::kFile),
            SvgText(sample.make(kPictureSize, Look{}), Look{}, SvgUse::kFile));
}

TEST(Svg, NamesAreEscaped) {
  WeightChart chart{.texts = {.title = "<script>alert(\"1\")</script> & more"},
                    .units = "KG",
                    .weights = {{"A<b>\x01&", 5}}};
  const std::string svg = SvgText(PictureOf(chart, kPictureSize, Look{}), Look{}, SvgUse::kInPage);
  EXPECT_THAT(svg, Not(HasSubstr("<script>")));
  const Elements elements = Read(svg);
  EXPECT_EQ(elements.error, "");
  ASSERT_FALSE(elements.texts.empty());
  EXPECT_EQ(elements.texts.front(), chart.texts.title);
}

TEST(Svg, SymbolsAreDrawnAroundTheirPlaces) {
  Picture picture{.size = {20, 20}};
  picture.shapes = {{Layer::kMark, DotsShape{{{10, 10}}, Symbol::kDot, 4, Ink::kFirst}},
                    {Layer::kMark, DotsShape{{{10, 10}}, Symbol::kSquare, 4, Ink::kFirst}},
                    {Layer::kMark, DotsShape{{{10, 10}}, Symbol::kDiamond, 4, Ink::kFirst}},
                    {Layer::kMark, DotsShape{{{10, 10}}, Symbol::kCross, 4, Ink::kFirst}}};
  const std::string svg = SvgText(picture, Look{}, SvgUse::kInPage);
  EXPECT_THAT(svg, HasSubstr("d=\"M8 10a2 2 0 0 1 4 0a2 2 0 0 1 -4 0z\""));
  EXPECT_THAT(svg, HasSubstr("d=\"M8 8h4v4h-4z\""));
  EXPECT_THAT(svg, HasSubstr("d=\"M10 8l2 2l-2 2l-2 -2z\""));
  EXPECT_THAT(svg, HasSubstr("d=\"M8 8l4 4m-4 0l4 -4\""));
}

}  // namespace
}  // namespace vrx::testing
