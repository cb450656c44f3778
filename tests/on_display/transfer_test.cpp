#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

#include "on_display/on_display.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;

// The Data Transfer tab with the simulator on port 2, the port of the settings.
class TransferOnDisplay : public OnDisplay {
 protected:
  TransferOnDisplay() {
    fs::create_directories(link_.parent_path());
    fs::create_directories(recipes.parent_path());
  }

  std::unique_ptr<Program> Simulate(std::vector<std::string> args) const {
    args.insert(args.begin() + 1, {"--link", link_.string()});
    auto simulator = std::make_unique<Program>(Bin("vrx2260sim"), args, folder.Path().string());
    EXPECT_TRUE(simulator->WaitForOutput("ready ")) << simulator->Err();
    return simulator;
  }
  std::unique_ptr<Program> IndicatorThatSends(const std::string& hex) const {
    return Simulate({"indicator", "--script",
                     folder.Write("script", "wait 3000\nsend " + hex + "\nwait 90000\n").string()});
  }
  bool WaitForStatus(const std::string& text) {
    return WaitFor([&](const Screen& screen) {
      const Widget* const status = screen.Find("lblStatusWindow");
      return status != nullptr && status->text == text;
    });
  }
  bool WaitForMemory(const std::string& bytes) {
    return WaitFor([&](const Screen& screen) {
      const Widget* const size = screen.Find("lblMemorySize");
      return size != nullptr && size->text == bytes;
    });
  }
  std::vector<fs::path> RescueFiles() const {
    std::vector<fs::path> files;
    for (const fs::directory_entry& entry : fs::directory_iterator(data)) {
      if (entry.path().extension() == ".KRM") {
        files.push_back(entry.path());
      }
    }
    return files;
  }

  fs::path link_ = data / "Ports/COM2";
};

// The upload takes two seconds, so the later clicks come in its middle.
TEST_F(TransferOnDisplay, MoreClicksOnUploadAreOneUpload) {
  const std::string memory = "{BAT/FED},L\r\n" + std::string(4000, ' ');
  const auto module = Simulate({"module", "--load", folder.Write("memory", memory).string()});
  StartProgram();
  Click("cmdUploadDataFromKRM", 2);
  ASSERT_TRUE(WaitFor([](const Screen& screen) {
    const Widget* const status = screen.Find("lblStatusWindow");
    return status != nullptr && status->text.starts_with("Uploading from KRM");
  }));
  EXPECT_FALSE(Look().Find("cmdUploadDataFromKRM")->enabled);
  EXPECT_FALSE(Look().Find("optConnection(1)")->enabled);
  Click("cmdUploadDataFromKRM", 2);
  Click("optConnection(1)");
  EXPECT_TRUE(WaitForStatus("Upload complete!  (4016 bytes, 1 file)"));
  Settle();
  const Screen screen = Look();
  EXPECT_EQ(screen.BoxText(), "");
  EXPECT_NE(screen.Find("lstDataFiles"), nullptr);
  EXPECT_TRUE(screen.Find("cmdUploadDataFromKRM")->enabled);
  EXPECT_TRUE(screen.Find("optConnection(0)")->checked);
}

TEST_F(TransferOnDisplay, AMissingPortIsNamedInTheBoxWhoseButtonOpensSetupAtThePort) {
  fs::create_symlink(folder / "no_device", link_);
  StartProgram();
  Click("cmdUploadDataFromKRM");
  ASSERT_TRUE(WaitForBox("The KRM was not detected."));
  EXPECT_EQ(TextOf("qt_msgbox_informativelabel"),
            (folder / "no_device").string() + ": no such device");
  Keys({"alt+s"});
  ASSERT_TRUE(WaitForWindow("Setup and Test"));
  EXPECT_TRUE(WaitFor([](const Screen& screen) {
    const Widget* const ports = screen.Find("lstSerialPort");
    return ports != nullptr && ports->focus;
  }));
  Keys({"Escape"});
  ASSERT_TRUE(WaitForWindow(kMainTitle));
  fs::remove(link_);
  const auto module =
      Simulate({"module", "--load", folder.Write("memory", "{BAT/FED},L\r\n").string()});
  Click("cmdUploadDataFromKRM");
  EXPECT_TRUE(WaitForStatus("Upload complete!  (16 bytes, 1 file)"));
}

