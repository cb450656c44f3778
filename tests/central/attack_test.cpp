#include <algorithm>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "central/administration.h"
#include "central/central_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

constexpr const char* kForbidden = "42501";
// Nothing of the other yard has another name with this word in it.
constexpr const char* kSecret = "SECRET";

// The login of the yard North tries to get at the yard South.
class Attack : public CentralFixture {
 protected:
  Attack() : north_login_(Connect(kNorth)) {
    Push(north_, {{.row = 1,
                   .number = 1,
                   .type = "BATCH",
                   .date = "2024-01-01",
                   .name = "CORN",
                   .target = 10,
                   .actual = 10}});
    Push(south_, {{.row = 1,
                   .number = 1,
                   .type = "BATCH",
                   .date = "2024-01-01",
                   .name = "SECRET CORN",
                   .target = 10,
                   .actual = 11,
                   .recipe = "SECRET MIX"},
                  {.row = 2,
                   .number = 1,
                   .type = "FEED",
                   .date = "2024-01-01",
                   .name = "SECRET PEN",
                   .target = 10,
                   .actual = 11}});
    chief_.Query(
        "INSERT INTO vrx.import (yard, source, import, file, units) VALUES ($1, $2, 1, "
        "'SECRET.QXT', 'KG')",
        {south_, kSouthSource});
    chief_.Query(
        "INSERT INTO vrx.imported_batch (yard, source, import, position, state) VALUES "
        "($1, $2, 1, 1, 'SECRET')",
        {south_, kSouthSource});
    chief_.Query(
        "INSERT INTO vrx.mark (yard, source, kind, value) VALUES ($1, $2, 'label', "
        "'SECRET')",
        {south_, kSouthSource});
    SetAlias(chief_, "South", "SECRET CORN", "SECRET MAIZE");
    chief_.Query("UPDATE vrx.yard SET name = 'SECRET YARD' WHERE yard = $1", {south_});
    chief_.Query(
        "INSERT INTO vrx.release (release, unit, file, note, for_all) VALUES (1, 'LB', "
        "'SECRET.RDB', 'SECRET', false), (2, 'LB', 'ALL.RDB', NULL, true)");
    chief_.Query("INSERT INTO vrx.release_yard VALUES (1, $1)", {south_});
    chief_.Query("INSERT INTO vrx.pen (release, id, name) VALUES (1, 1, 'SECRET'), (2, 1, 'P1')");
    chief_.Query("INSERT INTO vrx.ingredient (release, id, name) VALUES (1, 1, 'SECRET')");
    chief_.Query("INSERT INTO vrx.recipe (release, id, name) VALUES (1, 1, 'SECRET')");
    chief_.Query(
        "INSERT INTO vrx.recipe_line (release, position, recipe_id) VALUES (1, 1, "
        "'SECRET')");
    chief_.Query("INSERT INTO vrx.fetch (yard, release) VALUES ($1, 1)", {south_});
    Withdraw(chief_, {.source = kSouthSource, .first_row = 2, .last_row = 2, .why = "SECRET"});
  }

  // What the yard's login gets for a statement: its rows, or the words of the error.
  std::string Try(const std::string& sql, const CentralConnection::Values& values = {}) {
    try {
      return TextOf(north_login_.Query(sql, values));
    } catch (const CentralError& error) {
      return error.what();
    }
  }

  std::vector<std::string> Relations(const std::string& kinds) {
    const CentralRows rows = chief_.Query(
        "SELECT relname FROM pg_class WHERE relnamespace = 'vrx'::regnamespace AND relkind = "
        "ANY (string_to_array($1, ',')::\"char\"[]) ORDER BY 1",
        {kinds});
    std::vector<std::string> names;
    names.reserve(static_cast<std::size_t>(rows.Count()));
    for (int row = 0; row < rows.Count(); ++row) {
      names.push_back(rows.Text(row, 0));
    }
    return names;
  }

  CentralConnection north_login_;
};

