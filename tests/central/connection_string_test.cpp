#include <cstdlib>
#include <fstream>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "central/server.h"
#include "support/environment.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

std::string WordOf(const ConnectionOptions& options, const std::string& keyword) {
  std::string value;
  for (const auto& [word, text] : options.words) {
    if (word == keyword) {
      value = text;
    }
  }
  return value;
}

std::string RefusalOf(const std::string& connection) {
  try {
    static_cast<void>(ReadConnectionString(connection));
    return {};
  } catch (const ConnectionStringError& error) {
    return error.what();
  }
}

TEST(ConnectionString, RefusesAPasswordAndDoesNotRepeatIt) {
  for (const std::string connection :
       {"host=db password=se%cret1", "postgresql://yard:se%25cret1@db/central",
        "postgresql://db/central?password=se%25cret1", "host=db sslpassword=se%cret1"}) {
    const std::string refusal = RefusalOf(connection);
    EXPECT_NE(refusal.find("assword"), std::string::npos) << connection;
    EXPECT_EQ(refusal.find("cret1"), std::string::npos) << refusal;
  }
}

TEST(ConnectionString, ThatCannotBeReadIsNotRepeated) {
  const std::string refusal = RefusalOf("pass word=se'cret1");
  EXPECT_FALSE(refusal.empty());
  EXPECT_EQ(refusal.find("cret1"), std::string::npos) << refusal;
}

TEST(ConnectionString, AnotherHostGetsCheckedCertificatesAndNoGssEncryption) {
  for (const std::string connection :
       {"host=db.example", "postgresql://db.example/central", "host=localhost,db.example",
        "hostaddr=192.0.2.1", "host=localhost hostaddr=192.0.2.1"}) {
    const ConnectionOptions options = ReadConnectionString(connection);
    EXPECT_FALSE(options.local) << connection;
    EXPECT_EQ(options.sslmode, "verify-full") << connection;
    EXPECT_EQ(WordOf(options, "sslmode"), "verify-full") << connection;
    EXPECT_EQ(WordOf(options, "gssencmode"), "disable") << connection;
  }
}

TEST(ConnectionString, AStatedModeStays) {
  const ConnectionOptions options =
      ReadConnectionString("host=db.example sslmode=prefer gssencmode=prefer");
  EXPECT_EQ(options.sslmode, "prefer");
  EXPECT_EQ(WordOf(options, "sslmode"), "");
  EXPECT_EQ(WordOf(options, "gssencmode"), "");
}

TEST(ConnectionString, AModeOfTheServiceFileStays) {
  const TempFolder folder;
  const Environment file(
      "PGSERVICEFILE",
      folder.Write("services", "[company]\nhost=db.example\nsslmode=require\n").string());
  const ConnectionOptions options = ReadConnectionString("service=company");
  EXPECT_FALSE(options.local);
  EXPECT_EQ(options.sslmode, "require");
  EXPECT_EQ(WordOf(options, "sslmode"), "");
}

TEST(ConnectionString, TheHostOfTheServiceFileCounts) {
  const TempFolder folder;
  const Environment file("PGSERVICEFILE",
                         folder.Write("services", "[company]\nhost=db.example\n").string());
  EXPECT_EQ(ReadConnectionString("service=company").sslmode, "verify-full");
}

TEST(ConnectionString, AnUnknownServiceIsNamed) {
  const TempFolder folder;
  const Environment file("PGSERVICEFILE", folder.Write("services", "").string());
  try {
    (void)ReadConnectionString("service=nowhere");
    ADD_FAILURE() << "an unknown service is accepted";
  } catch (const ConnectionStringError& error) {
    EXPECT_THAT(error.what(), ::testing::HasSubstr("\"nowhere\""));
    EXPECT_THAT(error.what(), ::testing::Not(::testing::EndsWith("\n")));
  }
}

TEST(ConnectionString, AModeOfTheEnvironmentStays) {
  const Environment mode("PGSSLMODE", "prefer");
  EXPECT_EQ(ReadConnectionString("host=db.example").sslmode, "prefer");
}

TEST(ConnectionString, EachModeOfTheEnvironmentStaysByItself) {
  {
    const Environment mode("PGSSLMODE", "require");
    EXPECT_EQ(WordOf(ReadConnectionString("host=db.example"), "gssencmode"), "disable");
  }
  const Environment mode("PGGSSENCMODE", "prefer");
  const ConnectionOptions options = ReadConnectionString("host=db.example");
  EXPECT_EQ(WordOf(options, "gssencmode"), "");
  EXPECT_EQ(options.sslmode, "verify-full");
}

TEST(ConnectionString, ANetworkThatSwallowsEverythingIsNoticed) {
  const ConnectionOptions options = ReadConnectionString("host=db.example keepalives_idle=5");
  EXPECT_EQ(WordOf(options, "keepalives_idle"), "") << "the stated one stays";
  EXPECT_EQ(WordOf(options, "keepalives_count"), "3");
  EXPECT_EQ(WordOf(options, "tcp_user_timeout"), "60000");
}

TEST(ConnectionString, TextsAreUtf8) {
  EXPECT_EQ(
      WordOf(ReadConnectionString("dbname=central client_encoding=LATIN1"), "client_encoding"),
      "UTF8");
}

TEST(ConnectionString, SocketsAndThisMachineKeepTheLibrarysModes) {
  for (const std::string connection :
       {"dbname=central", "host=/run/postgresql", "host=localhost", "host=@central",
        "host=127.0.0.1,::1", "postgresql:///central"}) {
    const ConnectionOptions options = ReadConnectionString(connection);
    EXPECT_TRUE(options.local) << connection;
    EXPECT_EQ(WordOf(options, "sslmode"), "") << connection;
  }
}

TEST(ConnectionString, TheTimeToConnectIsTenSecondsUnlessItIsStated) {
  EXPECT_EQ(ReadConnectionString("host=db.example").timeout, 10);
  EXPECT_EQ(ReadConnectionString("host=db.example connect_timeout=3").timeout, 3);
}

}  // namespace
}  // namespace vrx::testing
