#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <string>
#include <thread>

namespace vrx::testing {

// Passes the bytes of connections on to a server, on a socket of its own, and cuts the connection
// after a number of bytes of both directions together. The next connection is cut again.
class CuttingProxy {
 public:
  // `folder` gets the socket; it is made if it is missing.
  CuttingProxy(std::filesystem::path folder, const std::string& server_folder, std::int64_t bytes);
  ~CuttingProxy();
  CuttingProxy(const CuttingProxy&) = delete;
  CuttingProxy& operator=(const CuttingProxy&) = delete;

  [[nodiscard]] std::string Connection(const std::string& database, const std::string& login) const;

 private:
  void Serve(const std::string& server_socket);
  void Pass(int client, int server) const;

  std::filesystem::path folder_;
  std::int64_t bytes_;
  int listener_ = -1;
  std::atomic<bool> ended_ = false;
  std::thread thread_;
};

}  // namespace vrx::testing
