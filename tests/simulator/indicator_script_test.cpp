#include "simulator/indicator_script.h"

#include <string>

#include <gtest/gtest.h>

#include "support/temp_folder.h"

namespace vrx::simulator {
namespace {

using std::chrono::milliseconds;
using ::vrx::testing::TempFolder;

Step Only(const std::string& text) {
  const std::vector<Step> steps = ParseScript(text);
  EXPECT_EQ(steps.size(), 1U) << text;
  return steps.empty() ? Step{} : steps.front();
}

std::string Refusal(const std::string& text) {
  try {
    ParseScript(text);
  } catch (const ScriptError& error) {
    return error.what();
  }
  return "";
}

TEST(IndicatorScript, StepsKeepTheirLines) {
  const auto steps = ParseScript("# a comment\n\nsend 15\r\n  wait 250 # and another\nexpect 1F");
  ASSERT_EQ(steps.size(), 3U);
  EXPECT_EQ(steps[0].kind, Step::Kind::kSend);
  EXPECT_EQ(steps[0].line, 3);
  EXPECT_EQ(steps[0].bytes, "\x15");
  EXPECT_EQ(steps[1].kind, Step::Kind::kWait);
  EXPECT_EQ(steps[1].line, 4);
  EXPECT_EQ(steps[1].time, milliseconds{250});
  EXPECT_EQ(steps[2].kind, Step::Kind::kExpect);
  EXPECT_EQ(steps[2].line, 5);
}

TEST(IndicatorScript, NothingButCommentsIsAScript) {
  EXPECT_TRUE(ParseScript("").empty());
  EXPECT_TRUE(ParseScript("# nothing\n \t\r\n#").empty());
}

TEST(IndicatorScript, BytesAreHexadecimal) {
  EXPECT_EQ(Only("send 00 7b ff 1F").bytes, std::string("\0{\xFF\x1F", 4));
  EXPECT_EQ(Only("expect 007bff").bytes, std::string("\0{\xFF", 3));
}

TEST(IndicatorScript, ExpectHasALimit) {
  EXPECT_EQ(Only("expect 15").time, kExpectLimit);
  EXPECT_EQ(Only("expect 15 1F within 300").time, milliseconds{300});
  EXPECT_EQ(Only("expect 15 1F within 300").bytes, "\x15\x1F");
}

TEST(IndicatorScript, PathIsTheRestOfTheLine) {
  const TempFolder folder;
  const std::string path = folder.Write("two words#1", "data").string();
  EXPECT_EQ(Only("send-file " + path + " # comment").path, path);
  EXPECT_EQ(Only("expect-file " + path).path, path);
  const Step limited = Only("expect-file " + path + " within 20");
  EXPECT_EQ(limited.path, path);
  EXPECT_EQ(limited.time, milliseconds{20});
  EXPECT_EQ(Only("save /no/such folder/x").path, "/no/such folder/x");
}

TEST(IndicatorScript, RefusesAnInvalidStepAndNamesTheLine) {
  EXPECT_EQ(Refusal("send 15\nsned 15"),
            "line 2: sned is no step; there are send, send-file, expect, expect-file, save and "
            "wait");
}

TEST(IndicatorScript, RefusesWhatAStepCannotRead) {
  for (const char* line : {"send",
                           "send 1",
                           "send 1G",
                           "send 15 1",
                           "send 0x15",
                           "send -1",
                           "expect",
                           "expect within 5",
                           "expect 15 within",
                           "expect 15 within soon",
                           "expect 15 within -1",
                           "expect 15 within 1.5",
                           "wait",
                           "wait soon",
                           "wait -1",
                           "wait 5 ms",
                           "wait 4294967296",
                           "save",
                           "send-file",
                           "expect-file",
                           "SEND 15"}) {
    EXPECT_TRUE(Refusal(line).starts_with("line 1: ")) << line;
  }
}

TEST(IndicatorScript, RefusesAFileThatCannotBeRead) {
  EXPECT_TRUE(Refusal("send-file /no/such/file").starts_with("line 1: cannot read /no/such/file"));
  EXPECT_TRUE(Refusal("\nexpect-file /no/such/file").starts_with("line 2: cannot read "));
}

TEST(IndicatorScript, FileMayBeMadeByAnEarlierSave) {
  EXPECT_EQ(ParseScript("save /no/such/file\nsend-file /no/such/file").size(), 2U);
  EXPECT_NE(Refusal("send-file /no/such/file\nsave /no/such/file"), "");
}

}  // namespace
}  // namespace vrx::simulator