TEST_F(Attack, NoTableOrViewShowsAnythingOfAnotherYard) {
  const std::vector<std::string> relations = Relations("r,v");
  ASSERT_GT(relations.size(), 30U);
  for (const std::string& relation : relations) {
    const std::string all = TextOf(chief_.Query("SELECT * FROM vrx." + relation));
    const std::string seen = Try("SELECT * FROM vrx." + relation);
    EXPECT_THAT(seen, Not(HasSubstr(kSecret))) << relation;
    EXPECT_THAT(seen, Not(HasSubstr(south_))) << relation;
    EXPECT_THAT(seen, Not(HasSubstr(kSouthSource))) << relation;
    EXPECT_THAT(seen, Not(HasSubstr("permission denied"))) << relation;
    const bool has_secret = all.find(kSecret) != std::string::npos ||
                            all.find(south_) != std::string::npos || relation == "version" ||
                            relation == "batch" || relation == "login";
    EXPECT_TRUE(has_secret || all.empty()) << relation << " shows nothing to look for";
  }
}

TEST_F(Attack, TheYardSeesItsOwn) {
  EXPECT_EQ(Try("SELECT name FROM vrx.yard"), "North\n");
  EXPECT_EQ(Try("SELECT ingredient FROM vrx.load"), "CORN\n");
  EXPECT_EQ(Try("SELECT release FROM vrx.release"), "2\n");
  EXPECT_EQ(Try("SELECT name FROM vrx.pen"), "P1\n");
}

TEST_F(Attack, EveryTableHasForcedRowSecurityAndNothingForEverybody) {
  EXPECT_EQ(Table("SELECT relname FROM pg_class WHERE relnamespace = 'vrx'::regnamespace AND "
                  "relkind = 'r' AND NOT (relrowsecurity AND relforcerowsecurity)"),
            "");
  EXPECT_EQ(Table("SELECT relname FROM pg_class, aclexplode(relacl) a WHERE relnamespace = "
                  "'vrx'::regnamespace AND a.grantee = 0"),
            "");
  EXPECT_EQ(Table("SELECT relname FROM pg_class WHERE relnamespace = 'vrx'::regnamespace AND "
                  "relkind = 'v' AND NOT coalesce(reloptions @> '{security_invoker=true}' OR "
                  "reloptions @> '{security_invoker=on}', false)"),
            "");
  EXPECT_EQ(Table("SELECT relname FROM pg_class WHERE relnamespace = 'vrx'::regnamespace AND "
                  "relkind = 'm'"),
            "");
  EXPECT_EQ(Table("SELECT proname FROM pg_proc WHERE pronamespace = 'vrx'::regnamespace AND "
                  "(proacl IS NULL OR EXISTS (SELECT FROM aclexplode(proacl) a WHERE a.grantee = "
                  "0))"),
            "");
  EXPECT_EQ(Table("SELECT nspname FROM pg_namespace, aclexplode(nspacl) a WHERE nspname = 'vrx' "
                  "AND a.grantee = 0"),
            "");
  EXPECT_EQ(Table("SELECT 1 FROM pg_database, aclexplode(datacl) a WHERE datname = "
                  "current_database() AND a.grantee = 0"),
            "");
  EXPECT_EQ(Table("SELECT rolname FROM pg_roles WHERE rolname LIKE 'vrx%' AND (rolcanlogin OR "
                  "rolbypassrls OR rolsuper OR rolcreaterole)"),
            "");
}

// A body that was parsed when the function was made has no search path to fix.
TEST_F(Attack, EveryFunctionFixesItsSearchPath) {
  EXPECT_EQ(Table("SELECT proname FROM pg_proc WHERE pronamespace = 'vrx'::regnamespace AND "
                  "prokind = 'f' AND prosqlbody IS NULL AND NOT EXISTS (SELECT FROM "
                  "unnest(proconfig) c WHERE c = "
                  "'search_path=pg_catalog, pg_temp')"),
            "");
}

