#include <random>

#include <gmock/gmock.h>

#include "link/link_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::HasSubstr;

class ExtractData : public LinkFixture {};

TEST_F(ExtractData, IsTheTextBetweenTheTerminators) {
  krm.GS_KRM_ErrMsg("before");
  EXPECT_EQ(krm.KRM_ExtractData("\x15\x1F"
                                "data\x1F"
                                "behind"),
            "data");
  EXPECT_EQ(krm.GS_KRM_ErrMsg(), "");
}

TEST_F(ExtractData, KeepsEveryOtherByteValue) {
  std::string data;
  for (int value = 0; value < 256; ++value) {
    if (value != 0x1F) {
      data += static_cast<char>(value);
    }
  }
  EXPECT_EQ(krm.KRM_ExtractData("\x15\x1F" + data + "\x1F"), data);
}

TEST_F(ExtractData, NothingBetweenIsAnEmptyBuffer) {
  EXPECT_EQ(krm.KRM_ExtractData("\x15\x1F\x1F"), "");
  EXPECT_EQ(krm.GS_KRM_ErrMsg(), "The KRM buffer is empty");
}

TEST_F(ExtractData, AnyOtherCountOfTerminatorsIsInvalid) {
  for (const std::string reply : {"", "\x15", "\x15\x1F",
                                  "\x15\x1F"
                                  "data",
                                  "\x1F\x1F\x1F",
                                  "\x15\x1F"
                                  "da\x1F"
                                  "ta\x1F",
                                  "\x1F\x1F\x1F\x1F"}) {
    krm.GS_KRM_ErrMsg("");
    EXPECT_EQ(krm.KRM_ExtractData(reply), "");
    EXPECT_EQ(krm.GS_KRM_ErrMsg(), "Invalid terminators");
  }
}

TEST_F(ExtractData, NoiseBehindTheReplyHasAtMost16Bytes) {
  const std::string reply = "\x15\x1F{REPORT}\x1F";
  EXPECT_EQ(krm.KRM_ExtractData(reply + std::string(16, '~')), "{REPORT}");
  EXPECT_EQ(krm.KRM_ExtractData(reply + std::string(17, '~')), "");
  EXPECT_EQ(krm.GS_KRM_ErrMsg(), "Invalid terminators");
}

class ExtractFiles : public LinkFixture {
 protected:
  void ExpectFile(int file, DataFileType type, int position, int length) {
    EXPECT_EQ(krm.GL_KRM_FileAttributes(file).type, type);
    EXPECT_EQ(krm.GL_KRM_FileAttributes(file).position, position);
    EXPECT_EQ(krm.GL_KRM_FileAttributes(file).length, length);
  }
};

TEST_F(ExtractFiles, TransactionFileRunsUpToTheReport) {
  EXPECT_EQ(krm.KRM_ExtractFiles("{BAT/FED},L\r\n{REPORT}text"), 2);
  ExpectFile(1, DataFileType::kTransaction, 1, 13);
  ExpectFile(2, DataFileType::kReport, 14, 12);
}

TEST_F(ExtractFiles, TransactionFileRunsUpToTheFormFeed) {
  EXPECT_EQ(krm.KRM_ExtractFiles("{BAT/FED},L\r\n\ftext"), 2);
  ExpectFile(1, DataFileType::kTransaction, 1, 13);
  ExpectFile(2, DataFileType::kReport, 14, 5);
}

TEST_F(ExtractFiles, KnowsARecipeBackup) {
  EXPECT_EQ(krm.KRM_ExtractFiles("{DATA_IN},L"), 1);
  ExpectFile(1, DataFileType::kRecipeBackup, 1, 11);
}

TEST_F(ExtractFiles, EachFormFeedStartsAPage) {
  EXPECT_EQ(krm.KRM_ExtractFiles("\fone\f\fthree"), 3);
  ExpectFile(1, DataFileType::kReport, 1, 4);
  ExpectFile(2, DataFileType::kReport, 5, 1);
  ExpectFile(3, DataFileType::kReport, 6, 6);
}

TEST_F(ExtractFiles, TextBeforeTheFirstMarkBelongsToNoFile) {
  EXPECT_EQ(krm.KRM_ExtractFiles("noise{REPORT}x"), 1);
  ExpectFile(1, DataFileType::kReport, 6, 9);
}

TEST_F(ExtractFiles, BraceWithoutAnIdentifierStartsNoFile) {
  EXPECT_EQ(krm.KRM_ExtractFiles("{BAT/FED} {x} {{REPORT {report} {"), 1);
  ExpectFile(1, DataFileType::kTransaction, 1, 33);
}

TEST_F(ExtractFiles, MarkAfterABraceStartsAFile) {
  EXPECT_EQ(krm.KRM_ExtractFiles("{{REPORT}"), 1);
  ExpectFile(1, DataFileType::kReport, 2, 8);
}

