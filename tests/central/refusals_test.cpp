#include <array>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "central/administration.h"
#include "central/faults_fixture.h"
#include "central/tls_listener.h"
#include "support/environment.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::Not;

// A server on the network that must not be trusted, or that does not let the login in.
class CentralRefusals : public CentralFaults {
 protected:
  // Nothing of the file goes there.
  void ExpectRefused(const fs::path& file, const std::string& connection,
                     const std::string& reason) {
    chief_ = Connect("chief");
    const std::string before = Value("SELECT count(*) FROM vrx.transaction");
    EXPECT_FALSE(PushFrom(file, connection)) << reason;
    EXPECT_THAT(words_, HasSubstr(reason));
    EXPECT_EQ(words_.find('\n'), std::string::npos);
    EXPECT_EQ(Value("SELECT count(*) FROM vrx.transaction"), before);
  }

  void ExpectTaken(const fs::path& file, const std::string& connection) {
    EXPECT_TRUE(PushFrom(file, connection)) << words_;
    chief_ = Connect("chief");
    ExpectThere(file, rows_);
  }
};

TEST_F(CentralRefusals, AServerOnTheNetworkHasToProveItsName) {
  using enum TlsListener::Certificate;
  const std::array cases{std::pair(kExpired, "certificate verify failed"),
                         std::pair(kOtherName, "does not match host name \"central.example\""),
                         std::pair(kSelfSigned, "certificate verify failed"),
                         std::pair(kOtherAuthority, "certificate verify failed"),
                         std::pair(kNone, "server does not support SSL")};
  TlsListener listener({});
  const std::string connection = listener.Connection(database_, kNorth);
  for (int round = 1; round <= std::max<int>(Rounds(), cases.size()); ++round) {
    const fs::path file = FileOfRound(round);
    const auto& [certificate, reason] = cases.at(static_cast<std::size_t>(round) % cases.size());
    listener.Show(certificate);
    ExpectRefused(file, connection, reason);
    listener.Show(kGood);
    ExpectTaken(file, connection);
  }
}

TEST_F(CentralRefusals, TheModeInForceIsShown) {
  TlsListener listener({});
  const std::string connection = listener.Connection(database_, kNorth);
  EXPECT_EQ(CentralConnection(connection).Protection(), "TLSv1.3 (sslmode=verify-full)");
  EXPECT_EQ(CentralConnection(connection + " sslmode=verify-ca").Protection(),
            "TLSv1.3 (sslmode=verify-ca)");
  EXPECT_EQ(CentralConnection(connection + " sslmode=disable").Protection(),
            "not encrypted (sslmode=disable)");
  listener.Show(TlsListener::Certificate::kOtherName);
  EXPECT_EQ(CentralConnection(connection + " sslmode=verify-ca").Protection(),
            "TLSv1.3 (sslmode=verify-ca)");
}

TEST_F(CentralRefusals, WithoutTheAuthoritysCertificateNoServerIsTrusted) {
  TlsListener listener({});
  const std::string connection = listener.Connection(database_, kNorth);
  const fs::path file = FileOfRound(1);
  const Environment home("HOME", folder_.Path().string());
  ExpectRefused(file, connection.substr(0, connection.find(" sslrootcert")),
                "root certificate file");
  ExpectTaken(file, connection);
}

TEST_F(CentralRefusals, ALoginThatTheServerDoesNotLetIn) {
  TlsListener listener({"hostssl all client_south 127.0.0.0/8 reject",
                        "hostssl all client_north 127.0.0.0/8 scram-sha-256"});
  chief_ = Connect("chief");
  chief_.Query("ALTER ROLE client_north PASSWORD 'right \\ word'");
  const auto passwords = [this](const std::string& password) {
    const fs::path file = folder_.Write("passwords", "*:*:*:*:" + password + "\n");
    fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write);
    return Environment("PGPASSFILE", file.string());
  };
  const std::array<std::pair<std::string, std::string>, 4> cases{
      {{"client_north", "password authentication failed"},
       {"client_south", "rejects connection"},
       {"nobody_there", "role \"nobody_there\" does not exist"},
       {"client_north options='-c role=vrx_owner'", "password authentication failed"}}};
  for (int round = 1; round <= std::max<int>(Rounds(), cases.size()); ++round) {
    const fs::path file = FileOfRound(round);
    const auto& [login, reason] = cases.at(static_cast<std::size_t>(round) % cases.size());
    {
      const Environment wrong = passwords("wr0ng-secret");
      ExpectRefused(file, listener.Connection(database_, login), reason);
      EXPECT_THAT(words_, Not(HasSubstr("wr0ng")));
    }
    const Environment right = passwords("right \\\\ word");
    ExpectTaken(file, listener.Connection(database_, kNorth));
  }
}

// Versions of the schema and of the program that it needs.
TEST_F(CentralRefusals, AnOlderAndANewerClientThanTheSchema) {
  const auto set = [this](int version, int minimum_client) {
    chief_.Query("DELETE FROM vrx.version");
    chief_.Query("INSERT INTO vrx.version (version, minimum_client) VALUES ($1, $2)",
                 {std::to_string(version), std::to_string(minimum_client)});
  };
  const std::string number = std::to_string(kCentralSchema + 1);
  for (int round = 1; round <= Rounds(); ++round) {
    const fs::path file = FileOfRound(round);
    set(kCentralSchema + 1, kCentralClient + 1);
    ExpectRefused(file, Connection(),
                  "schema version " + number + " and needs a newer program than this one");
    set(kCentralSchema - 1, kCentralClient - 1);
    ExpectRefused(file, Connection(), "The administrator upgrades it");
    // An addition to the schema that this client need not know.
    set(kCentralSchema + 1, kCentralClient);
    ExpectTaken(file, Connection());
    set(kCentralSchema, kCentralClient);
    ExpectTaken(file, Connection());
  }
}

// What the server writes ends at a random size: of the table, an index, its log or a sort.
TEST_F(CentralRefusals, TheServersDiskIsFull) {
  int failed = 0;
  for (int round = 1; round <= Rounds(); ++round) {
    const fs::path file = FileOfRound(round);
    CentralServer::Get().LimitFiles(100'000 + Random(2'000'000));
    failed += PushFrom(file, Connection()) ? 0 : 1;
    CentralServer::Get().LimitFiles(std::nullopt);
    chief_ = Connect("chief");
    ExpectWhole(file);
  }
  RecordProperty("failed", failed);
  EXPECT_GT(failed, 0);
}

}  // namespace
}  // namespace vrx::testing
