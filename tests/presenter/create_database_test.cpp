#include "presenter/create_database.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "settings/settings.h"
#include "support/boxes.h"
#include "support/database_files.h"
#include "support/fixed_calendar.h"
#include "support/recording_operator.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::IsEmpty;
using ::testing::SizeIs;

// The texts of a kind as the operator reads them.
struct Words {
  DatabaseKind kind;
  std::string noun;
  std::string extension;
  std::string user_type;
};

class Create : public ::testing::TestWithParam<Words> {
 protected:
  Create() {
    fs::create_directory(program_);
    fs::create_directory(data_);
    fs::copy_file(TemplatePath(GetParam().kind), Template());
  }

  fs::path Template() const { return program_ / TemplatePath(GetParam().kind).filename(); }

  std::string Title(const std::string& stem) const { return stem + GetParam().extension; }

  NewDatabase Wanted(const std::string& stem) {
    return {.kind = GetParam().kind,
            .program_directory = program_,
            .path = data_ / Title(stem),
            .title = Title(stem),
            .unit = "KG",
            .accepted = [this] { ++accepted_; }};
  }

  bool Run(const NewDatabase& wanted) {
    return CreateDatabase(wanted, identity_, operator_, current_);
  }

  // No path was set and no file was created.
  void ExpectUntouched() {
    EXPECT_TRUE(current_.path.empty());
    EXPECT_EQ(current_.name, "");
    EXPECT_THAT(FileNames(data_), IsEmpty());
    EXPECT_EQ(accepted_, 0);
  }

  TempFolder folder_;
  fs::path program_ = folder_ / "program";
  fs::path data_ = folder_ / "data";
  RecordingOperator operator_;
  int accepted_ = 0;
  FixedCalendar calendar_;
  PrivateINI settings_;
  DatabaseIdentity identity_{operator_, calendar_, settings_, std::chrono::milliseconds(0)};
  CurrentDatabase current_;
};

TEST_P(Create, MakesAUsersFileOfTheTemplate) {
  const std::string before = ReadAll(Template());
  ASSERT_TRUE(Run(Wanted("yard")));
  EXPECT_THAT(operator_.boxes, IsEmpty());
  EXPECT_EQ(operator_.beeps, 0);
  EXPECT_EQ(accepted_, 1);
  const fs::path path = data_ / Title("yard");
  EXPECT_EQ(current_.path, path);
  EXPECT_EQ(current_.name, Title("YARD"));
  EXPECT_EQ(current_.unit, "KG");
  EXPECT_THAT(Ask(path, "SELECT dBType FROM BrantockDatabase"), ElementsAre(GetParam().user_type));
  EXPECT_THAT(Ask(path, "SELECT UoM FROM UnitsOfMeasure"), ElementsAre("KG"));
  EXPECT_THAT(Ask(path, "SELECT Created FROM History"), ElementsAre("2026-01-05"));
  EXPECT_THAT(Ask(path, "SELECT Modified FROM History"), ElementsAre("NULL"));
  EXPECT_THAT(FileNames(data_), ElementsAre(Title("yard")));
  EXPECT_EQ(ReadAll(Template()), before);
}

TEST_P(Create, TakesANameOfEightCharacters) { EXPECT_TRUE(Run(Wanted("EIGHTCHR"))); }

TEST_P(Create, RefusesANameOfNineCharacters) {
  EXPECT_FALSE(Run(Wanted("NINECHARS")));
  EXPECT_THAT(OnlyBox(operator_.boxes),
              IsBox(Icon::kWarning, "Filename Error",
                    Title("NINECHARS") +
                        " is an invalid filename.\r\nPlease enter a name with a maximum of eight "
                        "characters (the file extension is not required)."));
  ExpectUntouched();
}

TEST_P(Create, RefusesANameThatIsOnlyAnExtension) {
  EXPECT_FALSE(Run(Wanted("")));
  ASSERT_THAT(operator_.boxes, SizeIs(1));
  EXPECT_EQ(operator_.boxes[0].title, "Filename Error");
  ExpectUntouched();
}

TEST_P(Create, ReportsThatTheProgramsDirectoryIsUnknown) {
  NewDatabase wanted = Wanted("YARD");
  wanted.program_directory.clear();
  EXPECT_FALSE(Run(wanted));
  EXPECT_THAT(OnlyBox(operator_.boxes),
              IsBox(Icon::kCritical, "Error",
                    "Sorry, cannot create a new " + GetParam().noun +
                        " database file.\r\nCould not determine applications path."));
  ExpectUntouched();
}

TEST_P(Create, ReportsThatTheTemplateIsMissing) {
  fs::remove(Template());
  EXPECT_FALSE(Run(Wanted("YARD")));
  EXPECT_THAT(OnlyBox(operator_.boxes),
              IsBox(Icon::kCritical, "File Missing Error",
                    "Couldn't find blank " + GetParam().noun +
                        " database file.\r\nPlease run installation and reload support files."));
  EXPECT_FALSE(operator_.boxes[0].cause.empty());
  ExpectUntouched();
}

TEST_P(Create, LeavesAnExistingFileUntouched) {
  const NewDatabase wanted = Wanted("YARD");
  folder_.Write("data/" + wanted.title, "somebody's work");
  EXPECT_FALSE(Run(wanted));
  EXPECT_THAT(OnlyBox(operator_.boxes),
              IsBox(Icon::kCritical, "File Creation Error",
                    "New " + GetParam().noun + " database file creation failed.\r\n\r\n" +
                        "A file by the name " + wanted.title +
                        " may already exist or there might be an invalid character in the name."));
  EXPECT_EQ(operator_.boxes[0].cause, wanted.path.string() + " already exists");
  EXPECT_EQ(ReadAll(wanted.path), "somebody's work");
  EXPECT_THAT(FileNames(data_), ElementsAre(wanted.title));
  EXPECT_TRUE(current_.path.empty());
}

