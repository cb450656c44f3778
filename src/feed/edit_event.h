#pragma once

#include <functional>

#include "platform/operator.h"

namespace vrx {

// Runs what an event of the recipe's form or grid does. An Error that it throws ends here, told to
// the operator, and false comes back: a failure of the storage is a data error and beeps, whatever
// the beeper setting says; all else beeps as well and says in a box what it is.
bool HandleEditEvent(Operator& op, const std::function<void()>& event);

}  // namespace vrx