TEST_F(Attack, NothingIsAddedForAnotherYard) {
  EXPECT_EQ(StateOf(north_login_,
                    "INSERT INTO vrx.source (yard, source, generation, unit, file) VALUES ($1, $1, "
                    "$1, 'LB', 'x')",
                    {south_}),
            kForbidden);
  EXPECT_EQ(StateOf(north_login_,
                    "INSERT INTO vrx.mark (yard, source, kind, value) VALUES ($1, $2, 'label', "
                    "'KG')",
                    {south_, kSouthSource}),
            kForbidden);
  EXPECT_EQ(StateOf(north_login_,
                    "INSERT INTO vrx.push (yard, source, first_row, last_row, generation, unit, "
                    "client) VALUES ($1, $2, 3, 4, $2, 'LB', 1)",
                    {south_, kSouthSource}),
            kForbidden);
  EXPECT_EQ(
      StateOf(north_login_, "INSERT INTO vrx.import (yard, source, import) VALUES ($1, $2, 9)",
              {south_, kSouthSource}),
      kForbidden);
  EXPECT_EQ(StateOf(north_login_,
                    "INSERT INTO vrx.imported_batch (yard, source, import, position) VALUES ($1, "
                    "$2, 9, 9)",
                    {south_, kSouthSource}),
            kForbidden);
  EXPECT_EQ(StateOf(north_login_,
                    "INSERT INTO vrx.batch_day (yard, source, batch, of_load) VALUES ($1, $2, 9, "
                    "true)",
                    {south_, kSouthSource}),
            kForbidden);
  for (const std::string release : {"1", "9"}) {  // of South, and not there
    EXPECT_EQ(StateOf(north_login_, "INSERT INTO vrx.fetch (yard, release) VALUES ($1, $2)",
                      {north_, release}),
              kForbidden);
  }
  EXPECT_EQ(StateOf(north_login_, "INSERT INTO vrx.fetch (yard, release) VALUES ($1, 2)", {south_}),
            kForbidden);
}

TEST_F(Attack, ARowOfAnotherYardIsRefusedBeforeItsKeyIsLookedUp) {
  const std::string insert =
      "INSERT INTO vrx.transaction (yard, source, row, digest) VALUES ($1, $2, $3, "
      "sha256(record_send(ROW($3::bigint, NULL::bigint, NULL::text, NULL::text, NULL::text, "
      "NULL::text, NULL::text, NULL::float8, NULL::float8, NULL::text, NULL::text, NULL::float8, "
      "NULL::float8, NULL::float8[]))))";
  // 1 is there and 77 is not: the answers do not differ.
  EXPECT_EQ(StateOf(north_login_, insert, {south_, kSouthSource, "1"}), kForbidden);
  EXPECT_EQ(StateOf(north_login_, insert, {south_, kSouthSource, "77"}), kForbidden);
  EXPECT_EQ(Try(insert, {south_, kSouthSource, "1"}), Try(insert, {south_, kSouthSource, "77"}));
  // A source with the ID of another yard's is possible, so it tells nothing.
  EXPECT_EQ(StateOf(north_login_,
                    "INSERT INTO vrx.source (yard, source, generation, unit, file) VALUES ($1, $2, "
                    "$2, 'LB', 'x')",
                    {north_, kSouthSource}),
            "");
}

TEST_F(Attack, NothingIsChangedOrDeletedNotEvenOnesOwn) {
  for (const std::string& table : Relations("r")) {
    const std::string column = TextOf(chief_.Query(
        "SELECT attname FROM pg_attribute WHERE attrelid = ('vrx.' || $1)::regclass AND attnum = 1",
        {table}));
    const std::string name = column.substr(0, column.size() - 1);
    EXPECT_EQ(StateOf(north_login_,
                      "UPDATE vrx." + table + " SET " + name + " = " + name + " WHERE true"),
              kForbidden)
        << table;
    EXPECT_EQ(StateOf(north_login_, "DELETE FROM vrx." + table), kForbidden) << table;
    EXPECT_EQ(StateOf(north_login_, "TRUNCATE vrx." + table), kForbidden) << table;
  }
}

TEST_F(Attack, LoginsVersionsYardsAliasesWithdrawalsAndReleasesAreNotTheYardsToWrite) {
  for (const std::string statement :
       {"INSERT INTO vrx.login VALUES ('north', gen_random_uuid())",
        "INSERT INTO vrx.version VALUES (9, 9)",
        "INSERT INTO vrx.yard (name, zone) VALUES ('x', 'UTC')",
        "INSERT INTO vrx.ingredient_alias VALUES (vrx.session_yard(), 'a', 'b')",
        "INSERT INTO vrx.release (release, unit, file, for_all) VALUES (9, 'LB', 'x', true)",
        "INSERT INTO vrx.release_yard VALUES (1, vrx.session_yard())",
        "INSERT INTO vrx.pen (release, id) VALUES (2, 9)",
        "INSERT INTO vrx.withdrawal (yard, erased) VALUES (vrx.session_yard(), true)"}) {
    EXPECT_EQ(StateOf(north_login_, statement), kForbidden) << statement;
  }
}

