#include "central/administration.h"

#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "central/central_fixture.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

using ::testing::HasSubstr;

class Administration : public CentralFixture {};

template <typename Action>
std::string WordsOf(Action&& action) {
  try {
    action();
    return {};
  } catch (const Error& error) {
    return error.what();
  }
}

TEST_F(Administration, InitMakesTheSchemaOnceAndThenFindsItUpToDate) {
  CentralConnection server(CentralServer::Get().Connection(CentralServer::Get().MakeDatabase()));
  EXPECT_THAT(WordsOf([&] { CheckCentralSchema(server); }), HasSubstr("central init"));
  EXPECT_EQ(InitCentral(server), InitOutcome::kMade);
  CheckCentralSchema(server);
  AddYard(server, "North", "America/Chicago", kNorth);
  EXPECT_EQ(InitCentral(server), InitOutcome::kUpToDate);
  EXPECT_EQ(server.Query("SELECT count(*) FROM vrx.yard").Number(0, 0), 1);
  EXPECT_EQ(server.Query("SELECT count(*) FROM vrx.version").Number(0, 0), 1);
}

TEST_F(Administration, AnAdministratorWhoIsNoSuperuserCanInit) {
  chief_.Query(
      "DO $$ BEGIN IF NOT EXISTS (SELECT FROM pg_roles WHERE rolname = 'builder') THEN "
      "CREATE ROLE builder LOGIN CREATEROLE; END IF; END $$");
  const std::string database = CentralServer::Get().MakeDatabase();
  chief_.Query("ALTER DATABASE " + database + " OWNER TO builder");
  CentralConnection builder(CentralServer::Get().Connection(database, "builder"));
  EXPECT_EQ(InitCentral(builder), InitOutcome::kMade);
  const std::string yard = AddYard(builder, "East", "Europe/Berlin", "east");
  CentralConnection east(CentralServer::Get().Connection(database, "east"));
  EXPECT_EQ(east.Query("SELECT yard FROM vrx.yard").Text(0, 0), yard);
}

TEST_F(Administration, AFailedInitLeavesNothing) {
  CentralConnection server(CentralServer::Get().Connection(CentralServer::Get().MakeDatabase()));
  CentralConnection other(server.Target().empty() ? std::string()
                                                  : CentralServer::Get().Connection(database_));
  server.Query("CREATE DOMAIN public.uuid AS text");
  server.Query(
      "CREATE FUNCTION public.stop() RETURNS event_trigger LANGUAGE plpgsql AS $$ BEGIN "
      "RAISE 'no views'; END $$");
  server.Query(
      "CREATE EVENT TRIGGER stop ON ddl_command_end WHEN TAG IN ('CREATE VIEW') EXECUTE "
      "FUNCTION public.stop()");
  EXPECT_THAT(WordsOf([&] { InitCentral(server); }), HasSubstr("no views"));
  EXPECT_EQ(server.Query("SELECT count(*) FROM pg_namespace WHERE nspname = 'vrx'").Number(0, 0),
            0);
}

TEST_F(Administration, InitWaitsForLocksOfOthersOnlyAWhile) {
  CentralConnection other = Connect("chief");
  const CentralTransaction reading(other);
  other.Query("LOCK TABLE vrx.push IN ACCESS EXCLUSIVE MODE");
  try {
    InitCentral(chief_);
    FAIL() << "the table is locked";
  } catch (const CentralError& error) {
    EXPECT_EQ(error.State(), "55P03");
  }
}

TEST_F(Administration, ADatabaseWithAnotherEncodingIsRefused) {
  chief_.Query("CREATE DATABASE latin TEMPLATE template0 ENCODING LATIN1 LOCALE 'C'");
  CentralConnection server(CentralServer::Get().Connection("latin"));
  EXPECT_THAT(WordsOf([&] { InitCentral(server); }), HasSubstr("encoding LATIN1"));
}