TEST_P(Create, ReportsThatTheFolderCannotBeWritten) {
  NewDatabase wanted = Wanted("YARD");
  wanted.path = data_ / "none" / wanted.title;
  EXPECT_FALSE(Run(wanted));
  ASSERT_THAT(operator_.boxes, SizeIs(1));
  EXPECT_EQ(operator_.boxes[0].title, "File Creation Error");
  EXPECT_THAT(operator_.boxes[0].text, EndsWith("\r\n\r\n" + wanted.path.string() +
                                                " cannot be written: No such file or directory"));
  ExpectUntouched();
}

TEST_P(Create, DeletesTheCopyOfAnAlteredTemplateAndKeepsThePath) {
  Alter(Template(), "UPDATE BrantockDatabase SET dBType = '" + GetParam().user_type + "'");
  EXPECT_FALSE(Run(Wanted("yard")));
  EXPECT_THAT(
      OnlyBox(operator_.boxes),
      IsBox(Icon::kWarning, "Invalid Database",
            "The database file (" + Title("YARD") + ") that you specified, is not a valid nul " +
                GetParam().noun + " database for use with this VRX-2260 application."));
  EXPECT_THAT(FileNames(data_), IsEmpty());
  EXPECT_EQ(current_.path, data_ / Title("yard"));
  EXPECT_EQ(current_.name, Title("YARD"));
  EXPECT_EQ(current_.unit, "");
  EXPECT_EQ(accepted_, 0);
}

TEST_P(Create, RefusesTheOtherKindsTemplate) {
  const DatabaseKind other =
      GetParam().kind == DatabaseKind::kRecipe ? DatabaseKind::kTransaction : DatabaseKind::kRecipe;
  fs::copy_file(TemplatePath(other), Template(), fs::copy_options::overwrite_existing);
  EXPECT_FALSE(Run(Wanted("YARD")));
  ASSERT_THAT(operator_.boxes, SizeIs(1));
  EXPECT_EQ(operator_.boxes[0].title, "Invalid Database");
  EXPECT_THAT(FileNames(data_), IsEmpty());
}

TEST_P(Create, ADamagedTemplateIsReportedTwiceAndItsCopyDeleted) {
  folder_.Write("program/" + Template().filename().string(), "damaged");
  EXPECT_FALSE(Run(Wanted("YARD")));
  std::vector<std::string> titles;
  for (const MessageBox& box : operator_.boxes) {
    titles.push_back(box.title);
  }
  if (GetParam().kind == DatabaseKind::kRecipe) {
    EXPECT_THAT(titles, ElementsAre("Database-Type Error", "Invalid Database"));
  } else {
    // The date is set before the type is checked.
    EXPECT_THAT(titles, ElementsAre("Database-Type Error", "Database Date Write Error",
                                    "Invalid Database"));
  }
  EXPECT_THAT(FileNames(data_), IsEmpty());
}

TEST_P(Create, ACopyThatCannotBecomeAUsersFileIsDeleted) {
  Alter(Template(), "DROP TABLE UnitsOfMeasure");
  EXPECT_FALSE(Run(Wanted("YARD")));
  ASSERT_THAT(operator_.boxes, SizeIs(2));
  EXPECT_EQ(operator_.boxes[0].title, "Database UoM Write Error");
  EXPECT_EQ(operator_.boxes[0].text, "There is an invalid table in the specified database.");
  EXPECT_EQ(operator_.boxes[1].icon, Icon::kCritical);
  EXPECT_EQ(operator_.boxes[1].title, "File Creation Error");
  EXPECT_EQ(operator_.boxes[1].text,
            "New " + GetParam().noun + " database file creation failed.\r\n\r\n" +
                (data_ / Title("YARD")).string() + " was not made: " + operator_.boxes[0].cause);
  EXPECT_TRUE(current_.path.empty());
  EXPECT_THAT(FileNames(data_), IsEmpty());
  EXPECT_EQ(current_.unit, "");
}

// Fails unlike a database: with an exception that the identity routines do not catch.
TEST_P(Create, AnyOtherFailureIsTrappedUnderTheRoutinesTitle) {
  NewDatabase wanted = Wanted("YARD");
  wanted.accepted = [] { throw Error("the display is gone"); };
  EXPECT_FALSE(Run(wanted));
  EXPECT_THAT(OnlyBox(operator_.boxes),
              IsBox(Icon::kCritical,
                    GetParam().kind == DatabaseKind::kRecipe ? "New Recipe File Error"
                                                             : "New Transaction File Error",
                    "Error: 1"));
  EXPECT_EQ(operator_.boxes[0].cause, "the display is gone");
  EXPECT_THAT(FileNames(data_), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    BothKinds, Create,
    ::testing::Values(Words{DatabaseKind::kRecipe, "recipe", ".RDB", "USER_RECIPE_DB"},
                      Words{DatabaseKind::kTransaction, "transaction", ".TDB", "USER_TRANS_DB"}),
    [](const auto& kind) { return kind.param.noun == "recipe" ? "Recipe" : "Transaction"; });

}  // namespace
}  // namespace vrx::testing
