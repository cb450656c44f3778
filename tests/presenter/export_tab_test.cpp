#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "base/files.h"
#include "presenter/export.h"
#include "presenter/export_tab_fixture.h"
#include "support/boxes.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

constexpr const char* kDone = "Data exported successfully.";
constexpr const char* kNoData = "No data to export.";

std::string FirstLine(const std::string& text) { return text.substr(0, text.find("\r\n")); }

class TheExportTab : public ExportTabTest {
 protected:
  TheExportTab() {
    site.StoreYard();
    Show(1);
    for (const char* name : {"TranAll.xsl", "TranByBatchFed.xsl"}) {
      WriteFileBytes(site.Folder() / "XSL" / name,
                     "<xsl:stylesheet version='1.0' "
                     "xmlns:xsl='http://www.w3.org/1999/XSL/Transform'><xsl:template match='/'>"
                     "<html><body><xsl:value-of select='//Column'/></body></html>"
                     "</xsl:template></xsl:stylesheet>");
    }
  }
};

TEST_F(TheExportTab, AnEmptyFileNameIsAskedForAndGetsTheFocus) {
  for (const char* name : {"", "   "}) {
    op.boxes.clear();
    focused.clear();
    Export(ExportFormat::kCsv, name);
    EXPECT_THAT(OnlyBox(op.boxes), IsBox(Icon::kCritical, "Export", "Please enter File Name."));
    EXPECT_THAT(focused, ElementsAre("txtFName"));
  }
  EXPECT_FALSE(fs::exists(out));
}

TEST_F(TheExportTab, AnEmptyPathOpensTheFolderDialogAtOnceAndTheRunStops) {
  tab.SetFName("DAY");
  tab.SetFPath(" ");
  files.Choose(site.Folder().Path());
  tab.ClickExport();
  EXPECT_THAT(OnlyBox(op.boxes), IsBox(Icon::kCritical, "Export", "Please select File Path."));
  ASSERT_EQ(files.dialogs.size(), 1U);
  EXPECT_EQ(files.dialogs[0].title, "Choose the File Path for Exporting the Data");
  EXPECT_EQ(tab.Form().txt_f_path, site.Folder().Path().string());
  EXPECT_FALSE(fs::exists(site.Folder() / "DAY.csv"));
  EXPECT_EQ(pump.pumps, 0);
}

TEST_F(TheExportTab, TheNameIsAskedForBeforeThePathAndThePathBeforeTheRows) {
  site.Alter("DELETE FROM Transactions");
  Show(1);
  tab.ClickExport();
  EXPECT_THAT(OnlyBox(op.boxes).text, HasSubstr("File Name"));
  op.boxes.clear();
  tab.SetFName("DAY");
  files.Cancel();
  tab.ClickExport();
  EXPECT_THAT(OnlyBox(op.boxes).text, HasSubstr("File Path"));
  op.boxes.clear();
  Export(ExportFormat::kCsv);
  EXPECT_THAT(OnlyBox(op.boxes), IsBox(Icon::kInformation, "Export", kNoData));
  EXPECT_FALSE(fs::exists(out));
}

TEST_F(TheExportTab, AGroupByNameOnSelectHasNoDataToExport) {
  for (const int group : {4, 7, 9}) {
    op.boxes.clear();
    Show(group);
    ASSERT_EQ(DataGroup().name, "Select...");
    Export(ExportFormat::kCsv);
    EXPECT_THAT(OnlyBox(op.boxes), IsBox(Icon::kInformation, "Export", kNoData));
  }
}

TEST_F(TheExportTab, AnEmptyNameOfAGroupByNameIsReportedByTheDriver) {
  const std::map<int, std::string> texts{{4, "Please select recipe name in Batched/Fed tab."},
                                         {7, "Please select ingredient name in Batched/Fed tab."},
                                         {9, "Please select pen name in Batched/Fed tab."}};
  given_name = "  ";
  for (const auto& [group, text] : texts) {
    given_index = group;
    op.boxes.clear();
    Export(ExportFormat::kXml);
    EXPECT_THAT(OnlyBox(op.boxes), IsBox(Icon::kInformation, "Export", text));
    EXPECT_FALSE(tab.Form().progress_visible);
    EXPECT_EQ(op.beeps, 0);
  }
  EXPECT_TRUE(fs::is_empty(out));
}

