#include "feed/record_fields.h"

#include <array>
#include <random>
#include <stdexcept>

#include <gtest/gtest.h>

#include "base/text.h"
#include "feed/key_filters.h"

namespace vrx {
namespace {

FieldEntry Type(RecordKind kind, std::string_view field, std::string_view text) {
  return EnterText(FieldOf(kind, field), text);
}

std::string Refusal(RecordKind kind, std::string_view field, std::string_view text) {
  try {
    Type(kind, field, text);
  } catch (const FieldRefusal& refusal) {
    return refusal.what();
  }
  return "not refused";
}

constexpr std::array kAllKinds{RecordKind::kIngredient, RecordKind::kRecipe, RecordKind::kPen};

TEST(NameField, MapsTypedLettersAsTheDisplayShowsThem) {
  for (const RecordKind kind : kAllKinds) {
    EXPECT_EQ(Type(kind, "Name", "barley").text, "bARLEY");
    EXPECT_EQ(Type(kind, "Name", "BEd/1+").text, "bEd/1+");
  }
}

TEST(NameField, RefusesACharacterAndNamesIt) {
  EXPECT_EQ(Refusal(RecordKind::kPen, "Name", "A%"),
            "The 'Name' field does not take the character '%'.");
  EXPECT_EQ(Refusal(RecordKind::kPen, "Name", "O'NEIL"),
            "The 'Name' field does not take the character '''.");
  EXPECT_EQ(Refusal(RecordKind::kPen, "Name", "L\xC3\xBC"),
            "The 'Name' field does not take the character '\xC3\xBC'.");
  EXPECT_EQ(Refusal(RecordKind::kPen, "Name", "A\tB"),
            "The 'Name' field does not take the character with the code 9.");
}

TEST(NameField, RefusesTheSeventhCharacter) {
  EXPECT_EQ(Type(RecordKind::kRecipe, "Name", "FINISH").text, "FINISH");
  EXPECT_EQ(Refusal(RecordKind::kRecipe, "Name", "FINISHE"),
            "The 'Name' field holds at most 6 characters: 'FINISHE' is too long.");
}

TEST(NameField, IsMandatory) {
  for (const RecordKind kind : kAllKinds) {
    EXPECT_EQ(Refusal(kind, "Name", ""), "The 'Name' field is mandatory.");
    EXPECT_EQ(Refusal(kind, "Name", "   "), "The 'Name' field is mandatory.");
  }
}

TEST(NameField, LosesTrailingBlanksOnly) {
  EXPECT_EQ(Type(RecordKind::kIngredient, "Name", " HAY  ").text, " HAY");
}

TEST(DescriptionField, KeepsCaseAndLosesTrailingBlanks) {
  for (const RecordKind kind : kAllKinds) {
    EXPECT_EQ(Type(kind, "Description", "Barley Silage + ").text, "Barley Silage +");
  }
}

TEST(DescriptionField, HoldsSixteenCharacters) {
  EXPECT_EQ(Type(RecordKind::kPen, "Description", "Distillers grain").text, "Distillers grain");
  EXPECT_EQ(Refusal(RecordKind::kPen, "Description", "Distillers grains"),
            "The 'Description' field holds at most 16 characters: 'Distillers grains' is too "
            "long.");
}

TEST(DescriptionField, RefusesASlash) {
  EXPECT_EQ(Refusal(RecordKind::kIngredient, "Description", "Hay/straw"),
            "The 'Description' field does not take the character '/'.");
}

TEST(DryMatterField, NormalizesAndNotes) {
  EXPECT_EQ(Type(RecordKind::kIngredient, "DryMatter%", "88").text, "88");
  EXPECT_EQ(Type(RecordKind::kIngredient, "DryMatter%", "88").note, "");
  const FieldEntry high = Type(RecordKind::kIngredient, "DryMatter%", "150");
  EXPECT_EQ(high.text, "100");
  EXPECT_EQ(high.note, "DryMatter%: 150 is out of range, 100 is stored.");
  const FieldEntry none = Type(RecordKind::kIngredient, "DryMatter%", "");
  EXPECT_EQ(none.text, "0");
  EXPECT_EQ(none.note, "DryMatter%: nothing was typed, 0 is stored.");
  EXPECT_EQ(Type(RecordKind::kIngredient, "DryMatter%", "007").text, "7");
  EXPECT_EQ(Type(RecordKind::kIngredient, "DryMatter%", "007").note, "");
}

TEST(DryMatterField, TakesThreeDigitsAndNoSign) {
  EXPECT_EQ(Refusal(RecordKind::kIngredient, "DryMatter%", "0100"),
            "The 'DryMatter%' field holds at most 3 characters: '0100' is too long.");
  EXPECT_EQ(Refusal(RecordKind::kIngredient, "DryMatter%", "-5"),
            "The 'DryMatter%' field does not take the character '-'.");
  EXPECT_EQ(Refusal(RecordKind::kIngredient, "DryMatter%", "8.5"),
            "The 'DryMatter%' field does not take the character '.'.");
}

TEST(HeadCountField, FallsBackToAHundredAboveAThousand) {
  EXPECT_EQ(Type(RecordKind::kRecipe, "HeadCount", "1000").text, "1000");
  const FieldEntry high = Type(RecordKind::kRecipe, "HeadCount", "1001");
  EXPECT_EQ(high.text, "100");
  EXPECT_EQ(high.note, "HeadCount: 1001 is out of range, 100 is stored.");
  EXPECT_EQ(Type(RecordKind::kRecipe, "HeadCount", "0").text, "0");
  EXPECT_EQ(Type(RecordKind::kRecipe, "HeadCount", "").text, "0");
}

TEST(RationTargetField, KeepsTheTypedText) {
  EXPECT_EQ(Type(RecordKind::kRecipe, "RationTarget", "005000").text, "005000");
  EXPECT_EQ(Type(RecordKind::kRecipe, "RationTarget", "").text, "");
  EXPECT_EQ(Refusal(RecordKind::kRecipe, "RationTarget", "1000000"),
            "The 'RationTarget' field holds at most 6 characters: '1000000' is too long.");
}

TEST(FeedAmountField, LosesLeadingZeros) {
  EXPECT_EQ(Type(RecordKind::kPen, "FeedAmount", "00120").text, "120");
  EXPECT_EQ(Type(RecordKind::kPen, "FeedAmount", "00120").note, "");
  EXPECT_EQ(Type(RecordKind::kPen, "FeedAmount", "000").text, "0");
  EXPECT_EQ(Type(RecordKind::kPen, "FeedAmount", "").text, "0");
}

TEST(FieldOf, KnowsNoFieldThatIsNotTyped) {
  EXPECT_THROW(FieldOf(RecordKind::kPen, "HeadCount"), std::out_of_range);
  EXPECT_THROW(FieldOf(RecordKind::kIngredient, "ID"), std::out_of_range);
}

// For any typed bytes, a field contains only accepted characters, within its limit.
TEST(EnterText, NeverKeepsDroppedCharacters) {
  std::mt19937 random(2260);
  std::uniform_int_distribution<int> byte(1, 255);
  std::uniform_int_distribution<int> ascii(32, 122);
  std::uniform_int_distribution<std::size_t> length(0, 18);
  int taken = 0;
  for (int round = 0; round < 20000; ++round) {
    std::string typed(length(random), ' ');
    for (char& character : typed) {
      character = static_cast<char>(round % 2 == 0 ? byte(random) : ascii(random));
    }
    try {
      const FieldEntry entry = Type(RecordKind::kPen, "Description", typed);
      ++taken;
      ASSERT_LE(entry.text.size(), 16U);
      for (const char character : entry.text) {
        ASSERT_EQ(FilterDescriptionKey(character), character);
      }
    } catch (const FieldRefusal& refusal) {
      ASSERT_NE(std::string(refusal.what()), "");
    }
  }
  EXPECT_GT(taken, 0);
}

}  // namespace
}  // namespace vrx
