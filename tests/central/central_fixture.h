#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "central/server.h"
#include "support/central_server.h"

namespace vrx::testing {

// A row as a test describes it; what is not named is NULL.
struct CentralRow {
  std::int64_t row = 0;
  std::optional<std::int64_t> number = {};
  std::string type = {};
  std::string date = {};
  std::optional<std::string> name = {};  // ingredient of a load, pen of a delivery
  double target = 0;
  double actual = 0;
  std::optional<std::string> recipe = "R";
  std::optional<std::string> user_id = "1";
  std::optional<std::int64_t> import = {};
};

// A central database of its own with two yards, North and South, and a source in each.
class CentralFixture : public ::testing::Test {
 protected:
  CentralFixture();

  [[nodiscard]] CentralConnection Connect(const std::string& login) const;

  // Adds rows and their push to the source of a yard.
  void Push(const std::string& yard, const std::vector<CentralRow>& rows);

  // The first column of the first row; "NULL" for a NULL.
  std::string Value(const std::string& sql, const CentralConnection::Values& values = {});
  // All cells, columns separated by '|', rows by a line feed.
  std::string Table(const std::string& sql, const CentralConnection::Values& values = {});

  // Logins of the tests' yards and roles; logins belong to the whole server.
  static constexpr const char* kNorth = "north";
  static constexpr const char* kSouth = "south";
  static constexpr const char* kOffice = "office";
  static constexpr const char* kNutritionist = "nutritionist";
  static constexpr const char* kAdministrator = "administrator";

  static constexpr const char* kNorthSource = "00000000-0000-0000-0000-00000000000a";
  static constexpr const char* kSouthSource = "00000000-0000-0000-0000-00000000000b";

  std::string database_;
  CentralConnection chief_;  // the superuser
  std::string north_;        // IDs
  std::string south_;
};

// The rows of an answer as text, as Table gives them.
std::string TextOf(const CentralRows& rows);

// Inserts rows as a push does, with digests made by the server, and the entry of the push.
void PushRows(CentralConnection& server, const std::string& yard, const std::string& source,
              const std::vector<CentralRow>& rows);

// SQLSTATE of the error that a statement gives; empty if it succeeds.
std::string StateOf(CentralConnection& server, const std::string& sql,
                    const CentralConnection::Values& values = {});

}  // namespace vrx::testing
