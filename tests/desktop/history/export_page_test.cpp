#include "desktop/history/export_page.h"

#include <QProgressBar>
#include <fstream>
#include <iterator>

#include <gmock/gmock.h>

#include "desktop/history/history_fixture.h"
#include "desktop/shown_refusal.h"
#include "history/data_group.h"
#include "support/boxes.h"
#include "support/program.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

std::string ReadAll(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

class ExportPageTest : public HistoryFixture {
 protected:
  ExportPageTest() {
    fs::copy(fs::path(VRX_BIN_DIR) / "XSL", program_ / "XSL", fs::copy_options::recursive);
    fs::create_directory(out_);
  }

  // With the data group selected and the Export tab shown.
  void ShowExport(int group) {
    ShowTab();
    if (group != 0) {
      ChooseGroup(group);
    }
    GoToTab(kTabExport);
  }
  void Type(const QString& field, const QString& text) {
    auto& edit = Find<QLineEdit>(field);
    edit.setFocus();
    edit.selectAll();
    QTest::keyClick(&edit, Qt::Key_Delete);
    QTest::keyClicks(&edit, text);
  }
  void Export(const QString& format, const QString& name = u"DAY"_qs) {
    operator_.boxes.clear();
    Type(u"txtFName"_qs, name);
    Type(u"txtFPath"_qs, QString::fromStdString(out_.string()));
    Click(format);
    Click(u"cmdExport"_qs);
  }
  std::string FileName() { return Find<QLineEdit>(u"txtFName"_qs).text().toStdString(); }
  std::string FilePath() { return Find<QLineEdit>(u"txtFPath"_qs).text().toStdString(); }

  fs::path out_ = folder_ / "out";
};

constexpr const char* kDone = "Data exported successfully.";

TEST_F(ExportPageTest, BeginsEmptyWithCsvAndNoProgress) {
  ShowExport(0);
  EXPECT_EQ(FileName(), "");
  EXPECT_EQ(FilePath(), "");
  EXPECT_TRUE(Find<QAbstractButton>(u"optCSV"_qs).isChecked());
  EXPECT_EQ(LabelText(u"lblFName"_qs), "File &Name");
  EXPECT_EQ(LabelText(u"lblFPath"_qs), "File P&ath");
  EXPECT_EQ(LabelText(u"lblFormat"_qs), "File Format");
  EXPECT_EQ(LabelText(u"Label4"_qs),
            "Note: - Data will be formatted in same format as the Data Group selection in the "
            "Batched/Fed Tab.");
  for (const QString& part : {u"lblExport"_qs, u"lblDataGroup"_qs, u"prgExport"_qs}) {
    EXPECT_FALSE(Visible(part)) << part.toStdString();
  }
  EXPECT_TRUE(Visible(u"cmdExport"_qs));
  EXPECT_TRUE(Visible(u"cmdReset"_qs));
}

TEST_F(ExportPageTest, TheNameTakesTheKeysOfADescription) {
  settings_.SetEnableBeeperOn(true);
  ShowExport(0);
  operator_.beeps = 0;
  Type(u"txtFName"_qs, u"A/1\"*-b+ 2"_qs);
  EXPECT_EQ(FileName(), "A1-b+ 2");
  EXPECT_EQ(ShownRefusal(), "Only letters, digits, + - and spaces");
  EXPECT_EQ(operator_.beeps, 3);
}

// What the tab checks, in its order.

TEST_F(ExportPageTest, AnEmptyNameIsReportedAndGetsTheFocus) {
  ShowExport(0);
  for (const QString& name : {u""_qs, u"   "_qs}) {
    Export(u"optCSV"_qs, name);
    EXPECT_THAT(OnlyBox(operator_.boxes),
                IsBox(Icon::kCritical, "Export", "Please enter File Name."));
    EXPECT_TRUE(Find<QLineEdit>(u"txtFName"_qs).hasFocus());
  }
  EXPECT_TRUE(fs::is_empty(out_));
}

TEST_F(ExportPageTest, AnEmptyPathIsReportedAndOpensTheFolderDialogAtOnce) {
  ShowExport(0);
  Type(u"txtFName"_qs, u"DAY"_qs);
  chooser_.Choose(out_);
  Click(u"cmdExport"_qs);
  EXPECT_THAT(OnlyBox(operator_.boxes),
              IsBox(Icon::kCritical, "Export", "Please select File Path."));
  EXPECT_EQ(chooser_.dialogs.back().title, "Choose the File Path for Exporting the Data");
  EXPECT_EQ(FilePath(), out_.string());
  EXPECT_TRUE(fs::is_empty(out_));  // the run has stopped
}

TEST_F(ExportPageTest, AGroupByNameOnSelectHasNoData) {
  for (const int group : {4, 7, 9}) {
    ShowExport(group);
    Export(u"optCSV"_qs);
    EXPECT_THAT(OnlyBox(operator_.boxes),
                IsBox(Icon::kInformation, "Export", "No data to export."));
    GoToTab(kTabBatchedFed);
  }
  EXPECT_TRUE(fs::is_empty(out_));
}

// The picker has gone with the tab, and its name with it.
TEST_F(ExportPageTest, AGroupByNameWhosePickerWasLeftAsksForTheName) {
  for (const auto& [group, name, kind] : {std::tuple{4, u"STEERS"_qs, "recipe"},
                                          {7, u"CORN"_qs, "ingredient"},
                                          {9, u"A02"_qs, "pen"}}) {
    ShowTab();
    ChooseGroup(group);
    PickName(name);
    GoToTab(kTabDataTransfer);
    GoToTab(kTabBatchedFed);
    GoToTab(kTabExport);
    Export(u"optCSV"_qs);
    EXPECT_THAT(OnlyBox(operator_.boxes),
                IsBox(Icon::kInformation, "Export",
                      std::string("Please select ") + kind + " name in Batched/Fed tab."));
  }
  EXPECT_TRUE(fs::is_empty(out_));
}

TEST_F(ExportPageTest, BrowseFillsThePathAndACancelLeavesIt) {
  ShowExport(0);
  chooser_.Choose(out_);
  Click(u"cmdBrowse"_qs);
  EXPECT_EQ(FilePath(), out_.string());
  chooser_.Cancel();
  Click(u"cmdBrowse"_qs);
  EXPECT_EQ(FilePath(), out_.string());
}

TEST_F(ExportPageTest, ResetEmptiesTheFieldsAndSetsCsv) {
  ShowExport(0);
  Type(u"txtFName"_qs, u"DAY"_qs);
  Type(u"txtFPath"_qs, u"/nowhere"_qs);
  Click(u"optXML"_qs);
  Click(u"cmdReset"_qs);
  EXPECT_EQ(FileName(), "");
  EXPECT_EQ(FilePath(), "");
  EXPECT_TRUE(Find<QAbstractButton>(u"optCSV"_qs).isChecked());
}

TEST_F(ExportPageTest, TheTabKeepsItsFieldsWhileAnotherIsShown) {
  ShowExport(0);
  Type(u"txtFName"_qs, u"DAY"_qs);
  Click(u"optHTML"_qs);
  GoToTab(kTabDataTransfer);
  GoToTab(kTabExport);
  EXPECT_EQ(FileName(), "DAY");
  EXPECT_TRUE(Find<QAbstractButton>(u"optHTML"_qs).isChecked());
}

// A run.

TEST_F(ExportPageTest, ShowsTheDataGroupAndTheBarDuringARun) {
  ShowExport(8);
  bool seen = false;
  pump_.After(Milliseconds{0}, [&] {
    seen = true;
    EXPECT_TRUE(Visible(u"lblExport"_qs));
    EXPECT_EQ(LabelText(u"lblExport"_qs), " Exporting");
    EXPECT_EQ(LabelText(u"lblDataGroup"_qs), "Pens Fed (all)");
    EXPECT_EQ(Find<QProgressBar>(u"prgExport"_qs).value(), 0);
    EXPECT_EQ(Find<QProgressBar>(u"prgExport"_qs).maximum(), 100);
    Click(u"cmdExport"_qs);  // does nothing now
    Click(u"cmdReset"_qs);
  });
  Export(u"optCSV"_qs);
  EXPECT_TRUE(seen);
  EXPECT_THAT(OnlyBox(operator_.boxes), IsBox(Icon::kInformation, "Export", kDone));
  EXPECT_EQ(FileName(), "DAY");
  EXPECT_FALSE(Visible(u"prgExport"_qs));
  EXPECT_FALSE(operator_.busy);
}

TEST_F(ExportPageTest, TheEndOfTheProgramStopsARunBeforeItWrites) {
  ShowExport(0);
  pump_.After(Milliseconds{0}, [&] { pump_.closing = true; });
  Export(u"optCSV"_qs);
  EXPECT_THAT(operator_.boxes, IsEmpty());
  EXPECT_TRUE(fs::is_empty(out_));
}

TEST_F(ExportPageTest, AFolderIsMadeOneLevelOnly) {
  ShowExport(0);
  out_ /= "new";
  Export(u"optCSV"_qs);
  EXPECT_THAT(OnlyBox(operator_.boxes), IsBox(Icon::kInformation, "Export", kDone));
  EXPECT_TRUE(fs::exists(out_ / "DAY.csv"));
  out_ /= "deep/deeper";
  Export(u"optCSV"_qs);
  EXPECT_THAT(OnlyBox(operator_.boxes), IsBox(Icon::kCritical, "Export", ::testing::_));
  EXPECT_TRUE(Find<QWidget>(u"cmdExport"_qs).isEnabled());
}

TEST_F(ExportPageTest, AFileOfThatNameIsReplacedWithoutAQuestion) {
  ShowExport(0);
  Export(u"optCSV"_qs, u"DAY"_qs);
  const std::string first = ReadAll(out_ / "DAY.csv");
  Alter(Transactions(), "DELETE FROM Transactions WHERE Type = 'FEED'");
  Export(u"optCSV"_qs, u"DAY"_qs);
  EXPECT_THAT(OnlyBox(operator_.boxes), IsBox(Icon::kInformation, "Export", kDone));
  EXPECT_NE(ReadAll(out_ / "DAY.csv"), first);
}

TEST_F(ExportPageTest, ALineNamesTheFileThatWasWritten) {
  ShowExport(0);
  Export(u"optCSV"_qs, u"DAY"_qs);
  EXPECT_EQ(Find<QLabel>(u"lblResult"_qs).text(), u"Exported to DAY.csv"_qs);
  EXPECT_EQ(Find<QLabel>(u"lblResult"_qs).toolTip().toStdString(), (out_ / "DAY.csv").string());
  EXPECT_TRUE(Find<QWidget>(u"cmdResultOpen"_qs).isVisible());
}

TEST_F(ExportPageTest, AFailureIsReportedWithABeepAndTheNextTabChangeHidesTheBar) {
  settings_.SetEnableBeeperOn(true);
  ShowExport(0);
  fs::create_directory(out_ / "DAY.csv");
  operator_.beeps = 0;
  Export(u"optCSV"_qs);
  EXPECT_THAT(OnlyBox(operator_.boxes), IsBox(Icon::kCritical, "Export", ::testing::_));
  EXPECT_EQ(operator_.beeps, 1);
  EXPECT_TRUE(Visible(u"prgExport"_qs));
  EXPECT_FALSE(operator_.busy);
  GoToTab(kTabBatchedFed);
  GoToTab(kTabExport);
  EXPECT_FALSE(Visible(u"prgExport"_qs));
}

TEST_F(ExportPageTest, AMissingStylesheetIsReportedAndTheXmlIsSavedAnyway) {
  ShowExport(0);
  fs::remove(program_ / "XSL" / "TranAll.xsl");
  Export(u"optXML"_qs);
  ASSERT_EQ(operator_.boxes.size(), 2U);
  EXPECT_EQ(operator_.boxes[0].text,
            "Style sheet file has been tampered, Please contact to Administrator.");
  EXPECT_EQ(operator_.boxes[0].icon, Icon::kInformation);
  EXPECT_EQ(operator_.boxes[1].text, "Data exported successfully.");
  EXPECT_TRUE(fs::exists(out_ / "DAY.xml"));
}

TEST_F(ExportPageTest, AnXmlFileHasItsStylesheetBesideItAndAPageHasNone) {
  ShowExport(0);
  Export(u"optHTML"_qs);
  EXPECT_THAT(OnlyBox(operator_.boxes), IsBox(Icon::kInformation, "Export", kDone));
  EXPECT_THAT(ReadAll(out_ / "DAY.html"), HasSubstr("<html"));
  EXPECT_FALSE(fs::exists(out_ / "TranAll.xsl"));
  Export(u"optXML"_qs);
  EXPECT_TRUE(fs::exists(out_ / "TranAll.xsl"));
}

TEST_F(ExportPageTest, AColumnThatWasMovedByHandChangesTheOrderOfTheFile) {
  ShowTab();
  Header().moveSection(Header().visualIndex(HistoryColumnOfKey("Type") - 1), 0);
  GoToTab(kTabExport);
  Export(u"optCSV"_qs);
  EXPECT_THAT(ReadAll(out_ / "DAY.csv"), HasSubstr("Type,Transaction,Recipe"));
}

// The same bytes as the command line tool's, for each group and form.

class ExportPageBytes : public ExportPageTest, public ::testing::WithParamInterface<int> {
 protected:
  std::string Specified(const DataGroup& group, const std::string& name,
                        const std::string& format) {
    const fs::path file = folder_ / ("specified." + format);
    std::vector<std::string> words{"--data-dir", (folder_ / "ctl").string(),
                                   "export",     Transactions().string(),
                                   "--group",    std::to_string(group.index),
                                   "--recipes",  Recipes().string(),
                                   "--format",   format,
                                   "--out",      file.string()};
    if (!name.empty()) {
      words.insert(words.end(), {"--name", name});
    }
    Program program(std::string(VRX_BIN_DIR) + "/vrx2260ctl", words, folder_.Path().string());
    EXPECT_EQ(program.Wait(), 0) << program.Err();
    return ReadAll(file);
  }
};

TEST_P(ExportPageBytes, AreThoseOfTheCommandLineTool) {
  const DataGroup& group = *FindDataGroup(GetParam());
  const std::string name = group.named_column == "Recipe"       ? "STEERS"
                           : group.named_column == "Ingredient" ? "CORN"
                           : group.named_column == "Pen"        ? "A02"
                                                                : "";
  // A row without a recipe fails the XML and goes through the error trap of the CSV.
  Alter(Transactions(), "DELETE FROM Transactions WHERE Recipe IS NULL");
  ShowTab();
  if (GetParam() != 0) {
    ChooseGroup(GetParam());
  }
  if (!name.empty()) {
    PickName(QString::fromStdString(name));
  }
  GoToTab(kTabExport);
  for (const auto& [option, format] :
       {std::pair{u"optCSV"_qs, "csv"}, {u"optXML"_qs, "xml"}, {u"optHTML"_qs, "html"}}) {
    Export(option, u"DAY"_qs);
    EXPECT_THAT(OnlyBox(operator_.boxes), IsBox(Icon::kInformation, "Export", kDone));
    const std::string bytes = ReadAll(out_ / (std::string("DAY.") + format));
    EXPECT_THAT(bytes, Not(IsEmpty()));
    EXPECT_EQ(bytes, Specified(group, name, format)) << format;
  }
}

// The order of the columns of group 10 is the one that the group before has left.
INSTANTIATE_TEST_SUITE_P(OfEveryGroup, ExportPageBytes,
                         ::testing::Values(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 12));

}  // namespace
}  // namespace vrx::testing
