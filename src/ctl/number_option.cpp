#include "ctl/number_option.h"

#include <algorithm>
#include <string_view>

#include <CLI/CLI.hpp>

#include "base/number.h"
#include "base/text.h"

namespace vrx {
namespace {

bool IsWholeNumber(std::string_view text) {
  text.remove_prefix(text.starts_with('-') || text.starts_with('+') ? 1 : 0);
  return !text.empty() && std::all_of(text.begin(), text.end(), IsDigitChar);
}

}  // namespace

CLI::Option* RequireWholeNumber(CLI::Option* option, int first, int last) {
  const std::string range = std::to_string(first) + " to " + std::to_string(last);
  return option->check(
      [=](const std::string& typed) {
        const auto number = IsWholeNumber(typed) ? ParseLong(typed) : std::nullopt;
        return number && *number >= first && *number <= last
                   ? std::string()
                   : "'" + typed + "' is no whole number from " + range;
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

}  // namespace vrx
