#include <string>
#include <string_view>

#include <gmock/gmock.h>

#include "presenter/import_session_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::SizeIs;

class ImportFiles : public ImportSessionTest {};

TEST_F(ImportFiles, FilesAreImportedOneAfterTheOtherAndARefusedOneIsSteppedOver) {
  const auto file = [this](const std::string& name, std::string_view text) {
    return FileChoice{site_.folder.Write(name, text).string(), name};
  };
  EXPECT_FALSE(session_.ImportNext());
  EXPECT_TRUE(session_.ImportFiles({file("bad.qxt", "no transactions"),
                                    file("one.qxt", kWorkedExample), file("worse.qxt", ""),
                                    file("two.qxt", FileOf(OneIngredient().Record(), ""))}));
  EXPECT_EQ(session_.File().FileName(), "ONE.QXT");
  EXPECT_EQ(session_.Form().grd_import_rows, 6);
  EXPECT_EQ(focused_.back(), "cmdImportStore");
  EXPECT_THAT(site_.op.boxes, SizeIs(1));
  EXPECT_TRUE(session_.ImportNext());
  EXPECT_EQ(session_.File().FileName(), "TWO.QXT");
  EXPECT_THAT(site_.op.boxes, SizeIs(2));
  EXPECT_FALSE(session_.ImportNext());
  EXPECT_EQ(session_.File().FileName(), "TWO.QXT");
  EXPECT_THAT(shown_, ElementsAre("one.qxt", "two.qxt"));
  EXPECT_TRUE(session_.Form().cmd_import_store_enabled);
}

TEST_F(ImportFiles, AnotherImportForgetsTheFilesThatWait) {
  const FileChoice one{site_.folder.Write("one.qxt", kWorkedExample).string(), "one.qxt"};
  EXPECT_TRUE(session_.ImportFiles({one, one}));
  EXPECT_TRUE(Import(kWorkedExample));
  EXPECT_FALSE(session_.ImportNext());
}

}  // namespace
}  // namespace vrx::testing
