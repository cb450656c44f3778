#include "presenter/central_form.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "central/administration.h"
#include "central/server.h"
#include "database/connection.h"
#include "support/boxes.h"
#include "support/central_server.h"
#include "support/database_files.h"
#include "support/recipe_tables.h"
#include "support/small_history.h"
#include "support/test_services.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::AllOf;
using ::testing::Contains;
using ::testing::Field;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

// The form over the small recipes of the yard North.
class CentralFormTest : public ::testing::Test,
                        protected TestServices,
                        public CentralFormView,
                        public CentralPushView {
 protected:
  static constexpr const char* kLogin = "form_north";
  static constexpr const char* kNutritionist = "form_nutritionist";

  void CentralFormChanged() override { ++changes; }
  void CentralChanged() override {}

  const std::string& Database() {
    if (database.empty()) {
      database = CentralServer::Get().MakeCentralDatabase();
      CentralConnection chief(CentralServer::Get().Connection(database));
      AddYard(chief, "North", "America/Chicago", kLogin);
      if (chief.Query("SELECT FROM pg_roles WHERE rolname = 'form_nutritionist'").Count() == 0) {
        chief.Query("CREATE ROLE form_nutritionist LOGIN IN ROLE vrx_nutritionist");
      }
    }
    return database;
  }
  std::string Connection() { return CentralServer::Get().Connection(Database(), kLogin); }

  // A recipe database like the small one, after the statements.
  fs::path MakeRecipes(const std::string& name, const std::string& statements) {
    SmallRecipes(dir, name).exec(statements + "; UPDATE UnitsOfMeasure SET UoM = 'LB'");
    return dir / name;
  }
  int PublishWith(const std::string& statements, const std::string& note) {
    const fs::path file = MakeRecipes("OFFICE" + std::to_string(++releases) + ".RDB", statements);
    CentralConnection server(CentralServer::Get().Connection(Database(), kNutritionist));
    return Publish(server, {.file = file, .note = note}).release;
  }

  CentralForm& Form() {
    if (!form) {
      form.emplace(services, push, "machine", recipes, *this);
    }
    return *form;
  }
  const CentralFormState& State() { return Form().State(); }
  // The clock of the pump stands while a thread works.
  void WaitForTask() {
    for (int turn = 0; turn < 10000 && State().task != CentralTask::kNone; ++turn) {
      pump.Pump(Milliseconds{50});
      std::this_thread::sleep_for(std::chrono::milliseconds{1});
    }
    ASSERT_EQ(State().task, CentralTask::kNone);
  }
  void Connect() {
    push.ChangeSettings({.connection = Connection(), .yard = "North"});
    Form().Look();
    WaitForTask();
    ASSERT_FALSE(State().connection.failed) << State().connection.text;
  }
  void Compare(std::size_t release) {
    Form().Compare(release);
    WaitForTask();
  }

  TempFolder dir;
  std::string database;
  int releases = 0;
  int changes = 0;
  CPrivateINI ini{dir / "VRX-2260.INI", system, op};
  CentralPush push{services, ini, "machine", *this};
  fs::path recipes = MakeRecipes("SITE.RDB", "SELECT 1");
  std::optional<CentralForm> form;
};

TEST_F(CentralFormTest, KeepsAConnectionAtOnceUnlessItIsRefused) {
  Form().SetConnection("host=db.example user=north");
  EXPECT_EQ(ReadCentralSettings(ini).connection, "host=db.example user=north");
  Form().SetConnection("host=db.example password=secret");
  EXPECT_TRUE(State().connection.failed);
  EXPECT_THAT(State().connection.text, HasSubstr("a password does not belong"));
  EXPECT_EQ(Form().Settings().connection, "host=db.example user=north");
  Form().SetConnection("");
  EXPECT_EQ(ReadCentralSettings(ini).connection, "");
}

TEST_F(CentralFormTest, LooksAtNothingWithoutAConnection) {
  Form().Look();
  EXPECT_EQ(State().task, CentralTask::kNone);
}

TEST_F(CentralFormTest, TakesTheOnlyYardOfTheLogin) {
  push.ChangeSettings({.connection = Connection()});
  Form().Look();
  EXPECT_EQ(State().task, CentralTask::kLook);
  EXPECT_EQ(Form().DoingText(), "Connecting");
  WaitForTask();
  EXPECT_EQ(Form().Settings().yard, "North");
  EXPECT_THAT(State().answer.releases, IsEmpty());
}