TEST_F(Administration, AClientOlderThanTheMinimumIsRefusedInWords) {
  chief_.Query("INSERT INTO vrx.version VALUES (2, 2)");
  CentralConnection north = Connect(kNorth);
  EXPECT_THAT(WordsOf([&] { CheckCentralSchema(north); }), HasSubstr("needs a newer program"));
  EXPECT_THAT(WordsOf([&] { InitCentral(chief_); }), HasSubstr("newer than this program"));
}

TEST_F(Administration, ANewerSchemaThatKeepsTheMinimumDoes) {
  chief_.Query("INSERT INTO vrx.version VALUES (2, 1)");
  CentralConnection north = Connect(kNorth);
  CheckCentralSchema(north);
}

TEST_F(Administration, ASchemaOlderThanTheProgramIsRefusedInWords) {
  chief_.Query("UPDATE vrx.version SET version = 0");
  EXPECT_THAT(WordsOf([&] { CheckCentralSchema(chief_); }), HasSubstr("upgrades it"));
  EXPECT_EQ(InitCentral(chief_), InitOutcome::kUpgraded);
}

TEST_F(Administration, AYardHasARealTimeZoneANameOfItsOwnAndOneLogin) {
  EXPECT_THAT(WordsOf([&] { AddYard(chief_, "East", "Mars/Olympus", "east"); }),
              HasSubstr("there is no time zone \"Mars/Olympus\""));
  EXPECT_THAT(WordsOf([&] { AddYard(chief_, "North", "UTC", "east"); }),
              HasSubstr("there is a yard \"North\" already"));
  EXPECT_THAT(WordsOf([&] { AddYard(chief_, "East", "UTC", kNorth); }),
              HasSubstr("belongs to another yard"));
  EXPECT_EQ(Value("SELECT count(*) FROM vrx.yard"), "2");
}

TEST_F(Administration, NamesAreDataWhateverTheyHold) {
  for (const std::string name : {"O'Brien \"x\"; DROP TABLE vrx.yard; --", "back\\slash\\",
                                 "\xF0\x9F\x90\x84", "%s $1 {}", "a\nb"}) {
    const std::string yard = AddYard(chief_, name, "UTC", name);
    EXPECT_EQ(Value("SELECT name FROM vrx.yard WHERE yard = $1", {yard}), name);
    SetAlias(chief_, name, name, name);
    EXPECT_EQ(Value("SELECT company_name FROM vrx.ingredient_alias WHERE yard = $1", {yard}), name);
    CentralConnection login = Connect(name);
    EXPECT_EQ(login.Query("SELECT name FROM vrx.yard").Text(0, 0), name);
    login.Query("SELECT 1");
    chief_.Query("REVOKE vrx_yard FROM " + chief_.Quoted(name));
    chief_.Query("DROP ROLE " + chief_.Quoted(name));
  }
}

TEST_F(Administration, AnAliasIsSetReplacedAndRemoved) {
  const std::string alias = "SELECT company_name FROM vrx.ingredient_alias";
  SetAlias(chief_, "North", "CORN", "Maize");
  SetAlias(chief_, "North", "CORN", "Corn, rolled");
  EXPECT_EQ(Table(alias), "Corn, rolled\n");
  SetAlias(chief_, "North", "CORN", "");
  EXPECT_EQ(Table(alias), "");
  EXPECT_THAT(WordsOf([&] { SetAlias(chief_, "West", "CORN", "Maize"); }),
              HasSubstr("there is no yard \"West\""));
}

