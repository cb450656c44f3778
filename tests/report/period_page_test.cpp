#include "report/period_page.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "database/connection.h"
#include "support/small_history.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

// Batch 1 of 14 March, fed on 15 March; batch 2 of 15 March; batch 3, a delivery of nothing.
class PeriodPages : public ::testing::Test {
 protected:
  PeriodPage Page(PeriodKind kind, const std::string& text) {
    return ReadPeriodPage(database, {.period = *ParsePeriod(kind, text),
                                     .database = "SMALL.TDB",
                                     .made = *ParseStoredDate("2011-03-20")});
  }
  static const PageSection& Section(const PeriodPage& page, const std::string& heading) {
    for (const PageSection& section : page.sections) {
      if (section.heading == heading) {
        return section;
      }
    }
    throw std::out_of_range("no section " + heading);
  }
  // The rows as they are shown, "A01|800|810.5".
  static std::vector<std::string> Rows(const AnswerTable& table) {
    std::vector<std::string> lines;
    for (const std::vector<AnswerCell>& row : table.rows) {
      std::string& line = lines.emplace_back();
      for (std::size_t i = 0; i < row.size(); ++i) {
        line += (i == 0 ? "" : "|") + ShownText(table.columns.at(i), row[i]);
      }
    }
    return lines;
  }
  static std::vector<std::string> Captions(const AnswerTable& table) {
    std::vector<std::string> captions;
    for (const AnswerColumn& column : table.columns) {
      captions.emplace_back(column.caption);
    }
    return captions;
  }
  static std::vector<std::string> Figures(const PeriodPage& page) {
    std::vector<std::string> figures;
    for (const PageFigure& figure : page.figures) {
      figures.push_back(figure.caption + ": " + figure.text);
    }
    return figures;
  }

  TempFolder folder;
  SQLite::Database database = SmallHistory(folder);
};

TEST_F(PeriodPages, SayTheirPeriodDatabaseUnitAndDay) {
  const PeriodPage day = Page(PeriodKind::kDay, "2011-03-15");
  EXPECT_EQ(day.title, "Feeding report, day 2011-03-15");
  EXPECT_THAT(day.facts, ElementsAre("SMALL.TDB", "weights in LB", "made on 2011-03-20"));
  const PeriodPage week = Page(PeriodKind::kWeek, "2011-W11");
  EXPECT_EQ(week.title, "Feeding report, week 2011-W11");
  EXPECT_THAT(week.facts, Contains("2011-03-14 to 2011-03-20"));
  EXPECT_EQ(Page(PeriodKind::kMonth, "2011-03").title, "Feeding report, month 2011-03");
}

TEST_F(PeriodPages, HaveTheirSectionsInOrder) {
  std::vector<std::string> headings;
  for (const PageSection& section : Page(PeriodKind::kMonth, "2011-03").sections) {
    headings.push_back(section.heading);
    EXPECT_FALSE(section.how.empty()) << section.heading;
    EXPECT_FALSE(section.tables.empty() && section.sentences.empty()) << section.heading;
  }
  EXPECT_THAT(headings, ElementsAre("Loaded by ingredient", "Called and delivered by pen",
                                    "Accuracy of loading", "Operators", "Not loaded",
                                    "The five largest deviations", "Batches out of balance",
                                    "Times", "Statement"));
}

TEST_F(PeriodPages, ShowTheFiguresOfTheirPeriodOnly) {
  EXPECT_THAT(
      Figures(Page(PeriodKind::kDay, "2011-03-14")),
      ElementsAre("Loaded: 1600.5 LB", "Fed: 1590.5 LB", "Batches: 1", "Not loaded: 0",
                  "Within 2 %: 100.0 %", "Batches out of balance: 0", "Batches never fed: 0"));
  const PeriodPage week = Page(PeriodKind::kWeek, "2011-W11");
  EXPECT_THAT(Figures(week), Contains("Loaded: 2100.5 LB"));
  const AnswerTable& loaded = Section(week, "Loaded by ingredient").tables.at(0);
  EXPECT_THAT(Captions(loaded), ElementsAre("Ingredient", "Loads", "Target", "Actual", "Net",
                                            "Net %", "Gross"));  // nothing was without target
  EXPECT_THAT(Rows(loaded),
              ElementsAre("CORN|2|1500|1498|-2|-0.1|2", "HAY|1|600|602.5|2.5|0.4|2.5"));
}