TEST_F(Attack, TheServersOwnColumnsCannotBeGiven) {
  EXPECT_EQ(StateOf(north_login_,
                    "INSERT INTO vrx.push (yard, source, first_row, last_row, generation, unit, "
                    "client, at) VALUES ($1, $2, 3, 4, $2, 'LB', 1, '2000-01-01')",
                    {north_, kNorthSource}),
            kForbidden);
  EXPECT_EQ(StateOf(north_login_,
                    "INSERT INTO vrx.mark (yard, source, kind, value, login) VALUES ($1, $2, "
                    "'label', 'KG', 'chief')",
                    {north_, kNorthSource}),
            kForbidden);
}

TEST_F(Attack, CopyReadsOnlyOnesOwnAndWritesNothing) {
  std::string copied;
  north_login_.ReadCopy("COPY vrx.transaction TO STDOUT",
                        [&](std::string_view row) { copied += row; });
  EXPECT_THAT(copied, HasSubstr("CORN"));
  EXPECT_THAT(copied, Not(HasSubstr(kSecret)));
  try {
    north_login_.StartCopy("COPY vrx.transaction (yard, source, row, digest) FROM STDIN");
    FAIL() << "a copy would go past row security";
  } catch (const CentralError& error) {
    EXPECT_THAT(error.what(), HasSubstr("row-level security"));
  }
  EXPECT_EQ(StateOf(north_login_, "COPY vrx.yard TO '/tmp/yards'"), kForbidden);
  EXPECT_EQ(StateOf(north_login_, "COPY vrx.yard TO PROGRAM 'cat'"), kForbidden);
}

TEST_F(Attack, RowSecurityCannotBeTurnedOff) {
  north_login_.Query("SET row_security = off");
  EXPECT_EQ(StateOf(north_login_, "SELECT * FROM vrx.transaction"), kForbidden);
}

TEST_F(Attack, NoOtherRoleCanBeTaken) {
  for (const std::string role :
       {"vrx_owner", "vrx_office", "vrx_administrator", "vrx_nutritionist", "chief", "south"}) {
    for (const std::string before : {"SET ROLE ", "SET SESSION AUTHORIZATION ", "GRANT "}) {
      const std::string after = before == "GRANT " ? " TO north" : "";
      EXPECT_EQ(StateOf(north_login_, before + role + after), kForbidden) << before << role;
    }
  }
}

TEST_F(Attack, TheRoleOfAllYardsStillSeesTheLoginsYardOnly) {
  north_login_.Query("SET ROLE vrx_yard");
  EXPECT_EQ(Try("SELECT name FROM vrx.yard"), "North\n");
  EXPECT_EQ(Try("SELECT count(*) FROM vrx.transaction"), "1\n");
}

TEST_F(Attack, NoSettingMakesAnotherYard) {
  for (const std::string setting : {"SET vrx.yard = 'South'", "SET application_name = 'south'",
                                    "SELECT set_config('session.user', 'south', false)"}) {
    north_login_.Query(setting);
  }
  EXPECT_THAT(StateOf(north_login_, "SET session_authorization = 'south'"), kForbidden);
  EXPECT_EQ(Try("SELECT vrx.session_yard()"), north_ + "\n");
}

TEST_F(Attack, FunctionsOfTheAdministratorAreRefused) {
  for (const std::string call :
       {"vrx.add_yard('x', 'UTC', 'north')", "vrx.set_alias('North', 'a', 'b')",
        "vrx.withdraw(gen_random_uuid(), 1, 2, 'x', true)"}) {
    EXPECT_EQ(StateOf(north_login_, "SELECT " + call), kForbidden) << call;
  }
}

