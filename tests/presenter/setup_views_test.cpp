#include <gtest/gtest.h>

#include "base/files.h"
#include "presenter/setup.h"
#include "support/fixed_system_info.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

TEST(ApplicationPath, IsTheProgramInItsDirectory) {
  FixedSystemInfo system;
  system.program_directory = "/opt/vrx";
  EXPECT_EQ(ApplicationPath(system), "/opt/vrx/vrx2260");
}

TEST(IniFileText, EndsEveryLineInCrLf) {
  const TempFolder folder;
  EXPECT_EQ(IniFileText(folder.Write("a.ini", "[A]\nb=1\r\n\nlast")), "[A]\r\nb=1\r\n\r\nlast\r\n");
  EXPECT_EQ(IniFileText(folder.Write("b.ini", "")), "");
}

TEST(IniFileText, ShowsAMegabyteAndNoFileWithoutEnd) {
  constexpr std::size_t kMegabyte = std::size_t{1024} * 1024;
  const TempFolder folder;
  EXPECT_EQ(IniFileText(folder.Write("a.ini", std::string(kMegabyte, 'x'))).size(), kMegabyte + 2);
  const std::string cut = IniFileText(folder.Write("b.ini", std::string(3 * kMegabyte, 'x')));
  EXPECT_LT(cut.size(), kMegabyte + 10);
}

TEST(IniFileText, AMissingFileIsReported) {
  const TempFolder folder;
  EXPECT_THROW(IniFileText(folder / "no.ini"), FileError);
}

TEST(TransactionFileText, BreaksAfterEachCommaUpToTheLast) {
  EXPECT_EQ(TransactionFileText("{BAT/FED},L\r\n[BAT],B,1"), "{BAT/FED},\r\nL\r\n[BAT],\r\nB,\r\n");
}

TEST(TransactionFileText, WithoutACommaItIsEmpty) {
  EXPECT_EQ(TransactionFileText(""), "");
  EXPECT_EQ(TransactionFileText("abc"), "");
}

}  // namespace
}  // namespace vrx::testing
