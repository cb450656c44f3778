#include "central/row_encoder.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/files.h"
#include "central/row_reader.h"
#include "database/connection.h"
#include "support/database_files.h"

namespace vrx::testing {
namespace {

using namespace std::string_literals;

std::string Hex(std::string_view bytes) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text;
  for (const char byte : bytes) {
    const auto code = static_cast<unsigned char>(byte);
    text += kDigits[code >> 4U];
    text += kDigits[code & 15U];
  }
  return text;
}

class RowEncoding : public ::testing::Test {
 protected:
  // The last row of the table is added and encoded.
  void Encode(const std::string& columns, const std::string& values) {
    database_.exec("INSERT INTO Transactions (" + columns + ") VALUES (" + values + ")");
    RowReader reader(database_, database_.getLastInsertRowid() - 1);
    reader.ReadBlock(database_.getLastInsertRowid(), [this](const RowEncoder& row) {
      fields_ = row.Fields();
      digest_ = row.Digest();
      sum_.Add(row);
    });
  }

  TempFolder folder_;
  SQLite::Database database_{CopyOfTemplate(folder_, "Y.TDB", DatabaseKind::kTransaction),
                             SQLite::OPEN_READWRITE};
  std::string fields_;
  std::string digest_;
  ProofSum sum_;
};

TEST_F(RowEncoding, PutsTheLengthBeforeEachFieldAndMarksNull) {
  Encode("RowNumber, [Transaction], Recipe, Target", "258, -1, 'é', 1.5");
  const std::string null = "ffffffff";
  EXPECT_EQ(Hex(fields_),
            "000000080000000000000102"
            "00000008ffffffffffffffff"
            "00000002c3a9" +
                null + null + null + null + "000000083ff8000000000000" + null + null + null + null +
                null + null);
}

// The worked example of the canonical form, written down by hand.
TEST_F(RowEncoding, DigestsTheCanonicalForm) {
  Encode("RowNumber, Type, Ing02Wt", "1, 'FEED', 2.0");
  const std::string text = "\0\0\0\x19\xff\xff\xff\xff"s;
  const std::string real = "\0\0\x02\xbd\xff\xff\xff\xff"s;
  const std::string canonical =
      "\0\0\0\x0e"s + "\0\0\0\x14\0\0\0\x08\0\0\0\0\0\0\0\x01"s + "\0\0\0\x14\xff\xff\xff\xff"s +
      text + "\0\0\0\x19\0\0\0\x04"s + "FEED" + text + text + text + real + real + text + text +
      real + real + "\0\0\x03\xfe\0\0\0\x24"s + "\0\0\0\x01\0\0\0\x01\0\0\x02\xbd\0\0\0\x02"s +
      "\0\0\0\x01\xff\xff\xff\xff\0\0\0\x08\x40\0\0\0\0\0\0\0"s;
  EXPECT_EQ(Hex(digest_), Sha256(canonical));
}

TEST_F(RowEncoding, TakesTheLastOfTheHundredWeights) {
  Encode("Ing100Wt", "2.5");
  EXPECT_THAT(Hex(fields_), ::testing::EndsWith("ffffffff000000084004000000000000"));
}

TEST_F(RowEncoding, AddsWeightsExactlyInAnyOrder) {
  Encode("Target, ActualBatch", "0.1, 1e22");
  Encode("Target, ActualBatch", "0.2, 1");
  Encode("Target, ActualBatch", "NULL, -1e22");
  const RowProof proof = sum_.Take();
  EXPECT_EQ(proof.rows, 3);
  EXPECT_EQ(proof.target, Exact::OfText("0.3"));
  EXPECT_EQ(proof.actual_batch, Exact::Whole(1));
  EXPECT_EQ(proof.actual_feed, Exact());
  EXPECT_EQ(sum_.Rows(), 0);
}

TEST_F(RowEncoding, OtherOrderOrOtherRowsHaveAnotherDigest) {
  Encode("Recipe, Type", "'AB', 'C'");
  const std::string one = digest_;
  Encode("Recipe, Type", "'A', 'BC'");
  EXPECT_NE(digest_, one);
  const RowProof both = sum_.Take();
  Encode("Recipe", "''");
  const std::string empty = digest_;
  Encode("RowNumber, Recipe", "4, NULL");
  EXPECT_NE(digest_, empty);
  EXPECT_NE(sum_.Take(), both);
}

TEST(CentralText, IsWellFormedUtf8WithoutNul) {
  EXPECT_TRUE(IsCentralText(""));
  EXPECT_TRUE(IsCentralText("O'Brien \xF0\x9F\x90\x84 \t\x7f"));
  EXPECT_FALSE(IsCentralText("A\0B"s));
  EXPECT_FALSE(IsCentralText("\xC3"));
  EXPECT_FALSE(IsCentralText("\xC3("));
  EXPECT_FALSE(IsCentralText("\xED\xA0\x80"));      // a surrogate
  EXPECT_FALSE(IsCentralText("\xF4\x90\x80\x80"));  // above U+10FFFF
  EXPECT_FALSE(IsCentralText("\xC0\xAF"));          // too long a form
}

}  // namespace
}  // namespace vrx::testing
