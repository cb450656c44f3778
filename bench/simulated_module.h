#pragma once

#include <QProcess>
#include <cstddef>
#include <stdexcept>
#include <string>

#include "support/temp_folder.h"

namespace vrx::bench {

// The built simulator, which simulates a module with `bytes` in its memory during the object's
// lifetime. The folder outlives it.
class SimulatedModule {
 public:
  SimulatedModule(const vrx::testing::TempFolder& folder, std::size_t bytes)
      : device_((folder / "module").string()) {
    std::string memory = "{BAT/FED},L\r\n";
    memory.resize(bytes, 'x');
    simulator_.start(VRX_BIN_DIR "/vrx2260sim",
                     {"module", "--link", QString::fromStdString(device_), "--load",
                      QString::fromStdString(folder.Write("memory", memory).string())});
    if (!simulator_.waitForReadyRead() || !simulator_.readLine().startsWith("ready ")) {
      throw std::runtime_error("the simulator is not ready");
    }
  }
  ~SimulatedModule() {
    simulator_.terminate();
    simulator_.waitForFinished();
  }
  SimulatedModule(const SimulatedModule&) = delete;
  SimulatedModule& operator=(const SimulatedModule&) = delete;

  const std::string& Device() const { return device_; }

 private:
  std::string device_;
  QProcess simulator_;
};

}  // namespace vrx::bench
