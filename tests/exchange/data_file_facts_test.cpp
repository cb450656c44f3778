#include <chrono>
#include <string>

#include <gtest/gtest.h>

#include "exchange/unread_feeds.h"

namespace vrx::testing {
namespace {

using std::chrono::day;
using std::chrono::month;
using std::chrono::year;

std::string LoadText(int number, const std::string& date) {
  return "B," + std::to_string(number) + ",3," + date +
         ",2,4,0,0;0830,0,0;1000.0,0,0;998.0,0,0\r\n";
}

std::string FileText(const std::string& loads, const std::string& feeds = "") {
  return "{BAT/FED},L\r\n[BAT]," + loads + "\r\n[FED]," + feeds + "\r\n\r\n";
}

TEST(DataFileFacts, OfATransactionFileAreItsDaysAndBatches) {
  const DataFileFacts one = ReadDataFileFacts(FileText(LoadText(1, "01112026")));
  EXPECT_EQ(one.summary, "11-Jan-26, 1 batch");
  EXPECT_EQ(one.first_record, Date(year{2026}, month{1}, day{11}));
  const DataFileFacts two = ReadDataFileFacts(
      FileText(LoadText(1, "01122026") + LoadText(2, "01112026") + LoadText(3, "02012026")));
  EXPECT_EQ(two.summary, "11-Jan-26 to 01-Feb-26, 3 batches");
  EXPECT_EQ(two.first_record, Date(year{2026}, month{1}, day{12}));
}

TEST(DataFileFacts, ADeliveryMayBeOfAnotherDay) {
  EXPECT_EQ(
      ReadDataFileFacts(FileText(LoadText(1, "01112026"), "B,1,12,2,0915,01122026,750.0,748.5\r\n"))
          .summary,
      "11-Jan-26 to 12-Jan-26, 1 batch");
}

TEST(DataFileFacts, ARecordWithoutADateIsCountedAllTheSame) {
  for (const std::string date : {"", "011126", "13312026", "00000000", "abcdefgh"}) {
    const DataFileFacts facts = ReadDataFileFacts(FileText(LoadText(1, date)));
    EXPECT_EQ(facts.summary, "1 batch") << date;
    EXPECT_FALSE(facts.first_record.has_value()) << date;
  }
}

TEST(DataFileFacts, ADamagedTransactionFileIsNotReadable) {
  for (const std::string text :
       {"{BAT/FED}", "{BAT/FED},L\r\n", "{BAT/FED},X\r\n[BAT],B,1\r\n\r\n[FED],\r\n\r\n"}) {
    const DataFileFacts facts = ReadDataFileFacts(text);
    EXPECT_EQ(facts.summary, "not readable") << text;
    EXPECT_FALSE(facts.first_record.has_value());
  }
}

TEST(DataFileFacts, OfABackupAreTheCountsOfItsSections) {
  EXPECT_EQ(ReadDataFileFacts("{DATA_IN},L\r\n\r\n[ING]\r\n\r\n1,CORN,0\r\n2,HAY,0\r\n\r\n[REC]\r\n"
                              "\r\n1,STEERS,0,2500,0,CORN,HAY;2000,500\r\n\r\n[PEN]\r\n\r\n"
                              "1,PEN001,150\r\n3,NORTH [2],0\r\n4,X,1\r\n\r\n")
                .summary,
            "2 ingredients, 1 recipe, 3 pens");
  EXPECT_EQ(ReadDataFileFacts("{DATA_IN}").summary, "0 ingredients, 0 recipes, 0 pens");
}

TEST(DataFileFacts, OfAReportAreItsLines) {
  EXPECT_EQ(ReadDataFileFacts("{REPORT}\r\none\r\n\r\ntwo").summary, "2 lines");
  EXPECT_EQ(ReadDataFileFacts("\fpage\r\n").summary, "1 line");
  EXPECT_EQ(ReadDataFileFacts("\f").summary, "0 lines");
  EXPECT_EQ(ReadDataFileFacts("").summary, "0 lines");
}

}  // namespace
}  // namespace vrx::testing
