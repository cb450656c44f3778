#pragma once

#include <algorithm>
#include <deque>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/serial_control.h"
#include "support/manual_pump.h"

namespace vrx::testing {

// A serial port in the simulated time of a ManualPump. What it sends back is scripted beforehand,
// one answer for each transmission; what is done to it is kept with the times.
class FakeSerialControl : public SerialControl {
 public:
  struct Chunk {
    Milliseconds delay{0};  // after the transmission
    std::string bytes;
  };
  using Answer = std::vector<Chunk>;

  struct Event {
    Milliseconds at{0};
    std::string what;  // "DTR on", "DTR off", "open", "close" or "out"
    bool operator==(const Event&) const = default;
  };

  explicit FakeSerialControl(ManualPump& pump) : pump_(pump) {}

  // The script. Transmissions after its end get no answer.
  void WillAnswer(Answer answer) { answers_.push_back(std::move(answer)); }
  void WillAnswer(std::string bytes) { WillAnswer(Answer{{Milliseconds{10}, std::move(bytes)}}); }
  void WillStaySilent() { WillAnswer(Answer{}); }
  void WillAnswerNothingMore() { answers_.clear(); }

  // Bytes that arrive without a request.
  void Arrives(std::string_view bytes) {
    const std::size_t taken = lose_after_input - std::min(lose_after_input, received_);
    waiting_ += bytes.substr(0, taken);
    received_ += std::min(taken, bytes.size());
    if (received_ >= lose_after_input) {
      LoseLine();
    }
  }
  void LoseLine() { lost_ = true; }

  // Faults.
  std::string failing_property;  // "DTREnable", "InBufferSize", ... throws when it is set
  std::size_t lose_after_input = std::numeric_limits<std::size_t>::max();
  std::size_t lose_after_output = std::numeric_limits<std::size_t>::max();

  std::size_t hold_after_output = std::numeric_limits<std::size_t>::max();  // no later byte leaves

  Milliseconds per_byte{0};  // time that a byte takes to leave

  // What was done, for assertions.
  std::vector<Event> events;
  std::string sent;
  std::vector<std::string> blocks;  // the arguments of Output
  int discarded_inputs = 0;
  bool dtr = false;
  int in_buffer_size = 0;
  int out_buffer_size = 0;
  Handshaking handshaking = Handshaking::kNone;
  int comm_port = 0;
  std::string settings;

  // The times of all events of that name.
  std::vector<Milliseconds> TimesOf(std::string_view what) const {
    std::vector<Milliseconds> times;
    for (const Event& event : events) {
      if (event.what == what) {
        times.push_back(event.at);
      }
    }
    return times;
  }

  void SetDTREnable(bool on) override {
    Set("DTREnable");
    if (on != dtr) {
      Note(on ? "DTR on" : "DTR off");
    }
    dtr = on;
  }
  void SetInBufferSize(int bytes) override {
    Set("InBufferSize");
    in_buffer_size = bytes;
  }
  void SetOutBufferSize(int bytes) override {
    Set("OutBufferSize");
    out_buffer_size = bytes;
  }
  void SetHandshaking(Handshaking mode) override {
    Set("Handshaking");
    handshaking = mode;
  }
  void SetCommPort(int number) override {
    Set("CommPort");
    comm_port = number;
  }
  void SetSettings(std::string_view text) override {
    Set("Settings");
    settings = text;
  }

  bool PortOpen() const override { return open_; }
  void SetPortOpen(bool open) override {
    if (open) {
      Set("PortOpen");
      lost_ = false;
      waiting_.clear();
    }
    if (open != open_) {
      Note(open ? "open" : "close");
    }
    open_ = open;
  }

  int InBufferCount() override {
    if (!open_) {
      return 0;
    }
    if (waiting_.empty()) {
      CheckNotLost();
    }
    return static_cast<int>(waiting_.size());
  }
  void DiscardInput() override {
    Set("InBufferCount");
    ++discarded_inputs;
    waiting_.clear();
  }
  int OutBufferCount() override {
    if (!open_) {
      return 0;
    }
    CheckNotLost();
    return static_cast<int>(std::count_if(leaving_.begin(), leaving_.end(),
                                          [now = pump_.Now()](auto at) { return at > now; }));
  }
  void DiscardOutput() override {
    Set("OutBufferCount");
    leaving_.clear();
  }
  std::string Input() override { return open_ ? std::exchange(waiting_, {}) : std::string(); }

  void Output(std::string_view bytes) override {
    Set("Output");
    if (!open_) {
      throw SerialError("fake: the port is closed");
    }
    CheckNotLost();
    Note("out");
    blocks.emplace_back(bytes);
    leaving_.clear();
    for (std::size_t i = 0; i < bytes.size(); ++i) {
      const bool leaves = sent.size() + i < hold_after_output;
      leaving_.push_back(leaves ? Milliseconds{pump_.Now() + per_byte * (i + 1)}
                                : Milliseconds::max());
    }
    sent += bytes;
    if (sent.size() >= lose_after_output) {
      LoseLine();
    }
    if (!answers_.empty()) {
      for (const Chunk& chunk : answers_.front()) {
        pump_.After(chunk.delay, [this, text = chunk.bytes] { Arrives(text); });
      }
      answers_.pop_front();
    }
  }

 private:
  void Set(std::string_view property) const {
    if (property == failing_property) {
      throw SerialError("fake: " + std::string(property) + " refused");
    }
  }
  void CheckNotLost() const {
    if (lost_) {
      throw SerialError("fake: the line is gone");
    }
  }
  void Note(std::string what) { events.emplace_back(Event{pump_.Now(), std::move(what)}); }

  ManualPump& pump_;
  std::deque<Answer> answers_;
  std::string waiting_;
  std::vector<Milliseconds> leaving_;  // time at which each byte of the last block has left
  std::size_t received_ = 0;
  bool open_ = false;
  bool lost_ = false;
};

}  // namespace vrx::testing
