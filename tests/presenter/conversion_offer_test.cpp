#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "legacy/conversion_fixture.h"
#include "legacy/jet_file.h"
#include "presenter/legacy_conversion.h"
#include "support/test_services.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using Outcome = LegacyOpening::Outcome;

class KeptDisplay : public ConversionDisplay {
 public:
  void SetProgressMessage(std::string_view text) override { messages.emplace_back(text); }
  void SetProgressRange(int /*maximum*/) override {}
  void SetProgressValue(int /*value*/) override {}
  void BeginProgress() override { on_show = true; }
  void EndProgress() override { on_show = false; }
  bool Cancelled() const override { return cancelled; }
  void ShowReport(std::string_view text, const std::string& name) override {
    EXPECT_FALSE(on_show);
    report = text;
    file_name = name;
    while_report_is_open();
  }

  bool on_show = false;
  bool cancelled = false;
  std::vector<std::string> messages;
  std::string report;
  std::string file_name;
  std::function<void()> while_report_is_open = [] {};
};

class ConversionOfferTest : public ::testing::Test {
 protected:
  ConversionOfferTest() {
    system.program_directory = VRX_BIN_DIR;
    system.common_app_data_folder = (site.folder / "share").string();
  }

  LegacyOpening Offer(const fs::path& path, DatabaseKind kind = DatabaseKind::kRecipe) {
    Services services{.op = op,
                      .files = chooser,
                      .pump = pump,
                      .programs = site.runner,
                      .calendar = rest.calendar,
                      .system = system,
                      .settings = settings,
                      .folder = rest.folder,
                      .identity = rest.identity};
    ConversionOffer offer(services, display);
    return offer.Offer(kind, path);
  }

  ConversionFixture site;
  FixedSystemInfo system;
  PrivateINI settings;
  RecordingOperator op;
  ScriptedFileChooser chooser;
  ManualPump pump;
  KeptDisplay display;
  TestServices rest;
};

TEST_F(ConversionOfferTest, AsksInTheSpecifiedWordsAndConvertsACopy) {
  op.answers = {Answer::kYes};
  chooser.Choose(site.copy);
  const LegacyOpening made = Offer(site.Data("LEGACYR.RDB"));
  EXPECT_EQ(made.outcome, Outcome::kOpenCopy);
  EXPECT_EQ(made.copy, site.copy);
  ASSERT_THAT(op.boxes, SizeIs(1));
  EXPECT_EQ(op.boxes[0].text,
            "This database was made by an earlier version of the program. Convert a copy of it and "
            "open the copy?");
  EXPECT_EQ(op.boxes[0].buttons, Buttons::kYesNo);
  EXPECT_THAT(display.report, HasSubstr("Conversion of LEGACYR.RDB"));
  EXPECT_EQ(display.file_name, "NEW.TXT");
  EXPECT_THAT(display.messages, ::testing::Contains("Converting the table Ingredient."));
  ASSERT_THAT(chooser.dialogs, SizeIs(1));
  EXPECT_EQ(chooser.dialogs[0].default_extension, "RDB");
  EXPECT_EQ(chooser.dialogs[0].flags, kShortNames | kHideReadOnly);
  EXPECT_EQ(site.Rows("SELECT count(*) FROM Pen")[0][0], "400");
}

TEST_F(ConversionOfferTest, TheUnitOfTheSystemIsThatOfAFileWithoutOne) {
  ASSERT_TRUE(settings.LetByKey("SystemUnits", "KG"));
  JetWriter file;
  file.AddTable("Pen", {{"ID", JetWriter::kLong}});
  file.Write(site.old_path);
  op.answers = {Answer::kYes};
  chooser.Choose(site.copy);
  EXPECT_EQ(Offer(site.old_path).outcome, Outcome::kOpenCopy);
  EXPECT_EQ(site.Rows("SELECT UoM FROM UnitsOfMeasure")[0][0], "KG");
}

TEST_F(ConversionOfferTest, ANoGoesOnAsForAnyFile) {
  op.answers = {Answer::kNo};
  EXPECT_EQ(Offer(site.Data("LEGACYR.RDB")).outcome, Outcome::kGoOn);
  EXPECT_THAT(chooser.dialogs, IsEmpty());
}

