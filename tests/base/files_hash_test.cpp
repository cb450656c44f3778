#include <string>
#include <tuple>

#include <gtest/gtest.h>

#include "base/files.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

TEST(Sha256OfFile, IsTheStandardsHashOfTheBytes) {
  const TempFolder folder;
  EXPECT_EQ(Sha256OfFile(folder.Write("empty", "")),
            "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
  EXPECT_EQ(Sha256OfFile(folder.Write("abc", "abc")),
            "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(Sha256OfFile(folder.Write("long", std::string(1'000'000, 'a'))),
            "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TEST(Sha256OfFile, AFileThatCannotBeReadHasNone) {
  const TempFolder folder;
  EXPECT_THROW(std::ignore = Sha256OfFile(folder / "missing"), FileError);
  EXPECT_THROW(std::ignore = Sha256OfFile(folder.Path()), FileError);
}

}  // namespace
}  // namespace vrx::testing
