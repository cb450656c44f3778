#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "ctl/ctl_fixture.h"
#include "presenter/export.h"
#include "presenter/history.h"
#include "support/test_services.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr const char* kDone = "Export: Data exported successfully.\n";

class ExportCommandTest : public CtlTest {
 protected:
  ExportCommandTest() {
    EXPECT_EQ(Run({"store", SitePath("day05.qxt"), "--into", database, "--recipes", recipes}), 0)
        << err;
  }

  int Export(int group, const std::string& format, const fs::path& file,
             std::vector<std::string> more = {}) {
    more.insert(more.begin(), {"export", database, "--group", std::to_string(group), "--recipes",
                               recipes, "--format", format, "--out", file.string()});
    return Run(more);
  }

  std::string database = NewTransactionDatabase();
  std::string recipes = SitePath("SITE.RDB");
  fs::path out_folder = folder / "out";
};

// The Export tab above the `Batched/Fed` tab, as the window has them.
class TabOfSite : public ExportView, public HistoryView {
 public:
  TabOfSite(const std::string& transactions_path, const std::string& recipes_path,
            const SystemInfo& system, const fs::path& data_folder)
      : paths_{recipes_path, transactions_path, "LB"},
        transactions_(OpenDatabase(transactions_path, Access::kRead)),
        recipes_(OpenDatabase(recipes_path, Access::kRead)),
        style_sheets_(data_folder, system, test_.op) {
    view_.SetRecipeDatabase(&recipes_);
    view_.TabEntered();
  }

  void Export(int group, const std::string& name, ExportFormat format, const fs::path& folder) {
    view_.SelectGroup(group);
    if (!name.empty()) {
      const std::vector<std::string>& items = view_.Picker().items;
      for (std::size_t item = 0; item < items.size(); ++item) {
        if (items[item] == name) {
          view_.PickName(static_cast<int>(item));
        }
      }
      EXPECT_EQ(view_.Picker().Text(), name);
    }
    tab_.SetFName("DAY");
    tab_.SetFPath(folder.string());
    tab_.SetFormat(format);
    tab_.ClickExport();
    EXPECT_EQ(test_.op.boxes.back().text, "Data exported successfully.");
  }

  OpenDatabases Databases() const override { return paths_; }
  ExportSource DataGroup() override { return Current(view_); }
  void ConfigureImportColumns() override {}
  void FocusControl(std::string_view /*name*/) override {}
  void ExportChanged() override {}
  void Exported(const std::filesystem::path& /*file*/) override {}
  void HistoryChanged(HistoryPart /*part*/) override {}

 private:
  OpenDatabases paths_;
  SQLite::Database transactions_;
  SQLite::Database recipes_;
  TestServices test_;
  HistoryPresenter view_{transactions_, test_.services, *this};
  StyleSheets style_sheets_;
  ExportPresenter tab_{test_.services, style_sheets_, *this};
};

TEST_F(ExportCommandTest, GivesTheBytesOfTheTabInEveryGroupAndFormat) {
  const std::map<int, std::string> names{{4, "FINHOT"}, {7, "CORN"}, {9, "A02"}};
  TabOfSite tab(database, recipes, system, folder / "data");
  for (int group = 0; group < kDataGroupCount; ++group) {
    const auto name = names.find(group);
    const std::string picked = name == names.end() ? "" : name->second;
    for (const ExportFormat format :
         {ExportFormat::kCsv, ExportFormat::kXml, ExportFormat::kHtml}) {
      const std::string extension(ExtensionOf(format));
      SCOPED_TRACE(std::to_string(group) + extension);
      tab.Export(group, picked, format, folder / "tab");
      const fs::path file = out_folder / "CTL.out";
      ASSERT_EQ(Export(group, extension.substr(1), file,
                       picked.empty() ? std::vector<std::string>()
                                      : std::vector<std::string>{"--name", picked}),
                0)
          << err;
      EXPECT_EQ(err, kDone);
      const std::string bytes = ReadAll(file);
      EXPECT_GT(bytes.size(), 100U);
      EXPECT_EQ(bytes, ReadAll(folder / "tab" / ("DAY" + extension)));
    }
  }
}

TEST_F(ExportCommandTest, TheFileIsExactlyTheOneNamed) {
  ASSERT_EQ(Export(3, "csv", out_folder / "PLAIN"), 0);
  EXPECT_THAT(ReadAll(out_folder / "PLAIN"), StartsWith("Recipe,Type,"));
  EXPECT_EQ(std::distance(fs::directory_iterator(out_folder), fs::directory_iterator()), 1);
}

TEST_F(ExportCommandTest, AFolderIsMadeOneLevelOnly) {
  EXPECT_EQ(Export(3, "csv", out_folder / "below" / "DAY.csv"), 1);
  EXPECT_EQ(err, "Export: cannot make the folder " + (out_folder / "below").string() +
                     ": No such file or directory\n");
  EXPECT_FALSE(fs::exists(out_folder));
}

TEST_F(ExportCommandTest, AGroupWithoutRowsHasNoDataToExport) {
  EXPECT_EQ(Export(4, "xml", out_folder / "DAY.xml", {"--name", "NOBODY"}), 1);
  EXPECT_EQ(err, "Export: No data to export.\n");
  EXPECT_FALSE(fs::exists(out_folder));
  const std::string empty = NewTransactionDatabase("EMPTY.TDB");
  EXPECT_EQ(Run({"export", empty, "--group", "0", "--recipes", recipes, "--format", "csv", "--out",
                 out_folder / "DAY.csv"}),
            1);
  EXPECT_EQ(err, "Export: No data to export.\n");
}