TEST_F(TheExportTab, AnIndexThatIsNoGroupFailsWithNothingDone) {
  for (const int index : {-1, 13}) {
    for (const ExportFormat format :
         {ExportFormat::kCsv, ExportFormat::kXml, ExportFormat::kHtml}) {
      given_index = index;
      op.boxes.clear();
      Export(format);
      EXPECT_THAT(OnlyBox(op.boxes), IsBox(Icon::kInformation, "Export", "Data exporting failed."));
      EXPECT_FALSE(tab.Form().progress_visible);
    }
  }
  EXPECT_TRUE(fs::is_empty(out));
  EXPECT_FALSE(fs::exists(data / "Export"));
}

TEST_F(TheExportTab, TheExtensionIsTheFormats) {
  for (const ExportFormat format : {ExportFormat::kCsv, ExportFormat::kXml, ExportFormat::kHtml}) {
    op.boxes.clear();
    Export(format);
    EXPECT_THAT(OnlyBox(op.boxes), IsBox(Icon::kInformation, "Export", kDone));
  }
  EXPECT_THAT(ReadAll(out / "DAY.csv"), StartsWith("Transaction,Type,"));
  EXPECT_THAT(ReadAll(out / "DAY.xml"), StartsWith("<?xml "));
  EXPECT_THAT(ReadAll(out / "DAY.html"), HasSubstr("<body>Transaction"));
}

TEST_F(TheExportTab, ANameWithAnExtensionOfItsOwnGetsTwo) {
  Export(ExportFormat::kXml, "DAY.xml");
  EXPECT_THAT(OnlyBox(op.boxes), IsBox(Icon::kInformation, "Export", kDone));
  EXPECT_TRUE(fs::exists(out / "DAY.xml.xml"));
}

TEST_F(TheExportTab, APageLeavesNothingElseBeside) {
  const auto temporary = [] {
    std::vector<fs::path> folders;
    for (const auto& entry : fs::directory_iterator(fs::temp_directory_path())) {
      if (entry.path().filename().string().starts_with("vrx-2260.")) {
        folders.push_back(entry.path());
      }
    }
    return folders.size();
  };
  const auto before = temporary();
  Export(ExportFormat::kHtml);
  EXPECT_EQ(std::distance(fs::directory_iterator(out), fs::directory_iterator()), 1);
  EXPECT_LE(temporary(), before);
}

TEST_F(TheExportTab, APageWithoutItsStylesheetFailsAndIsReportedOnce) {
  fs::remove(site.Folder() / "XSL/TranByBatchFed.xsl");
  Export(ExportFormat::kHtml);
  ASSERT_EQ(op.boxes.size(), 2U);
  EXPECT_EQ(op.boxes[0].text,
            "Style sheet file has been tampered, Please contact to Administrator.");
  EXPECT_EQ(op.boxes[1].text, "Data exporting failed.");
  EXPECT_TRUE(fs::is_empty(out));
}

TEST_F(TheExportTab, AMissingStylesheetOfAnXmlIsReportedAndTheExportASuccess) {
  fs::remove(site.Folder() / "XSL/TranByBatchFed.xsl");
  Export(ExportFormat::kXml);
  ASSERT_EQ(op.boxes.size(), 2U);
  EXPECT_EQ(op.boxes[1].text, "Data exported successfully.");
}

TEST_F(TheExportTab, ReportsTheFileThatWasWrittenAndNoneAfterAFailure) {
  Export(ExportFormat::kXml);
  EXPECT_THAT(exported, ::testing::ElementsAre(out / "DAY.xml"));
  fs::remove(site.Folder() / "XSL/TranByBatchFed.xsl");
  Export(ExportFormat::kHtml);
  EXPECT_THAT(exported, ::testing::SizeIs(1));
}

TEST_F(TheExportTab, AnOlderFileIsReplacedWithoutAQuestion) {
  fs::create_directory(out);
  for (const ExportFormat format : {ExportFormat::kCsv, ExportFormat::kXml, ExportFormat::kHtml}) {
    op.boxes.clear();
    const fs::path file = out / ("DAY" + std::string(ExtensionOf(format)));
    WriteFileBytes(file, "old");
    Export(format);
    EXPECT_THAT(OnlyBox(op.boxes), IsBox(Icon::kInformation, "Export", kDone));
    EXPECT_THAT(ReadAll(file), HasSubstr("Transaction"));
  }
}

