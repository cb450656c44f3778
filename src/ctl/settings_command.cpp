#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include <CLI/CLI.hpp>

#include "base/number.h"
#include "base/text.h"
#include "ctl/command.h"
#include "ctl/examples.h"
#include "ctl/output.h"
#include "ctl/session.h"
#include "settings/settings.h"

namespace vrx {
namespace {

// Keys whose text has a range that the settings themselves do not know.
bool FitsKey(std::string_view key, std::string_view value) {
  constexpr std::array<std::string_view, 4> kBaudRates = {"1200", "2400", "9600", "19200"};
  if (EqualsIgnoringCase(key, "KRMBaudRate")) {
    return std::find(kBaudRates.begin(), kBaudRates.end(), value) != kBaudRates.end();
  }
  if (EqualsIgnoringCase(key, "SerialPort")) {
    return !value.empty() && std::all_of(value.begin(), value.end(), IsDigitChar) &&
           ParseLong(value).value_or(0) > 0;
  }
  return true;
}

class SettingsCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command = app.add_subcommand("settings", "List, read or write the settings");
    command->add_option("key", key_, "Name of a setting")->check(KnownKey);
    value_option_ = command->add_option("value", value_, "Its new value");
    AddExamples(*command, {{"settings", "Lists every setting."},
                           {"settings SerialPort", "Reads one."},
                           {"settings SystemUnits KG", "Writes one."}});
    return command;
  }

  bool OnlyReads() const override { return value_option_->count() == 0; }

  int Run(Session& session) override {
    if (key_.empty()) {
      List(session);
      return kDone;
    }
    if (OnlyReads()) {
      session.Out() << session.Settings().TextByKey(key_).value_or("") << '\n';
      return kDone;
    }
    if (!FitsKey(key_, value_) || !session.Settings().LetByKey(key_, value_)) {
      session.Op().ShowMessage({.icon = Icon::kWarning,
                                .title = "Settings Error",
                                .text = key_ + " cannot be '" + value_ + "'."});
      return kFailed;
    }
    return session.SaveSettings() ? kDone : kFailed;
  }

 private:
  static std::string KnownKey(const std::string& key) {
    const auto keys = PrivateINI::Keys();
    const bool known = std::any_of(keys.begin(), keys.end(), [&](std::string_view entry) {
      return EqualsIgnoringCase(entry, key);
    });
    return known ? "" : "there is no setting " + key;
  }

  static void List(Session& session) {
    OutputTable table{.header = {"Key", "Value"}, .rows = {}};
    for (const std::string_view key : PrivateINI::Keys()) {
      table.rows.push_back({key, session.Settings().TextByKey(key).value_or("")});
    }
    WriteTable(session.Out(), OutputForm::kPlain, table);
  }

  std::string key_;
  std::string value_;
  CLI::Option* value_option_ = nullptr;
};

}  // namespace

std::unique_ptr<Command> MakeSettingsCommand() { return std::make_unique<SettingsCommand>(); }

}  // namespace vrx
