#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "central/central_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::HasSubstr;

class CentralSchema : public CentralFixture {};

// The canonical row of (1, 7, 'R', 'BATCH', NULL, ..., 2.5, ..., weights {1, NULL, 3}), byte by
// byte.
constexpr const char* kCanonical =
    "0000000E"                              // 14 fields
    "00000014000000080000000000000001"      // row 1
    "00000014000000080000000000000007"      // number 7
    "000000190000000152"                    // recipe R
    "00000019000000054241544348"            // type BATCH
    "00000019FFFFFFFF"                      // user_id
    "0000001900000002C3A9"                  // ingredient, U+00E9
    "00000019FFFFFFFF"                      // pen
    "000002BD000000084004000000000000"      // target 2.5
    "000002BDFFFFFFFF"                      // actual_batch
    "00000019FFFFFFFF"                      // time
    "000000190000000A323032342D30322D3239"  // date 2024-02-29
    "000002BD000000080000000000000000"      // actual_feed 0
    "000002BDFFFFFFFF"                      // ing_percent
    "000003FE00000030"                      // weights, 48 bytes
    "0000000100000001000002BD0000000300000001"
    "000000083FF0000000000000FFFFFFFF000000084008000000000000";

constexpr const char* kInsert =
    "INSERT INTO vrx.transaction (yard, source, row, number, recipe, type, ingredient, target, "
    "date, actual_feed, weights, digest) VALUES ($1, $2, 1, 7, 'R', 'BATCH', E'\\u00e9', 2.5, "
    "'2024-02-29', 0, $3, sha256(decode($4, 'hex')))";

TEST_F(CentralSchema, ARowIsTakenWithTheDigestOfItsCanonicalForm) {
  chief_.Query(kInsert, {north_, kNorthSource, "{1,NULL,3}", kCanonical});
  EXPECT_EQ(Value("SELECT count(*) FROM vrx.transaction"), "1");
}

TEST_F(CentralSchema, ARowWithAnotherDigestIsRefused) {
  std::string other = kCanonical;
  other.back() = '1';
  EXPECT_EQ(StateOf(chief_, kInsert, {north_, kNorthSource, "{1,NULL,3}", other}), "23514");
}

TEST_F(CentralSchema, WeightsHaveOneForm) {
  for (const char* const weights : {"{}", "{1,NULL}", "{NULL}"}) {
    EXPECT_EQ(StateOf(chief_, kInsert, {north_, kNorthSource, weights, kCanonical}), "23514");
  }
}

TEST_F(CentralSchema, AWeightWithoutAnEndIsRefused) {
  for (const char* const weight : {"Infinity", "-Infinity", "NaN"}) {
    EXPECT_EQ(StateOf(chief_,
                      "INSERT INTO vrx.transaction (yard, source, row, target, digest) VALUES ($1, "
                      "$2, 1, $3, sha256(record_send(ROW(1::bigint, NULL::bigint, NULL::text, "
                      "NULL::text, NULL::text, NULL::text, NULL::text, $3::float8, NULL::float8, "
                      "NULL::text, NULL::text, NULL::float8, NULL::float8, NULL::float8[]))))",
                      {north_, kNorthSource, weight}),
              "23514")
        << weight;
  }
}

TEST_F(CentralSchema, ADayIsAStoredDateThatExists) {
  EXPECT_EQ(Table("SELECT vrx.stored_day(d) FROM unnest(ARRAY['2024-02-29', '2023-02-28', "
                  "'2024-12-31', '0001-01-01', '2023-02-29', '2024-04-31', '2024-13-01', "
                  "'2024-00-10', '2024-01-00', '0000-01-01', '2024-1-01', '24-01-01', "
                  "'2024-01-01 ', '', NULL]) AS t (d)"),
            "2024-02-29\n2023-02-28\n2024-12-31\n0001-01-01\nNULL\nNULL\nNULL\nNULL\nNULL\nNULL\n"
            "NULL\nNULL\nNULL\nNULL\nNULL\n");
}

TEST_F(CentralSchema, APushProvesTheRowsThatTheServerHas) {
  Push(north_, {{.row = 1, .number = 1, .type = "BATCH", .target = 0.1, .actual = 0.2},
                {.row = 3, .number = 1, .type = "FEED", .target = 0.1, .actual = 0.7}});
  Push(north_, {{.row = 9, .number = 2, .type = "BATCH", .target = 1e15, .actual = 0.1}});
  EXPECT_EQ(Table("SELECT first_row, last_row, rows, target, actual_batch, actual_feed, login FROM "
                  "vrx.push ORDER BY first_row"),
            "1|3|2|0.2|0.2|0.7|chief\n9|9|1|1000000000000000|0.1|0|chief\n");
  EXPECT_EQ(Value("SELECT digest = (SELECT sha256(string_agg(t.digest, ''::bytea ORDER BY t.row)) "
                  "FROM vrx.transaction t WHERE t.row <= 3) FROM vrx.push WHERE first_row = 1"),
            "t");
  EXPECT_EQ(Value("SELECT b.chain = sha256(a.chain || b.digest) AND a.chain = "
                  "sha256(decode(repeat('00', 32), 'hex') || a.digest) FROM vrx.push a, vrx.push b "
                  "WHERE a.first_row = 1 AND b.first_row = 9"),
            "t");
}

