#include "adapters/stop_flag.h"

namespace vrx {
namespace {

// A handler of a signal can reach nothing but such a variable.
volatile std::sig_atomic_t raised = 0;

extern "C" void RaiseStopFlag(int /*signal*/) { raised = 1; }

}  // namespace

StopFlag::StopFlag() {
  raised = 0;
  struct sigaction raise {};
  raise.sa_handler = RaiseStopFlag;
  raise.sa_flags = SA_RESTART;
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    sigaction(kSignals.at(i), nullptr, &before_.at(i));
    // nohup lets the process ignore SIGHUP, which must stay so.
    if (kSignals.at(i) != SIGHUP || before_.at(i).sa_handler != SIG_IGN) {
      sigaction(kSignals.at(i), &raise, nullptr);
    }
  }
}

StopFlag::~StopFlag() {
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    sigaction(kSignals.at(i), &before_.at(i), nullptr);
  }
}

bool StopFlag::Raised() const { return raised != 0; }

}  // namespace vrx
