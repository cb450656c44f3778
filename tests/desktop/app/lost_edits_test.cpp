#include "desktop/app/lost_edits.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

TEST(LostEdits, AreKeptUntilTheyWereShown) {
  const TempFolder folder;
  EXPECT_EQ(ReadLostEdits(folder.Path()), "");
  KeepLostEdits({{.what = "pen 3 (PEN003), 'Name' field", .text = "NORTH", .cause = "locked"}},
                folder.Path());
  KeepLostEdits({}, folder.Path());
  KeepLostEdits({{.what = "recipe 1 (STEERS), new line", .text = "x", .cause = "disk full"}},
                folder.Path());
  EXPECT_EQ(ReadLostEdits(folder.Path()),
            "pen 3 (PEN003), 'Name' field: \"NORTH\" (locked)\r\n"
            "recipe 1 (STEERS), new line: \"x\" (disk full)\r\n");
  RemoveLostEdits(folder.Path());
  EXPECT_EQ(ReadLostEdits(folder.Path()), "");
  EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

}  // namespace
}  // namespace vrx::testing