TEST_F(CentralSchema, RowsArePushedOnce) {
  Push(north_, {{.row = 1, .number = 1, .type = "BATCH"}, {.row = 5, .number = 1, .type = "FEED"}});
  EXPECT_EQ(StateOf(chief_,
                    "INSERT INTO vrx.push (yard, source, first_row, last_row, generation, unit, "
                    "client) VALUES ($1, $2, 5, 9, $2, 'LB', 1)",
                    {north_, kNorthSource}),
            "23505");
}

TEST_F(CentralSchema, AProofIsOfTheStoredDigestsOrOfTheRowsAsTheyAre) {
  Push(north_, {{.row = 1, .number = 1, .type = "BATCH", .target = 2},
                {.row = 4, .number = 1, .type = "BATCH", .target = 3},
                {.row = 10, .number = 2, .type = "BATCH", .target = 4}});
  const auto proof = [this](const std::string& last, const std::string& anew) {
    return Table("SELECT rows, target, encode(digest, 'hex') FROM vrx.row_proof($1, $2, 1, $3, $4)",
                 {north_, kNorthSource, last, anew});
  };
  const std::string whole = proof("10", "true");
  EXPECT_THAT(whole, HasSubstr("3|9|"));
  EXPECT_EQ(proof("10", "false"), whole);
  EXPECT_THAT(proof("9", "true"), HasSubstr("2|5|"));
  EXPECT_THAT(proof("0", "true"), HasSubstr("0|0|e3b0c44298fc1c14"));
  chief_.Query("ALTER TABLE vrx.transaction DROP CONSTRAINT row_equals_its_digest");
  chief_.Query("UPDATE vrx.transaction SET recipe = 'r' WHERE row = 4");
  EXPECT_EQ(proof("10", "false"), whole);
  EXPECT_NE(proof("10", "true"), whole);
}

// Small ones are summed as whole millionths, all others as decimal texts.
TEST_F(CentralSchema, SumsOfAProofAreExactForAnyWeight) {
  chief_.Query("ALTER TABLE vrx.transaction DROP CONSTRAINT row_equals_its_digest");
  int row = 0;
  for (const std::string weight : {"0.1", "0.2", "1e-7", "-0", "1e300", "-1e300", "1e15", "NULL",
                                   "999999999.999999", "-1000000000", "123456.7890625", "0.3"}) {
    chief_.Query(
        "INSERT INTO vrx.transaction (yard, source, row, target, digest) VALUES ($1, $2, "
        "$3, nullif($4, 'NULL')::float8, '')",
        {north_, kNorthSource, std::to_string(++row), weight});
  }
  EXPECT_EQ(
      Value("SELECT target FROM vrx.row_proof($1, $2, 1, 100, false)", {north_, kNorthSource}),
      "1000000000123457.3890616");
}

TEST_F(CentralSchema, ABatchBelongsToTheDayOfItsFirstLoad) {
  Push(north_, {{.row = 1, .number = 1, .type = "FEED", .date = "2024-01-01"},
                {.row = 2, .number = 1, .type = "BATCH", .date = "2024-01-02"},
                {.row = 3, .number = 1, .type = "BATCH", .date = "2024-01-03"},
                {.row = 4, .number = 2, .type = "FEED", .date = "2024-01-04"},
                {.row = 5, .type = "BATCH", .date = "2024-01-05"},
                {.row = 6, .type = "BATCH", .date = "2024-01-06"},
                {.row = 7, .number = 3, .type = "OTHER", .date = "2024-01-07"}});
  const std::string days = "SELECT of_load, day FROM vrx.batch_day ORDER BY day";
  EXPECT_EQ(Table(days), "t|2024-01-02\nf|2024-01-04\nt|2024-01-05\nt|2024-01-06\n");
  Push(north_, {{.row = 8, .number = 2, .type = "BATCH", .date = "2024-01-08"},
                {.row = 9, .number = 1, .type = "BATCH", .date = "2024-01-09"}});
  EXPECT_EQ(Table(days), "t|2024-01-02\nf|2024-01-04\nt|2024-01-05\nt|2024-01-06\nt|2024-01-08\n");
}

}  // namespace
}  // namespace vrx::testing
