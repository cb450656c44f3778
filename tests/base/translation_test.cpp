#include "base/translation.h"

#include <future>

#include <gtest/gtest.h>

#include "base/english_texts.h"

namespace vrx::testing {
namespace {

class Translation : public ::testing::Test {
 protected:
  ~Translation() override { SetTranslator({}); }
};

TEST_F(Translation, WithoutATranslatorATextIsItself) {
  EXPECT_EQ(Tr("Open a file"), "Open a file");
  EXPECT_EQ(Tr(TrMark("Open a file")), "Open a file");
}

TEST_F(Translation, ReplacesEachPlaceByItsValueAlsoTwiceAndInAnotherOrder) {
  EXPECT_EQ(Tr("%1 of %2", {"3", "17"}), "3 of 17");
  SetTranslator([](std::string_view) { return std::string("von %2 die %1., %1!"); });
  EXPECT_EQ(Tr("%1 of %2", {"3", "17"}), "von 17 die 3., 3!");
}

TEST_F(Translation, AValueIsNoPattern) { EXPECT_EQ(Tr("%1, %2", {"%2", "%1"}), "%2, %1"); }

TEST_F(Translation, APercentSignWithoutAValueStays) {
  EXPECT_EQ(Tr("100 % of %1 and %2%", {"a"}), "100 % of a and %2%");
  EXPECT_EQ(Tr("%0 %", {"a"}), "%0 %");
}

TEST_F(Translation, IsNotUsedForTextsOfFiles) {
  SetTranslator([](std::string_view) { return std::string("%1 von %2"); });
  {
    const EnglishTexts english;
    EXPECT_EQ(Tr("%1 of %2", {"3", "17"}), "3 of 17");
    const EnglishTexts inner;
    EXPECT_EQ(Tr("Open a file"), "Open a file");
    // Another thread writes to the window meanwhile.
    EXPECT_EQ(std::async(std::launch::async, [] { return Tr("Open a file"); }).get(), "%1 von %2");
  }
  EXPECT_EQ(Tr("%1 of %2", {"3", "17"}), "3 von 17");
  EXPECT_EQ(FilledIn("%1 of %2", {"3", "17"}), "3 of 17");
}

}  // namespace
}  // namespace vrx::testing
