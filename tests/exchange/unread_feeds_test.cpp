#include "exchange/unread_feeds.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "exchange/parsed_text.h"
#include "exchange/transaction_texts.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

std::string BatchRecord(const std::string& transaction) {
  return OneIngredient{.transaction = transaction}.Record();
}

// Transaction number and batch or feed weight of each filled row: "1 1000.0", "1 5.0".
std::vector<std::string> Rows(const ParsedText& parsed) {
  std::vector<std::string> rows;
  for (std::size_t row = 1; parsed.file.Imported().Filled(row); ++row) {
    rows.push_back(parsed.Cell(row, kImportedTransactionNumber) + " " +
                   parsed.Cell(row, kImportedActualBatch) + parsed.Cell(row, kImportedActualFeed));
  }
  return rows;
}

// The unread records: "3: B,3,12,...".
std::vector<std::string> Unread(const ParsedText& parsed) {
  std::vector<std::string> unread;
  for (const UnreadFeed& feed : parsed.file.Imported().UnreadFeeds()) {
    unread.push_back(feed.transaction + ": " + feed.text);
  }
  return unread;
}

TEST(UnreadFeeds, DoNotHideTheFeedsAfterThem) {
  const ParsedText parsed(FileOf(BatchRecord("1") + BatchRecord("2"),
                                 FeedOf("1", "5.0") + FeedOf("3", "6.0") + FeedOf("1", "7.0") +
                                     FeedOf("2", "8.0") + FeedOf("9", "9.0")));
  ASSERT_EQ(parsed.error, "");
  EXPECT_THAT(Rows(parsed), ElementsAre("1 1000.0", "1 5.0", "1 7.0", "2 1000.0", "2 8.0"));
  EXPECT_THAT(Unread(parsed), ElementsAre("3: B,3,12,2,0915,01152009,750.0,6.0",
                                          "9: B,9,12,2,0915,01152009,750.0,9.0"));
}

// They are counted, and the rows counted for them stay empty.
TEST(UnreadFeeds, LeaveTheirRowsEmpty) {
  const ParsedText parsed(FileOf(BatchRecord("1"), FeedOf("3", "6.0") + FeedOf("1", "5.0")));
  EXPECT_EQ(parsed.file.FileRecordCount(), 3);
  EXPECT_EQ(parsed.file.Imported().RowCount(), 3U);
  EXPECT_EQ(parsed.file.Imported().FilledCount(), 2U);
}

TEST(UnreadFeeds, AreNotThoseOfALaterBatch) {
  const ParsedText parsed(FileOf(BatchRecord("1") + BatchRecord("2") + BatchRecord("3"),
                                 FeedOf("3", "6.0") + FeedOf("3", "7.0")));
  EXPECT_THAT(Rows(parsed), ElementsAre("1 1000.0", "2 1000.0", "3 1000.0", "3 6.0", "3 7.0"));
  EXPECT_THAT(Unread(parsed), IsEmpty());
}

TEST(UnreadFeeds, AreThoseOfAnEarlierBatch) {
  const ParsedText parsed(
      FileOf(BatchRecord("1") + BatchRecord("2"), FeedOf("2", "6.0") + FeedOf("1", "5.0")));
  EXPECT_THAT(Rows(parsed), ElementsAre("1 1000.0", "2 1000.0", "2 6.0"));
  EXPECT_THAT(Unread(parsed), ElementsAre("1: B,1,12,2,0915,01152009,750.0,5.0"));
}

TEST(UnreadFeeds, AreReadIfTheirNumberComesAgain) {
  const ParsedText parsed(FileOf(BatchRecord("1") + BatchRecord("2") + BatchRecord("1"),
                                 FeedOf("2", "6.0") + FeedOf("1", "5.0")));
  EXPECT_THAT(Rows(parsed), ElementsAre("1 1000.0", "2 1000.0", "2 6.0", "1 1000.0", "1 5.0"));
  EXPECT_THAT(Unread(parsed), IsEmpty());
}

TEST(UnreadFeeds, AreFoundByTheirNumberAsText) {
  const ParsedText parsed(FileOf(BatchRecord("1"), FeedOf("01", "5.0") + FeedOf(" 1", "6.0") +
                                                       FeedOf("", "7.0") + FeedOf("1", "8.0")));
  EXPECT_THAT(Rows(parsed), ElementsAre("1 1000.0", "1 8.0"));
  EXPECT_THAT(Unread(parsed), ElementsAre("01: B,01,12,2,0915,01152009,750.0,5.0",
                                          " 1: B, 1,12,2,0915,01152009,750.0,6.0",
                                          ": B,,12,2,0915,01152009,750.0,7.0"));
}