TEST_F(ExportCommandTest, TheExportFolderIsMadeInTheDataFolder) {
  ASSERT_EQ(Export(3, "xml", folder / "DAY.xml"), 0);
  EXPECT_TRUE(fs::is_directory(folder / "data" / "Export"));
  EXPECT_FALSE(fs::exists(folder / "share"));
}

TEST_F(ExportCommandTest, BothDatabasesAreOnlyReadAndNeverWrittenOver) {
  const std::string before = ReadAll(database);
  const std::string recipes_before = ReadAll(recipes);
  for (const std::string format : {"csv", "xml", "html"}) {
    EXPECT_EQ(Export(1, format, folder / "DAY"), 0);
    EXPECT_EQ(Export(1, format, database), 1);
    EXPECT_EQ(err, "Export: cannot write " + database + ": it is the open transaction database\n");
    EXPECT_EQ(Export(1, format, recipes), 1);
    EXPECT_THAT(err, HasSubstr("it is the open recipe database\n"));
  }
  EXPECT_EQ(ReadAll(database), before);
  EXPECT_EQ(ReadAll(recipes), recipes_before);
}

TEST_F(ExportCommandTest, ADatabaseThatIsNotOpenIsNeverWrittenOver) {
  const std::string other = NewTransactionDatabase("OTHER.TDB");
  fs::copy_file(other, folder / "other.csv");
  const std::string before = ReadAll(other);
  for (const std::string format : {"csv", "xml", "html"}) {
    for (const std::string& file : {other, (folder / "other.csv").string()}) {
      EXPECT_EQ(Export(1, format, file), 1);
      EXPECT_EQ(err,
                "Export: " + file + " is a database and is not replaced. Choose another name.\n");
      EXPECT_EQ(ReadAll(file), before);
    }
  }
}

TEST_F(ExportCommandTest, TheProgramsOwnStylesheetsAreNeverWrittenOver) {
  system.program_directory = (folder / "program").string();
  const fs::path sheets = folder / "program" / "XSL";
  fs::create_directory(folder / "program");
  fs::copy(std::string(VRX_BIN_DIR) + "/XSL", sheets);
  const std::string before = ReadAll(sheets / "RecipesAll.xsl");
  fs::create_directory_symlink(sheets, folder / "link");
  fs::create_symlink(sheets / "RecipesAll.xsl", folder / "link.xsl");
  for (const std::string format : {"csv", "xml", "html"}) {
    for (const fs::path& file : {sheets / "DAY.xml", sheets / "RecipesAll.xsl",
                                 folder / "link" / "DAY.xml", folder / "link.xsl"}) {
      EXPECT_EQ(Export(3, format, file), 1);
      EXPECT_EQ(err, "Export: cannot write " + file.string() +
                         ": its folder holds the program's own stylesheets. Choose another "
                         "folder.\n");
    }
  }
  EXPECT_FALSE(fs::exists(sheets / "DAY.xml"));
  EXPECT_EQ(ReadAll(sheets / "RecipesAll.xsl"), before);
}

TEST_F(ExportCommandTest, AnXmlFileIsNeverNamedAsItsStylesheet) {
  for (const char* const name : {"RecipesAll.xsl", "recipesall.XSL"}) {
    EXPECT_EQ(Export(3, "xml", folder / name), 1);
    EXPECT_EQ(err, "Export: cannot write " + (folder / name).string() +
                       ": the stylesheet beside it takes that name. Choose another name.\n");
    EXPECT_FALSE(fs::exists(folder / name));
  }
  EXPECT_EQ(Export(3, "csv", folder / "RecipesAll.xsl"), 0);
  EXPECT_EQ(Export(3, "xml", folder / "IngAll.xsl"), 0);
}

TEST_F(ExportCommandTest, AMissingStylesheetIsReportedAndTheXmlIsDone) {
  system.program_directory = folder.Path().string();
  EXPECT_EQ(Export(3, "xml", out_folder / "DAY.xml"), 0);
  EXPECT_THAT(err, StartsWith("VRX(2260): Style sheet file has been tampered, Please contact to "
                              "Administrator.\ncause: "));
  EXPECT_THAT(err, ::testing::EndsWith(kDone));
  EXPECT_EQ(Export(3, "html", out_folder / "DAY.html"), 1);
  EXPECT_THAT(err, ::testing::EndsWith("Export: Data exporting failed.\n"));
  EXPECT_FALSE(fs::exists(out_folder / "DAY.html"));
}

TEST_F(ExportCommandTest, WrongUsageIsRefused) {
  EXPECT_EQ(Export(13, "csv", folder / "DAY"), 2);
  EXPECT_EQ(Export(3, "pdf", folder / "DAY"), 2);
  EXPECT_THAT(err, HasSubstr("csv,xml,html"));
  EXPECT_EQ(Export(9, "csv", folder / "DAY"), 2);
  EXPECT_EQ(Export(3, "csv", folder / "DAY", {"--name", "FINHOT"}), 2);
  EXPECT_EQ(Run({"export", database, "--group", "3", "--format", "csv", "--out", "DAY"}), 2);
  EXPECT_THAT(err, HasSubstr("--recipes is required"));
}

TEST_F(ExportCommandTest, DatabasesOfTheWrongKindAreRefused) {
  std::swap(database, recipes);
  EXPECT_EQ(Export(3, "csv", folder / "DAY"), 1);
  EXPECT_THAT(err, StartsWith("Invalid Database: "));
}

TEST_F(ExportCommandTest, ATerminalShowsThatItWorks) {
  err_is_terminal = true;
  ASSERT_EQ(Export(3, "csv", folder / "DAY"), 0);
  EXPECT_THAT(err, StartsWith("Exporting Recipes (all)"));
  EXPECT_THAT(err, ::testing::EndsWith(kDone));
}

}  // namespace
}  // namespace vrx::testing
