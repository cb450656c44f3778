#pragma once

#include "base/error.h"

namespace vrx {

// Ends a parse; what() is the text that the operator is shown.
class ParseError : public Error {
 public:
  using Error::Error;
};

}  // namespace vrx
