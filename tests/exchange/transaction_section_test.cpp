#include "exchange/transaction_section.h"

#include <string>

#include <gtest/gtest.h>

#include "exchange/transaction_parser.h"

namespace vrx {
namespace {

TEST(SectionCursor, EndsAFieldAtEachDelimiterAndNotesIt) {
  SectionCursor cursor("a,b;c\r\nd\re");
  EXPECT_EQ(cursor.LastDelimiter(), Delimiter::kNone);
  EXPECT_EQ(cursor.Next(), "a");
  EXPECT_EQ(cursor.LastDelimiter(), Delimiter::kComma);
  EXPECT_EQ(cursor.Next(), "b");
  EXPECT_EQ(cursor.LastDelimiter(), Delimiter::kSemicolon);
  EXPECT_EQ(cursor.Next(), "c");
  EXPECT_EQ(cursor.LastDelimiter(), Delimiter::kCrLf);
  EXPECT_EQ(cursor.Next(), "d");
  EXPECT_EQ(cursor.LastDelimiter(), Delimiter::kCr);
}

TEST(SectionCursor, DropsWhatNoDelimiterCloses) {
  SectionCursor cursor("a,tail");
  cursor.Next();
  EXPECT_EQ(cursor.Peek(), "tail");
  EXPECT_EQ(cursor.Next(), "");
  EXPECT_TRUE(cursor.PastEnd());
  EXPECT_EQ(cursor.LastDelimiter(), Delimiter::kComma);
}

TEST(SectionCursor, StaysAtTheEnd) {
  SectionCursor cursor("a\r");
  cursor.Next();
  EXPECT_TRUE(cursor.PastEnd());
  EXPECT_EQ(cursor.Next(), "");
  EXPECT_EQ(cursor.Next(), "");
  EXPECT_EQ(cursor.LastDelimiter(), Delimiter::kCr);
  EXPECT_EQ(cursor.Peek(), "");
}

TEST(SectionCursor, TreatsALoneLineFeedAsText) {
  SectionCursor cursor("\na\n,b");
  EXPECT_EQ(cursor.Next(), "\na\n");
}

TEST(SectionCursor, PeekDoesNotMove) {
  SectionCursor cursor("12;13,");
  EXPECT_EQ(cursor.Peek(), "12");
  EXPECT_EQ(cursor.Peek(), "12");
  EXPECT_EQ(cursor.LastDelimiter(), Delimiter::kNone);
  EXPECT_EQ(cursor.Next(), "12");
  EXPECT_EQ(cursor.Peek(), "13");
}

TEST(BatchSection, EndsAtACrOrPastItsLastCharacter) {
  BatchSection section("a,\r\nb,");
  EXPECT_FALSE(section.AtBatchSectionEnd());
  section.NextBatchField();
  EXPECT_TRUE(section.AtBatchSectionEnd());
  section.NextBatchField();
  EXPECT_FALSE(section.AtBatchSectionEnd());
  section.NextBatchField();
  EXPECT_TRUE(section.AtBatchSectionEnd());
}

TEST(FeedSection, PeeksAtTheSecondFieldOfTheNextRecord) {
  FeedSection section("B,17,x\r\nB,18,y\r\n");
  EXPECT_EQ(section.PeekFeedTransaction(), "17");
  EXPECT_EQ(section.PeekFeedTransaction(), "17");
  EXPECT_EQ(section.NextFeedField(), "B");
  EXPECT_EQ(section.NextFeedField(), "17");
  EXPECT_EQ(section.NextFeedField(), "x");
  EXPECT_EQ(section.PeekFeedTransaction(), "18");
}

TEST(FeedSection, PeeksNothingAfterTheLastRecord) {
  FeedSection section("B,17\r\n\r");
  section.NextFeedField();
  section.NextFeedField();
  EXPECT_EQ(section.PeekFeedTransaction(), "");
}

TEST(CountBatchRows, CountsTheTimesOfEachRecord) {
  const BatchCounts counts = CountBatchRows(
      "[BAT],B,1,3,d,2,4,7,0,0;0830,0835,0,0;1,2,0,0;1,2,0,0\r\n"
      "B,2,3,d,2,4,0,0,0;0910pm,0,0,0;1,0,0,0;1,0,0,0\r\n\r");
  EXPECT_EQ(counts.batches, 2);
  EXPECT_EQ(counts.rows, 3);
}

TEST(CountBatchRows, StopsAtTheFirstEntryThatIsNoTime) {
  EXPECT_EQ(CountBatchRows("B,;0830,0,0835,0;").rows, 1);
  EXPECT_EQ(CountBatchRows("B,;0830,08301,0835,0;").rows, 1);
  EXPECT_EQ(CountBatchRows("B,;083,0835,0;").rows, 0);
  EXPECT_EQ(CountBatchRows("B,;083000,abcd,0;").rows, 2);
}

TEST(CountBatchRows, IgnoresTextAfterTheLastComma) {
  EXPECT_EQ(CountBatchRows("B,;0830,0835;").rows, 1);
  EXPECT_EQ(CountBatchRows("B,;0830;").rows, 0);
}

TEST(CountBatchRows, IsNothingWithoutAMark) {
  const BatchCounts counts = CountBatchRows("[BAT],1,2;0830,0;");
  EXPECT_EQ(counts.batches, 0);
  EXPECT_EQ(counts.rows, 0);
}

TEST(CountBatchRows, IsNothingWhereASemicolonIsMissing) {
  const BatchCounts counts = CountBatchRows("B,1;0830,0;B,2;0830,0");
  EXPECT_EQ(counts.batches, 0);
  EXPECT_EQ(counts.rows, 0);
}

TEST(CountBatchRows, TreatsAMarkInsideAFieldAsABatch) {
  const BatchCounts counts = CountBatchRows("B,1,3,d,BOB,4,0,0;0830,0,0;1,0,0;1,0,0\r\n");
  EXPECT_EQ(counts.batches, 2);
  EXPECT_EQ(counts.rows, 2);
}

TEST(CountBatchRows, CountsBeyond32Bits) {
  // 200,000 marks share one list of 20,000 times: 4,000,000,000 rows.
  std::string section;
  for (int mark = 0; mark < 200'000; ++mark) {
    section += "B,";
  }
  section += ";";
  for (int entry = 0; entry < 20'000; ++entry) {
    section += "0830,";
  }
  section += "0;";
  const BatchCounts counts = CountBatchRows(section);
  EXPECT_EQ(counts.batches, 200'000);
  EXPECT_EQ(counts.rows, 4'000'000'000);
  EXPECT_EQ(KeptCount(counts.rows), -1);
}

TEST(KeptCount, HoldsWhat32BitsHold) {
  EXPECT_EQ(KeptCount(0), 0);
  EXPECT_EQ(KeptCount(2'147'483'647), 2'147'483'647);
  EXPECT_EQ(KeptCount(2'147'483'648), -1);
}

TEST(CountFeedRecords, CountsEveryB) {
  EXPECT_EQ(CountFeedRecords("[FED],\r\n\r"), 0);
  EXPECT_EQ(CountFeedRecords("[FED],B,1\r\nB,1\r\n\r"), 2);
  EXPECT_EQ(CountFeedRecords("[FED],B,1,PENB,BOB\r\n\r"), 4);
}

}  // namespace
}  // namespace vrx
