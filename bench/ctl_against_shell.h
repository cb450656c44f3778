#pragma once

#include <string>
#include <vector>

namespace vrx::bench {

// The same query for the tool and for the plain sqlite3 shell.
struct CtlAgainstShell {
  std::vector<std::string> command;  // of vrx2260ctl
  std::string database;
  std::string query;  // for the shell
  double highest_ratio = 0;
};

// Times both as whole processes, including their start. They run alternately, so that other load on
// the machine affects both, after one warm-up run of each. Prints the medians, their ratio and the
// sizes of the two outputs. Throws if one of them fails.
void Compare(const CtlAgainstShell& contest);

}  // namespace vrx::bench
