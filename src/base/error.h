#pragma once

#include <stdexcept>

namespace vrx {

// Root of the failures that the system itself reports. what() is one UTF-8 line, ready for the
// operator or for a `cause:` line.
class Error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// A text that is no number, or a number that does not fit its width.
class ConversionError : public Error {
 public:
  using Error::Error;
};

}  // namespace vrx