// A full module takes 34 seconds; Esc comes when the pace is known.
TEST_F(TransferOnDisplay, EscCancelsAnUploadKeepsWhatCameAndTheNextOneWorks) {
  const std::string memory = "{BAT/FED},L\r\n" + std::string(60000, ' ');
  auto module = Simulate({"module", "--load", folder.Write("memory", memory).string()});
  StartProgram();
  Click("cmdUploadDataFromKRM");
  ASSERT_TRUE(WaitFor([](const Screen& screen) {
    const Widget* const status = screen.Find("lblStatusWindow");
    return status != nullptr && status->text.starts_with("Uploading from KRM") &&
           status->text.find("% of the memory, at most ") != std::string::npos &&
           status->text.ends_with(" s left") && screen.Find("cmdTransferCancel") != nullptr;
  }));
  Keys({"Escape"});
  ASSERT_TRUE(WaitForBox("What the indicator sent is kept in the file "));
  Keys({"Return"});
  ASSERT_TRUE(WaitForWindow(kMainTitle));
  EXPECT_TRUE(TextOf("lblStatusWindow").starts_with("Upload canceled after "));
  EXPECT_EQ(Look().Find("cmdTransferCancel"), nullptr);
  ASSERT_EQ(RescueFiles().size(), 1U);
  const std::string kept = ReadAll(RescueFiles().front());
  EXPECT_GT(kept.size(), 500U);
  EXPECT_TRUE(memory.starts_with(kept));
  // The module keeps its memory, so the same upload can be tried again; a small one is quicker.
  module->Signal(SIGTERM);
  module->Wait();
  module = Simulate({"module", "--load", folder.Write("small", "{BAT/FED},L\r\n").string()});
  Click("cmdUploadDataFromKRM");
  EXPECT_TRUE(WaitForStatus("Upload complete!  (16 bytes, 1 file)"));
}

TEST_F(TransferOnDisplay, SaveAndImportLeadsFromTheModuleToTheDatabaseByTheKeyboard) {
  const auto day = [](const std::string& date) {
    return "{BAT/FED},L\r\n[BAT],B,1,3," + date +
           ",2,4,0,0;0830,0,0;1000.0,0,0;998.0,0,0\r\n\r\n[FED],B,1,12,2,0915," + date +
           ",750.0,748.5\r\n\r\n";
  };
  MakeDatabases();
  const auto module = Simulate(
      {"module", "--load", folder.Write("memory", day("01112026") + day("01122026")).string()});
  StartProgram();
  ChooseFromMenu({"Transfer", "Upload Data..."});
  Keys({"space"});
  ASSERT_TRUE(WaitFor([](const Screen& screen) {
    const Widget* const files = screen.Find("lstDataFiles");
    return files != nullptr && files->rows == 2;
  }));
  Keys({"alt+i"});
  const auto wait_for_store_of = [this](const std::string& file) {
    return WaitFor([&](const Screen& screen) {
      const Widget* const imported = screen.Find("lblTransFilename");
      const Widget* const store = screen.Find("cmdImportStore");
      return imported != nullptr && imported->text == file && store != nullptr && store->focus;
    });
  };
  ASSERT_TRUE(wait_for_store_of("260111-01.QXT"));
  EXPECT_EQ(ReadAll(data / "260111-01.QXT"), day("01112026"));
  EXPECT_EQ(ReadAll(data / "260112-01.QXT"), day("01122026"));
  Keys({"space"});
  ASSERT_TRUE(wait_for_store_of("260112-01.QXT"));
  EXPECT_TRUE(TextOf("lblResult").ends_with(", of 11-Jan-26. Next: 260112-01.QXT."));
  Keys({"space"});
  ASSERT_TRUE(WaitFor([](const Screen& screen) { return screen.Find("grdTRANS") != nullptr; }));
  EXPECT_TRUE(TextOf("lblResult").ends_with(", of 12-Jan-26."));
}

