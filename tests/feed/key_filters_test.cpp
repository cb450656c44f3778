#include "feed/key_filters.h"

#include <random>

#include <gtest/gtest.h>

#include "base/text.h"

namespace vrx {
namespace {

constexpr int kBackspace = 8;

// The results of a filter for the keys 0 to 255, without dropped keys.
template <typename Filter>
std::string LetThrough(Filter filter) {
  std::string passed;
  for (int key = 0; key < 256; ++key) {
    const int out = filter(key);
    if (out != 0) {
      passed += static_cast<char>(out);
    }
  }
  return passed;
}

TEST(FilterNameKey, TurnsBAndDLowerAndAllOtherLettersUpper) {
  EXPECT_EQ(FilterNameKey('b'), 'b');
  EXPECT_EQ(FilterNameKey('B'), 'b');
  EXPECT_EQ(FilterNameKey('d'), 'd');
  EXPECT_EQ(FilterNameKey('D'), 'd');
  EXPECT_EQ(FilterNameKey('a'), 'A');
  EXPECT_EQ(FilterNameKey('z'), 'Z');
}

TEST(FilterNameKey, DropsAPercentSign) { EXPECT_EQ(FilterNameKey('%'), 0); }

TEST(FilterNameKey, LetsThroughLettersDigitsSlashSignsAndBlankAlone) {
  EXPECT_EQ(LetThrough(FilterNameKey),
            " +-/0123456789AbCdEFGHIJKLMNOPQRSTUVWXYZAbCdEFGHIJKLMNOPQRSTUVWXYZ");
}

TEST(FilterDescriptionKey, KeepsTheCaseAndHasNoSlash) {
  EXPECT_EQ(LetThrough(FilterDescriptionKey),
            " +-0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz");
}

TEST(FilterDigitKey, LetsThroughDigitsAlone) {
  EXPECT_EQ(LetThrough(FilterDigitKey), "0123456789");
  EXPECT_EQ(LetThrough(FilterDigitKey2), "0123456789");
}

TEST(FilterDecimalKey, LetsThroughDigitsAndThePoint) {
  EXPECT_EQ(LetThrough(FilterDecimalKey), ".0123456789");
}

TEST(KeyFilters, DropBackspaceAndKeysBeyondAByte) {
  for (const auto filter :
       {FilterNameKey, FilterDescriptionKey, FilterDigitKey, FilterDigitKey2, FilterDecimalKey}) {
    EXPECT_EQ(filter(kBackspace), 0);
    EXPECT_EQ(filter(-1), 0);
    EXPECT_EQ(filter(0x100 + '5'), 0);
  }
}

TEST(NormalizeNameChar, IsTheTextFormOfTheNameFilter) {
  EXPECT_EQ(NormalizeNameChar(""), "");
  for (int key = 1; key < 256; ++key) {
    const int out = FilterNameKey(key);
    const std::string expected = out == 0 ? "" : std::string(1, static_cast<char>(out));
    EXPECT_EQ(NormalizeNameChar(std::string(1, static_cast<char>(key))), expected) << key;
  }
}

TEST(AbbreviateDescription, MakesAName) {
  EXPECT_EQ(AbbreviateDescription("Barley Silage"), "bARLEY");
  EXPECT_EQ(AbbreviateDescription("Corn"), "CORN");
  EXPECT_EQ(AbbreviateDescription(""), "");
}

TEST(AbbreviateDescription, DroppedCharactersCountTowardsTheSix) {
  EXPECT_EQ(AbbreviateDescription("%%%ABC"), "AbC");
  EXPECT_EQ(AbbreviateDescription("%%%ABCDEF"), "AbC");
}

TEST(AbbreviateDescription, CountsACharacterOfSeveralBytesAsOne) {
  EXPECT_EQ(AbbreviateDescription("H\u00E4cksel"), "HCKSE");
}

TEST(AbbreviateDescription, IsTheNameRuleOfTheFirstSixCharacters) {
  std::mt19937 random(20260105);
  std::uniform_int_distribution<int> ascii(0, 127);
  for (int round = 0; round < 2000; ++round) {
    std::string description(static_cast<std::size_t>(round % 15), ' ');
    for (char& c : description) {
      c = static_cast<char>(ascii(random));
    }
    std::string expected;
    for (const char& c : description.substr(0, 6)) {
      expected += NormalizeNameChar({&c, 1});
    }
    EXPECT_EQ(AbbreviateDescription(description), expected);
  }
}

TEST(ValidPercentText, AcceptsWholePercentagesTwoDecimalsAndTheEmptyText) {
  for (const char* const text : {"100", "33.33", "", "0", "99.9", "100.00", "5.", ".5", " 50 "}) {
    EXPECT_TRUE(ValidPercentText(text)) << text;
  }
}

TEST(ValidPercentText, RefusesMoreThan100) {
  EXPECT_FALSE(ValidPercentText("101"));
  EXPECT_FALSE(ValidPercentText("100.5"));
  EXPECT_FALSE(ValidPercentText("100.01"));
  EXPECT_FALSE(ValidPercentText("99999"));
}

TEST(ValidPercentText, RefusesThreeDecimals) {
  EXPECT_FALSE(ValidPercentText("33.333"));
  EXPECT_FALSE(ValidPercentText("33.330"));
}

TEST(ValidPercentText, RefusesANegativeWholeNumber) { EXPECT_FALSE(ValidPercentText("-1")); }

TEST(ValidPercentText, RefusesTextThatIsNotANumber) {
  for (const char* const text : {".", "abc", "1.2.", "a.b", " ", "5%"}) {
    EXPECT_FALSE(ValidPercentText(text)) << text;
  }
}

}  // namespace
}  // namespace vrx
