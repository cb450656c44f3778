#include "adapters/stop_flag.h"

#include <csignal>

namespace vrx {
namespace {

// A handler of a signal can reach nothing but such a variable.
volatile std::sig_atomic_t raised = 0;

extern "C" void RaiseStopFlag(int /*signal*/) { raised = 1; }

}  // namespace

StopFlag::StopFlag() {
  raised = 0;
  std::signal(SIGINT, RaiseStopFlag);
  std::signal(SIGTERM, RaiseStopFlag);
}

StopFlag::~StopFlag() {
  std::signal(SIGINT, SIG_DFL);
  std::signal(SIGTERM, SIG_DFL);
}

bool StopFlag::Raised() const { return raised != 0; }

}  // namespace vrx