TEST_F(Attack, FunctionsOfTheYardSeeItsOwnOnly) {
  EXPECT_EQ(Try("SELECT rows FROM vrx.row_proof($1, $2, 0, 100, true)", {south_, kSouthSource}),
            "0\n");
  EXPECT_EQ(Try("SELECT key, n FROM vrx.accuracy(NULL, NULL, '{yard,ingredient}')"),
            "{North,CORN}|1\n");
  EXPECT_EQ(Try("SELECT yard, n FROM vrx.standardized(NULL, NULL)"), "North|1\n");
  const std::string copy = "00000000-0000-0000-0000-00000000000c";
  chief_.Query(
      "INSERT INTO vrx.source (yard, source, generation, parent, parent_last_row, unit, file) "
      "VALUES ($1, $2, $2, $3, 9, 'LB', 'COPY.TDB')",
      {south_, copy, kSouthSource});
  EXPECT_EQ(Try("SELECT count(*) FROM vrx.home_of_batch($1, $2, 1)", {south_, copy}), "0\n");
  EXPECT_EQ(
      TextOf(chief_.Query("SELECT count(*) FROM vrx.home_of_batch($1, $2, 1)", {south_, copy})),
      "1\n");
}

// The owner's functions are no way around the policies, even for one who may call them.
TEST_F(Attack, TheOwnersRightsShowNothingToASessionThatIsNoAdministrator) {
  chief_.Query("GRANT EXECUTE ON ALL FUNCTIONS IN SCHEMA vrx TO north");
  chief_.Query("GRANT vrx_owner TO north");
  EXPECT_THAT(Try("SELECT vrx.withdraw($1, NULL, NULL, 'x', true)", {kSouthSource}),
              HasSubstr("there is no source"));
  north_login_.Query("SET ROLE vrx_owner");
  EXPECT_EQ(Try("SELECT count(*) FROM vrx.transaction"), "0\n");
  north_login_.Query("RESET ROLE");
  chief_.Query("REVOKE vrx_owner FROM north");
}

TEST_F(Attack, ObjectsOfTheYardDoNotTakeTheNamesOfTheSchemas) {
  EXPECT_EQ(StateOf(north_login_, "CREATE TABLE vrx.trap (a int)"), kForbidden);
  EXPECT_EQ(StateOf(north_login_, "CREATE TABLE public.trap (a int)"), kForbidden);
  EXPECT_EQ(StateOf(north_login_, "CREATE SCHEMA trap"), kForbidden);
  EXPECT_EQ(StateOf(north_login_, "CREATE ROLE trap"), kForbidden);
  EXPECT_EQ(StateOf(north_login_, "ALTER TABLE vrx.transaction DISABLE ROW LEVEL SECURITY"),
            kForbidden);
  EXPECT_EQ(StateOf(north_login_, "CREATE POLICY p ON vrx.transaction USING (true)"), kForbidden);
  // A temporary table of the same name is not what the functions read.
  north_login_.Query(
      "CREATE TEMPORARY TABLE login AS SELECT 'north'::text AS login, $1::uuid AS yard", {south_});
  EXPECT_EQ(Try("SELECT vrx.session_yard()"), north_ + "\n");
}

// A condition with an error or a message runs after the policies.
TEST_F(Attack, ErrorsAndMessagesOfConditionsShowNoOtherRow) {
  north_login_.Query(
      "CREATE FUNCTION pg_temp.spy(text) RETURNS boolean LANGUAGE plpgsql COST 0.0000001 AS $$ "
      "BEGIN IF $1 LIKE 'SECRET%' THEN RAISE 'found %', $1; END IF; RETURN true; END $$");
  for (const std::string& relation :
       {std::string("vrx.transaction WHERE pg_temp.spy(ingredient)"),
        std::string("vrx.load WHERE pg_temp.spy(ingredient)"),
        std::string("vrx.yard WHERE pg_temp.spy(name)"),
        std::string("vrx.freshness WHERE pg_temp.spy(yard)"),
        std::string("vrx.release WHERE pg_temp.spy(file)"),
        std::string("vrx.transaction WHERE 1 / (CASE WHEN ingredient LIKE 'SECRET%' THEN 0 ELSE 1 "
                    "END) = 1"),
        std::string("vrx.transaction WHERE ingredient::integer = 1 AND yard <> "
                    "vrx.session_yard()")}) {
    const std::string answer = Try("SELECT * FROM " + relation);
    EXPECT_THAT(answer, Not(HasSubstr(kSecret))) << relation;
    EXPECT_THAT(answer, Not(HasSubstr("division by zero"))) << relation;
  }
}

