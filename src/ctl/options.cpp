#include "ctl/options.h"

#include <algorithm>
#include <string>
#include <string_view>

#include <CLI/CLI.hpp>

#include "base/date.h"
#include "base/files.h"
#include "base/number.h"
#include "base/text.h"
#include "ctl/session.h"
#include "link/krmcomm.h"

namespace vrx {

namespace {

bool IsNumber(const std::string& port) {
  return !port.empty() && std::all_of(port.begin(), port.end(), IsDigitChar);
}

std::string ValidPort(const std::string& port) {
  if (port.empty()) {
    return "a port is a number or the path of a device";
  }
  if (!IsNumber(port) || ParseLong(port).value_or(0) > 0) {
    return "";
  }
  return "there is no port " + port;
}

bool IsWholeNumber(std::string_view text) {
  text.remove_prefix(text.starts_with('-') || text.starts_with('+') ? 1 : 0);
  return !text.empty() && std::all_of(text.begin(), text.end(), IsDigitChar);
}

std::string NoDay(const std::string& typed) {
  return ParseStoredDate(typed) ? std::string() : "'" + typed + "' is not a day, YYYY-MM-DD";
}

std::string FirstBytes(const std::filesystem::path& path) {
  try {
    return ReadFileBytes(path, kRecipeMark.size());
  } catch (const FileError&) {
    // Opening the file later reports why it cannot be read.
    return "";
  }
}

}  // namespace

CLI::Option* PortOption::AddTo(CLI::App& command) {
  return command.add_option("--port", port_, "Port number or device path")
      ->required()
      ->type_name("DEV")
      ->check(ValidPort);
}

std::unique_ptr<SerialLine> PortOption::MakeLine(Session& session) const {
  return session.Context().make_serial_line(IsNumber(port_) ? "" : port_, session.DataFolder());
}

PrivateINI PortOption::Settings(Session& session) const {
  PrivateINI settings = session.Settings();
  if (IsNumber(port_)) {
    settings.SetSerialPort(port_);
  }
  return settings;
}

CLI::Option* RequireWholeNumber(CLI::Option* option, int first, int last) {
  const std::string range = std::to_string(first) + " to " + std::to_string(last);
  return option->check(
      [=](const std::string& typed) {
        const auto number = IsWholeNumber(typed) ? ParseLong(typed) : std::nullopt;
        return number && *number >= first && *number <= last
                   ? std::string()
                   : "'" + typed + "' is not a whole number from " + range;
      },
      range);
}

CLI::Option* AddWholeNumber(CLI::App& app, const std::string& name, const std::string& help,
                            int first, int last, int& number) {
  CLI::Option* option = app.add_option_function<std::string>(
      name, [&number](const std::string& typed) { number = TextToLong(typed); }, help);
  return RequireWholeNumber(option->type_name("NUMBER"), first, last);
}

CLI::Option* AddRecordNumber(CLI::App& app, const std::string& name, const std::string& help,
                             int last, int& number) {
  return AddWholeNumber(app, name, help, 1, last, number)->required();
}

void AddDay(CLI::App& app, const std::string& name, const std::string& help, std::string& day) {
  app.add_option(name, day, help)->type_name("YYYY-MM-DD")->check(NoDay);
}

void AddExamples(CLI::App& command, std::initializer_list<Example> examples) {
  std::string text = "Examples:";
  for (const Example& example : examples) {
    text.append("\n  vrx2260ctl ").append(example.call);
    text.append("\n      ").append(example.does);
  }
  command.footer(text);
}

bool IsRecipeBackup(const std::filesystem::path& path) {
  return FirstBytes(path).starts_with(kRecipeMark) ||
         EqualsIgnoringCase(path.extension().string(), ".RBU");
}

}  // namespace vrx