TEST_F(Administration, RecordsInPartitionsAreAsSafeAndCountTheSame) {
  const std::string database = CentralServer::Get().MakeDatabase();
  CentralConnection server(CentralServer::Get().Connection(database));
  InitCentral(server);
  const std::string script =
      ReadAll(std::filesystem::path(VRX_SOURCE_DIR) / "scripts" / "central-partitions.sql");
  server.Query(script);
  EXPECT_EQ(InitCentral(server), InitOutcome::kUpToDate);
  const std::string yard = AddYard(server, "North", "UTC", kNorth);
  AddYard(server, "South", "UTC", kSouth);
  CentralConnection north(CentralServer::Get().Connection(database, kNorth));
  north.Query(
      "INSERT INTO vrx.source (yard, source, generation, unit, file) VALUES ($1, $2, $2, "
      "'LB', 'x')",
      {yard, kNorthSource});
  PushRows(
      north, yard, kNorthSource,
      {{.row = 1, .number = 1, .type = "BATCH", .date = "2024-01-01", .target = 2, .actual = 3}});
  EXPECT_EQ(TextOf(north.Query("SELECT n, net FROM vrx.accuracy(NULL, NULL, '{}', 'LB')")),
            "1|1\n");
  CentralConnection south(CentralServer::Get().Connection(database, kSouth));
  EXPECT_EQ(south.Query("SELECT count(*) FROM vrx.transaction").Number(0, 0), 0);
  EXPECT_EQ(StateOf(south, "SELECT * FROM vrx.transaction_0"), "42501");
  EXPECT_THAT(WordsOf([&] { server.Query(script); }), HasSubstr("there are records already"));
}

TEST_F(Administration, WithdrawnRowsStayAndAreOutOfTheFigures) {
  Push(north_, {{.row = 1, .number = 1, .type = "BATCH", .date = "2024-01-01", .actual = 10},
                {.row = 2, .number = 1, .type = "BATCH", .date = "2024-01-02", .actual = 20},
                {.row = 3, .number = 2, .type = "BATCH", .date = "2024-01-03", .actual = 40}});
  CentralConnection administrator = Connect(kAdministrator);
  EXPECT_EQ(Withdraw(administrator,
                     {.source = kNorthSource, .first_row = 1, .last_row = 1, .why = "test run"}),
            1);
  EXPECT_EQ(Value("SELECT count(*) FROM vrx.transaction"), "3");
  EXPECT_EQ(Table("SELECT day, actual FROM vrx.load ORDER BY 1"), "2024-01-02|20\n2024-01-03|40\n");
  EXPECT_EQ(Table("SELECT first_row, last_row, erased, rows, why, login FROM vrx.withdrawal"),
            "1|1|f|1|test run|administrator\n");
}

TEST_F(Administration, AWithdrawnSourceIsOutWithWhatComesLater) {
  Push(north_, {{.row = 1, .number = 1, .type = "BATCH", .date = "2024-01-01", .actual = 10}});
  EXPECT_EQ(Withdraw(chief_, {.source = kNorthSource, .why = "a copy"}), 1);
  Push(north_, {{.row = 2, .number = 2, .type = "BATCH", .date = "2024-01-02", .actual = 10}});
  EXPECT_EQ(Value("SELECT count(*) FROM vrx.load"), "0");
}

TEST_F(Administration, ErasedRowsAreGoneAndTheErasureIsJournalled) {
  Push(north_, {{.row = 1, .number = 1, .type = "BATCH", .date = "2024-01-01", .actual = 10},
                {.row = 2, .number = 2, .type = "BATCH", .date = "2024-01-02", .actual = 20}});
  EXPECT_EQ(Erase(chief_, {.source = kNorthSource, .first_row = 2, .last_row = 9, .why = "law"}),
            1);
  EXPECT_EQ(Table("SELECT row FROM vrx.transaction"), "1\n");
  EXPECT_EQ(Table("SELECT batch FROM vrx.batch_day"), "1\n");
  EXPECT_EQ(Table("SELECT erased, rows, why FROM vrx.withdrawal"), "t|1|law\n");
}

TEST_F(Administration, AWithdrawalHasAReasonAndASource) {
  EXPECT_THAT(WordsOf([&] { Withdraw(chief_, {.source = kNorthSource}); }), HasSubstr("why"));
  EXPECT_THAT(WordsOf([&] { Withdraw(chief_, {.source = north_, .why = "x"}); }),
              HasSubstr("there is no source"));
  EXPECT_THAT(WordsOf([&] {
                Withdraw(chief_,
                         {.source = kNorthSource, .first_row = 5, .last_row = 4, .why = "x"});
              }),
              HasSubstr("check constraint"));
  EXPECT_EQ(Value("SELECT count(*) FROM vrx.withdrawal"), "0");
}

}  // namespace
}  // namespace vrx::testing
