#include "on_display/monkey.h"

#include <cstdlib>
#include <string>

namespace vrx::testing {
namespace {

int Asked(const char* variable, int usual) {
  const char* const text = std::getenv(variable);  // NOLINT(concurrency-mt-unsafe): one thread
  return text == nullptr ? usual : std::stoi(text);
}

class MonkeyOnDisplay : public Monkey {
 protected:
  MonkeyOnDisplay() : Monkey(static_cast<std::uint32_t>(Asked("VRX_MONKEY_SEED", 1))) {}
};

// VRX_MONKEY_SEED and VRX_MONKEY_ACTIONS ask for another and for a longer run.
TEST_F(MonkeyOnDisplay, FindsNoCrashNoHangAndNoDamagedDatabase) {
  RecordProperty("seed", Asked("VRX_MONKEY_SEED", 1));
  Act(Asked("VRX_MONKEY_ACTIONS", 60));
  Finish();
}

}  // namespace
}  // namespace vrx::testing
