#include <filesystem>
#include <vector>

#include <gtest/gtest.h>

#include "presenter/command_states.h"
#include "presenter/help.h"
#include "support/boxes.h"
#include "support/fake_operating_system.h"
#include "support/fixed_system_info.h"
#include "support/recording_operator.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

class CountingSystemInfo : public FixedSystemInfo {
 public:
  int FindExecutable(const std::string& document, const std::string& directory,
                     std::string& viewer) const override {
    asked.push_back(document);
    return FixedSystemInfo::FindExecutable(document, directory, viewer);
  }
  mutable std::vector<std::string> asked;
};

class ShowDocumentTest : public ::testing::Test {
 protected:
  ShowDocumentTest() { system.program_directory = folder.Path().string(); }

  TempFolder folder;
  CountingSystemInfo system;
  FakeOperatingSystem os;
  RecordingOperator op;
};

TEST_F(ShowDocumentTest, OpensTheFullPathInItsViewer) {
  const auto path = folder.Write("Readme.TXT", "text");
  system.find_executable_code = 33;
  ShowDocument(kReadme, system, os, op);
  EXPECT_EQ(os.opened_documents, std::vector{path});
  EXPECT_TRUE(op.boxes.empty());
}

TEST_F(ShowDocumentTest, MissingReadmeIsNamedAndNoViewerIsAskedFor) {
  ShowDocument(kReadme, system, os, op);
  EXPECT_THAT(
      OnlyBox(op.boxes),
      IsBox(Icon::kWarning, "Error: File not found",
            "Readme.TXT could not be found.\r\n"
            "It must be located in the VRX-2260 application directory for automatic viewing. "
            "You should run the install program again to load the document."));
  EXPECT_TRUE(system.asked.empty());
  EXPECT_TRUE(os.opened_documents.empty());
}

TEST_F(ShowDocumentTest, MissingManualIsNamed) {
  ShowDocument(kUsersManual, system, os, op);
  EXPECT_THAT(
      OnlyBox(op.boxes),
      IsBox(Icon::kWarning, "Error: File not found",
            "VRX2260_U.PDF could not be found.\r\n"
            "It must be located in the VRX-2260 application directory for automatic viewing. "
            "You should run the install program again to load the document."));
}

TEST_F(ShowDocumentTest, ReadmeWithoutAViewer) {
  folder.Write("Readme.TXT", "text");
  ShowDocument(kReadme, system, os, op);
  EXPECT_THAT(OnlyBox(op.boxes),
              IsBox(Icon::kWarning, "Error: No file viewer",
                    "Cannot display the Readme file: Readme.TXT\r\n"
                    "There is no associated application on the system for reading .TXT files."));
  EXPECT_EQ(system.asked, std::vector<std::string>{"Readme.TXT"});
  EXPECT_TRUE(os.opened_documents.empty());
}

TEST_F(ShowDocumentTest, ManualWithoutAViewerNamesASourceForOne) {
  folder.Write("VRX2260_U.PDF", "%PDF");
  ShowDocument(kUsersManual, system, os, op);
  EXPECT_THAT(
      OnlyBox(op.boxes),
      IsBox(Icon::kWarning, "Error: No file viewer",
            "Cannot display the User's Manual: VRX2260_U.PDF\r\n"
            "There is no Adobe Acrobat reader on the system for reading .PDF files.\r\n\r\n"
            "You can download a reader (free of charge) from the manufacturers web site at: "
            "https://okular.kde.org"));
}

TEST_F(ShowDocumentTest, CodesUpTo32SayThatThereIsNoViewer) {
  folder.Write("Readme.TXT", "text");
  system.find_executable_code = 32;
  ShowDocument(kReadme, system, os, op);
  ASSERT_EQ(op.boxes.size(), 1U);
  EXPECT_EQ(op.boxes[0].title, "Error: No file viewer");
}

TEST_F(ShowDocumentTest, ViewerThatFails) {
  folder.Write("Readme.TXT", "text");
  system.find_executable_code = 33;
  os.open_code = 32;
  ShowDocument(kReadme, system, os, op);
  EXPECT_THAT(OnlyBox(op.boxes),
              IsBox(Icon::kWarning, "Error: File viewer",
                    "Document viewer associated with this file failed.\r\n"
                    "Check the Windows association setting and that the viewer application file "
                    "actually exists."));
}

class ShowChapterTest : public ShowDocumentTest {
 protected:
  ShowChapterTest() {
    std::filesystem::create_directory(folder / "manual");
    path = folder.Write("manual/04-recipes.html", "<h1>Recipes</h1>");
  }
  void Show(int tab) {
    ShowChapter(tab, system, os, op,
                [this](const std::filesystem::path& chapter) { viewed.push_back(chapter); });
  }

  std::filesystem::path path;
  std::vector<std::filesystem::path> viewed;
};

TEST_F(ShowChapterTest, OpensTheChapterOfTheTabInTheDesktopsProgram) {
  system.find_executable_code = 33;
  Show(kTabRecipes);
  EXPECT_EQ(os.opened_documents, std::vector{path});
  EXPECT_TRUE(viewed.empty());
}

TEST_F(ShowChapterTest, IsViewedByTheProgramItselfWithoutAnother) {
  Show(kTabRecipes);
  EXPECT_EQ(viewed, std::vector{path});
  EXPECT_TRUE(os.opened_documents.empty());
  system.find_executable_code = 33;
  os.open_code = 11;
  Show(kTabRecipes);
  EXPECT_EQ(viewed.size(), 2U);
  EXPECT_TRUE(op.boxes.empty());
}

TEST_F(ShowChapterTest, ReportsAMissingChapter) {
  Show(kTabImport);
  EXPECT_EQ(OnlyBox(op.boxes).title, "Error: File not found");
  EXPECT_TRUE(OnlyBox(op.boxes).text.starts_with("manual/08-import.html could not be found.\r\n"));
  EXPECT_TRUE(viewed.empty());
}

}  // namespace
}  // namespace vrx::testing
