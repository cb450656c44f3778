#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QRadioButton>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "desktop/print/print_fixture.h"
#include "support/html_tables.h"

namespace vrx::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

// The window of the history, with its last day on 15 March 2011.
class ReportForm : public PrintFixture {
 protected:
  // Acts on the form, which the test leaves by a button or a key.
  void InForm(const std::function<void(QWidget&)>& act) {
    const NextModal next(act);
    Choose(u"mnuFileReport"_qs);
    EXPECT_TRUE(next.Seen());
    EXPECT_FALSE(operator_.busy);
  }
  template <typename Control>
  static Control& In(const QWidget& form, const char* name) {
    auto* const control = form.findChild<Control*>(QLatin1String(name));
    if (control == nullptr) {
      throw std::logic_error(std::string("the form has no ") + name);
    }
    return *control;
  }
  static void Click(const QWidget& form, const char* name) {
    QTest::mouseClick(&In<QAbstractButton>(form, name), Qt::LeftButton);
  }
  static void Tick(const QWidget& form, const char* name) {
    QTest::keyClick(&In<QAbstractButton>(form, name), Qt::Key_Space);
  }
  QString ResultText() { return Find<QLabel>(u"lblResult"_qs).text(); }
};

TEST_F(ReportForm, BeginsWithTheWeekOfTheLastRecordAndIsLeftByEscape) {
  ShowTab();
  chooser_.dialogs.clear();
  InForm([](QWidget& form) {
    EXPECT_EQ(form.windowTitle(), u"Report"_qs);
    EXPECT_TRUE(In<QRadioButton>(form, "optReportWeek").isChecked());
    EXPECT_TRUE(In<QRadioButton>(form, "optReportPdf").isChecked());
    EXPECT_TRUE(In<QCheckBox>(form, "chkReportOpen").isChecked());
    EXPECT_EQ(In<QLineEdit>(form, "txtReportDay").text(), u"3/15/2011"_qs);
    EXPECT_EQ(In<QLabel>(form, "lblReportPeriod").text(), u"2011-W11: 2011-03-14 to 2011-03-20"_qs);
    EXPECT_FALSE(In<QProgressBar>(form, "prgReport").isVisible());
    QTest::keyClick(&form, Qt::Key_Escape);
  });
  EXPECT_THAT(chooser_.dialogs, IsEmpty());
}

TEST_F(ReportForm, WritesThePdfThatWasChosen) {
  ShowTab();
  chooser_.Choose(pdf_);
  InForm([](QWidget& form) {
    Tick(form, "chkReportOpen");
    Click(form, "cmdReportSave");
  });
  const Pages pages = LinesOf(pdf_);
  EXPECT_EQ(pages.at(0).at(0), "Feeding report, week 2011-W11");
  EXPECT_THAT(pages[0], Contains(HasSubstr("2100.5 LB")));
  EXPECT_EQ(ResultText(), u"Report written to report.pdf"_qs);
  EXPECT_THAT(operator_.boxes, IsEmpty());
}

TEST_F(ReportForm, WritesTheHtmlOfADayAndOpensIt) {
  ShowTab();
  QStringList opened;
  QObject::connect(&Window().Panels().PicResult(), &ResultPanel::OpenRequested, &Window(),
                   [&](const QString& path) { opened.append(path); });
  const std::filesystem::path html = folder_ / "day.html";
  chooser_.Choose(html);
  InForm([](QWidget& form) {
    Click(form, "optReportDay");
    Click(form, "optReportHtml");
    In<QLineEdit>(form, "txtReportDay").clear();
    QTest::keyClicks(&In<QLineEdit>(form, "txtReportDay"), u"2011-03-14"_qs);
    EXPECT_EQ(In<QLabel>(form, "lblReportPeriod").text(), u"2011-03-14"_qs);
    Click(form, "cmdReportSave");
  });
  const std::string page = ReadAll(html);
  EXPECT_THAT(page, HasSubstr("Feeding report, day 2011-03-14"));
  EXPECT_THAT(HtmlTableBelow(page, "Loaded by ingredient").Column("Actual"),
              ElementsAre("998", "602.5", "1600.5"));
  EXPECT_EQ(opened, QStringList{ToQString(html.string())});
}

TEST_F(ReportForm, HasTheFileOfTheCommandLine) {
  ShowTab();
  const std::filesystem::path html = folder_ / "month.html";
  const std::filesystem::path specified = folder_ / "specified.html";
  chooser_.Choose(html);
  InForm([](QWidget& form) {
    Click(form, "optReportMonth");
    Click(form, "optReportHtml");
    Tick(form, "chkReportOpen");
    Click(form, "cmdReportSave");
  });
  Program program(std::string(VRX_BIN_DIR) + "/vrx2260ctl",
                  {"--data-dir", (folder_ / "ctl").string(), "report", Transactions().string(),
                   "--month", "2011-03", "--html", specified.string()},
                  folder_.Path().string());
  ASSERT_EQ(program.Wait(), 0) << program.Err();
  const auto without_day = [](std::string page) {
    return page.erase(page.find("made on "), std::string("made on 2026-01-05").size());
  };
  EXPECT_EQ(without_day(ReadAll(html)), without_day(ReadAll(specified)));
}

TEST_F(ReportForm, SavesOnlyForADay) {
  ShowTab();
  InForm([](QWidget& form) {
    auto& day = In<QLineEdit>(form, "txtReportDay");
    day.clear();
    EXPECT_FALSE(In<QPushButton>(form, "cmdReportSave").isEnabled());
    QTest::keyClicks(&day, u"3/15/2011"_qs);
    EXPECT_TRUE(In<QPushButton>(form, "cmdReportSave").isEnabled());
    Click(form, "cmdReportCancel");
  });
}

TEST_F(ReportForm, StaysAfterAFailure) {
  ShowTab();
  chooser_.Choose(folder_ / "none/report.pdf");
  InForm([&](QWidget& form) {
    Click(form, "cmdReportSave");
    EXPECT_TRUE(form.isVisible());
    EXPECT_TRUE(In<QPushButton>(form, "cmdReportSave").isEnabled());
    QTest::keyClick(&form, Qt::Key_Escape);
  });
  EXPECT_THAT(OnlyBox(operator_.boxes),
              IsBox(Icon::kCritical, "Report Error", "The report could not be written."));
}

TEST_F(ReportForm, TabGoesThroughItInOrder) {
  ShowTab();
  InForm([](QWidget& form) {
    // A group of options has one place in the order once its window is active, which the platform
    // decides when it likes. Before that Tab visits each option.
    const std::set<std::string> other_options{"optReportMonth", "optReportHtml"};
    std::vector<std::string> order;
    form.activateWindow();
    In<QRadioButton>(form, "optReportWeek").setFocus();
    while (order.size() < 7) {
      if (const std::string name = form.focusWidget()->objectName().toStdString();
          !other_options.contains(name)) {
        order.push_back(name);
      }
      QTest::keyClick(form.focusWidget(), Qt::Key_Tab);
    }
    EXPECT_THAT(order,
                ElementsAre("optReportWeek", "txtReportDay", "txtReportDayCalendar", "optReportPdf",
                            "chkReportOpen", "cmdReportSave", "cmdReportCancel"));
    QTest::keyClick(&form, Qt::Key_Escape);
  });
}

TEST_F(ReportForm, IsOffWithoutATransactionDatabase) {
  EXPECT_FALSE(Find<QAction>(u"mnuFileReport"_qs).isEnabled());
  ShowTab();
  EXPECT_TRUE(Find<QAction>(u"mnuFileReport"_qs).isEnabled());
}

}  // namespace
}  // namespace vrx::testing
