#pragma once

#include <string>
#include <vector>

namespace vrx::bench {

// The same answer by the tool and by the plain sqlite3 shell.
struct CtlAgainstShell {
  std::vector<std::string> command;  // of vrx2260ctl
  std::string database;
  std::string query;  // for the shell
  double highest_ratio = 0;
};

// Times both as whole processes, their start included. They run alternately, so that what else the
// machine does falls on both, after one run of each that does not count. Prints the medians, their
// ratio and the sizes of the two outputs. Throws when one of them fails.
void Compare(const CtlAgainstShell& contest);

}  // namespace vrx::bench
