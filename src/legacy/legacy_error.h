#pragma once

#include "base/error.h"

namespace vrx {

// A file that is not converted; what() says why, and what can be done, as sentences.
class LegacyError : public Error {
 public:
  using Error::Error;
};

// The operator ended the conversion.
class ConversionStopped : public Error {
 public:
  using Error::Error;
};

}  // namespace vrx
