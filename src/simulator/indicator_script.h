#pragma once

#include <chrono>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace vrx::simulator {

inline constexpr std::chrono::milliseconds kExpectLimit{10'000};

// One step of an indicator's script.
struct Step {
  enum class Kind { kSend, kSendFile, kExpect, kExpectFile, kSave, kWait };

  Kind kind = Kind::kWait;
  int line = 0;                       // of the script, from 1
  std::string bytes;                  // of kSend and kExpect
  std::filesystem::path path;         // of kSendFile, kExpectFile and kSave
  std::chrono::milliseconds time{0};  // of kWait; the limit of kExpect and kExpectFile
};

// The script is invalid. The text names the line and is for the user.
class ScriptError : public std::runtime_error {
 public:
  ScriptError(int line, const std::string& reason)
      : std::runtime_error("line " + std::to_string(line) + ": " + reason) {}
};

// Parses a script with one step per line:
//   send HEX...                      two hexadecimal digits per byte; blanks are optional
//   send-file PATH
//   expect HEX... [within MS]        default: kExpectLimit
//   expect-file PATH [within MS]
//   save PATH
//   wait MS
// A # at the start of a word starts a comment. A path is the rest of the line and may contain
// blanks. Throws ScriptError, also for an unreadable file to send or expect, unless an earlier save
// creates it.
std::vector<Step> ParseScript(std::string_view text);

}  // namespace vrx::simulator