TEST_F(ConversionOfferTest, AsksNothingAboutOtherFiles) {
  WriteBytes(site.old_path, "ID,Name\n");
  for (const fs::path& path : {site.old_path, site.folder / "NONE.RDB", site.folder.Path(),
                               fs::path(VRX_BIN_DIR) / "QXNULRDB.MDB"}) {
    EXPECT_EQ(Offer(path).outcome, Outcome::kGoOn) << path;
  }
  EXPECT_THAT(op.boxes, IsEmpty());
}

TEST_F(ConversionOfferTest, ReportsWhatAFileIsThatCannotBeConverted) {
  std::string bytes = BytesOf(site.Data("LEGACYR.RDB"));
  bytes[0x14] = 0;
  WriteBytes(site.old_path, bytes);
  EXPECT_EQ(Offer(site.old_path).outcome, Outcome::kEnd);
  ASSERT_THAT(op.boxes, SizeIs(1));
  EXPECT_EQ(op.boxes[0].title, "Database Conversion Error");
  EXPECT_EQ(op.boxes[0].text, JetFileRefusal(JetFileKind::kJet3, "OLD.RDB"));
}

TEST_F(ConversionOfferTest, TurnsBackWithTheFileDialog) {
  op.answers = {Answer::kYes};
  chooser.Cancel();
  EXPECT_EQ(Offer(site.Data("LEGACYR.RDB")).outcome, Outcome::kEnd);
  EXPECT_THAT(site.Files(), IsEmpty());
}

TEST_F(ConversionOfferTest, AsksAgainForANameThatCannotBe) {
  op.answers = {Answer::kYes};
  WriteBytes(site.folder / "THERE.RDB", "mine");
  chooser.Choose(site.folder / "THERE.RDB");
  chooser.Choose(site.folder / "NINELONGS.RDB");
  chooser.Choose(site.copy);
  EXPECT_EQ(Offer(site.Data("LEGACYR.RDB")).copy, site.copy);
  ASSERT_THAT(op.boxes, SizeIs(3));
  EXPECT_THAT(op.boxes[1].text, HasSubstr("A file by the name THERE.RDB already exists."));
  EXPECT_EQ(op.boxes[2].title, "Filename Error");
  EXPECT_EQ(BytesOf(site.folder / "THERE.RDB"), "mine");
}

TEST_F(ConversionOfferTest, ReportsAFileOfTheOtherKind) {
  op.answers = {Answer::kYes};
  chooser.Choose(site.folder / "NEW.TDB");
  EXPECT_EQ(Offer(site.Data("LEGACYR.RDB"), DatabaseKind::kTransaction).outcome, Outcome::kEnd);
  EXPECT_THAT(op.boxes.back().text, HasSubstr("is a recipe database; expected a transaction"));
  EXPECT_FALSE(display.on_show);
  EXPECT_THAT(site.Files(), IsEmpty());
}

TEST_F(ConversionOfferTest, OpensNoCopyWhenTheProgramEndsDuringTheReport) {
  op.answers = {Answer::kYes};
  chooser.Choose(site.copy);
  display.while_report_is_open = [this] { pump.closing = true; };
  EXPECT_EQ(Offer(site.Data("LEGACYR.RDB")).outcome, Outcome::kEnd);
  EXPECT_THAT(display.report, HasSubstr("Conversion of LEGACYR.RDB"));
  EXPECT_TRUE(fs::exists(site.copy));
}

TEST_F(ConversionOfferTest, EndsWhenTheOperatorOrTheProgramEndsIt) {
  op.answers = {Answer::kYes, Answer::kYes};
  chooser.Choose(site.copy);
  chooser.Choose(site.copy);
  display.cancelled = true;
  EXPECT_EQ(Offer(site.Data("LEGACYR.RDB")).outcome, Outcome::kEnd);
  display.cancelled = false;
  pump.closing = true;
  EXPECT_EQ(Offer(site.Data("LEGACYR.RDB")).outcome, Outcome::kEnd);
  EXPECT_THAT(op.boxes, SizeIs(2));  // the questions
  EXPECT_EQ(display.report, "");
  EXPECT_FALSE(display.on_show);
  EXPECT_THAT(site.Files(), IsEmpty());
}

}  // namespace
}  // namespace vrx::testing
