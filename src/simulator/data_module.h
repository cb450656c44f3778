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

// The data module: a memory that a byte of command clears or sends. Every byte that is no command
// is kept; a download has no framing.
class DataModule final : public Device {
 public:
  static constexpr std::size_t kMemorySize = 65536;  // bytes; what arrives beyond is dropped

  using Tell = std::function<void(const std::string& message)>;
  // What is in memory after the module was carried about; nothing: what was.
  using Carry = std::function<std::optional<std::string>(const std::string& memory)>;

  // `tell` hears when bytes are dropped.
  DataModule(Faults faults, Tell tell);

  std::optional<Transmission> Receive(char byte) override;

  // The module is away ahead of each dump that it is asked for.
  void CarryBy(Carry carry) { carry_ = std::move(carry); }

  // Puts bytes behind what is kept, commands among them too.
  void Load(std::string_view bytes);

  // Tells how many bytes were dropped since it was last told, if any; each command does so too.
  void ReportDropped();

  const std::string& Memory() const { return memory_; }

 private:
  void Keep(std::string_view bytes);
  Transmission Acknowledge(char command) const;
  Transmission Dump(char command);
  Transmission Spoil(std::string reply, bool gives_way) const;

  Faults faults_;
  Tell tell_;
  Carry carry_;
  std::string memory_;
  std::size_t dropped_ = 0;  // since last told
};

// Both throw std::system_error, its text for the user.

// The whole file.
std::string ReadFile(const std::filesystem::path& path);

// Writes beside the file and renames: whoever reads it sees the old or the new one, whole.
void WriteFile(const std::filesystem::path& path, std::string_view bytes);

}  // namespace vrx::simulator
