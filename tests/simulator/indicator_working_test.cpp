#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <system_error>
#include <vector>

#include <gtest/gtest.h>

#include "simulator/indicator.h"
#include "support/temp_folder.h"

namespace vrx::simulator {
namespace {

const std::string kDownload =
    "{DATA_IN},L\r\n\r\n[ING]\r\n\r\n1,CORN,0\r\n\r\n[REC]\r\n\r\n1,STEERS,0,900,0,CORN;900\r\n\r\n"
    "[PEN]\r\n\r\n1,A1,300\r\n\r\n";

class WorkingIndicatorTest : public ::testing::Test {
 protected:
  WorkingIndicator Make(int days = 1) {
    return {{.first_day = ReadDay("2026-02-27"), .days = days, .ledger = ledger_},
            [this](const std::string& message) { said_.push_back(message); }};
  }
  std::string Ledger() const {
    std::ifstream in(ledger_);
    return {std::istreambuf_iterator<char>(in), {}};
  }

  vrx::testing::TempFolder folder_;
  std::filesystem::path ledger_ = folder_ / "ledger";
  std::vector<std::string> said_;
};

TEST_F(WorkingIndicatorTest, EachDownloadIsFedByOnTheDaysThatFollow) {
  WorkingIndicator indicator = Make(2);
  const auto first = indicator.Visit(kDownload);
  ASSERT_TRUE(first);
  EXPECT_NE(first->find("B,1,1,02272026,"), std::string::npos);
  EXPECT_NE(first->find("B,2,1,02282026,"), std::string::npos);
  const auto second = indicator.Visit(kDownload);
  ASSERT_TRUE(second);
  EXPECT_NE(second->find("B,1,1,03012026,"), std::string::npos);
  EXPECT_NE(Ledger().find("2026-02-27,1,STEERS,BATCH,CORN,"), std::string::npos);
  EXPECT_NE(Ledger().find("2026-03-02,2,STEERS,FEED,A1,"), std::string::npos);
  EXPECT_EQ(said_.front(), "the indicator fed by the download: days 2, weighings 4");
}

TEST_F(WorkingIndicatorTest, RecordsAndEmptyMemoryComeBackAsTheyWent) {
  WorkingIndicator indicator = Make();
  EXPECT_FALSE(indicator.Visit(""));
  EXPECT_FALSE(indicator.Visit("{BAT/FED},L\r\n"));
  EXPECT_TRUE(said_.empty());
}

TEST_F(WorkingIndicatorTest, ADownloadThatCannotBeReadIsReported) {
  WorkingIndicator indicator = Make();
  EXPECT_FALSE(indicator.Visit("{DATA_IN},L\r\n[REC]\r\n1,STEERS,0,0,0,"));
  ASSERT_EQ(said_.size(), 1U);
  EXPECT_EQ(said_[0], "the indicator cannot feed by the download: no recipe: 1,STEERS,0,0,0,");
}

TEST_F(WorkingIndicatorTest, ADownloadWithNothingToFeedIsReported) {
  WorkingIndicator indicator = Make();
  EXPECT_FALSE(indicator.Visit("{DATA_IN},L\r\n\r\n[ING]\r\n\r\n\r\n[REC]\r\n\r\n\r\n[PEN]\r\n"));
  ASSERT_EQ(said_.size(), 1U);
  EXPECT_EQ(said_[0], "the indicator cannot feed by the download: no recipe or no pen to feed");
}

TEST_F(WorkingIndicatorTest, DaysBeyondTheMemoryAreReportedAndFedNextTime) {
  WorkingIndicator indicator = Make(366);
  const auto first = indicator.Visit(kDownload);
  ASSERT_TRUE(first);
  EXPECT_LE(first->size(), 65535U);
  EXPECT_EQ(said_.back().substr(0, 30), "memory is full, days not fed: ");
  const int left = std::stoi(said_.back().substr(30));
  EXPECT_EQ(said_.front().find("the indicator fed by the download: days " +
                               std::to_string(366 - left) + ", "),
            0U);
  ASSERT_TRUE(indicator.Visit(kDownload));
  std::istringstream lines(Ledger());
  Day day = ReadDay("2026-02-26");
  std::size_t days = 0;
  for (std::string line; std::getline(lines, line);) {
    const Day next = ReadDay(line.substr(0, 10));
    if (next != day) {
      EXPECT_EQ(next, day + std::chrono::days(1)) << line;
      day = next;
      ++days;
    }
  }
  EXPECT_EQ(days, 2 * static_cast<std::size_t>(366 - left));
}

// A day whose records have that many bytes: a pen's ID of two digits makes them one longer.
std::string DownloadWithRecordsOf(std::size_t bytes) {
  const auto download = [](std::size_t long_ids) {
    std::string text =
        "{DATA_IN},L\r\n[ING]\r\n1,CORN,0\r\n[REC]\r\n1,STEERS,0,9,0,CORN;9\r\n[PEN]\r\n";
    for (std::size_t pen = 0; pen < 1470; ++pen) {
      text += pen < long_ids ? "10,A,300\r\n" : "1,A,300\r\n";
    }
    return text;
  };
  const Day day = ReadDay("2026-02-27");
  FeedingWork work(ReadFeedPlan(download(0)),
                   static_cast<std::uint32_t>(day.time_since_epoch().count()));
  EXPECT_TRUE(work.FeedDay(day, std::string::npos));
  return download(bytes - work.Records().size());
}

TEST_F(WorkingIndicatorTest, ItsFileHasAtMost65535Bytes) {
  const auto full = Make().Visit(DownloadWithRecordsOf(65535));
  ASSERT_TRUE(full);
  EXPECT_EQ(full->size(), 65535U);
  EXPECT_FALSE(Make().Visit(DownloadWithRecordsOf(65536)));
  EXPECT_EQ(said_.back(), "the indicator cannot feed by the download: no recipe or no pen to feed");
}

TEST_F(WorkingIndicatorTest, ALedgerThatCannotBeWrittenIsThrown) {
  ledger_ = folder_ / "none" / "ledger";
  WorkingIndicator indicator = Make();
  EXPECT_THROW(indicator.Visit(kDownload), std::system_error);
}

TEST(ReadDay, TakesDaysOfTheCalendarOnly) {
  EXPECT_EQ(std::chrono::year_month_day(ReadDay("2028-02-29")).day(), std::chrono::day{29});
  for (const char* text :
       {"", "2026-2-1", "2026-02-30", "2026-13-01", "2026/01-05", "2026-01/05", "20260105xx"}) {
    EXPECT_THROW(ReadDay(text), std::invalid_argument) << text;
  }
}

}  // namespace
}  // namespace vrx::simulator