TEST_F(TheExportTab, AFolderIsMadeOneLevelOnly) {
  Export(ExportFormat::kCsv);
  EXPECT_TRUE(fs::exists(out / "DAY.csv"));
  op.boxes.clear();
  out = site.Folder() / "no/such";
  Export(ExportFormat::kCsv);
  EXPECT_THAT(OnlyBox(op.boxes),
              IsBox(Icon::kCritical, "Export",
                    "cannot make the folder " + out.string() + ": No such file or directory"));
  EXPECT_EQ(op.beeps, 1);
  EXPECT_FALSE(fs::exists(site.Folder() / "no"));
}

TEST_F(TheExportTab, TheTrapBeepsOnlyIfEnabledAndLeavesTheProgressAsItWas) {
  settings.SetEnableBeeperOn(false);
  site.Alter("ALTER TABLE Transactions RENAME COLUMN Recipe TO Mixture");
  Export(ExportFormat::kXml);
  EXPECT_THAT(OnlyBox(op.boxes), IsBox(Icon::kCritical, "Export", ::testing::_));
  EXPECT_THAT(OnlyBox(op.boxes).text, HasSubstr("Recipe"));
  EXPECT_EQ(op.beeps, 0);
  EXPECT_FALSE(op.busy);
  EXPECT_TRUE(tab.Form().progress_visible);
  tab.EnterExportTab();
  EXPECT_FALSE(tab.Form().progress_visible);
}

TEST_F(TheExportTab, TheProgressShowsDuringTheRunAndIsFullAtItsEnd) {
  Export(ExportFormat::kCsv);
  ASSERT_EQ(forms.size(), 3U);
  EXPECT_TRUE(forms[0].progress_visible);
  EXPECT_EQ(forms[0].prg_export, 0);
  EXPECT_EQ(forms[0].prg_export_max, 100);
  EXPECT_EQ(forms[0].lbl_data_group, "Transactions (batched/fed)");
  EXPECT_TRUE(forms[1].progress_visible);
  EXPECT_EQ(forms[1].prg_export, 100);
  EXPECT_FALSE(forms[2].progress_visible);
  EXPECT_EQ(forms[2].prg_export, 0);
  EXPECT_EQ(pump.pumps, 2);
  EXPECT_FALSE(op.busy);
}

TEST_F(TheExportTab, AStepBeyondTheEndStartsTheBarOver) {
  for (const auto& [step, value] : {std::pair(60, 60), {40, 100}, {1, 0}, {101, 0}, {7, 7}}) {
    tab.UpdateExportProgress(step);
    EXPECT_EQ(tab.Form().prg_export, value);
  }
}

TEST_F(TheExportTab, EnteringItHidesTheProgressAndConfiguresTheImportColumns) {
  tab.SetFName("DAY");
  tab.EnterExportTab();
  EXPECT_FALSE(tab.Form().progress_visible);
  EXPECT_EQ(tab.Form().lbl_data_group, "Transactions (batched/fed)");
  EXPECT_EQ(import_columns_configured, 1);
  EXPECT_EQ(tab.Form().txt_f_name, "DAY");
}

TEST_F(TheExportTab, NamesThePeriodOfTheDataGroup) {
  view->TypeDays("3/14/2011", "3/15/2011");
  tab.EnterExportTab();
  EXPECT_EQ(tab.Form().lbl_data_group, "Transactions (batched/fed), 14-Mar-11 to 15-Mar-11");
}

TEST_F(TheExportTab, ACanceledBrowseChangesNothing) {
  tab.SetFPath("there");
  files.Cancel();
  tab.ClickBrowse();
  EXPECT_EQ(tab.Form().txt_f_path, "there");
  EXPECT_THAT(op.boxes, IsEmpty());
}

TEST_F(TheExportTab, ResetEmptiesTheFieldsAndChoosesCsv) {
  tab.SetFName("DAY");
  tab.SetFPath("there");
  tab.SetFormat(ExportFormat::kHtml);
  tab.ClickReset();
  EXPECT_EQ(tab.Form().txt_f_name, "");
  EXPECT_EQ(tab.Form().txt_f_path, "");
  EXPECT_EQ(tab.Form().format, ExportFormat::kCsv);
}

