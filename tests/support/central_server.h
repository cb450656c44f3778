#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "support/program.h"
#include "support/temp_folder.h"

namespace vrx::testing {

// A PostgreSQL server for the tests of one program: as an unprivileged user, on a socket in a
// scratch folder, without a network port. It starts with the first use, stops at the end of the
// program, and is killed with it. Every login is trusted.
class CentralServer {
 public:
  // Throws std::runtime_error that names the package if the server is not installed.
  static CentralServer& Get();

  ~CentralServer();
  CentralServer(const CentralServer&) = delete;
  CentralServer& operator=(const CentralServer&) = delete;

  // A connection string for that database and login.
  [[nodiscard]] std::string Connection(const std::string& database,
                                       const std::string& login = kSuperuser) const;

  // An empty database; the name is new.
  std::string MakeDatabase();
  // One with the schema, and no yard.
  std::string MakeCentralDatabase();

  // Kills the main process, which loses nothing that was committed, and starts the server again.
  void KillAndStart();

  // Where the socket is; libpq's `host`.
  [[nodiscard]] std::string SocketFolder() const { return (folder_ / "socket").string(); }
  [[nodiscard]] static std::filesystem::path ProgramPath(const std::string& name);

  static constexpr const char* kSuperuser = "chief";

 private:
  CentralServer();
  void Start();
  void Stop();
  std::string NewName();

  TempFolder folder_;
  std::unique_ptr<Program> server_;
  std::string template_;
  int databases_ = 0;
};

}  // namespace vrx::testing
