#include "simulator/indicator_script.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <optional>
#include <system_error>

#include "simulator/data_module.h"

namespace vrx::simulator {
namespace {

constexpr std::string_view kBlanks = " \t\r";
constexpr int kHexadecimal = 16;

struct Word {
  std::string_view name;
  Step::Kind kind;
};

constexpr std::array kWords{
    Word{"send", Step::Kind::kSend},     Word{"send-file", Step::Kind::kSendFile},
    Word{"expect", Step::Kind::kExpect}, Word{"expect-file", Step::Kind::kExpectFile},
    Word{"save", Step::Kind::kSave},     Word{"wait", Step::Kind::kWait},
};

std::string_view Trim(std::string_view text) {
  const auto first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) {
    return {};
  }
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::string_view WithoutComment(std::string_view line) {
  for (auto at = line.find('#'); at != std::string_view::npos; at = line.find('#', at + 1)) {
    if (at == 0 || kBlanks.find(line[at - 1]) != std::string_view::npos) {
      return line.substr(0, at);
    }
  }
  return line;
}

// Removes and returns the last word.
std::string_view TakeLastWord(std::string_view& text) {
  const auto blank = text.find_last_of(kBlanks);
  const auto start = blank == std::string_view::npos ? 0 : blank + 1;
  const std::string_view word = text.substr(start);
  text = Trim(text.substr(0, start));
  return word;
}

std::optional<std::chrono::milliseconds> ReadTime(std::string_view text) {
  std::uint32_t time = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, time);
  if (error != std::errc{} || stop != end) {
    return std::nullopt;
  }
  return std::chrono::milliseconds{time};
}

std::string ReadHex(std::string_view text, int line) {
  std::string digits;
  std::copy_if(text.begin(), text.end(), std::back_inserter(digits),
               [](char c) { return kBlanks.find(c) == std::string_view::npos; });
  std::string bytes;
  for (std::size_t i = 0; i < digits.size(); i += 2) {
    const char* const start = digits.data() + i;
    const char* const end = digits.data() + std::min(i + 2, digits.size());
    unsigned value = 0;
    const auto [stop, error] = std::from_chars(start, end, value, kHexadecimal);
    if (error != std::errc{} || stop != start + 2) {
      throw ScriptError(
          line, "bytes are written with two hexadecimal digits each, not " + std::string(text));
    }
    bytes += static_cast<char>(value);
  }
  if (bytes.empty()) {
    throw ScriptError(line, "bytes are missing");
  }
  return bytes;
}

// Removes "within MS" from the end of a step.
std::chrono::milliseconds TakeLimit(std::string_view& rest, int line) {
  std::string_view ahead = rest;
  const std::string_view number = TakeLastWord(ahead);
  if (number == "within") {
    throw ScriptError(line, "within needs a number of milliseconds");
  }
  if (TakeLastWord(ahead) != "within") {
    return kExpectLimit;
  }
  const auto limit = ReadTime(number);
  if (!limit) {
    throw ScriptError(line, "within needs a number of milliseconds, not " + std::string(number));
  }
  rest = ahead;
  return *limit;
}

class Parser {
 public:
  std::vector<Step> Parse(std::string_view text) {
    for (int line = 1; !text.empty(); ++line) {
      const auto end = text.find('\n');
      const std::string_view content = Trim(WithoutComment(text.substr(0, end)));
      if (!content.empty()) {
        steps_.push_back(ParseStep(content, line));
      }
      text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return std::move(steps_);
  }

 private:
  Step ParseStep(std::string_view content, int line) {
    const std::string_view name = content.substr(0, content.find_first_of(kBlanks));
    const auto* const word = std::find_if(kWords.begin(), kWords.end(),
                                          [name](const Word& each) { return each.name == name; });
    if (word == kWords.end()) {
      throw ScriptError(line, std::string(name) +
                                  " is no step; there are send, send-file, expect, "
                                  "expect-file, save and wait");
    }
    std::string_view rest = Trim(content.substr(name.size()));
    Step step{.kind = word->kind, .line = line, .bytes = {}, .path = {}, .time = {}};
    if (step.kind == Step::Kind::kExpect || step.kind == Step::Kind::kExpectFile) {
      step.time = TakeLimit(rest, line);
    }
    switch (step.kind) {
      case Step::Kind::kSend:
      case Step::Kind::kExpect:
        step.bytes = ReadHex(rest, line);
        break;
      case Step::Kind::kWait:
        step.time = WaitTime(rest, line);
        break;
      default:
        step.path = Path(rest, step.kind, line);
    }
    return step;
  }

  static std::chrono::milliseconds WaitTime(std::string_view rest, int line) {
    const auto time = ReadTime(rest);
    if (!time) {
      throw ScriptError(line, "wait needs a number of milliseconds");
    }
    return *time;
  }

  [[nodiscard]] std::filesystem::path Path(std::string_view rest, Step::Kind kind, int line) const {
    if (rest.empty()) {
      throw ScriptError(line, "a path is missing");
    }
    std::filesystem::path path(rest);
    if (kind != Step::Kind::kSave && !IsSavedBefore(path)) {
      try {
        ReadFile(path);
      } catch (const std::system_error& error) {
        throw ScriptError(line, error.what());
      }
    }
    return path;
  }

  [[nodiscard]] bool IsSavedBefore(const std::filesystem::path& path) const {
    return std::any_of(steps_.begin(), steps_.end(), [&path](const Step& step) {
      return step.kind == Step::Kind::kSave && step.path == path;
    });
  }

  std::vector<Step> steps_;
};

}  // namespace

std::vector<Step> ParseScript(std::string_view text) { return Parser().Parse(text); }

}  // namespace vrx::simulator
