#include "settings/ini_file.h"

#include <algorithm>
#include <optional>

#include "base/files.h"
#include "base/text.h"
#include "base/translation.h"

namespace vrx {
namespace {

constexpr std::size_t kLargestFile = std::size_t{1} << 20U;  // bytes
constexpr std::size_t kLongestValue = 1023;                  // bytes: a buffer of 1024 less its NUL
constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kBlanks = " \t\r";

std::string_view Trim(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) {
    return {};
  }
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

struct Line {
  std::size_t begin = 0;  // offset in the file
  std::size_t end = 0;    // offset of the next line
  std::string_view text;  // trimmed
};

Line LineAt(std::string_view file, std::size_t begin) {
  const std::size_t mark = file.find('\n', begin);
  const std::size_t end = mark == std::string_view::npos ? file.size() : mark + 1;
  const std::size_t start = begin == 0 && file.starts_with(kUtf8Mark) ? kUtf8Mark.size() : begin;
  return {start, end, Trim(file.substr(start, std::min(mark, file.size()) - start))};
}

bool IsSection(std::string_view line) { return line.starts_with('['); }

std::string_view SectionName(std::string_view line) {
  return Trim(line.substr(1, line.find(']') - 1));
}

struct Place {
  std::optional<Line> key;
  std::optional<std::size_t> insert_at;  // after the section's last line that is not blank
};

Place FindKey(std::string_view file, std::string_view section, std::string_view key) {
  Place place;
  for (std::size_t at = 0; at < file.size();) {
    const Line line = LineAt(file, at);
    at = line.end;
    if (IsSection(line.text)) {
      if (place.insert_at) {
        break;
      }
      if (EqualsIgnoringCase(SectionName(line.text), section)) {
        place.insert_at = line.end;
      }
    } else if (place.insert_at && !line.text.empty()) {
      place.insert_at = line.end;
      const std::size_t equals = line.text.find('=');
      if (equals != std::string_view::npos &&
          EqualsIgnoringCase(Trim(line.text.substr(0, equals)), key)) {
        place.key = line;
        break;
      }
    }
  }
  return place;
}

std::string ReadFile(const std::filesystem::path& path) {
  std::string file = ReadFileBytes(path, kLargestFile);
  if (file.size() > kLargestFile) {
    throw FileError(Tr("cannot use %1: too large for a settings file", {path.string()}));
  }
  return file;
}

bool FitsOnLine(std::string_view value) {
  constexpr std::string_view kBreaks("\r\n\0", 3);
  return value.find_first_of(kBreaks) == std::string_view::npos && value.size() <= kLongestValue;
}

}  // namespace

std::string ReadProfileText(const std::filesystem::path& path, std::string_view section,
                            std::string_view key) {
  std::string file;
  try {
    file = ReadFile(path);
  } catch (const FileError&) {
    return {};  // specified: an unreadable file has no keys
  }
  const Place place = FindKey(file, section, key);
  if (!place.key) {
    return {};
  }
  const std::string_view text = place.key->text;
  return std::string(Trim(text.substr(text.find('=') + 1)).substr(0, kLongestValue));
}

void WriteProfileText(const std::filesystem::path& path, std::string_view section,
                      std::string_view key, std::string_view value) {
  if (!FitsOnLine(value)) {
    throw FileError(Tr("cannot write %1 to %2: the value does not fit on a line",
                       {std::string(key), path.string()}));
  }
  std::string file = FileExists(path) ? ReadFile(path) : std::string();
  const Place place = FindKey(file, section, key);
  if (place.key) {
    const std::string_view text = place.key->text;
    std::string line(Trim(text.substr(0, text.find('='))));
    line.append("=").append(value).append(kLineEnd);
    file.replace(place.key->begin, place.key->end - place.key->begin, line);
  } else {
    std::string lines;
    const std::size_t at = place.insert_at.value_or(file.size());
    if (at > 0 && file[at - 1] != '\n') {
      lines.append(kLineEnd);
    }
    if (!place.insert_at) {
      lines.append("[").append(section).append("]").append(kLineEnd);
    }
    lines.append(key).append("=").append(value).append(kLineEnd);
    file.insert(at, lines);
  }
  WriteFileBytes(path, file);
}

}  // namespace vrx
