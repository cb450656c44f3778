#include "on_display/input.h"

#include <stdexcept>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vrx::testing {
namespace {

constexpr const char* kBetweenKeys = "12";    // ms
constexpr const char* kBetweenClicks = "40";  // ms, well within a double click

}  // namespace

void Input::Keys(const std::vector<std::string>& keys) const {
  std::vector<std::string> words = {"xdotool", "key", "--delay", kBetweenKeys};
  words.insert(words.end(), keys.begin(), keys.end());
  Run(words);
}

void Input::Type(const std::string& text) const {
  Run({"xdotool", "type", "--delay", kBetweenKeys, "--", text});
}

void Input::Click(Point place, int times) const {
  Run({"xdotool", "mousemove", std::to_string(place.x), std::to_string(place.y), "click",
       "--repeat", std::to_string(times), "--delay", kBetweenClicks, "1"});
}

void Input::MoveTo(Point place) const {
  Run({"xdotool", "mousemove", std::to_string(place.x), std::to_string(place.y)});
}

void Input::Run(const std::vector<std::string>& words) {
  std::vector<std::string> own = words;
  std::vector<char*> arguments;
  for (std::string& word : own) {
    arguments.push_back(word.data());
  }
  arguments.push_back(nullptr);
  pid_t process = -1;
  int status = -1;
  if (posix_spawnp(&process, arguments.front(), nullptr, nullptr, arguments.data(), environ) != 0 ||
      waitpid(process, &status, 0) != process || status != 0) {
    throw std::runtime_error("xdotool fails; is it installed, and is there a display?");
  }
}

}  // namespace vrx::testing
