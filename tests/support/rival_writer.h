#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include <SQLiteCpp/Database.h>

namespace vrx::testing {

// Another program that tries to store into a database, without waiting, whenever a query begins on
// a connection that was opened while this object lives. One at a time.
class RivalWriter {
 public:
  RivalWriter();
  ~RivalWriter();
  RivalWriter(const RivalWriter&) = delete;
  RivalWriter& operator=(const RivalWriter&) = delete;

  // From now on it runs that statement, which stores something.
  void Start(const std::filesystem::path& path, const std::string& statement);
  void Stop();

  // How often it tried, and how often that succeeded. The first query of a read takes the lock that
  // holds it off: a try at that one is not counted.
  int Tries() const { return tries_; }
  int Stored() const { return stored_; }

  void QueryBegins(std::string_view text);

 private:
  std::filesystem::path path_;
  std::string statement_;
  bool at_work_ = false;
  bool first_ = true;
  int tries_ = 0;
  int stored_ = 0;
};

}  // namespace vrx::testing
