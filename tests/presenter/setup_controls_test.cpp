#include <gmock/gmock.h>

#include "presenter/help.h"
#include "presenter/setup.h"
#include "support/fixed_system_info.h"
#include "support/recording_operator.h"

namespace vrx::testing {
namespace {

using ::testing::IsEmpty;

constexpr const char* kNoViewer =
    "Error, no association exists.\r\n\r\n     You should establish an 'association'";

class SetupControlsTest : public ::testing::Test {
 protected:
  // `cmdOK` with the current choices.
  void Take(std::string_view recipe_unit = {}, std::string_view transaction_unit = {}) {
    ApplySetupControls(controls, recipe_unit, transaction_unit, settings, op);
  }
  std::string Warning() {
    if (op.boxes.size() != 1) {
      return std::to_string(op.boxes.size()) + " boxes";
    }
    EXPECT_EQ(op.boxes[0].title, "Warning");
    EXPECT_EQ(op.boxes[0].icon, Icon::kWarning);
    return op.boxes[0].text;
  }

  PrivateINI settings;
  RecordingOperator op;
  SetupControls controls = LoadSetupControls(settings);
};

TEST_F(SetupControlsTest, DefaultsAreShown) {
  EXPECT_EQ(controls.SystemUnits(), "LB");
  EXPECT_EQ(controls.SerialPort(), "2");
  EXPECT_EQ(controls.BaudRate(), "19200");
}

TEST_F(SetupControlsTest, EveryPortOfTheListIsFound) {
  for (int port = 1; port <= 9; ++port) {
    settings.SetSerialPort(std::to_string(port));
    EXPECT_EQ(LoadSetupControls(settings).serial_port, port - 1);
  }
}

TEST_F(SetupControlsTest, PortBeyondTheListHasNoSelectionAndIsStoredEmpty) {
  for (const std::string port : {"12", "0", "-1", "COM1", ""}) {
    settings.SetSerialPort(port);
    controls = LoadSetupControls(settings);
    EXPECT_EQ(controls.serial_port, kNoSelection) << port;
    Take();
    EXPECT_EQ(settings.SerialPort(), "");
  }
}

TEST_F(SetupControlsTest, UnitThatIsNeitherShowsAsPoundsAndIsStoredSo) {
  settings.SetSystemUnits("");
  controls = LoadSetupControls(settings);
  EXPECT_EQ(controls.SystemUnits(), "LB");
  Take();
  EXPECT_EQ(settings.SystemUnits(), "LB");
}

TEST_F(SetupControlsTest, BaudRateOutsideTheListShowsAs19200AndIsStoredSo) {
  settings.SetKRMBaudRate("4800");
  controls = LoadSetupControls(settings);
  EXPECT_EQ(controls.BaudRate(), "19200");
  Take();
  EXPECT_EQ(settings.KRMBaudRate(), "19200");
}

TEST_F(SetupControlsTest, EveryBaudRateOfTheListIsFound) {
  for (const std::string baud : {"1200", "2400", "9600", "19200"}) {
    settings.SetKRMBaudRate(baud);
    EXPECT_EQ(LoadSetupControls(settings).BaudRate(), baud);
  }
}

TEST_F(SetupControlsTest, EachBoxShowsAndLetsItsOwnSetting) {
  for (std::size_t i = 0; i < kSetupOptionCount; ++i) {
    controls.options.fill(false);
    controls.options.at(i) = true;
    Take();
    const SetupControls loaded = LoadSetupControls(settings);
    EXPECT_EQ(loaded.options, controls.options) << SetupOptions().at(i).control;
  }
}

TEST_F(SetupControlsTest, BoxesShowTheirSettings) {
  const auto box = [&](std::string_view name) {
    for (std::size_t i = 0; i < kSetupOptionCount; ++i) {
      if (SetupOptions().at(i).control == name) {
        return i;
      }
    }
    throw std::logic_error("no box");
  };
  controls.options.fill(false);
  controls.options.at(box("chkPrtOneRcpOnly")) = true;
  controls.options.at(box("chkBatchTargetIsRecTarget")) = true;
  Take();
  EXPECT_TRUE(settings.PrintCurrentRecipeOnlyOn());
  EXPECT_TRUE(settings.BatchTargetWtIsRecTargetOn());
  EXPECT_FALSE(settings.ShowImportProgressOn());
  EXPECT_FALSE(settings.EnableBeeperOn());
  EXPECT_FALSE(settings.EnablePrintTextOn());
  EXPECT_FALSE(settings.AutoloadRecipeDBOn());
  EXPECT_FALSE(settings.AutoloadTransDBOn());
  EXPECT_FALSE(settings.PrintGridLinesOn());
}

TEST_F(SetupControlsTest, ChangedUnitWithNothingOpenIsNotWarnedOf) {
  controls.system_units = 1;
  Take();
  EXPECT_EQ(settings.SystemUnits(), "KG");
  EXPECT_THAT(op.boxes, IsEmpty());
}

TEST_F(SetupControlsTest, WarnsOfTheRecipeDatabase) {
  controls.system_units = 1;
  Take("LB", "KG");
  EXPECT_EQ(Warning(),
            "The new system units-of-measure will no longer be the same as the current 'Recipe' "
            "database units. This is not advised as it will likely result in invalid total "
            "calculations.");
  EXPECT_EQ(settings.SystemUnits(), "KG");
}

TEST_F(SetupControlsTest, WarnsOfTheTransactionDatabase) {
  controls.system_units = 1;
  Take("", "LB");
  EXPECT_EQ(Warning(),
            "The new system units-of-measure will no longer be the same as the current "
            "'Transaction' database units. This is not advised as it will likely result in invalid "
            "total calculations.");
}

TEST_F(SetupControlsTest, WarnsOfBoth) {
  controls.system_units = 1;
  Take("LB", "LB");
  EXPECT_EQ(Warning(),
            "The new system units-of-measure will no longer be the same as both the current "
            "'Recipe' and 'Transaction' database units. This is not advised as it will likely "
            "result in invalid total calculations.");
}

TEST_F(SetupControlsTest, EqualUnitsAreNotWarnedOf) {
  Take("LB", "LB");
  EXPECT_THAT(op.boxes, IsEmpty());
}

TEST(AssociationsText, NamesTheViewerOfEachKind) {
  FixedSystemInfo system;
  system.find_executable_code = 33;
  system.viewer_path = "/usr/bin/viewer";
  EXPECT_EQ(AssociationsText(system),
            "DOC: No document of this kind ships with the program. The manual is VRX2260_U.PDF.\r\n"
            "TXT: /usr/bin/viewer\r\nPDF: /usr/bin/viewer\r\n");
}

// Those of the Help menu.
TEST(AssociationsText, LooksForDocumentsThatShip) {
  class AskedSystem : public FixedSystemInfo {
   public:
    int FindExecutable(const std::string& document, const std::string& /*directory*/,
                       std::string& /*viewer*/) const override {
      asked.push_back(document);
      return 2;
    }
    mutable std::vector<std::string> asked;
  };
  const AskedSystem system;
  AssociationsText(system);
  EXPECT_THAT(system.asked, ::testing::UnorderedElementsAre(kReadme.file, kUsersManual.file));
}

TEST(AssociationsText, ReportsWhatIsMissing) {
  const std::string text = AssociationsText(FixedSystemInfo());
  for (const std::string kind : {"TXT: ", "PDF: "}) {
    EXPECT_THAT(text, ::testing::HasSubstr(kind + kNoViewer));
  }
}

}  // namespace
}  // namespace vrx::testing
