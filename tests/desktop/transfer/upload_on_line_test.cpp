#include <gmock/gmock.h>

#include "desktop/transfer/line_fixture.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;
using ::testing::SizeIs;

const std::string kTransactions = "{BAT/FED},L\r\n[BAT],B,1\r\n\r\n";
const std::string kReport = "{REPORT}\r\npage \xE9\r\n";
const std::string kPage = "\f page two\r\n";
const std::string kBackup = "{DATA_IN},L\r\n\r\n[ING]\r\n\r\n1,CORN,0\r\n";

class UploadOnLine : public LineFixture {
 protected:
  void Save(int row, const fs::path& file) {
    ClickBox(row);
    chooser_.Choose(file);
    Click(u"cmdSaveFile"_qs);
  }
};

TEST_F(UploadOnLine, OneFileIsReportedInTheSingularInGreen) {
  const auto module = Module(kTransactions);
  bool stood_by = false;
  Later(Ms{300}, [&] { stood_by = Busy() && Status() == StatusLook{"Standby...", kStatusBlue}; });
  Upload();
  EXPECT_TRUE(stood_by);
  EXPECT_EQ(Status(), (StatusLook{"Upload complete!  (29 bytes, 1 file)", kStatusGreen}));
  EXPECT_THAT(Rows(), ElementsAre("Transaction file 1: not readable"));
  EXPECT_TRUE(Visible(u"frmDataFiles"_qs));
  EXPECT_FALSE(Busy());
}

TEST_F(UploadOnLine, FilesOfEveryKindAreSavedByteForByte) {
  const auto module = Module(kTransactions + kBackup + kReport + kPage);
  Upload();
  EXPECT_EQ(Status(), (StatusLook{"Upload complete!  (93 bytes, 4 files)", kStatusGreen}));
  struct Kind {
    std::string file, bytes, status, row;
    FileDialog dialog;
  };
  const std::vector<Kind> kinds{
      {"A.QXT",
       kTransactions,
       "Transaction file (1) saved!",
       "Transaction file 1: not readable (saved)",
       {"Save Transaction File", "Transactions (*.QXT)|*.QXT|All Files (*.*)|*.*", "QXT"}},
      {"A.RBU",
       kBackup,
       "Recipe backup file (2) saved!",
       "Recipe backup file 2: 1 ingredient, 0 recipes, 0 pens (saved)",
       {"Save Recipe Backup File", "Recipe Backup (*.RBU)|*.RBU|All Files (*.*)|*.*", "RBU"}},
      {"A.TXT",
       kReport,
       "Report file (3) saved!",
       "Text report 3: 1 line (saved)",
       {"Save Report File", "Report (*.TXT)|*.TXT|All Files (*.*)|*.*", "TXT"}},
      {"B.TXT",
       kPage,
       "Report file (4) saved!",
       "Text report 4: 1 line (saved)",
       {"Save Report File", "Report (*.TXT)|*.TXT|All Files (*.*)|*.*", "TXT"}}};
  for (int row = 0; row < 4; ++row) {
    const Kind& kind = kinds.at(static_cast<std::size_t>(row));
    Save(row, folder_ / kind.file);
    EXPECT_EQ(ReadAll(folder_ / kind.file), kind.bytes);
    EXPECT_EQ(Path(), (folder_ / kind.file).string());
    EXPECT_EQ(Status(), (StatusLook{kind.status, kStatusBlue}));
    EXPECT_EQ(Rows().at(static_cast<std::size_t>(row)), kind.row);
    EXPECT_THAT(Checked(), IsEmpty());
    const FileDialog& asked = chooser_.dialogs.back();
    EXPECT_EQ(asked.title, kind.dialog.title);
    EXPECT_EQ(asked.filter, kind.dialog.filter);
    EXPECT_EQ(asked.default_extension, kind.dialog.default_extension);
    EXPECT_EQ(asked.flags, kOverwritePrompt | kHideReadOnly);
  }
  Save(0, folder_ / "A.QXT");  // once more
  EXPECT_EQ(Rows().front(), "Transaction file 1: not readable (saved)");
}

TEST_F(UploadOnLine, ASaveThatIsCanceledIsReportedByItsKindAndChangesNothing) {
  const auto module = Module(kTransactions + kBackup + kReport);
  Upload();
  const std::vector<std::string> rows = Rows();
  Click(u"cmdSaveFile"_qs);
  EXPECT_EQ(boxes_.Last().text,
            "You must first select a data file to save. Click on one of the check boxes next to "
            "the file you want to save.");
  EXPECT_EQ(boxes_.Last().title, "Error");
  EXPECT_EQ(boxes_.Last().icon, Icon::kWarning);
  EXPECT_EQ(Status(), (StatusLook{"Upload complete!  (81 bytes, 3 files)", kStatusGreen}));
  const std::vector<std::string> words{"Could not save transaction file (1)",
                                       "Could not save recipe backup-file (2)",
                                       "Could not save report file (3)"};
  for (int row = 0; row < 3; ++row) {
    ClickBox(row);
    chooser_.Cancel();
    Click(u"cmdSaveFile"_qs);
    EXPECT_EQ(Status(), (StatusLook{words.at(static_cast<std::size_t>(row)), kStatusBlue}));
    EXPECT_EQ(Rows(), rows);
    EXPECT_THAT(Checked(), ElementsAre(row));
    ClickBox(row);
  }
}

