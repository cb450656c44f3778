#include "central/cutting_proxy.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <stdexcept>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace vrx::testing {
namespace {

constexpr const char* kSocketName = ".s.PGSQL.5432";
constexpr int kLook = 20;  // milliseconds

sockaddr_un AddressOf(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof(address.sun_path)) {
    throw std::runtime_error("the path of the socket is too long: " + path);
  }
  std::copy(path.begin(), path.end(), std::begin(address.sun_path));
  return address;
}

const sockaddr* Plain(const sockaddr_un& address) {
  return reinterpret_cast<const sockaddr*>(&address);
}

}  // namespace

CuttingProxy::CuttingProxy(std::filesystem::path folder, const std::string& server_folder,
                           std::int64_t bytes)
    : folder_(std::move(folder)), bytes_(bytes) {
  std::filesystem::create_directories(folder_);
  const std::string path = (folder_ / kSocketName).string();
  std::filesystem::remove(path);
  const sockaddr_un address = AddressOf(path);
  listener_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (bind(listener_, Plain(address), sizeof(address)) != 0 || listen(listener_, 8) != 0) {
    throw std::runtime_error("the proxy cannot listen at " + path);
  }
  thread_ = std::thread([this, server_folder] { Serve(server_folder + "/" + kSocketName); });
}

CuttingProxy::~CuttingProxy() {
  ended_ = true;
  thread_.join();
  close(listener_);
}

std::string CuttingProxy::Connection(const std::string& database, const std::string& login) const {
  return "host=" + folder_.string() + " dbname=" + database + " user=" + login;
}

void CuttingProxy::Serve(const std::string& server_socket) {
  const sockaddr_un address = AddressOf(server_socket);
  while (!ended_) {
    pollfd waiting{.fd = listener_, .events = POLLIN, .revents = 0};
    if (poll(&waiting, 1, kLook) <= 0) {
      continue;
    }
    const int client = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    const int server = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (connect(server, Plain(address), sizeof(address)) == 0) {
      Pass(client, server);
    }
    close(client);
    close(server);
  }
}

void CuttingProxy::Pass(int client, int server) const {
  std::array<char, 8192> block{};
  std::int64_t left = bytes_;
  while (!ended_ && left > 0) {
    std::array<pollfd, 2> ends{{{.fd = client, .events = POLLIN, .revents = 0},
                                {.fd = server, .events = POLLIN, .revents = 0}}};
    if (poll(ends.data(), ends.size(), kLook) <= 0) {
      continue;
    }
    for (const pollfd& end : ends) {
      if (end.revents == 0) {
        continue;
      }
      const auto most = static_cast<std::size_t>(
          std::min<std::int64_t>(left, static_cast<std::int64_t>(block.size())));
      const ssize_t count = recv(end.fd, block.data(), most, 0);
      if (count <= 0 || send(end.fd == client ? server : client, block.data(),
                             static_cast<std::size_t>(count), MSG_NOSIGNAL) != count) {
        return;
      }
      left -= count;
      if (left <= 0) {
        return;
      }
    }
  }
}

}  // namespace vrx::testing
