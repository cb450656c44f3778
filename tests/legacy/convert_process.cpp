#include <cstdlib>
#include <exception>
#include <iostream>

#include <sys/resource.h>

#include "adapters/program_runner.h"
#include "legacy/convert.h"

namespace {

class NoProgress : public vrx::ProgressDisplay {
 public:
  void SetProgressMessage(std::string_view /*text*/) override {}
  void SetProgressRange(int /*maximum*/) override {}
  void SetProgressValue(int /*value*/) override {}
};

long PeakKilobytes(int who) {
  rusage usage{};
  getrusage(who, &usage);
  return usage.ru_maxrss;
}

}  // namespace

// convert_process OLD NEW PROGRAM_DIRECTORY converts, and prints the rows stored and the peak
// memory of itself and of the reader in KB.
int main(int argc, char** argv) {
  if (argc != 4) {
    return EXIT_FAILURE;
  }
  try {
    vrx::ChildProcessRunner runner;
    NoProgress progress;
    const vrx::ConversionReport report = vrx::ConvertLegacyDatabase({.old_file = argv[1],
                                                                     .new_file = argv[2],
                                                                     .program_directory = argv[3],
                                                                     .default_unit = "LB"},
                                                                    runner, progress);
    std::cout << report.Stored() << " " << PeakKilobytes(RUSAGE_SELF) << " "
              << PeakKilobytes(RUSAGE_CHILDREN) << "\n";
    return EXIT_SUCCESS;
  } catch (const std::exception& failure) {
    std::cout << "refused: " << failure.what() << "\n";
    return EXIT_FAILURE;
  }
}
