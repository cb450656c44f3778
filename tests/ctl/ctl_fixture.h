#pragma once

#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "ctl/command_line.h"
#include "database/connection.h"
#include "database/records.h"
#include "support/fake_serial_control.h"
#include "support/fixed_calendar.h"
#include "support/fixed_system_info.h"
#include "support/manual_pump.h"
#include "support/temp_folder.h"

namespace vrx::testing {

// Runs the tool in this process with its own streams, a scripted port in simulated time, and the
// date 5 January 2026. The data folder already has settings.
class CtlTest : public ::testing::Test {
 protected:
  CtlTest() {
    system.program_directory = VRX_BIN_DIR;
    system.common_app_data_folder = (folder / "share").string();
    Run({"settings"});
  }

  int Run(std::vector<std::string> args) {
    args.insert(args.begin(), {"--data-dir", (folder / "data").string()});
    return RunBare(args);
  }

  // Without --data-dir.
  int RunBare(const std::vector<std::string>& args) {
    std::istringstream in(typed);
    screen_text.clear();
    CopyingBuffer out_buffer(screen_text);
    CopyingBuffer err_buffer(screen_text);
    std::ostream out_stream(&out_buffer);
    std::ofstream out_file_stream(out_file);
    std::ostream err_stream(&err_buffer);
    const CommandContext context{.in = in,
                                 .out = out_file.empty() ? out_stream : out_file_stream,
                                 .err = err_stream,
                                 .in_is_terminal = in_is_terminal,
                                 .err_is_terminal = err_is_terminal,
                                 .system = system,
                                 .calendar = calendar,
                                 .busy_timeout = busy_timeout,
                                 .make_serial_line =
                                     [this](const std::string& path, const auto&) {
                                       device = path;
                                       return std::make_unique<FakeLine>(*this);
                                     },
                                 .start_drawing = start_drawing};
    const int code = RunCommandLine(args, context);
    out = out_buffer.Text();
    err = err_buffer.Text();
    return code;
  }

  // The contents of a terminal that shows both streams of the last run.
  std::string Screen() const {
    std::string shown;
    for (std::size_t i = 0; i < screen_text.size(); ++i) {
      if (screen_text[i] == '\r') {
        shown.resize(shown.rfind('\n') + 1);
      } else if (screen_text.compare(i, 3, "\x1B[K") == 0) {
        i += 2;
      } else {
        shown += screen_text[i];
      }
    }
    return shown;
  }

  std::string NewRecipeDatabase(std::string_view name = "YARD.RDB") {
    std::string path = (folder / name).string();
    EXPECT_EQ(Run({"new", "recipe", path}), 0) << err;
    return path;
  }
  std::string NewTransactionDatabase(std::string_view name = "YARD.TDB") {
    std::string path = (folder / name).string();
    EXPECT_EQ(Run({"new", "transaction", path}), 0) << err;
    return path;
  }

  static void AddLine(const std::string& database, RecipeLineRecord line) {
    SQLite::Database connection = OpenDatabase(database, Access::kWrite);
    WriteRecipeLine(connection, line);
  }

  static std::string SitePath(std::string_view name) {
    return std::string(VRX_BIN_DIR) + "/sample_site/" + std::string(name);
  }

  TempFolder folder;
  FixedSystemInfo system;
  FixedCalendar calendar;
  std::chrono::milliseconds busy_timeout = kBusyTimeout;
  ManualPump pump;
  FakeSerialControl serial{pump};
  std::string device;  // what the last line was asked for
  bool heeds_signals = false;
  std::function<void()> on_signal;  // empty: a signal ends the program
  std::string screen_text;
  std::string typed;
  bool in_is_terminal = false;
  bool err_is_terminal = false;
  std::string out;
  std::string err;
  std::string out_file;  // gets the output in place of `out`
  std::function<void()> start_drawing = [] {};

 private:
  // Keeps the output and also adds it to the screen.
  class CopyingBuffer : public std::streambuf {
   public:
    explicit CopyingBuffer(std::string& screen) : screen_(screen) {}
    const std::string& Text() const { return text_; }

   protected:
    std::streamsize xsputn(const char* text, std::streamsize count) override {
      text_.append(text, static_cast<std::size_t>(count));
      screen_.append(text, static_cast<std::size_t>(count));
      return count;
    }
    int_type overflow(int_type character) override {
      const char byte = traits_type::to_char_type(character);
      xsputn(&byte, 1);
      return character;
    }

   private:
    std::string& screen_;
    std::string text_;
  };

  class FakeLine : public SerialLine {
   public:
    explicit FakeLine(CtlTest& test) : test_(test) {}
    SerialControl& Control() override { return test_.serial; }
    EventPump& Pump() override { return test_.pump; }
    void Close() override { test_.pump.closing = true; }
    void CloseOnSignals() override { test_.heeds_signals = true; }
    void OnSignals(std::function<void()> handle) override { test_.on_signal = std::move(handle); }

   private:
    CtlTest& test_;
  };
};

}  // namespace vrx::testing
