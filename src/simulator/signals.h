#pragma once

#include "simulator/descriptor.h"

namespace vrx::simulator {

// The signals by which a simulator is told something. From its making on they arrive here only, in
// the thread that made it and in threads started later.
class Signals {
 public:
  enum class Told { kNothing, kStop, kSave };

  Signals();

  // For poll: readable when a signal waits.
  int Handle() const { return descriptor_.Get(); }

  // Takes the next one: SIGTERM, SIGINT and SIGHUP stop, SIGUSR1 saves. Does not wait.
  Told Take();

 private:
  Descriptor descriptor_;
};

}  // namespace vrx::simulator