TEST_F(TransferOnDisplay, TheQuestionBeforeADownloadNamesWhatIsOddAndEnterRefuses) {
  MakeDatabases();
  ASSERT_EQ(Ctl({"set", "recipe", recipes.string(), "1", "--ration-target", "0"}).code, 0);
  const auto module =
      Simulate({"module", "--load", folder.Write("memory", "{BAT/FED},L\r\n").string()});
  StartProgram();
  ChooseFromMenu({"Transfer", "Download Data..."});
  Keys({"space"});
  ASSERT_TRUE(
      WaitFor([](const Screen& screen) { return screen.Find("cmdDownloadRecipeDB") != nullptr; }));
  Click("cmdDownloadRecipeDB");
  ASSERT_TRUE(WaitForBox(
      "Are you sure you want to overwrite all data in the KRM module with recipe data from the "
      "SITE.RDB database?"));
  const std::string question = Look().BoxText();
  EXPECT_NE(question.find("Recipes without ration target: 1 ("), std::string::npos) << question;
  EXPECT_TRUE(question.ends_with("The module has not been uploaded in this run of the program."));
  Keys({"Return"});
  ASSERT_TRUE(WaitForWindow(kMainTitle));
  EXPECT_EQ(TextOf("lblStatusWindow"), "");
}

TEST_F(TransferOnDisplay, ADoubleClickOnTheMemorySizeShowsTheBar) {
  const auto indicator = IndicatorThatSends("7B 52 45 50 4F 52 54 7D");
  StartProgram();
  Click("optConnection(1)");
  ASSERT_TRUE(WaitForMemory("8"));
  Click("lblMemorySize", 2);
  Settle();
  EXPECT_EQ(Look().Find("lblMemorySize"), nullptr);
  EXPECT_NE(Look().Find("prgMemorySize"), nullptr);
  program->Signal(SIGTERM);
  EXPECT_EQ(ExitCode(), 0) << program->Err();
}

TEST_F(TransferOnDisplay, LeavingWithReceivedDataAsksAndKeepsIt) {
  const auto indicator = IndicatorThatSends("7B 52 45 50 4F 52 54 7D");
  StartProgram();
  Click("optConnection(1)");
  ASSERT_TRUE(WaitForMemory("8"));
  Keys({"alt+F4"});
  ASSERT_TRUE(WaitForBox("What the indicator sent has not been saved."));
  Keys({"Escape"});
  ASSERT_TRUE(WaitForWindow(kMainTitle));
  EXPECT_TRUE(RescueFiles().empty());
  Keys({"alt+F4"});
  ASSERT_TRUE(WaitForBox("What the indicator sent has not been saved."));
  ClickButton("Yes");
  ASSERT_TRUE(WaitForBox("What the indicator sent is kept in the file "));
  Keys({"Return"});
  EXPECT_EQ(ExitCode(), 0) << program->Err();
  ASSERT_EQ(RescueFiles().size(), 1U);
  EXPECT_EQ(ReadAll(RescueFiles().front()), "{REPORT}");
}

TEST_F(TransferOnDisplay, ASignalKeepsReceivedDataWithoutAQuestion) {
  const auto indicator = IndicatorThatSends("7B 52 45 50 4F 52 54 7D");
  StartProgram();
  Click("optConnection(1)");
  ASSERT_TRUE(WaitForMemory("8"));
  program->Signal(SIGTERM);
  EXPECT_EQ(ExitCode(), 0) << program->Err();
  ASSERT_EQ(RescueFiles().size(), 1U);
  EXPECT_EQ(ReadAll(RescueFiles().front()), "{REPORT}");
}

}  // namespace
}  // namespace vrx::testing