TEST_F(CentralFormTest, ShowsTheReleasesAndWhatOneWouldChange) {
  PublishWith("UPDATE Recipe SET Description = 'Old' WHERE ID = 1", "first");
  PublishWith("UPDATE Ingredient SET [DryMatter%] = 55 WHERE ID = 1", "dry corn");
  Connect();
  ASSERT_THAT(State().answer.releases, SizeIs(2));
  EXPECT_EQ(State().answer.releases[0].note, "dry corn");
  Compare(0);
  EXPECT_EQ(State().release.text, "Differences from SITE.RDB: 1.");
  const std::vector<DifferenceRow> rows = Form().DifferenceRows();
  ASSERT_THAT(rows, SizeIs(1));
  EXPECT_EQ(rows[0].record, "Ingredient 1: CORN");
  EXPECT_EQ(rows[0].field, "Dry Matter (%)");
  EXPECT_EQ(rows[0].release, "55");
  // The yard's own dry matter stays.
  EXPECT_EQ(rows[0].new_file, rows[0].here);
  Compare(1);
  EXPECT_THAT(Form().DifferenceRows(), Contains(AllOf(Field(&DifferenceRow::field, "Description"),
                                                      Field(&DifferenceRow::new_file, "Old"))));
}

TEST_F(CentralFormTest, SaysThatAReleaseIsTheSame) {
  PublishWith("SELECT 1", "");
  Connect();
  Compare(0);
  EXPECT_EQ(State().release.text, "The release is the same as SITE.RDB.");
  EXPECT_THAT(Form().DifferenceRows(), IsEmpty());
}

TEST_F(CentralFormTest, ComparesNothingWithoutAnOpenRecipeDatabase) {
  PublishWith("SELECT 1", "");
  recipes.clear();
  Connect();
  Compare(0);
  EXPECT_EQ(State().release.text, "Open a recipe database to compare a release with it.");
  Form().Fetch();
  EXPECT_EQ(State().task, CentralTask::kNone);
}

TEST_F(CentralFormTest, FetchesIntoANewFileAndNotesIt) {
  PublishWith("UPDATE Recipe SET Description = 'New' WHERE ID = 1", "");
  Connect();
  Compare(0);
  files.Choose(dir / "NEW.RDB");
  Form().Fetch();
  EXPECT_EQ(State().task, CentralTask::kFetch);
  WaitForTask();
  EXPECT_EQ(State().release.text,
            "NEW.RDB has the recipes of release 1, with this yard's own pens, head counts and dry "
            "matter. Open it with File, Open.");
  EXPECT_EQ(Ask(dir / "NEW.RDB", "SELECT Description FROM Recipe WHERE ID = 1"),
            std::vector<std::string>{"New"});
  EXPECT_THAT(State().answer.releases.at(0).fetches, SizeIs(1));
  EXPECT_THAT(op.boxes, IsEmpty());
}

TEST_F(CentralFormTest, AnotherNameOfAnIdInUseIsFetchedOnlyByAWord) {
  PublishWith("UPDATE Ingredient SET Name = 'BARLEY' WHERE ID = 1", "");
  Connect();
  Compare(0);
  op.answers = {Answer::kNo};
  Form().Fetch();
  EXPECT_EQ(State().task, CentralTask::kNone);
  EXPECT_THAT(OnlyBox(op.boxes).text, HasSubstr("\r\nIngredient 1: CORN becomes BARLEY"));
  EXPECT_TRUE(OnlyBox(op.boxes).refuses_by_default);
  op.answers = {Answer::kYes};
  files.Choose(dir / "NEW.RDB");
  Form().Fetch();
  WaitForTask();
  EXPECT_EQ(Ask(dir / "NEW.RDB", "SELECT Name FROM Ingredient WHERE ID = 1"),
            std::vector<std::string>{"BARLEY"});
}

TEST_F(CentralFormTest, AFileThatIsThereIsNotReplaced) {
  PublishWith("SELECT 1", "");
  Connect();
  Compare(0);
  files.Choose(dir / "SITE.RDB");
  Form().Fetch();
  WaitForTask();
  EXPECT_TRUE(State().release.failed);
  EXPECT_NE(State().release.text, "");
}

TEST_F(CentralFormTest, CancelEndsATask) {
  push.ChangeSettings({.connection = Connection(), .yard = "North"});
  Form().Look();
  Form().Cancel();
  EXPECT_EQ(State().task, CentralTask::kNone);
  for (int i = 0; i < 20; ++i) {
    pump.Pump(Milliseconds{50});
  }
  EXPECT_EQ(State().connection.text, "");
}

TEST_F(CentralFormTest, AFormThatIsClosedEndsItsTask) {
  push.ChangeSettings({.connection = Connection(), .yard = "North"});
  Form().Look();
  form.reset();
  const int before = changes;
  for (int i = 0; i < 20; ++i) {
    pump.Pump(Milliseconds{50});
  }
  EXPECT_EQ(changes, before);
}

}  // namespace
}  // namespace vrx::testing