TEST_F(Attack, ExplainShowsNeitherRowsNorHowManyThereAre) {
  const auto plan = [&](const std::string& name) {
    std::string text =
        Try("EXPLAIN SELECT * FROM vrx.transaction WHERE ingredient = '" + name + "'");
    const std::size_t at = text.find(name);
    return at == std::string::npos ? text : text.replace(at, name.size(), "");
  };
  for (int copy = 3; copy < 300; ++copy) {
    Push(south_, {{.row = copy,
                   .number = copy,
                   .type = "BATCH",
                   .date = "2024-01-01",
                   .name = "SECRET CORN"}});
  }
  chief_.Query("ANALYZE vrx.transaction");
  // A frequent name of another yard and one that nobody has get the same estimate.
  EXPECT_EQ(plan("SECRET CORN"), plan("NOBODYS NAM"));
  EXPECT_THAT(Try("EXPLAIN (ANALYZE, COSTS off, TIMING off) SELECT * FROM vrx.transaction WHERE "
                  "ingredient = 'SECRET CORN'"),
              HasSubstr("rows=0"));
}

TEST_F(Attack, StatisticsShowNoValuesOfAnotherYard) {
  chief_.Query("ANALYZE");
  EXPECT_EQ(Table("SELECT tablename, attname FROM pg_stats WHERE schemaname = 'vrx'"), "");
  EXPECT_THAT(Try("SELECT * FROM pg_stats WHERE schemaname = 'vrx'"), Not(HasSubstr(kSecret)));
  EXPECT_EQ(StateOf(north_login_, "SELECT * FROM pg_statistic"), kForbidden);
  const std::string activity = Try("SELECT usename, query FROM pg_stat_activity");
  EXPECT_THAT(activity, Not(HasSubstr(kSecret)));
}

TEST_F(Attack, TheOfficeReadsAllAndWritesNothing) {
  CentralConnection office = Connect(kOffice);
  EXPECT_EQ(office.Query("SELECT count(*) FROM vrx.yard").Number(0, 0), 2);
  EXPECT_EQ(office.Query("SELECT count(*) FROM vrx.load").Number(0, 0), 2);
  for (const std::string& table : Relations("r")) {
    EXPECT_EQ(StateOf(office, "DELETE FROM vrx." + table), kForbidden) << table;
    EXPECT_EQ(StateOf(office, "INSERT INTO vrx." + table + " DEFAULT VALUES"), kForbidden) << table;
  }
  EXPECT_EQ(StateOf(office, "CREATE TEMPORARY TABLE t (a int)"), kForbidden);
  EXPECT_EQ(StateOf(office, "SELECT vrx.withdraw(gen_random_uuid(), 1, 2, 'x', true)"), kForbidden);
}

TEST_F(Attack, TheNutritionistSeesNoRecordsAndChangesNoRelease) {
  CentralConnection nutritionist = Connect(kNutritionist);
  EXPECT_EQ(StateOf(nutritionist, "SELECT * FROM vrx.transaction"), kForbidden);
  EXPECT_EQ(StateOf(nutritionist, "SELECT * FROM vrx.load"), kForbidden);
  EXPECT_EQ(StateOf(nutritionist, "INSERT INTO vrx.pen (release, id) VALUES (2, 9)"), kForbidden);
  EXPECT_EQ(StateOf(nutritionist, "UPDATE vrx.release SET note = 'x'"), kForbidden);
  CentralTransaction transaction(nutritionist);
  nutritionist.Query(
      "INSERT INTO vrx.release (release, unit, file, for_all) VALUES (3, 'LB', 'x', "
      "true)");
  nutritionist.Query("INSERT INTO vrx.pen (release, id, name) VALUES (3, 9, 'P9')");
  transaction.Commit();
  EXPECT_EQ(StateOf(nutritionist, "INSERT INTO vrx.pen (release, id) VALUES (3, 10)"), kForbidden);
  EXPECT_EQ(Try("SELECT name FROM vrx.pen WHERE release = 3"), "P9\n");
}

TEST_F(Attack, ALoginWithoutARoleGetsNothing) {
  chief_.Query(
      "DO $$ BEGIN IF NOT EXISTS (SELECT FROM pg_roles WHERE rolname = 'stranger') THEN "
      "CREATE ROLE stranger LOGIN; END IF; END $$");
  EXPECT_THROW(Connect("stranger"), CentralError);
}

}  // namespace
}  // namespace vrx::testing
