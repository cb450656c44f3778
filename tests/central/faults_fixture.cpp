#include "central/faults_fixture.h"

#include <chrono>
#include <cstdlib>
#include <thread>

#include <unistd.h>

#include "base/error.h"

namespace vrx::testing {

namespace fs = std::filesystem;

int CentralFaults::Rounds() {
  const char* const text = std::getenv("VRX_CENTRAL_ROUNDS");
  return text == nullptr ? 3 : std::atoi(text);
}

bool CentralFaults::PushFrom(const fs::path& file, const std::string& connection) {
  try {
    CentralConnection server(connection);
    vrx::Push(server, OrderFor(file));
    return true;
  } catch (const Error& error) {
    words_ = error.what();
    return false;
  }
}

pid_t CentralFaults::StartPush(const fs::path& file) {
  const std::string connection = Connection();
  const pid_t child = fork();
  if (child == 0) {
    _exit(PushFrom(file, connection) ? 0 : 1);
  }
  return child;
}

fs::path CentralFaults::FileOfRound(int round) {
  if (round % 2 == 0) {
    AddBatches(file_, kBatches);
  } else {
    file_ = MakeFile("Y" + std::to_string(round) + ".TDB", kBatches);
  }
  rows_ += kBatches * 5;
  return file_;
}

void CentralFaults::ExpectWhole(const fs::path& file) {
  for (int attempt = 0; attempt < 20 && !PushFrom(file, Connection()); ++attempt) {
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
  }
  ExpectThere(file, rows_);
}

}  // namespace vrx::testing
