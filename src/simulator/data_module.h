#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "simulator/device.h"
#include "simulator/transmitter.h"

namespace vrx::simulator {

// The data module: a memory with commands of one byte to clear or send it. It stores every byte
// that is not a command, because a download has no framing.
class DataModule final : public Device {
 public:
  static constexpr std::size_t kMemorySize = 65536;  // bytes; any more are dropped

  using LogMessage = std::function<void(const std::string& message)>;
  // Takes the module to the indicator. Returns the new memory, or nothing if it is unchanged.
  using Carry = std::function<std::optional<std::string>(const std::string& memory)>;

  // `log` is called when bytes are dropped.
  DataModule(Faults faults, LogMessage log);

  std::optional<Transmission> Receive(char byte) override;

  // Calls `carry` before each dump.
  void CarryBy(Carry carry) { carry_ = std::move(carry); }

  // Appends bytes to the memory, including command bytes.
  void Load(std::string_view bytes);

  // Logs the number of bytes dropped since the last report, if any. Each command does so too.
  void ReportDropped();

  [[nodiscard]] const std::string& Memory() const { return memory_; }

 private:
  void Keep(std::string_view bytes);
  [[nodiscard]] Transmission Acknowledge(char command) const;
  Transmission Dump(char command);
  [[nodiscard]] Transmission Spoil(std::string reply, bool gives_way) const;

  Faults faults_;
  LogMessage log_;
  Carry carry_;
  std::string memory_;
  std::size_t dropped_ = 0;  // since the last report
};

// Both throw std::system_error with a text for the user.
std::string ReadFile(const std::filesystem::path& path);

// Replaces the file atomically: writes a temporary file in its folder and renames it.
void WriteFile(const std::filesystem::path& path, std::string_view bytes);

}  // namespace vrx::simulator
