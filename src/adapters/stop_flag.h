#pragma once

namespace vrx {

// While it lives, SIGINT and SIGTERM do not end the process but raise a flag, for work without
// events that looks at it now and then. One at a time.
class StopFlag {
 public:
  StopFlag();
  ~StopFlag();
  StopFlag(const StopFlag&) = delete;
  StopFlag& operator=(const StopFlag&) = delete;

  bool Raised() const;
};

}  // namespace vrx
