#include <QListWidget>
#include <QTableView>
#include <string>

#include <gmock/gmock.h>

#include "desktop/insight/insight_page.h"
#include "desktop/print/print_fixture.h"
#include "presenter/insight_run.h"

namespace vrx::testing {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::StartsWith;

// The small history on the tab Insight, printed through the menu into a PDF file.
class PrintOfAPicture : public PrintFixture {
 protected:
  void Ask(InsightTopic topic) {
    Find<QListWidget>(u"lstInsight"_qs).setCurrentRow(static_cast<int>(topic));
    WaitForAnswer();
  }
  void ChoosePicture(int picture) {
    ChooseItem(u"cboInsightPicture"_qs, picture);
    WaitForAnswer();
  }
  void WaitForAnswer() {
    ASSERT_TRUE(
        Until([this] { return Find<InsightPage>(u"pageInsight"_qs).Presenter().IsAnswered(); }));
  }
  // Its words, the lines parted by line breaks.
  std::string PrintedText() {
    const Pages pages = Print();
    EXPECT_THAT(pages, SizeIs(1));
    std::string text;
    for (const auto& lines : pages) {
      for (const std::string& line : lines) {
        text += line + '\n';
      }
    }
    return text;
  }
};

TEST_F(PrintOfAPicture, HasItsTitleItsCaptionItsAxesAndItsFigures) {
  ShowTab();
  GoToTab(kTabInsight);
  Ask(InsightTopic::kLoading);
  EXPECT_THAT(PrintedText(),
              AllOf(StartsWith("Accuracy of loading: Deviation over time\nSMALL.TDB, all records. "
                               "Each dot is a load: "),
                    HasSubstr("\nDeviation (%)\n5\n"), HasSubstr("\n14-Mar-11 15-Mar-11\n")));
  ChoosePicture(1);
  EXPECT_THAT(PrintedText(),
              AllOf(StartsWith("Accuracy of loading: Distribution\nSMALL.TDB, all records. "
                               "How many loads "),
                    HasSubstr("\nLoads\n2\n1\n0\n"), HasSubstr("Median 0.0 %")));
  ChoosePicture(3);
  EXPECT_THAT(
      PrintedText(),
      AllOf(StartsWith("Accuracy of loading: Where the weight goes\nSMALL.TDB, all records. "
                       "The amounts of all "),
            HasSubstr("\nHAY 56 %\nCORN 100 %\n"), HasSubstr("\nToo much and too little (lb)\n")));
}

TEST_F(PrintOfAPicture, NamesThePenThatItShows) {
  ShowTab();
  GoToTab(kTabInsight);
  Ask(InsightTopic::kDelivered);
  Find<QTableView>(u"grdInsight"_qs).selectRow(1);
  EXPECT_THAT(PrintedText(), AllOf(StartsWith("Called and delivered: Days of a pen: A02\n"),
                                   HasSubstr("\nWeight (lb)\n"), HasSubstr("\n2011\n")));
}

TEST_F(PrintOfAPicture, IsRefusedWhileThereIsNone) {
  ShowTab();
  GoToTab(kTabInsight);
  Ask(InsightTopic::kTimes);
  EXPECT_THAT(Print(), IsEmpty());
  ExpectRefused("There is no picture to be printed.");
}

}  // namespace
}  // namespace vrx::testing
