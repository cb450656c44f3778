#include "simulator/data_module.h"

#include <algorithm>
#include <utility>

#include "simulator/control_characters.h"

namespace vrx::simulator {
namespace {

constexpr char kWrongFirstByte = '?';  // no command and no terminator
constexpr char kStray = '~';           // the same

}  // namespace

DataModule::DataModule(Faults faults, Tell tell) : faults_(faults), tell_(std::move(tell)) {}

std::optional<Transmission> DataModule::Receive(char byte) {
  switch (byte) {
    case kDc4:
      TellDropped();
      memory_.clear();
      return Acknowledge(byte);
    case kSyn:
    case kEtb:
    case kCan:
    case kEm:
      TellDropped();
      return Acknowledge(byte);
    case kNak:
    case kFs:
      TellDropped();
      return Dump(byte);
    default:
      Keep({&byte, 1});
      return std::nullopt;
  }
}

void DataModule::Load(std::string_view bytes) {
  Keep(bytes);
  TellDropped();
}

void DataModule::Keep(std::string_view bytes) {
  const std::size_t kept = std::min(bytes.size(), kMemorySize - memory_.size());
  memory_ += bytes.substr(0, kept);
  if (kept < bytes.size() && dropped_ == 0) {
    tell_("memory is full at " + std::to_string(kMemorySize) +
          " bytes, what comes beyond is dropped");
  }
  dropped_ += bytes.size() - kept;
}

void DataModule::TellDropped() {
  if (dropped_ > 0) {
    tell_("bytes dropped: " + std::to_string(dropped_));
  }
  dropped_ = 0;
}

Transmission DataModule::Acknowledge(char command) const { return Spoil({command, kUs}, false); }

Transmission DataModule::Dump(char command) {
  if (carry_) {
    memory_ = carry_(memory_).value_or(memory_);
  }
  std::string reply{command, kUs};
  reply += memory_;
  if (faults_.extra_us) {
    reply.insert(reply.size() - memory_.size() / 2, 1, kUs);
  }
  reply += kUs;
  reply.append(faults_.strays.value_or(0), kStray);
  return Spoil(std::move(reply), true);
}

Transmission DataModule::Spoil(std::string reply, bool gives_way) const {
  if (faults_.silent) {
    return {{}, gives_way};
  }
  if (faults_.garbage) {
    reply.front() = kWrongFirstByte;
  }
  if (faults_.cut_after && *faults_.cut_after < reply.size()) {
    reply.resize(*faults_.cut_after);
  }
  if (!faults_.stall) {
    return {{{std::move(reply)}}, gives_way};
  }
  // A stalled reply gives way even when it is short: whoever asks anew has given it up.
  const std::size_t half = reply.size() / 2;
  return {{{reply.substr(0, half)}, {reply.substr(half), *faults_.stall}}, true};
}

}  // namespace vrx::simulator
