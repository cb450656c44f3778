#pragma once

#include <cstdint>
#include <filesystem>
#include <random>
#include <string>

#include <sys/types.h>

#include "central/client_fixture.h"

namespace vrx::testing {

// Each fault hits a push at a random moment. Afterwards a push without a fault ends, and every row
// is in the central database once.
class CentralFaults : public ClientFixture {
 protected:
  // Rounds of each fault; VRX_CENTRAL_ROUNDS=50 tries them many times.
  static int Rounds();

  int Random(int most) { return std::uniform_int_distribution(0, most)(random_); }

  // Whether the push ended by itself; what it throws is part of the fault and is kept in words_.
  bool PushFrom(const std::filesystem::path& file, const std::string& connection);

  // A program of its own that pushes the file, and exits 0 if it did.
  pid_t StartPush(const std::filesystem::path& file);

  // A new file in every other round, and more rows of the same one in between.
  std::filesystem::path FileOfRound(int round);

  // After a push without a fault.
  void ExpectWhole(const std::filesystem::path& file);

  static constexpr int kBatches = 400;
  std::filesystem::path file_;
  std::int64_t rows_ = 0;  // that the yard should have
  std::string words_;

 private:
  std::mt19937 random_{std::random_device{}()};
};

}  // namespace vrx::testing
