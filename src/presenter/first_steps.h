#pragma once

#include <array>
#include <filesystem>
#include <string_view>

#include "platform/user_settings.h"
#include "presenter/database_commands.h"
#include "presenter/services.h"

namespace vrx {

// What the first screen offers, in its order.
enum class FirstStep { kMakeRecipes, kMakeTransactions, kOpen, kSampleSite, kSerialPort };

struct FirstStepRow {
  FirstStep step;
  std::string_view control;
  std::string_view caption;
  std::string_view sentence;
};

inline constexpr std::size_t kFirstStepCount = 5;
const std::array<FirstStepRow, kFirstStepCount>& FirstStepRows();

// The first screen, on the Data Transfer tab: the steps of a new user, each ticked when it is done.
class FirstSteps {
 public:
  // Everything outlives it.
  FirstSteps(Services& services, UserSettings& store, DatabaseCommands& databases)
      : services_(services), store_(store), databases_(databases) {}

  // Offered until both databases are open.
  [[nodiscard]] bool Wanted() const;
  [[nodiscard]] bool Done(FirstStep step) const;

  // Copies the sample databases beside the program to the data folder, under a name that neither
  // of them has there yet, and opens the copies. Replaces nothing; reports failures.
  void TrySampleSite();

  // The operator has chosen the serial port. Kept for the user until the port changes elsewhere.
  void PortChosen();

  // Both databases are opened at every start. Some(): one of them is.
  [[nodiscard]] bool OpensAll() const;
  [[nodiscard]] bool OpensSome() const;
  void OpenAtStart(bool on);

 private:
  // Empty after reporting why there are no copies.
  std::array<std::filesystem::path, 2> CopySampleSite();

  Services& services_;
  UserSettings& store_;
  DatabaseCommands& databases_;
  std::array<std::filesystem::path, 2> copies_;  // by DatabaseKind, of this run
};

}  // namespace vrx