// With too few, too many or no fields: the next record is read from its beginning.
TEST(UnreadFeeds, AreSteppedOverWholeWhateverTheirForm) {
  const ParsedText parsed(
      FileOf(BatchRecord("1"), "\r\nB,7\r\nB\r\nB,8,1,2,3,4,5,6,7,8,9;10\r\n" + FeedOf("1", "5.0") +
                                   "B,1,12,2,0915,01152009,750.0,6.0,more,B\r\n" +
                                   FeedOf("1", "7.0") + "B,4\r\n"));
  ASSERT_EQ(parsed.error, "");
  EXPECT_THAT(Rows(parsed), ElementsAre("1 1000.0", "1 5.0", "1 6.0", "1 7.0"));
  EXPECT_THAT(Unread(parsed),
              ElementsAre("7: B,7", ": B", "8: B,8,1,2,3,4,5,6,7,8,9;10", "B: more,B", "4: B,4"));
}

// The feeds are counted by their marks.
TEST(UnreadFeeds, AreAllOfASectionWithoutAMark) {
  std::string feed = FeedOf("1", "5.0");
  feed[0] = 'b';
  const ParsedText parsed(FileOf(BatchRecord("1"), feed + feed));
  EXPECT_THAT(Rows(parsed), ElementsAre("1 1000.0"));
  EXPECT_THAT(Unread(parsed), ElementsAre("1: b,1,12,2,0915,01152009,750.0,5.0",
                                          "1: b,1,12,2,0915,01152009,750.0,5.0"));
}

TEST(UnreadFeeds, OfThePreviousFileAreForgotten) {
  ParsedText parsed(FileOf(BatchRecord("1"), FeedOf("3", "6.0")));
  EXPECT_EQ(parsed.file.Imported().UnreadFeeds().size(), 1U);
  parsed.file.SetText(std::string(kWorkedExample));
  EXPECT_EQ(parsed.file.ParseTransactionFile(parsed.progress, {}, parsed.op, parsed.settings), "");
  EXPECT_THAT(parsed.file.Imported().UnreadFeeds(), IsEmpty());
}

TEST(UnreadFeedsText, NamesEachWithItsNumberAndFields) {
  EXPECT_EQ(UnreadFeedsText({{.transaction = "9", .text = "B,9,12,\xC4"}}, LeftOutOf::kImport),
            "1 feed record fits no batch of the file and was not read:\r\n"
            "Transaction 9: B,9,12,\u00C4");
  EXPECT_EQ(
      UnreadFeedsText({{.transaction = "9", .text = "B,9"}, {.transaction = "8", .text = "B,8"}},
                      LeftOutOf::kStore),
      "2 feed records fit no batch of the file and were not stored:\r\n"
      "Transaction 9: B,9\r\nTransaction 8: B,8");
}

TEST(UnreadFeedsText, NamesTheFirstOfManyAndTheListAll) {
  std::vector<UnreadFeed> feeds;
  for (int i = 1; i <= 10; ++i) {
    feeds.push_back({.transaction = std::to_string(i), .text = "B," + std::to_string(i)});
  }
  EXPECT_THAT(UnreadFeedsText(feeds, LeftOutOf::kImport), EndsWith("Transaction 10: B,10"));
  EXPECT_EQ(UnreadFeedsList(feeds), "");
  feeds.push_back({.transaction = "11", .text = "B,11"});
  EXPECT_THAT(UnreadFeedsText(feeds, LeftOutOf::kImport),
              EndsWith("Transaction 10: B,10\r\nand 1 more"));
  EXPECT_THAT(UnreadFeedsList(feeds), EndsWith("Transaction 10: B,10\r\nTransaction 11: B,11"));
  feeds.resize(501);
  EXPECT_THAT(UnreadFeedsList(feeds), EndsWith("\r\nand 1 more"));
}

TEST(UnreadFeedsText, ShowsARecordOf120BytesWhole) {
  const std::string record(120, 'x');
  EXPECT_THAT(UnreadFeedsText({{.transaction = "9", .text = record}}, LeftOutOf::kImport),
              EndsWith(record));
  EXPECT_THAT(UnreadFeedsText({{.transaction = "9", .text = record + "y"}}, LeftOutOf::kImport),
              EndsWith(record + "..."));
}

TEST(UnreadFeedsText, CutsLongRecordsAndShowsNoControlCharacter) {
  const std::string text = UnreadFeedsText(
      {{.transaction = "9", .text = "B,9,\x1B[2J" + std::string(200, 'x')}}, LeftOutOf::kImport);
  EXPECT_THAT(text, HasSubstr("B,9, [2Jxxx"));
  EXPECT_THAT(text, EndsWith("xxx..."));
  EXPECT_THAT(text, Not(HasSubstr(std::string(120, 'x'))));
}

}  // namespace
}  // namespace vrx::testing
