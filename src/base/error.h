#pragma once

#include <stdexcept>

namespace vrx {

// Base class of all errors of this system. what() is one UTF-8 line, fit for a message box or a
// `cause:` line.
class Error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// A text that is not a number, or a number that is out of range.
class ConversionError : public Error {
 public:
  using Error::Error;
};

}  // namespace vrx
