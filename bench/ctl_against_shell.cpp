#include "ctl_against_shell.h"

#include <cstdio>

#include "measure.h"
#include "support/temp_folder.h"

namespace vrx::bench {
namespace {

constexpr int kRounds = 41;

void Print(const std::string& name, double milliseconds, const std::string& output) {
  std::printf("  %-36s %8.2f ms  %8zu bytes\n", name.c_str(), milliseconds,
              testing::ReadAll(output).size());
}

}  // namespace

void Compare(const CtlAgainstShell& contest) {
  const testing::TempFolder folder;
  const std::string program = VRX_BIN_DIR "/vrx2260ctl";
  const std::string data = (folder / "data").string();
  const std::string our_output = (folder / "ours").string();
  const std::string their_output = (folder / "theirs").string();
  std::vector<std::string> words = {program, "--data-dir", data};
  words.insert(words.end(), contest.command.begin(), contest.command.end());
  const auto run_ours = [&] { RunProgram(words, our_output); };
  const auto run_theirs = [&] {
    RunProgram({"sqlite3", "-readonly", contest.database, contest.query}, their_output);
  };
  run_ours();
  run_theirs();
  std::vector<double> ours;
  std::vector<double> theirs;
  for (int round = 0; round < kRounds; ++round) {
    ours.push_back(Milliseconds(run_ours));
    theirs.push_back(Milliseconds(run_theirs));
  }
  std::printf("whole processes, medians of %d runs\n", kRounds);
  Print("vrx2260ctl " + contest.command.front(), Median(ours), our_output);
  Print("sqlite3 shell, the same rows", Median(theirs), their_output);
  std::printf("ratio %.2f  (target: under %.0f)\n", Median(ours) / Median(theirs),
              contest.highest_ratio);
}

}  // namespace vrx::bench
