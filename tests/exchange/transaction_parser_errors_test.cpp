#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "exchange/parsed_text.h"
#include "exchange/transaction_parser.h"
#include "exchange/transaction_texts.h"

namespace vrx::testing {
namespace {

std::string ErrorOf(std::string_view text) { return ParsedText(text).error; }

// Replaces the first `what`, which must occur in the text.
std::string With(std::string_view text, std::string_view what, std::string_view replacement) {
  std::string changed(text);
  changed.replace(changed.find(what), what.size(), replacement);
  return changed;
}

// A file with one batch record with these lists and no feeds.
std::string ErrorOfLists(const std::string& lists) {
  return ErrorOf(FileOf("B,1,3,01152009,2," + lists + "\r\n", ""));
}

// `count` entries and two padding entries.
std::string List(std::string_view entry, int count) {
  std::string list;
  for (int i = 0; i < count; ++i) {
    list.append(entry).append(",");
  }
  return list + "0,0";
}

std::string RecordOf(const std::string& transaction, int ingredients) {
  return "B," + transaction + ",3,01152009,2," + List("4", ingredients) + ";" +
         List("0830", ingredients) + ";" + List("1", ingredients) + ";" + List("1", ingredients) +
         "\r\n";
}

TEST(ParseErrors, RefusesATextBeyondTheLimit) {
  std::string text(kWorkedExample);
  text.resize(65536, ' ');
  EXPECT_EQ(ErrorOf(text), "Input data from KRM exceeded limit.");
  text.pop_back();
  EXPECT_EQ(ErrorOf(text), "");
}

TEST(ParseErrors, NeedsTheIdentifierWithItsComma) {
  EXPECT_EQ(ErrorOf(""), "No file-type identifier detected.");
  EXPECT_EQ(ErrorOf(With(kWorkedExample, "{BAT/FED},", "{BAT/FED};")),
            "No file-type identifier detected.");
  EXPECT_EQ(ErrorOf(With(kWorkedExample, "{BAT/FED}", "{bat/fed}")),
            "No file-type identifier detected.");
}

TEST(ParseErrors, NeedsTheBatchMark) {
  EXPECT_EQ(ErrorOf(With(kWorkedExample, "[BAT],", "[BAT];")),
            "No batch section identifier detected.");
}

TEST(ParseErrors, NeedsTheBatchTerminator) {
  EXPECT_EQ(ErrorOf("{BAT/FED},L\r\n[BAT],B,1\r\n[FED],B,1\r\n"),
            "No batch section terminator detected.");
}

TEST(ParseErrors, NeedsTheFeedMarkEvenWithoutFeeds) {
  EXPECT_EQ(ErrorOf("{BAT/FED},L\r\n[BAT]," + OneIngredient{}.Record() + "\r\n"),
            "No feed section identifier detected.");
}

TEST(ParseErrors, NeedsTheFeedTerminator) {
  EXPECT_EQ(ErrorOf("{BAT/FED},L\r\n[BAT]," + OneIngredient{}.Record() + "\r\n[FED],"),
            "No feed section terminator detected.");
}

TEST(ParseErrors, NeedsAKnownUnit) {
  EXPECT_EQ(ErrorOf(With(kWorkedExample, ",L\r", ",T\r")), "No units-of-measure detected.");
  EXPECT_EQ(ErrorOf(With(kWorkedExample, ",L\r", ",\r")), "No units-of-measure detected.");
  EXPECT_EQ(ErrorOf(std::string(400, ' ') + std::string(kWorkedExample)),
            "No units-of-measure detected.");
}

TEST(ParseErrors, NeedsBatchRows) {
  EXPECT_EQ(ErrorOf(FileOf("\r\n", "")), "Error computing total batches");
  EXPECT_EQ(ErrorOf(FileOf(OneIngredient{.time = "830"}.Record(), "")),
            "Error computing total batches");
  EXPECT_EQ(ErrorOf(FileOf("B,1,3,01152009,2,4,0,0;0830,0,0\r\n", "")),
            "Error computing total batches");
}

TEST(ParseErrors, RefusesAHeaderFollowedByAnEmptyLine) {
  EXPECT_EQ(ErrorOf(With(kWorkedExample, "[BAT],", "\r\n[BAT],")),
            "Invalid batch section detected.");
}

TEST(ParseErrors, TreatsATerminatorDirectlyBeforeTheMarkAsAnEmptySection) {
  EXPECT_EQ(ErrorOf("{BAT/FED},L\r\n\r[BAT],[FED],\r\n\r\n"), "Error computing total batches");
}

TEST(ParseErrors, RefusesAFeedTerminatorBeforeItsMark) {
  EXPECT_EQ(ErrorOf(With(kWorkedExample, "[FED],", "\r\n\r\n[FED],")),
            "Invalid feed section detected.");
}

TEST(ParseErrors, TakesThirtyTwoIngredientsButNotTheThirtyThird) {
  EXPECT_EQ(ErrorOf(FileOf(RecordOf("1", 32), "")), "");
  EXPECT_EQ(ErrorOf(FileOf(RecordOf("1", 33), "")), "Too many ingredients in a batch detected.");
}

TEST(ParseErrors, CountsTheIngredientsOfANumberOverAllItsRecords) {
  EXPECT_EQ(ErrorOf(FileOf(RecordOf("1", 31) + RecordOf("1", 1), "")), "");
  EXPECT_EQ(ErrorOf(FileOf(RecordOf("1", 31) + RecordOf("1", 2), "")),
            "Too many ingredients in a batch detected.");
  EXPECT_EQ(ErrorOf(FileOf(RecordOf("1", 32) + RecordOf("2", 32), "")), "");
}

TEST(ParseErrors, RefusesAListWithoutEnoughPadding) {
  EXPECT_EQ(ErrorOfLists("4,0,0;0830,0,0;1,0,0;1,0,0"), "");
  EXPECT_EQ(ErrorOfLists("4,7;0830,0835,0,0;1,1,0,0;1,1,0,0"), "Invalid list padding detected.");
  EXPECT_EQ(ErrorOfLists("4,0,0;0830,0;1,0,0;1,0,0"), "Invalid list padding detected.");
  EXPECT_EQ(ErrorOfLists("4,0,0;0830,0,0;1,0;1,0,0"), "Invalid list padding detected.");
  EXPECT_EQ(ErrorOfLists("4,0,0;0830,0,0;1,0,0;1,0"), "Invalid list padding detected.");
  EXPECT_EQ(ErrorOfLists("4,7,0,0;0830,0835,0,0;1;1,1,0,0"), "Invalid list padding detected.");
}

TEST(ParseErrors, RefusesABatchSectionThatEndsInsideARecord) {
  // Only a "B," is counted, but any mark is read.
  EXPECT_EQ(ErrorOf(FileOf(OneIngredient{}.Record() + "b,2\r\n", "")),
            "Incomplete batch record detected.");
  EXPECT_EQ(ErrorOf(FileOf("B,1,3,01152009,2,4,0,0;0830,0,0;1,0,0\r\n", "")),
            "Incomplete batch record detected.");
}

TEST(ParseErrors, TreatsALoneCrInAListAsAComma) {
  EXPECT_EQ(ErrorOf(FileOf("B,1,3,01152009,2,4,0,0;0830,0,0;1,0,0;1,0\r0\r0\r\n", "")), "");
}

TEST(ParseErrors, RefusesMoreRowsThanCounted) {
  // The "0" among the times ends the count at one, but two ingredients are read.
  EXPECT_EQ(ErrorOfLists("4,7,0,0;0830,0,0,0;1,1,0,0;1,1,0,0"), "Too many records detected.");
  EXPECT_EQ(ErrorOfLists("4,7,0,0;0830,083,0,0;1,1,0,0;1,1,0,0"), "Too many records detected.");
  // The mark of a feed is counted but not checked.
  EXPECT_EQ(ErrorOf(FileOf(OneIngredient{}.Record(),
                           FeedOf("1", "5.0") + With(FeedOf("1", "5.0"), "B", "b"))),
            "Too many records detected.");
}

TEST(ParseErrors, RefusesAnInvalidTransactionNumber) {
  for (const char* number : {"0", "-1", "", " ", "x", "1x", "2147483647", "2147483648", "1e10"}) {
    EXPECT_EQ(ErrorOf(FileOf(OneIngredient{.transaction = number}.Record(), "")),
              "Invalid transaction number detected.")
        << number;
  }
  EXPECT_EQ(ErrorOf(FileOf(OneIngredient{.transaction = "2147483646"}.Record(), "")), "");
}

TEST(ParseErrors, RefusesANeededFeedWeightThatIsNotANumber) {
  for (const char* weight : {"x", " ", "1.2.3", "1e39", "12kg"}) {
    EXPECT_EQ(ErrorOf(FileOf(OneIngredient{}.Record(), FeedOf("1", weight))),
              "Invalid feed weight detected.")
        << weight;
  }
  EXPECT_EQ(ErrorOf(FileOf(OneIngredient{.actual = "0"}.Record(), FeedOf("1", "x"))), "");
}

TEST(ParseErrors, RefusesAShareBeyondSingle) {
  // A negative weight in the batch makes a percentage far above 100.
  EXPECT_EQ(ErrorOf(FileOf("B,1,3,01152009,2,4,7,0,0;0830,0835,0,0;1,1,0,0;9000,-8999,0,0\r\n",
                           FeedOf("1", "3e38"))),
            "Invalid feed weight detected.");
}

TEST(ParseErrors, RefusesAnIngredientWithoutAColumnWhereOneIsNeeded) {
  for (const char* id : {"-1", "x", "0.4", " 0"}) {
    const std::string record = OneIngredient{.ingredient = id}.Record();
    EXPECT_EQ(ErrorOf(FileOf(record, FeedOf("1", "5.0"))), "Invalid ingredient ID detected.") << id;
    EXPECT_EQ(ErrorOf(FileOf(record, "")), "") << id;
  }
}

TEST(ParseErrors, RefusesATotalBeyond32Bits) {
  const std::string limit = OneIngredient{.actual = "2147483647"}.Record();
  EXPECT_EQ(ErrorOf(FileOf(limit, "")), "");
  EXPECT_EQ(ErrorOf(FileOf(limit + OneIngredient{.actual = "1"}.Record(), "")),
            "Batch total exceeded limit.");
  EXPECT_EQ(ErrorOf(FileOf(limit + OneIngredient{.transaction = "2"}.Record(), "")), "");
}

TEST(ParseErrors, KeepsTheRowsBeforeTheError) {
  const ParsedText parsed(
      FileOf(OneIngredient{}.Record() + OneIngredient{.transaction = "x"}.Record(), ""));
  EXPECT_EQ(parsed.error, "Invalid transaction number detected.");
  EXPECT_EQ(parsed.Cell(1, kImportedTransactionNumber), "1");
  EXPECT_EQ(parsed.file.Imported().RowCount(), 2U);
}

TEST(TransactionParser, RefusesAnUnknownState) {
  TransFile file;
  ImportedData table;
  RecordingProgress progress;
  const ImportHooks hooks;
  for (const int state : {-1, 0, 13, 1000}) {
    TransactionParser parser(kWorkedExample, file, table, progress, hooks, [] {});
    EXPECT_EQ(parser.Run(state), "Invalid parsing condition occured.");
    EXPECT_EQ(progress.Message(), "Invalid parsing condition occured.");
  }
}

TEST(TransactionParser, ReportsEveryStateThatWasNotPrepared) {
  TransFile file;
  ImportedData table;
  RecordingProgress progress;
  const ImportHooks hooks;
  const auto run = [&](int state) {
    TransactionParser parser({}, file, table, progress, hooks, [] {});
    return parser.Run(state);
  };
  EXPECT_EQ(run(3), "No batch section identifier detected.");
  EXPECT_EQ(run(4), "No feed section identifier detected.");
  EXPECT_EQ(run(5), "No units-of-measure detected.");
  EXPECT_EQ(run(6), "Error computing total batches");
  EXPECT_EQ(run(9), "Incomplete batch record detected.");
  EXPECT_EQ(run(12), "");
}

}  // namespace
}  // namespace vrx::testing
