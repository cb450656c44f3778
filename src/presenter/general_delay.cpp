#include "presenter/general_delay.h"

namespace vrx {

bool GeneralDelay::Wait(Milliseconds interval) {
  complete_ = false;
  end_ = pump_.Now() + interval;
  while (!complete_ && !pump_.Closing()) {
    const Milliseconds left = end_ - pump_.Now();
    if (left > Milliseconds{0}) {
      pump_.Pump(left);
    } else {
      complete_ = true;
    }
  }
  return !pump_.Closing();
}

}  // namespace vrx