TEST_F(PeriodPages, ShowPensByTheDayOfTheDelivery) {
  const PageSection day =
      Section(Page(PeriodKind::kDay, "2011-03-15"), "Called and delivered by pen");
  EXPECT_THAT(Rows(day.tables.at(0)), ElementsAre("A01|1300|1305.8|5.8|0.4|2|STEERS|Yes|09:30|No",
                                                  "A02|1100|780|-320|-29.1|2|STEERS|No|10:00|No"));
  EXPECT_THAT(Section(Page(PeriodKind::kDay, "2011-03-14"), "Called and delivered by pen").tables,
              IsEmpty());
  const PageSection month =
      Section(Page(PeriodKind::kMonth, "2011-03"), "Called and delivered by pen");
  EXPECT_THAT(Rows(month.tables.at(0)),
              ElementsAre("A01|1300|1305.8|5.8|0.4|2|1|0|1", "A02|1100|780|-320|-29.1|2|1|0|0"));
}

TEST_F(PeriodPages, ListLoadsThatWereForgotten) {
  database.exec("UPDATE Transactions SET ActualBatch = 0 WHERE Ingredient = 'HAY'");
  const PeriodPage page = Page(PeriodKind::kDay, "2011-03-14");
  EXPECT_THAT(Figures(page), Contains("Not loaded: 1"));
  EXPECT_THAT(Rows(Section(page, "Not loaded").tables.at(0)),
              ElementsAre("2011-03-14|08:31|HAY|600|2|STEERS|1"));
  EXPECT_THAT(Section(page, "Not loaded").sentences, IsEmpty());
  EXPECT_THAT(Section(Page(PeriodKind::kDay, "2011-03-15"), "Not loaded").sentences,
              ElementsAre("Every load with a target was loaded."));
}

TEST_F(PeriodPages, ListAHundredForgottenLoadsAndCountAll) {
  database.exec(
      "WITH RECURSIVE N(I) AS (SELECT 1 UNION ALL SELECT I + 1 FROM N WHERE I < 130) "
      "INSERT INTO Transactions ([Transaction], Type, Ingredient, Target, ActualBatch, Date, Time) "
      "SELECT 10, 'BATCH', 'CORN', 5, 0, '2011-03-14', '09:00:00' FROM N");
  const PeriodPage page = Page(PeriodKind::kDay, "2011-03-14");
  EXPECT_THAT(Section(page, "Not loaded").tables.at(0).rows, SizeIs(100));
  EXPECT_THAT(Section(page, "Not loaded").sentences,
              ElementsAre("These are the first 100 of 130."));
}

TEST_F(PeriodPages, ListTheLargestDeviationsAndUnbalancedBatches) {
  database.exec("UPDATE Transactions SET ActualFeed = 100 WHERE Pen = 'A02'");
  const PeriodPage page = Page(PeriodKind::kWeek, "2011-W11");
  EXPECT_THAT(Rows(Section(page, "The five largest deviations").tables.at(0)),
              ElementsAre("2011-03-14|08:31|HAY|2|600|602.5|2.5|0.4|STEERS|1",
                          "2011-03-14|08:30|CORN|2|1000|998|-2|-0.2|STEERS|1"));
  EXPECT_THAT(Rows(Section(page, "Batches out of balance").tables.at(0)),
              ElementsAre("2011-03-14|1|STEERS|2|1600.5|910.5|690|43.1|out",
                          "2011-03-15|3|STEERS|10||100|-100||never loaded"));
  EXPECT_THAT(Figures(page), Contains("Batches out of balance: 1"));
}

TEST_F(PeriodPages, NameOperatorsWhoStopShortOfTheTarget) {
  database.exec(
      "WITH RECURSIVE N(I) AS (SELECT 1 UNION ALL SELECT I + 1 FROM N WHERE I < 50) "
      "INSERT INTO Transactions ([Transaction], Type, UserID, Ingredient, Target, ActualBatch, "
      "Date, Time) SELECT 10 + I, 'BATCH', '7', 'CORN', 1000, 985, '2011-03-14', '09:00:00' FROM "
      "N");
  const PeriodPage page = Page(PeriodKind::kDay, "2011-03-14");
  EXPECT_THAT(Figures(page), Contains("Operators who stop short: 7 (-1.5 %)"));
  EXPECT_THAT(Rows(Section(page, "Operators").tables.at(0)),
              ElementsAre("2|2|||0.1|", "7|50|100.0|100.0|-1.5|Yes"));
}

