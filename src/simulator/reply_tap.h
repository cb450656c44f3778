#pragma once

#include <string>
#include <string_view>

namespace vrx::simulator {

// Listens to what arrives and picks the data of the next dump: NAK or FS, US, data, US. Anything
// ahead of it, as the reply to a clear, is passed over.
class ReplyTap {
 public:
  // Returns how many of the bytes belong to the reply or are ahead of it.
  std::size_t Listen(std::string_view bytes);

  bool Complete() const { return state_ == State::kComplete; }
  const std::string& Data() const { return data_; }

 private:
  enum class State { kCommand, kFirstTerminator, kData, kComplete };

  void Listen(char byte);

  State state_ = State::kCommand;
  std::string data_;
};

}  // namespace vrx::simulator
