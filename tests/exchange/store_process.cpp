// Stores the same import repeatedly until a store fails, then prints the message for the operator
// and exits 1. For tests that kill it or let it run out of disk space.
//
//   store_process RECIPES.RDB TRANSACTIONS.TDB ROWS
//
// Prints "ready" when the first store begins and "stored" when it is done.

#include <cstdio>
#include <cstdlib>
#include <exception>

#include "exchange/store_fixture.h"

namespace vrx::testing {
namespace {

int StoreUntilFailure(const OpenDatabases& databases, int rows) {
  RecordingOperator op;
  const FixedCalendar calendar;
  const PrivateINI settings;
  RecordingProgress progress;
  TransactionStore store(op, settings, calendar, progress, [] {});
  const ImportedData import = MakeManyRows(rows);
  std::puts("ready");
  std::fflush(stdout);
  bool announced = false;
  for (bool stored = false;
       store.StoreImportedTransactions(import, {}, databases, stored, RepeatedBatches::kAll)
           .complete;
       stored = false) {
    if (!announced) {
      std::puts("stored");
      std::fflush(stdout);
      announced = true;
    }
  }
  for (const MessageBox& box : op.boxes) {
    std::printf("%s: %s\ncause: %s\n", box.title.c_str(), box.text.c_str(), box.cause.c_str());
  }
  return EXIT_FAILURE;
}

}  // namespace
}  // namespace vrx::testing

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fputs("usage: store_process RECIPES.RDB TRANSACTIONS.TDB ROWS\n", stderr);
    return 2;
  }
  try {
    return vrx::testing::StoreUntilFailure({argv[1], argv[2], "LB"}, std::atoi(argv[3]));
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 2;
  }
}
