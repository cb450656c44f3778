#include <filesystem>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Transaction.h>
#include <gmock/gmock.h>

#include "ctl/ctl_fixture.h"
#include "support/database_files.h"

namespace vrx::testing {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;
using Args = std::vector<std::string>;

// Every case leaves the file as it is, byte for byte.
class RecordRefusals : public CtlTest {
 protected:
  struct Specified {
    int code;
    std::string err;
  };

  Specified Refused(Args args) {
    args.insert(args.begin() + 2, database);
    const std::string before = ReadAll(database);
    const int code = Run(args);
    EXPECT_TRUE(ReadAll(database) == before) << err;
    EXPECT_EQ(out, "");
    return {code, err};
  }

  void ExpectRefusal(const Args& args, const std::string& message) {
    const Specified result = Refused(args);
    EXPECT_EQ(result.code, 1) << message;
    EXPECT_EQ(result.err, message + "\n");
  }

  void ExpectWrongUsage(const Args& args, const std::string& part) {
    const Specified result = Refused(args);
    EXPECT_EQ(result.code, 2) << part;
    EXPECT_THAT(result.err, HasSubstr(part));
  }

  std::string database = NewRecipeDatabase();
};

TEST_F(RecordRefusals, ALetterThatTheDisplayDoesNotHave) {
  for (const std::string kind : {"ingredient", "recipe", "pen"}) {
    ExpectRefusal({"set", kind, "5", "--name", "M\xC3\xA4is"},
                  "Field Error: The 'Name' field does not take the character '\xC3\xA4'.");
    ExpectRefusal({"set", kind, "5", "--description", "Heu \xE2\x82\xAC"},
                  "Field Error: The 'Description' field does not take the character "
                  "'\xE2\x82\xAC'.");
  }
}

TEST_F(RecordRefusals, ATextThatIsTooLong) {
  ExpectRefusal({"set", "pen", "5", "--name", "SEVENTY"},
                "Field Error: The 'Name' field holds at most 6 characters: 'SEVENTY' is too long.");
  ExpectRefusal({"set", "recipe", "5", "--description", "Seventeen letters"},
                "Field Error: The 'Description' field holds at most 16 characters: 'Seventeen "
                "letters' is too long.");
  ExpectRefusal({"set", "pen", "5", "--feed", "1234567"},
                "Field Error: The 'FeedAmount' field holds at most 6 characters: '1234567' is too "
                "long.");
}

TEST_F(RecordRefusals, ANumberWithALetterAfterIt) {
  ExpectRefusal({"set", "ingredient", "5", "--dry-matter", "12x"},
                "Field Error: The 'DryMatter%' field does not take the character 'x'.");
  ExpectRefusal({"set", "pen", "5", "--feed", "12x"},
                "Field Error: The 'FeedAmount' field does not take the character 'x'.");
  ExpectWrongUsage({"set", "pen", "12x", "--feed", "1"}, "12x");
  ExpectWrongUsage({"reset", "pen", "12x"}, "12x");
}

TEST_F(RecordRefusals, ARecordThatIsMissing) {
  ExpectWrongUsage({"set", "ingredient", "101", "--name", "CORN"},
                   "'101' is not a whole number from 1 to 100");
  ExpectWrongUsage({"set", "recipe", "0", "--name", "CORN"}, "'0' is not a whole number");
  ExpectWrongUsage({"set", "pen", "401", "--name", "CORN"},
                   "'401' is not a whole number from 1 to 400");
  ExpectWrongUsage({"reset", "ingredient", "101", "--yes"}, "'101' is not a whole number");
  ExpectWrongUsage({"reset", "recipe", "-1", "--yes"}, "'-1' is not a whole number");
  ExpectWrongUsage({"reset", "pen", "4294967297", "--yes"}, "'4294967297' is not a whole number");
}

TEST_F(RecordRefusals, ANumberOfAnotherBase) {
  ExpectWrongUsage({"set", "pen", "0x10", "--name", "A16"}, "'0x10' is not a whole number");
  ExpectWrongUsage({"set", "pen", "1e1", "--name", "A10"}, "'1e1' is not a whole number");
}

TEST_F(RecordRefusals, AHeadCountInWords) {
  AddLine(database, {.recipe_id = "5", .target = "100"});
  ExpectRefusal({"set", "recipe", "5", "--type", "H", "--head-count", "many"},
                "Field Error: The 'HeadCount' field does not take the character 'm'.");
}

TEST_F(RecordRefusals, AnAdjustmentThatTheListDoesNotHave) {
  AddLine(database, {.recipe_id = "5", .target = "100"});
  for (const std::string percent : {"21", "-21", "5.5", "0x10", "1e1", "12x", "", "-", " 5"}) {
    ExpectWrongUsage({"set", "recipe", "5", "--type", "H", "--adjust", percent},
                     "'" + percent + "' is not a whole number from -20 to 20");
  }
}

TEST_F(RecordRefusals, AnInvalidChoice) {
  ExpectWrongUsage({"set", "ingredient", "5", "--hand-add", "maybe"}, "maybe");
  ExpectWrongUsage({"set", "recipe", "5", "--type", "w"}, "w");
  ExpectWrongUsage({"set", "recipe", "5", "--type", "!"}, "!");
}

TEST_F(RecordRefusals, ASetOfNothing) {
  ExpectWrongUsage({"set", "pen", "5"}, "at least one field to set");
}

TEST_F(RecordRefusals, OneFieldTakesTheOthersDown) {
  ExpectRefusal(
      {"set", "ingredient", "5", "--name", "CORN", "--hand-add", "yes", "--dry-matter", "8.5"},
      "Field Error: The 'DryMatter%' field does not take the character '.'.");
}

TEST_F(RecordRefusals, ADryMatterThatALineCannotBeWeighedBy) {
  ASSERT_EQ(Run({"set", "recipe", database, "2", "--type", "W"}), 0) << err;
  AddLine(
      database,
      {.recipe_id = "2", .ingredient = "5", .target = "900000000", .dry_matter_percent = "100"});
  ExpectRefusal({"set", "ingredient", "5", "--name", "CORN", "--dry-matter", "1"},
                "Error: Recipe 2: Overflow: a line's as-fed weight is outside the range of 32-bit "
                "whole numbers.");
}

// The change and its date are stored in one transaction.
TEST_F(RecordRefusals, AFileWithoutARowForItsDates) {
  Alter(database, "DELETE FROM History");
  for (const Args& args :
       {Args{"set", "ingredient", "5", "--name", "CORN"}, Args{"set", "pen", "5", "--feed", "500"},
        Args{"reset", "recipe", "5", "--yes"}}) {
    const Specified result = Refused(args);
    EXPECT_EQ(result.code, 1);
    EXPECT_THAT(result.err, EndsWith("cause: YARD.RDB has no row in History\n"));
  }
}

// The file is not read while it is locked: closing it would drop the locks of this process.
TEST_F(RecordRefusals, ALockedFile) {
  busy_timeout = std::chrono::milliseconds{20};
  const std::string before = ReadAll(database);
  {
    SQLite::Database other(database, SQLite::OPEN_READWRITE);
    for (const auto lock :
         {SQLite::TransactionBehavior::IMMEDIATE, SQLite::TransactionBehavior::EXCLUSIVE}) {
      const SQLite::Transaction held(other, lock);
      for (const Args& args : {Args{"set", "ingredient", database, "5", "--name", "CORN"},
                               Args{"set", "pen", database, "5", "--name", "A05"},
                               Args{"reset", "recipe", database, "5", "--yes"},
                               Args{"reset", "ingredient", database, "5", "--yes"}}) {
        EXPECT_EQ(Run(args), 1);
        EXPECT_THAT(err, HasSubstr(": A table in the specified database is locked.\n"
                                   "cause: YARD.RDB is locked by another program\n"));
      }
    }
  }
  EXPECT_TRUE(ReadAll(database) == before);
}

// Runs as the user nobody, because a superuser may write everywhere. The settings are readable.
TEST_F(RecordRefusals, AReadOnlyFile) {
  const TempFolder archive;
  const std::string fixed = (archive / "FIXED.RDB").string();
  std::filesystem::copy_file(database, fixed);
  const std::string before = ReadAll(fixed);
  std::filesystem::permissions(folder.Path(), std::filesystem::perms::all);
  {
    const WithoutWritePermission permission(archive.Path());
    for (const Args& args : {Args{"set", "ingredient", fixed, "5", "--name", "CORN"},
                             Args{"set", "recipe", fixed, "5", "--name", "STEERS"},
                             Args{"set", "pen", fixed, "5", "--name", "A05"},
                             Args{"reset", "pen", fixed, "5", "--yes"}}) {
      EXPECT_EQ(Run(args), 1);
      EXPECT_THAT(err, StartsWith("Open Recipe File Error: "));
      EXPECT_THAT(err, EndsWith("cause: FIXED.RDB may not be written: it is write-protected\n"));
    }
  }
  EXPECT_TRUE(ReadAll(fixed) == before);
  EXPECT_THAT(FileNames(archive.Path()), ::testing::ElementsAre("FIXED.RDB"));
}

}  // namespace
}  // namespace vrx::testing
