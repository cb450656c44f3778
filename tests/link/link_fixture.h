#pragma once

#include <string>

#include <gtest/gtest.h>

#include "link/krmcomm.h"
#include "settings/settings.h"
#include "support/fake_serial_control.h"
#include "support/manual_pump.h"
#include "support/recording_operator.h"

namespace vrx::testing {

// A link on a scripted port, in simulated time. Port number and baud rate are the defaults of the
// settings, 2 and 19200; the beeper is on.
class LinkFixture : public ::testing::Test {
 protected:
  using Ms = Milliseconds;

  // Runs an operation and returns how long it took.
  template <typename Operation>
  Ms TimeOf(Operation operation) {
    const Ms start = pump.Now();
    operation();
    return pump.Now() - start;
  }

  ManualPump pump;
  FakeSerialControl serial{pump};
  RecordingOperator op;
  PrivateINI settings;
  KRMCOMM krm{serial, pump, op, settings};
};

inline const std::string kEchoClear = "\x14\x1F";
inline const std::string kEcho19200 = "\x19\x1F";

}  // namespace vrx::testing
