#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "central/server.h"
#include "central/transfer.h"
#include "support/central_server.h"
#include "support/fixed_calendar.h"
#include "support/temp_folder.h"

namespace vrx::testing {

// A central database with the yards North and South, and transaction databases of North.
class ClientFixture : public ::testing::Test {
 protected:
  static constexpr const char* kNorth = "client_north";  // logins
  static constexpr const char* kSouth = "client_south";

  ClientFixture();

  // A transaction database with so many batches of three loads and two deliveries.
  std::filesystem::path MakeFile(const std::string& name, int batches);
  // Five rows for each batch, with names and weights of all kinds.
  static void AddBatches(const std::filesystem::path& file, int batches);
  static void Alter(const std::filesystem::path& file, const std::string& statements);
  static std::string Ask(const std::filesystem::path& file, const std::string& query);

  [[nodiscard]] CentralConnection Connect(const std::string& login = kNorth) const;
  [[nodiscard]] std::string Connection(const std::string& login = kNorth) const;

  [[nodiscard]] static PushOrder OrderFor(const std::filesystem::path& file);
  PushOutcome Push(const std::filesystem::path& file);
  // The message of the refusal; "" if the push succeeded.
  std::string Refusal(const PushOrder& order);
  VerifyOutcome Verify(const std::filesystem::path& file);
  // A restored copy of the source under that name.
  std::filesystem::path Restore(const std::string& name, const std::string& source = {});

  // Asserts that every row of the file is in the central database once, under the file's source or
  // an ancestor, with equal contents, and that there are `rows` rows of North in all.
  void ExpectThere(const std::filesystem::path& file, std::int64_t rows);

  // All rows of a file as text.
  static std::vector<std::string> Rows(const std::filesystem::path& file);

  std::string Value(const std::string& sql, const CentralConnection::Values& values = {});

  TempFolder folder_;
  FixedCalendar calendar_;
  std::string database_;
  CentralConnection chief_;  // the superuser
};

}  // namespace vrx::testing
