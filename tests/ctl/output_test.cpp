#include "ctl/output.h"

#include <sstream>

#include <gtest/gtest.h>

namespace vrx {
namespace {

std::string Written(OutputForm form, const OutputTable& table) {
  std::ostringstream out;
  WriteTable(out, form, table);
  return out.str();
}

const OutputTable kTable = {
    .header = {"ID", "Name", "HandAdd", "Target"},
    .rows = {{1, "CORN", true, 500.5}, {2, "a,\"b\"\r\nc", false, nullptr}}};

TEST(PlainOutput, SeparatesCellsByTabsAfterAHeaderLine) {
  EXPECT_EQ(Written(OutputForm::kPlain, kTable),
            "ID\tName\tHandAdd\tTarget\n1\tCORN\tYes\t500.5\n2\ta,\"b\"  c\tNo\t\n");
}

TEST(PlainOutput, ShowsABlankForEachControlCharacter) {
  EXPECT_EQ(Written(OutputForm::kPlain, {.header = {"A"},
                                         .rows = {{"a\x7F"
                                                   "b\tc\x1F"
                                                   "d\xC3\xB1 ~"}}}),
            "A\na b c d\xC3\xB1 ~\n");
}

TEST(CsvOutput, QuotesEachCharacterThatParts) {
  for (const char* const part : {",", "\r", "\n"}) {
    const std::string text = std::string("a") + part + "b";
    EXPECT_EQ(Written(OutputForm::kCsv, {.header = {"A"}, .rows = {{text}}}),
              "A\r\n\"" + text + "\"\r\n");
  }
  EXPECT_EQ(Written(OutputForm::kCsv, {.header = {"A"}, .rows = {{"\"\""}, {"a\tb;c"}}}),
            "A\r\n\"\"\"\"\"\"\r\na\tb;c\r\n");
}

TEST(CsvOutput, QuotesWhereNeededAndEndsLinesInCrLf) {
  EXPECT_EQ(Written(OutputForm::kCsv, kTable),
            "ID,Name,HandAdd,Target\r\n1,CORN,Yes,500.5\r\n2,\"a,\"\"b\"\"\r\nc\",No,\r\n");
}

TEST(JsonOutput, KeepsKindsOfValues) {
  const Json parsed = Json::parse(Written(OutputForm::kJson, kTable));
  EXPECT_EQ(parsed, Json::parse(R"([{"ID":1,"Name":"CORN","HandAdd":true,"Target":500.5},
      {"ID":2,"Name":"a,\"b\"\r\nc","HandAdd":false,"Target":null}])"));
}

TEST(JsonOutput, AnEmptyTableIsAnEmptyArray) {
  EXPECT_EQ(Written(OutputForm::kJson, {.header = {"ID"}, .rows = {}}), "[]\n");
  EXPECT_EQ(Written(OutputForm::kPlain, {.header = {"ID"}, .rows = {}}), "ID\n");
}

TEST(JsonOutput, ReplacesBytesThatAreNoUtf8) {
  EXPECT_EQ(Written(OutputForm::kJson, {.header = {"Name"}, .rows = {{"A\xFF"}}}),
            "[\n  {\n    \"Name\": \"A\xEF\xBF\xBD\"\n  }\n]\n");
}

TEST(ObjectOutput, IsOneRowOutsideJson) {
  std::ostringstream out;
  WriteObject(out, OutputForm::kPlain, {{"units", "LB"}, {"batches", 2}, {"modified", nullptr}});
  EXPECT_EQ(out.str(), "units\tbatches\tmodified\nLB\t2\t\n");
}

}  // namespace
}  // namespace vrx
