#include <array>
#include <utility>

#include <gtest/gtest.h>

#include "presenter/help.h"
#include "support/fixed_system_info.h"

namespace vrx {
namespace {

struct Found {
  std::string result;
  std::string message;
};

Found Find(int code, const std::string& viewer = "") {
  testing::FixedSystemInfo system;
  system.find_executable_code = code;
  system.viewer_path = viewer;
  Found found;
  found.message = "left from before";
  found.result = FindDocumentViewer(system, "VRX2260_U.PDF", found.message);
  return found;
}

TEST(FindDocumentViewer, GivesTheViewersPathWithoutNullsAndAnEmptyMessage) {
  const Found found = Find(33, std::string(" /usr/bin/viewer \0\0garbage", 26));
  EXPECT_EQ(found.result, "/usr/bin/viewer");
  EXPECT_EQ(found.message, "");
}

TEST(FindDocumentViewer, ReportsAMissingFileWithTheAdviceToInstallAgain) {
  const Found found = Find(2);
  EXPECT_EQ(found.result,
            "Error, 'VRX2260_U.PDF' file not \r\n     found in the application directory.");
  EXPECT_EQ(found.message,
            "\r\n     You should run the install program again to \r\n     load the document.");
}

TEST(FindDocumentViewer, ReportsAMissingAssociationWithAdvice) {
  const Found found = Find(31);
  EXPECT_EQ(found.result, "Error, no association exists.");
  EXPECT_EQ(
      found.message,
      "\r\n     You should establish an 'association' for the files with extensions that will "
      "define the application that you want to use open this type of file. This is done "
      "through Windows. ");
}

TEST(FindDocumentViewer, ReportsTheOtherKnownCodesWithoutASecondMessage) {
  const std::array<std::pair<int, std::string>, 3> codes = {
      {{0, "Error, system out of memory or resources."},
       {3, "Error, path does not exist."},
       {11, "Error, associated executable is incorrect for this file-type."}}};
  for (const auto& [code, text] : codes) {
    const Found found = Find(code);
    EXPECT_EQ(found.result, text);
    EXPECT_EQ(found.message, "");
  }
}

TEST(FindDocumentViewer, ReportsAnyOtherCodeInDecimal) {
  EXPECT_EQ(Find(5).result, "Error, 5");
  EXPECT_EQ(Find(32).result, "Error, 32");
  EXPECT_EQ(Find(32).message, "");
}

TEST(FindDocumentViewer, LooksInTheProgramsDirectory) {
  class AskedSystem : public testing::FixedSystemInfo {
   public:
    int FindExecutable(const std::string& document, const std::string& directory,
                       std::string& viewer) const override {
      viewer = directory + "|" + document;
      return 42;
    }
  };
  AskedSystem system;
  system.program_directory = "/opt/vrx";
  std::string message;
  EXPECT_EQ(FindDocumentViewer(system, "Readme.TXT", message), "/opt/vrx|Readme.TXT");
}

TEST(HasDocumentViewer, IsTrueForAResultAbove32AndOfEqualRuleForEachKind) {
  testing::FixedSystemInfo system;
  for (const std::string_view kind : kDocumentKinds) {
    const std::string document = "Manual" + std::string(kind);
    for (const int code : {0, 2, 3, 11, 31, 32}) {
      system.find_executable_code = code;
      EXPECT_FALSE(HasDocumentViewer(system, document)) << code;
    }
    system.find_executable_code = 33;
    EXPECT_TRUE(HasDocumentViewer(system, document));
  }
}

}  // namespace
}  // namespace vrx
