#pragma once

#include <string>
#include <utility>
#include <vector>

#include "base/error.h"

namespace vrx {

// A connection string that cannot be used. what() never repeats it.
class ConnectionStringError : public Error {
 public:
  using Error::Error;
};

// What is passed to libpq for a connection string, and what is to be known of it beforehand.
struct ConnectionOptions {
  // Keywords and values in libpq's order of precedence: a later one wins.
  std::vector<std::pair<std::string, std::string>> words = {};
  std::string sslmode = {};  // in force
  bool local = true;         // sockets and addresses of this machine only
  int timeout = 0;           // seconds to connect
};

// Reads libpq's URI, key=value words or service=NAME, completed by its environment and service
// file. A password in it is refused: it would stand in a settings file or a list of processes.
// libpq finds one in its password file or environment.
//
// Without a stated sslmode another host gets verify-full, and without a stated gssencmode disable.
// A service file that states the value "prefer", which is libpq's default, counts as stating
// nothing.
[[nodiscard]] ConnectionOptions ReadConnectionString(const std::string& connection);

}  // namespace vrx
