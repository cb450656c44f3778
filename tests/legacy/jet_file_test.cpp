#include "legacy/jet_file.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nettle/arcfour.h>

#include "legacy/conversion_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;
using namespace std::string_view_literals;

std::string Fixture() { return BytesOf(std::filesystem::path(LEGACY_DATA) / "LEGACYR.RDB"); }

JetFileKind KindOf(const std::string& bytes) {
  return ClassifyJetFile(bytes.substr(0, kJetPageSize), bytes.size());
}

// Changes bytes in the scrambled part of the first page. RC4 is an XOR, so a change of the clear
// bytes can be applied to the scrambled ones.
std::string Changed(std::string bytes, std::size_t offset, std::string_view change) {
  for (std::size_t index = 0; index < change.size(); ++index) {
    bytes[offset + index] = static_cast<char>(bytes[offset + index] ^ change[index]);
  }
  return bytes;
}

TEST(JetFile, KnowsAJet4File) {
  EXPECT_EQ(KindOf(Fixture()), JetFileKind::kJet4);
  EXPECT_EQ(KindOf(JetWriter().Bytes()), JetFileKind::kJet4);
  EXPECT_EQ(JetFileRefusal(JetFileKind::kJet4, "A.RDB"), "");
}

TEST(JetFile, KnowsAJet3File) {
  std::string bytes = Fixture();
  bytes[0x14] = 0;
  EXPECT_EQ(KindOf(bytes), JetFileKind::kJet3);
  EXPECT_THAT(JetFileRefusal(JetFileKind::kJet3, "A.RDB"),
              HasSubstr("A.RDB is a Jet 3 database (the Access 97 file format). Convert it to the "
                        "Access 2000 file format"));
}

TEST(JetFile, KnowsAnAccess2007FileByItsMarkAndByItsVersion) {
  std::string by_mark = Fixture();
  by_mark.replace(4, 15, "Standard ACE DB");
  by_mark[0x14] = 2;
  EXPECT_EQ(KindOf(by_mark), JetFileKind::kAccess2007);
  std::string by_version = Fixture();
  by_version[0x14] = 2;
  EXPECT_EQ(KindOf(by_version), JetFileKind::kAccess2007);
  EXPECT_THAT(JetFileRefusal(JetFileKind::kAccess2007, "A.RDB"),
              StartsWith("A.RDB is a database of the Access 2007 file format or a later one. Save "
                         "it in the Access 2000 file format"));
}

TEST(JetFile, KnowsAPassword) {
  EXPECT_EQ(KindOf(Changed(Fixture(), 0x42, "s\0e\0c\0"sv)), JetFileKind::kPassword);
  EXPECT_EQ(KindOf(Changed(Fixture(), 0x42 + 38, "t\0"sv)), JetFileKind::kPassword);
  EXPECT_EQ(KindOf(Changed(Fixture(), 0x42 + 40, "x\0"sv)), JetFileKind::kJet4);
  EXPECT_THAT(JetFileRefusal(JetFileKind::kPassword, "A.RDB"), HasSubstr("remove the password"));
}

// The writer's files are of the day 39937, the mask of a password.
TEST(JetFile, KnowsTheTwoFormsOfNoPassword) {
  const std::string masked = JetWriter().Bytes();
  EXPECT_EQ(KindOf(masked), JetFileKind::kJet4);
  std::string mask;
  for (int part = 0; part < 10; ++part) {
    mask += "\x01\x9C\0\0"sv;
  }
  EXPECT_EQ(KindOf(Changed(masked, 0x42, mask)), JetFileKind::kJet4);
  EXPECT_EQ(KindOf(Changed(masked, 0x42, mask.substr(0, 36))), JetFileKind::kPassword);
}

TEST(JetFile, KnowsEncryptedPages) {
  EXPECT_EQ(KindOf(Changed(Fixture(), 0x3E, "\x12\x34\x56\x78")), JetFileKind::kEncrypted);
  EXPECT_THAT(JetFileRefusal(JetFileKind::kEncrypted, "A.RDB"), HasSubstr("Decrypt a copy"));
}

TEST(JetFile, KnowsACutOffFile) {
  const std::string whole = Fixture();
  EXPECT_EQ(KindOf(whole.substr(0, whole.size() - 1)), JetFileKind::kCutOff);
  EXPECT_EQ(KindOf(whole.substr(0, 100)), JetFileKind::kCutOff);
  EXPECT_EQ(KindOf(whole.substr(0, 20)), JetFileKind::kCutOff);
  EXPECT_EQ(ClassifyJetFile(whole.substr(0, kJetPageSize - 1), 2 * kJetPageSize),
            JetFileKind::kCutOff);
}

TEST(JetFile, DistinguishesFilesOfOtherKinds) {
  EXPECT_EQ(KindOf(""), JetFileKind::kEmpty);
  EXPECT_EQ(KindOf("ID,Name\r\n1,CORN\r\n"), JetFileKind::kText);
  EXPECT_EQ(KindOf("A report.\f\tNext page.\n"), JetFileKind::kText);
  EXPECT_EQ(KindOf("SQLite"), JetFileKind::kPresentFormat) << "cut off";
  EXPECT_EQ(KindOf(std::string("\x89PNG\r\n\x1A\n\0\0", 10)), JetFileKind::kOther);
  EXPECT_EQ(KindOf(BytesOf(std::filesystem::path(VRX_BIN_DIR) / "QXNULRDB.MDB")),
            JetFileKind::kPresentFormat);
  EXPECT_THAT(JetFileRefusal(JetFileKind::kText, "A.RDB"),
              StartsWith("A.RDB is a text file, not a database. Choose the .RDB or .TDB file"));
}

TEST(JetFile, LooksForBinaryBytesInTheFirst512) {
  std::string bytes(600, 'a');
  bytes[511] = '\x7F';
  EXPECT_EQ(KindOf(bytes), JetFileKind::kOther);
  bytes[511] = '\t';
  bytes[512] = '\x7F';
  EXPECT_EQ(KindOf(bytes), JetFileKind::kText);
}

TEST(JetFile, HasWordsForEveryKindThatIsRefused) {
  for (int kind = 1; kind < kJetFileKinds; ++kind) {
    EXPECT_THAT(JetFileRefusal(static_cast<JetFileKind>(kind), "A.RDB"), StartsWith("A.RDB is "))
        << kind;
  }
}

}  // namespace
}  // namespace vrx::testing