TEST_F(TheExportTab, TheFileNameTakesTheKeysOfADescription) {
  EXPECT_EQ(ExportPresenter::KeyPressInFName('b'), 'b');
  EXPECT_EQ(ExportPresenter::KeyPressInFName('-'), '-');
  EXPECT_EQ(ExportPresenter::KeyPressInFName(8), 8);
  for (const char key : {'/', '\\', '.', '\'', ':'}) {
    EXPECT_EQ(ExportPresenter::KeyPressInFName(key), 0);
  }
}

TEST_F(TheExportTab, WhatIsClickedDuringARunDoesNothing) {
  bool clicked = false;
  pump.After(Milliseconds{0}, [&] {
    clicked = true;
    tab.ClickExport();
    tab.ClickReset();
    tab.ClickBrowse();
  });
  Export(ExportFormat::kCsv);
  EXPECT_TRUE(clicked);
  EXPECT_THAT(OnlyBox(op.boxes), IsBox(Icon::kInformation, "Export", kDone));
  EXPECT_TRUE(fs::exists(out / "DAY.csv"));
}

TEST_F(TheExportTab, ClosingTheProgramAtItsStartEndsTheRun) {
  pump.After(Milliseconds{0}, [&] { pump.closing = true; });
  Export(ExportFormat::kCsv);
  EXPECT_THAT(op.boxes, IsEmpty());
  EXPECT_FALSE(fs::exists(out / "DAY.csv"));
}

TEST_F(TheExportTab, MovingAColumnMovesItInTheExport) {
  Export(ExportFormat::kCsv);
  EXPECT_THAT(ReadAll(out / "DAY.csv"), StartsWith("Transaction,Type,Recipe,Batch Wt,"));
  const HistoryColumns& columns = view->Grid().Columns();
  view->MoveColumn(HistoryColumnOfField("Date"), columns.Position(HistoryColumnOfField("Recipe")));
  Export(ExportFormat::kCsv);
  EXPECT_THAT(ReadAll(out / "DAY.csv"), StartsWith("Transaction,Type,Date,Recipe,Batch Wt,"));
}

TEST_F(TheExportTab, GroupZeroHasThePercentAndTheNamedIngredientsToSlotFifty) {
  for (const int id : {32, 33, 50, 51}) {
    NameIngredient(id, "ING" + std::to_string(id));
  }
  Show(0);
  Export(ExportFormat::kCsv);
  EXPECT_THAT(FirstLine(ReadAll(out / "DAY.csv")),
              "Transaction,Recipe,Type,Batch Wt,Ingredient,Feed Wt,Pen,Target Wt,User ID,Time,Date,"
              "Ing% Of Batch,CORN,HAY,SALT,ING32,ING50");
}

TEST_F(TheExportTab, ANameWithAnApostropheIsJustAName) {
  RecipeRecord recipe = ReadRecipe(*recipes, 2);
  recipe.name = recipe.description = "O'NEIL CAF\u00c9";
  WriteRecipe(*recipes, recipe);
  Show(4);
  view->PickName(2);
  ASSERT_EQ(DataGroup().name, "O'NEIL CAF\u00c9");
  Export(ExportFormat::kCsv);
  EXPECT_THAT(OnlyBox(op.boxes), IsBox(Icon::kInformation, "Export", kDone));
  EXPECT_THAT(ReadAll(out / "DAY.csv"), HasSubstr("\r\nO'NEIL CAF\xC9,"));
}

TEST_F(TheExportTab, TheOpenDatabasesAreNotWrittenOver) {
  fs::create_directory(out);
  for (const fs::path& database : {site.Database(), recipes_path}) {
    const std::string before = ReadAll(database);
    for (const ExportFormat format :
         {ExportFormat::kCsv, ExportFormat::kXml, ExportFormat::kHtml}) {
      op.boxes.clear();
      const fs::path link = out / ("DAY" + std::string(ExtensionOf(format)));
      fs::remove(link);
      fs::create_symlink(database, link);
      Export(format);
      EXPECT_THAT(OnlyBox(op.boxes),
                  IsBox(Icon::kCritical, "Export",
                        HasSubstr("cannot write " + link.string() + ": it is the open ")));
    }
    EXPECT_EQ(ReadAll(database), before);
  }
}

}  // namespace
}  // namespace vrx::testing