TEST_F(UploadOnLine, BytesAreCountedAsTheyCome) {
  const auto module = Module(kTransactions + std::string(3000, 'x'), {});
  Upload();
  EXPECT_EQ(Status(), (StatusLook{"Upload complete!  (3029 bytes, 1 file)", kStatusGreen}));
  std::vector<std::string> counts;
  for (const auto& [text, color] : shown_) {
    if (text.starts_with("Uploading")) {
      counts.push_back(text);
      EXPECT_EQ(color, kStatusBlue);
    }
  }
  EXPECT_THAT(counts, SizeIs(::testing::Ge(4U)));
  EXPECT_THAT(counts, Each(MatchesRegex("Uploading from KRM\\.\\.\\.\\.  [0-9]+ bytes"
                                        "(, [0-9]+% of the memory(, at most .* left)?)?")));
  EXPECT_NE(counts.front(), counts.back());
}

TEST_F(UploadOnLine, ALinePulledAtAnyMomentIsReportedAndTheNextTryWorks) {
  for (const Ms when : {Ms{200}, Ms{1100}, Ms{2300}}) {
    auto module = Module(kTransactions);
    Later(when, [&] { module.reset(); });
    Upload();
    EXPECT_EQ(Status().color, kStatusRed) << when.count();
    EXPECT_THAT(Status().text, ::testing::StartsWith("Error: ")) << when.count();
    EXPECT_FALSE(Busy());
  }
  TheNextUploadWorks();
}

TEST_F(UploadOnLine, TheWindowAnswersClicks) {
  const auto module = Module(kTransactions);
  int changes = 0;
  for (const Ms when : {Ms{300}, Ms{1200}, Ms{2100}, Ms{2900}}) {
    Later(when, [this, &changes] {
      const int other = Tabs().currentIndex() == kTabImport ? kTabDataTransfer : kTabImport;
      QTest::mouseClick(Tabs().tabBar(), Qt::LeftButton, {},
                        Tabs().tabBar()->tabRect(other).center());
      changes += Tabs().currentIndex() == other && Busy() ? 1 : 0;
    });
  }
  Upload();
  EXPECT_EQ(changes, 4);
  EXPECT_EQ(Status().color, kStatusGreen);
}

// The clicks run inside the upload's waits.
TEST_F(UploadOnLine, NeitherAnotherClickNorAChangeOfConnectionDisturbsIt) {
  const auto module = Module(kTransactions);
  for (const Ms when : {Ms{300}, Ms{1500}, Ms{2200}}) {
    Later(when, [this] {
      Upload();
      ConnectDirectly();
    });
  }
  Upload();
  EXPECT_EQ(Status(), (StatusLook{"Upload complete!  (29 bytes, 1 file)", kStatusGreen}));
  EXPECT_THAT(Rows(), ElementsAre("Transaction file 1: not readable"));
  EXPECT_THAT(boxes_.boxes, IsEmpty());
  EXPECT_FALSE(Direct());
  EXPECT_FALSE(Busy());
}

// What an operator does with a module that came from the yard.
TEST_F(UploadOnLine, AnUploadedFileGoesIntoTheGridOfTheImport) {
  const std::string file =
      "{BAT/FED},L\r\n"
      "[BAT],B,1,3,01152009,2,4,7,0,0,0;0830,0835,0,0,0;1000.0,500.0,0,0,0;998.0,503.5,0,0,0\r\n"
      "\r\n"
      "[FED],B,1,12,2,0915,01152009,750.0,748.5\r\n"
      "\r\n";
  const auto module = Module(file);
  Upload();
  Save(0, folder_ / "day.qxt");
  chooser_.Choose(folder_ / "day.qxt");
  Choose(u"mnuTransferImport"_qs);
  EXPECT_EQ(Tabs().currentIndex(), kTabImport);
  EXPECT_EQ(Text(u"lblTransFilename"_qs), u"DAY.QXT"_qs);
  EXPECT_EQ(Text(u"lblRecords"_qs), u"3"_qs);
}

// Sixty kilobytes take half a minute; Esc comes as soon as the first count is shown.
TEST_F(UploadOnLine, CancelEndsTheUploadAndKeepsWhatArrived) {
  const std::string memory = kTransactions + std::string(60'000, ' ');
  auto module = Module(memory, {});
  EXPECT_FALSE(Visible(u"cmdTransferCancel"_qs));
  const auto cancel =
      Once([&] { return Status().text.find("% of the memory") != std::string::npos; },
           [&] {
             EXPECT_TRUE(Visible(u"cmdTransferCancel"_qs));
             QTest::keyClick(&Window(), Qt::Key_Escape);
           });
  Upload();
  EXPECT_FALSE(Visible(u"cmdTransferCancel"_qs));
  EXPECT_THAT(Status().text, MatchesRegex("Upload canceled after [0-9]+ bytes\\."));
  EXPECT_EQ(Status().color, kStatusRed);
  EXPECT_TRUE(boxes_.Last().text.starts_with("What the indicator sent is kept in the file "));
  const fs::path kept = boxes_.Last().text.substr(44, boxes_.Last().text.size() - 45);
  ASSERT_TRUE(fs::exists(kept)) << kept;
  const std::string bytes = ReadAll(kept);
  EXPECT_FALSE(bytes.empty());
  EXPECT_TRUE(memory.starts_with(bytes));
  EXPECT_FALSE(Busy());
  module.reset();
  TheNextUploadWorks();
}

}  // namespace
}  // namespace vrx::testing