TEST_F(PeriodPages, SayTheYardstickWithItsSourceUnlessALimitIsChanged) {
  const auto sentences =
      Section(Page(PeriodKind::kMonth, "2011-03"), "Accuracy of loading").sentences;
  ASSERT_THAT(sentences, SizeIs(4));
  EXPECT_THAT(sentences[0], HasSubstr("W324, 2015"));
  EXPECT_THAT(sentences[1], HasSubstr("this yard 100.0 %"));
  const PeriodPage changed =
      ReadPeriodPage(database, {.period = *ParsePeriod(PeriodKind::kMonth, "2011-03"),
                                .limits = {.percent = 0.25, .division = 1.5}});
  EXPECT_THAT(Section(changed, "Accuracy of loading").sentences, IsEmpty());
  EXPECT_EQ(Section(changed, "Accuracy of loading").how,
            "Within limit: less than 0.25 % from the target. Far off: more than 137.8 LB from it. "
            "A deviation of up to 1.5 LB, the division of the scale, is within the limit.");
  EXPECT_THAT(Figures(changed), Contains("Within 0.25 %: 66.7 %"));
}

TEST_F(PeriodPages, HavePicturesOfAWeekAndAMonth) {
  const auto charts = [&](PeriodKind kind, const std::string& text) {
    std::size_t count = 0;
    for (const PageSection& section : Page(kind, text).sections) {
      count += section.charts.size();
    }
    return count;
  };
  EXPECT_EQ(charts(PeriodKind::kDay, "2011-03-14"), 1U);
  EXPECT_EQ(charts(PeriodKind::kWeek, "2011-W11"), 3U);
  EXPECT_EQ(charts(PeriodKind::kMonth, "2011-03"), 3U);
}

TEST_F(PeriodPages, OfAnEmptyPeriodSaySoAndShowNoFigure) {
  const PeriodPage page = Page(PeriodKind::kMonth, "2012-03");
  EXPECT_THAT(page.sections, IsEmpty());
  EXPECT_THAT(page.figures, IsEmpty());
  EXPECT_EQ(PlainText(page),
            "Feeding report, month 2012-03\n"
            "=============================\n"
            "SMALL.TDB, 2012-03-01 to 2012-03-31, weights in LB, made on 2011-03-20\n"
            "\n"
            "The database has no record of this period.\n"
            "\n"
            "1 row has no date and may be left out of the period.\n");
}

TEST_F(PeriodPages, AreAlignedAsPlainText) {
  const std::string text = PlainText(Page(PeriodKind::kWeek, "2011-W11"));
  EXPECT_THAT(text, HasSubstr("\nLoaded by ingredient\n--------------------\n"));
  EXPECT_THAT(text, HasSubstr("\nIngredient  Loads  Target  Actual  Net  Net %  Gross\n"
                              "CORN            2    1500    1498   -2   -0.1      2\n"
                              "HAY             1     600   602.5  2.5    0.4    2.5\n"
                              "Total           3    2100  2100.5  0.5    0.0    4.5\n"));
  EXPECT_THAT(text, HasSubstr("Weight loaded           2100.5\n"));
}

TEST_F(PeriodPages, OfATerminalHaveNoControlCharacters) {
  database.exec(
      "UPDATE Transactions SET Ingredient = 'A' || char(27) || '[2J' || char(10) || "
      "'Grün' WHERE Ingredient = 'HAY'");
  const std::string text = PlainText(Page(PeriodKind::kDay, "2011-03-14"));
  EXPECT_THAT(text, HasSubstr("A [2J Grün      1     600"));
  EXPECT_THAT(text, Not(HasSubstr("\x1B")));
}

TEST_F(PeriodPages, AreReadInOneTransactionWithProgressAndCanBeCancelled) {
  std::vector<int> percents;
  const PageQuestion question{.period = *ParsePeriod(PeriodKind::kWeek, "2011-W11")};
  static_cast<void>(ReadPeriodPage(database, question, [&](int percent) {
    percents.push_back(percent);
    return true;
  }));
  EXPECT_TRUE(std::ranges::is_sorted(percents)) << ::testing::PrintToString(percents);
  ASSERT_FALSE(percents.empty());
  EXPECT_LE(percents.back(), 100);
  EXPECT_THROW(static_cast<void>(ReadPeriodPage(database, question, [](int) { return false; })),
               QuestionCancelled);
}

}  // namespace
}  // namespace vrx::testing
