#include "simulator/reply_tap.h"

#include "simulator/control_characters.h"

namespace vrx::simulator {

std::size_t ReplyTap::Listen(std::string_view bytes) {
  std::size_t heard = 0;
  while (heard < bytes.size() && !Complete()) {
    Listen(bytes[heard++]);
  }
  return heard;
}

void ReplyTap::Listen(char byte) {
  const bool command = byte == kNak || byte == kFs;
  switch (state_) {
    case State::kCommand:
      state_ = command ? State::kFirstTerminator : State::kCommand;
      break;
    case State::kFirstTerminator:
      if (byte == kUs) {
        state_ = State::kData;
      } else if (!command) {
        state_ = State::kCommand;
      }
      break;
    case State::kData:
      if (byte == kUs) {
        state_ = State::kComplete;
      } else {
        data_ += byte;
      }
      break;
    case State::kComplete:
      break;
  }
}

}  // namespace vrx::simulator
