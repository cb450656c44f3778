#include "support/central_server.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <stdexcept>
#include <thread>
#include <vector>

#include <unistd.h>

#include "central/administration.h"
#include "central/server.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;

constexpr const char* kVersions = "/usr/lib/postgresql";
constexpr uid_t kNobodyId = 65534;
constexpr std::chrono::seconds kPatience{60};

// The newest version from 15.
fs::path FindPrograms() {
  std::vector<std::pair<int, fs::path>> found;
  std::error_code ignored;
  for (const auto& entry : fs::directory_iterator(kVersions, ignored)) {
    const fs::path programs = entry.path() / "bin";
    const int version = std::atoi(entry.path().filename().c_str());
    if (version >= 15 && fs::exists(programs / "initdb") && fs::exists(programs / "postgres")) {
      found.emplace_back(version, programs);
    }
  }
  if (found.empty()) {
    throw std::runtime_error(
        "The tests of the central database need a PostgreSQL server: install the package "
        "postgresql-15 (scripts/setup does).");
  }
  return std::max_element(found.begin(), found.end())->second;
}

void MakeFolderOfNobody(const fs::path& path) {
  fs::create_directory(path);
  fs::permissions(path, fs::perms::owner_all);
  if (geteuid() == 0 && chown(path.c_str(), kNobodyId, kNobodyId) != 0) {
    throw std::runtime_error("cannot give away " + path.string());
  }
}

}  // namespace

CentralServer& CentralServer::Get() {
  static CentralServer server;
  return server;
}

fs::path CentralServer::ProgramPath(const std::string& name) {
  static const fs::path programs = FindPrograms();
  return programs / name;
}

CentralServer::CentralServer() {
  const std::string initdb = ProgramPath("initdb").string();
  fs::permissions(folder_.Path(),
                  fs::perms::owner_all | fs::perms::group_exec | fs::perms::others_exec);
  MakeFolderOfNobody(folder_ / "data");
  MakeFolderOfNobody(folder_ / "socket");
  Program init(initdb,
               {"--pgdata=" + (folder_ / "data").string(), "--username=" + std::string(kSuperuser),
                "--auth=trust", "--encoding=UTF8", "--locale=C", "--no-sync"},
               folder_.Path().string(), Program::User::kNobody);
  if (init.Wait(kPatience) != 0) {
    throw std::runtime_error("initdb failed: " + init.Err());
  }
  Start();
}

CentralServer::~CentralServer() { Stop(); }

// The signal at the death of the parent is set after the change of the user, which clears it.
void CentralServer::Start() {
  const auto end = std::chrono::steady_clock::now() + kPatience;
  for (;;) {
    std::vector<std::string> words{"--pdeathsig",
                                   "QUIT",
                                   ProgramPath("postgres").string(),
                                   "-D",
                                   (folder_ / "data").string(),
                                   "-k",
                                   SocketFolder()};
    for (const std::string setting : {"listen_addresses=", "fsync=off", "full_page_writes=off",
                                      "max_connections=50", "autovacuum_naptime=1h"}) {
      words.insert(words.end(), {"-c", setting});
    }
    for (const std::string& setting : settings_) {
      words.insert(words.end(), {"-c", setting});
    }
    server_ = std::make_unique<Program>("/usr/bin/setpriv", words, folder_.Path().string(),
                                        Program::User::kNobody);
    while (!server_->Ended()) {
      try {
        const CentralConnection ready(Connection("postgres"));
        return;
      } catch (const CentralError&) {
        std::this_thread::sleep_for(std::chrono::milliseconds{20});
      }
      if (std::chrono::steady_clock::now() > end) {
        break;
      }
    }
    // After a kill, the processes of old connections may still hold the shared memory.
    if (std::chrono::steady_clock::now() > end) {
      throw std::runtime_error("the server does not start: " + server_->Err());
    }
    std::this_thread::sleep_for(std::chrono::milliseconds{50});
  }
}

void CentralServer::Stop() {
  if (server_ != nullptr && !server_->Ended()) {
    server_->Signal(SIGINT);
    server_->Wait(kPatience);
  }
}

void CentralServer::KillAndStart() {
  server_->Signal(SIGKILL);
  server_->Wait(kPatience);
  Start();
}

void CentralServer::Restart(std::vector<std::string> settings) {
  Stop();
  settings_ = std::move(settings);
  Start();
}

void CentralServer::LimitFiles(std::optional<std::uint64_t> bytes) {
  const std::string limit = bytes ? std::to_string(*bytes) : "unlimited";
  Program set("/usr/bin/prlimit",
              {"--pid", std::to_string(server_->Id()), "--fsize=" + limit + ":"},
              folder_.Path().string(), Program::User::kNobody);
  if (set.Wait() != 0 && !server_->Ended()) {
    throw std::runtime_error("the files of the server cannot be limited: " + set.Err());
  }
  if (bytes) {
    return;
  }
  const auto end = std::chrono::steady_clock::now() + kPatience;
  while (std::chrono::steady_clock::now() < end) {
    if (server_->Ended()) {
      Start();
    }
    try {
      const CentralConnection ready(Connection("postgres"));
      return;
    } catch (const CentralError&) {
      std::this_thread::sleep_for(std::chrono::milliseconds{20});
    }
  }
  throw std::runtime_error("the server does not come back: " + server_->Err());
}

fs::path CentralServer::MakeFolder(const std::string& name) {
  MakeFolderOfNobody(folder_ / name);
  return folder_ / name;
}

std::string CentralServer::Connection(const std::string& database, const std::string& login) const {
  const auto quoted = [](const std::string& text) {
    std::string word = "'";
    for (const char character : text) {
      if (character == '\'' || character == '\\') {
        word += '\\';
      }
      word += character;
    }
    return word + "'";
  };
  return "host=" + quoted(SocketFolder()) + " dbname=" + quoted(database) +
         " user=" + quoted(login);
}

std::string CentralServer::NewName() { return "central" + std::to_string(++databases_); }

std::string CentralServer::MakeDatabase() {
  std::string name = NewName();
  CentralConnection(Connection("postgres")).Query("CREATE DATABASE " + name);
  return name;
}

std::string CentralServer::MakeCentralDatabase() {
  if (template_.empty()) {
    template_ = MakeDatabase();
    CentralConnection server(Connection(template_));
    InitCentral(server);
  }
  std::string name = NewName();
  CentralConnection server(Connection("postgres"));
  server.Query("CREATE DATABASE " + name + " TEMPLATE " + template_);
  // Rights on the database itself are not copied.
  server.Query("REVOKE ALL ON DATABASE " + name + " FROM PUBLIC");
  server.Query("GRANT CONNECT ON DATABASE " + name +
               " TO vrx_yard, vrx_office, vrx_nutritionist, vrx_administrator");
  server.Query("GRANT TEMPORARY ON DATABASE " + name + " TO vrx_yard");
  return name;
}

}  // namespace vrx::testing
