#include "central/server.h"

#include <chrono>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/central_server.h"

namespace vrx::testing {
namespace {

using ::testing::HasSubstr;

class ServerTest : public ::testing::Test {
 protected:
  ServerTest() : server_(CentralServer::Get().Connection("postgres")) {}

  CentralConnection server_;
};

struct Enough : std::runtime_error {
  using std::runtime_error::runtime_error;
};

std::string ErrorOf(CentralConnection& server, const std::string& sql) {
  try {
    server.Query(sql);
    return {};
  } catch (const CentralError& error) {
    return error.State() + " " + error.what();
  }
}

TEST_F(ServerTest, ValuesAreDataWhateverTheyHold) {
  const std::vector<std::string> texts = {"O'Brien",     "a\"b",       "; DROP TABLE x; --",
                                          "back\\slash", "$1",         "\xF0\x9F\x90\x84",
                                          "%s",          "line\nfeed", ""};
  for (const std::string& text : texts) {
    EXPECT_EQ(server_.Query("SELECT $1::text", {text}).Text(0, 0), text);
  }
  EXPECT_TRUE(server_.Query("SELECT $1::text", {std::nullopt}).IsNull(0, 0));
}

TEST_F(ServerTest, ATextWithNulIsRefusedBeforeItIsSent) {
  EXPECT_THROW(server_.Query("SELECT $1::text", {std::string("a\0b", 3)}), CentralError);
  EXPECT_EQ(server_.Query("SELECT 1").Number(0, 0), 1);
}

TEST_F(ServerTest, AnErrorHasTheServersWordsOnOneLineAndItsState) {
  EXPECT_EQ(ErrorOf(server_, "SELECT 1/0"), "22012 division by zero");
  EXPECT_EQ(server_.Query("SELECT 1").Number(0, 0), 1);
  EXPECT_EQ(ErrorOf(server_, "DO $$ BEGIN RAISE 'two\nlines' USING DETAIL = 'why'; END $$"),
            "P0001 two lines (why)");
}

TEST_F(ServerTest, ANumberThatIsNoneIsAnError) {
  const CentralRows rows = server_.Query("SELECT 'x', NULL, '12', '12x'");
  EXPECT_THROW(static_cast<void>(rows.Number(0, 0)), CentralError);
  EXPECT_EQ(rows.Number(0, 1), 0);
  EXPECT_EQ(rows.Number(0, 2), 12);
  EXPECT_THROW(static_cast<void>(rows.Number(0, 3)), CentralError);
}

TEST_F(ServerTest, RowsThatWereAddedAreCounted) {
  server_.Query("CREATE TEMP TABLE t (a int)");
  EXPECT_EQ(server_.Query("INSERT INTO t SELECT generate_series(1, 3)").Affected(), 3);
}

TEST_F(ServerTest, ACopyOfManyBytesArrivesWholeAndComesBack) {
  constexpr int kLines = 200000;
  server_.Query("CREATE TEMP TABLE t (a int, b text)");
  server_.StartCopy("COPY t FROM STDIN");
  std::string bytes;
  for (int line = 0; line < kLines; ++line) {
    bytes += std::to_string(line) + "\tname " + std::to_string(line) + "\n";
  }
  server_.PutCopy(bytes);
  EXPECT_EQ(server_.EndCopy(), kLines);
  std::string back;
  EXPECT_EQ(server_.ReadCopy("COPY (SELECT * FROM t ORDER BY a) TO STDOUT",
                             [&](std::string_view row) { back += row; }),
            kLines);
  EXPECT_EQ(back, bytes);
}

TEST_F(ServerTest, ACopyThatTheServerRefusesTellsItsReasonAndLeavesTheConnectionUsable) {
  server_.Query("CREATE TEMP TABLE t (a int)");
  const auto copy = [&] {
    server_.StartCopy("COPY t FROM STDIN");
    for (int piece = 0; piece < 1000; ++piece) {
      server_.PutCopy("x\n");
    }
    server_.EndCopy();
  };
  try {
    copy();
    FAIL() << "a text is no number";
  } catch (const CentralError& error) {
    EXPECT_THAT(error.what(), HasSubstr("invalid input syntax for type integer"));
  }
  EXPECT_EQ(server_.Query("SELECT count(*) FROM t").Number(0, 0), 0);
}

TEST_F(ServerTest, WhatTheWaitThrowsEndsALongQueryAtOnce) {
  bool enough = false;
  CentralConnection server(CentralServer::Get().Connection("postgres"), [&] {
    if (enough) {
      throw Enough("enough");
    }
  });
  enough = true;
  EXPECT_THROW(server.Query("SELECT pg_sleep(60)"), Enough);
  EXPECT_THROW(server.Query("SELECT 1"), CentralError);
}

TEST_F(ServerTest, TheServerEndsTheWorkOfAClientThatWentAway) {
  bool enough = false;
  {
    CentralConnection server(CentralServer::Get().Connection("postgres"), [&] {
      if (enough) {
        throw Enough("enough");
      }
    });
    server.Query("SET application_name = 'gone'");
    enough = true;
    EXPECT_THROW(server.Query("SELECT pg_sleep(60)"), Enough);
  }
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds{20};
  const auto left = [&] {
    return server_.Query("SELECT count(*) FROM pg_stat_activity WHERE application_name = 'gone'")
        .Number(0, 0);
  };
  while (left() > 0 && std::chrono::steady_clock::now() < end) {
    server_.Query("SELECT pg_sleep(0.1)");
  }
  EXPECT_EQ(left(), 0);
}

TEST_F(ServerTest, AnAbandonedCopyStoresNothing) {
  server_.Query("CREATE TABLE public.abandoned (a int)");
  {
    CentralConnection server(CentralServer::Get().Connection("postgres"));
    const CentralTransaction transaction(server);
    server.StartCopy("COPY public.abandoned FROM STDIN");
    server.PutCopy("1\n");
  }
  EXPECT_EQ(server_.Query("SELECT count(*) FROM public.abandoned").Number(0, 0), 0);
  server_.Query("DROP TABLE public.abandoned");
}

TEST_F(ServerTest, ATransactionThatIsNotCommittedIsRolledBack) {
  server_.Query("CREATE TEMP TABLE t (a int)");
  {
    const CentralTransaction transaction(server_);
    server_.Query("INSERT INTO t VALUES (1)");
  }
  EXPECT_EQ(server_.Query("SELECT count(*) FROM t").Number(0, 0), 0);
  CentralTransaction transaction(server_);
  server_.Query("INSERT INTO t VALUES (1)");
  transaction.Commit();
  EXPECT_EQ(server_.Query("SELECT count(*) FROM t").Number(0, 0), 1);
}

TEST_F(ServerTest, IdentifiersAreQuoted) {
  EXPECT_EQ(server_.Quoted("a\"; DROP TABLE x"), "\"a\"\"; DROP TABLE x\"");
}

TEST_F(ServerTest, SaysHowTheConnectionIsProtected) {
  EXPECT_EQ(server_.Protection(), "a socket of this machine");
  EXPECT_EQ(server_.Login(), "chief");
  EXPECT_THAT(server_.Target(), HasSubstr("/postgres"));
}

TEST_F(ServerTest, AServerThatIsNotThereIsAnErrorWithItsReason) {
  try {
    const CentralConnection server("host=/nowhere dbname=x");
    FAIL() << "nobody is there";
  } catch (const CentralError& error) {
    EXPECT_THAT(error.what(), HasSubstr("/nowhere"));
    EXPECT_EQ(std::string(error.what()).find('\n'), std::string::npos);
  }
}

TEST_F(ServerTest, AConnectionThatTheServerDropsIsAnError) {
  EXPECT_THROW(server_.Query("SELECT pg_terminate_backend(pg_backend_pid())"), CentralError);
  EXPECT_THROW(server_.Query("SELECT 1"), CentralError);
}

}  // namespace
}  // namespace vrx::testing