TEST_F(ExtractFiles, UnknownTextHasNoFiles) {
  krm.KRM_ExtractFiles("{REPORT}");
  EXPECT_EQ(krm.KRM_ExtractFiles("only unknown text {DATA_IN"), 0);
  ExpectFile(1, DataFileType::kUnknown, 0, 0);
  EXPECT_EQ(krm.KRM_ExtractFiles(""), 0);
}

TEST_F(ExtractFiles, ForgetsTheFilesBefore) {
  EXPECT_EQ(krm.KRM_ExtractFiles("\f\f\f"), 3);
  EXPECT_EQ(krm.KRM_ExtractFiles("\f"), 1);
  ExpectFile(2, DataFileType::kUnknown, 0, 0);
}

TEST_F(ExtractFiles, LeavesTheFileCountProperty) {
  krm.GL_KRM_FileCount(7);
  krm.KRM_ExtractFiles("\f\f\f");
  EXPECT_EQ(krm.GL_KRM_FileCount(), 7);
}

TEST_F(ExtractFiles, TableHolds99) {
  EXPECT_EQ(krm.KRM_ExtractFiles(std::string(99, '\f')), 99);
  ExpectFile(99, DataFileType::kReport, 99, 1);
}

TEST_F(ExtractFiles, HundredthFileIsAnErrorThatLeavesTheOthersCut) {
  try {
    krm.KRM_ExtractFiles(std::string(99, '\f') + "tail{REPORT}");
    FAIL();
  } catch (const TooManyFilesError& error) {
    EXPECT_THAT(error.what(), HasSubstr("99"));
  }
  ExpectFile(99, DataFileType::kReport, 99, 5);
}

TEST_F(ExtractFiles, AttributesAreAddressedByFileAndAttributeFromOne) {
  krm.KRM_ExtractFiles("ab{DATA_IN},L");
  EXPECT_EQ(krm.GL_KRM_FileAttributes(1, 1), 2);
  EXPECT_EQ(krm.GL_KRM_FileAttributes(1, 2), 3);
  EXPECT_EQ(krm.GL_KRM_FileAttributes(1, 3), 11);
}

TEST_F(ExtractFiles, AttributesOutOfRangeAreRefused) {
  EXPECT_THROW(static_cast<void>(krm.GL_KRM_FileAttributes(0)), Error);
  EXPECT_THROW(static_cast<void>(krm.GL_KRM_FileAttributes(100)), Error);
  EXPECT_THROW(static_cast<void>(krm.GL_KRM_FileAttributes(-1, 1)), Error);
  EXPECT_THROW(static_cast<void>(krm.GL_KRM_FileAttributes(1, 0)), Error);
  EXPECT_THROW(static_cast<void>(krm.GL_KRM_FileAttributes(1, 4)), Error);
  EXPECT_EQ(krm.GL_KRM_FileAttributes(99, 3), 0);
}

// The concatenated files are the block from its first mark on.
TEST_F(ExtractFiles, FilesCoverTheBlockFromTheFirstMarkOn) {
  const std::vector<std::string> pieces = {"{BAT/FED}", "{DATA_IN}", "{REPORT}", "\f", "{",
                                           "{DATA",     "text\r\n",  "}",        "{{"};
  std::mt19937 random(42);
  for (int round = 0; round < 2000; ++round) {
    std::string block;
    const std::size_t length = random() % 60;
    for (std::size_t i = 0; i < length; ++i) {
      block += pieces[random() % pieces.size()];
    }
    std::size_t first = block.size();
    for (const char* mark : {"{BAT/FED}", "{DATA_IN}", "{REPORT}", "\f"}) {
      first = std::min(first, block.find(mark));
    }
    const int count = krm.KRM_ExtractFiles(block);
    std::string joined;
    for (int file = 1; file <= count; ++file) {
      const FileAttributes& attributes = krm.GL_KRM_FileAttributes(file);
      ASSERT_NE(attributes.type, DataFileType::kUnknown);
      joined += block.substr(static_cast<std::size_t>(attributes.position) - 1,
                             static_cast<std::size_t>(attributes.length));
    }
    ASSERT_EQ(joined, block.substr(first)) << block;
  }
}

TEST(DataFileTypeName, NamesTheThreeTypes) {
  EXPECT_EQ(DataFileTypeName(DataFileType::kTransaction), "Transaction File");
  EXPECT_EQ(DataFileTypeName(DataFileType::kRecipeBackup), "Recipe Backup File");
  EXPECT_EQ(DataFileTypeName(DataFileType::kReport), "Text Report");
  EXPECT_EQ(DataFileTypeName(DataFileType::kUnknown), "");
}

}  // namespace
}  // namespace vrx::testing
