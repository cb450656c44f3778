#pragma once

#include <exception>
#include <string_view>

#include "platform/operator.h"

namespace vrx {

// The box of a routine that has trapped a failure: "Error: " and its number under the routine's
// title, with what() as the cause.
void TellFailure(Operator& op, std::string_view title, const std::exception& failure);

}  // namespace vrx
