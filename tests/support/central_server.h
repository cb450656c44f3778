#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

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

  // Stops the server and starts it with these settings, such as "ssl=on", in place of the earlier
  // ones. Files that they name can be in MakeFolder().
  void Restart(std::vector<std::string> settings);
  // Limits the size of the files that the server writes for connections made from now on, as a
  // full disk does; without a value there is no limit. A server that ended meanwhile starts again.
  void LimitFiles(std::optional<std::uint64_t> bytes);

  // A new folder of the user that the server runs as.
  [[nodiscard]] std::filesystem::path MakeFolder(const std::string& name);

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
  std::vector<std::string> settings_;
  std::unique_ptr<Program> server_;
  std::string template_;
  int databases_ = 0;
};

}  // namespace vrx::testing
