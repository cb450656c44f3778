#include <optional>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "base/text.h"
#include "feed/key_filters.h"
#include "feed/record_fields.h"

namespace vrx {
namespace {

// A description box and a name box, wired as a form wires them.
struct Boxes {
  AutoAbbreviation abbreviation = {};
  std::string name = {};
  std::string description = {};

  void TypeDescription(std::string_view keys) {
    for (const char key : keys) {
      const int passed = abbreviation.DescriptionKey(key, description.size());
      if (passed == kBackspaceKey && !description.empty()) {
        description.pop_back();
      } else if (passed != 0 && passed != kBackspaceKey) {
        description.push_back(static_cast<char>(passed));
      }
    }
  }
  void ChangeName(std::string text) {
    name = std::move(text);
    abbreviation.NameChanged();
  }
  void LeaveDescription(bool auto_abbreviate = true) {
    if (auto given = abbreviation.LeaveDescription(description, auto_abbreviate)) {
      ChangeName(*std::move(given));
    }
  }
};

std::string Abbreviated(std::string_view description) {
  Boxes boxes{.name = "ING005"};
  boxes.TypeDescription(description);
  boxes.LeaveDescription();
  return boxes.name;
}

TEST(AutoAbbreviation, UsesTheFirstSixCharacters) {
  EXPECT_EQ(Abbreviated("Dried Beet Pulp"), "dRIEd ");
  EXPECT_EQ(Abbreviated("Barley Silage"), "bARLEY");
}

TEST(AutoAbbreviation, AShortDescriptionGivesAShortName) { EXPECT_EQ(Abbreviated("Corn"), "CORN"); }

TEST(AutoAbbreviation, NeverLooksAtTheSeventhLetter) {
  EXPECT_EQ(Abbreviated("ABCDEFG"), "AbCdEF");
}

TEST(AutoAbbreviation, ASlashIsNotTypedIntoADescription) {
  EXPECT_EQ(Abbreviated("Hay/straw"), "HAYSTR");
}

TEST(AutoAbbreviation, LeavesTheNameWhileTheSettingIsOff) {
  Boxes boxes{.name = "ING005"};
  boxes.TypeDescription("Corn");
  boxes.LeaveDescription(false);
  EXPECT_EQ(boxes.name, "ING005");
}

TEST(AutoAbbreviation, KeepsATypedNameUntilTheDescriptionIsTypedInAgain) {
  Boxes boxes{.name = "ING005"};
  boxes.TypeDescription("Corn");
  boxes.ChangeName("MAIZE");
  boxes.LeaveDescription();
  EXPECT_EQ(boxes.name, "MAIZE");
  boxes.TypeDescription("s");
  boxes.LeaveDescription();
  EXPECT_EQ(boxes.name, "CORNS");
}

TEST(AutoAbbreviation, ANameChangedByTheProgramIsTreatedAsChanged) {
  Boxes boxes{.name = "ING005"};
  boxes.TypeDescription("Corn");
  boxes.LeaveDescription();
  EXPECT_EQ(boxes.abbreviation.LeaveDescription("Corn", true), std::nullopt);
}

TEST(AutoAbbreviation, ABackspaceIsTreatedAsTyping) {
  Boxes boxes{.name = "MAIZE", .description = "Corns"};
  boxes.TypeDescription("\b");
  boxes.LeaveDescription();
  EXPECT_EQ(boxes.name, "CORN");
}

TEST(AutoAbbreviation, ABackspaceInAFullBoxIsTreatedAsTyping) {
  AutoAbbreviation abbreviation;
  EXPECT_EQ(abbreviation.DescriptionKey(kBackspaceKey, 16), kBackspaceKey);
  EXPECT_EQ(abbreviation.LeaveDescription("Distillers grai", true), "dISTIL");
}

TEST(AutoAbbreviation, ADroppedKeyIsTreatedAsTyping) {
  AutoAbbreviation abbreviation;
  EXPECT_EQ(abbreviation.DescriptionKey('%', 4), 0);
  EXPECT_EQ(abbreviation.LeaveDescription("Corn", true), "CORN");
}

TEST(AutoAbbreviation, AKeyInAFullBoxResetsTheTyping) {
  AutoAbbreviation abbreviation;
  EXPECT_EQ(abbreviation.DescriptionKey('n', 15), 'n');
  EXPECT_EQ(abbreviation.DescriptionKey('s', 16), 0);
  EXPECT_EQ(abbreviation.LeaveDescription("Distillers grain", true), std::nullopt);
}

TEST(AutoAbbreviation, ADescriptionWithoutACharacterForANameLeavesIt) {
  for (const char* const description : {"", "      ", "      Corn"}) {
    AutoAbbreviation abbreviation;
    abbreviation.DescriptionKey(kBackspaceKey, 1);
    EXPECT_EQ(abbreviation.LeaveDescription(description, true), std::nullopt) << description;
  }
}

TEST(AutoAbbreviation, AnUntouchedDescriptionLeavesTheName) {
  EXPECT_EQ(AutoAbbreviation().LeaveDescription("Corn", true), std::nullopt);
}

// For any keys, the box contains a valid description and the name could have been typed.
TEST(AutoAbbreviation, GivesOnlyWhatTheNameBoxCouldHold) {
  std::mt19937 random(2260);
  std::uniform_int_distribution<int> key(8, 126);
  for (int round = 0; round < 2000; ++round) {
    Boxes boxes{.name = "OAT"};
    for (int count = 0; count < 24; ++count) {
      boxes.TypeDescription(std::string(1, static_cast<char>(key(random))));
    }
    ASSERT_LE(boxes.description.size(), kDescriptionLimit);
    boxes.LeaveDescription();
    ASSERT_LE(boxes.name.size(), 6U);
    ASSERT_NE(boxes.name.find_first_not_of(' '), std::string::npos);
    for (const char character : boxes.name) {
      ASSERT_EQ(NormalizeNameChar(std::string(1, character)), std::string(1, character));
    }
  }
}

}  // namespace
}  // namespace vrx
