#include <cstdint>
#include <exception>
#include <filesystem>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

#include <CLI/CLI.hpp>

#include "simulator/data_module.h"
#include "simulator/indicator.h"
#include "simulator/indicator_script.h"
#include "simulator/line_loop.h"
#include "simulator/pty_line.h"
#include "simulator/transmitter.h"

namespace vrx::simulator {
namespace {

constexpr const char* kFeeds = "--feeds";
constexpr int kWrongUsage = 2;
constexpr int kMostDays = 366;

constexpr const char* kScriptHelp =
    "One step a line; a # begins a comment:\n"
    "  send HEX...                   bytes of two hexadecimal digits each\n"
    "  send-file PATH\n"
    "  expect HEX... [within MS]     exactly these bytes come next\n"
    "  expect-file PATH [within MS]\n"
    "  save PATH                     writes the data of the next reply to NAK or FS\n"
    "  wait MS\n"
    "The limit of an expect and of a save is 10000 ms by default.\n"
    "Exit codes: 0 at the end of the script, 1 at the first mismatch, 2 for a script that cannot "
    "be played.";

// vrx2260sim module
struct ModuleOptions {
  std::filesystem::path link;
  std::vector<std::filesystem::path> load;  // in this order in memory
  std::optional<std::filesystem::path> save;
  std::uint32_t baud = kLineBaud;  // 0 does not pace
  Faults faults;
  std::optional<WorkOptions> work;
};

// vrx2260sim indicator
struct IndicatorOptions {
  std::filesystem::path link;
  std::filesystem::path script;
};

void AddIndicator(CLI::App& program, IndicatorOptions& options) {
  CLI::App* indicator =
      program.add_subcommand("indicator", "Plays the indicator of the direct connection");
  indicator->add_option("--link", options.link, "Path of the link to the pseudo-terminal")
      ->required();
  indicator->add_option("--script", options.script, "What it sends and expects")
      ->required()
      ->check(CLI::ExistingFile);
  indicator->footer(kScriptHelp);
}

// Reads an argument and turns a refusal into a wrong usage of that option.
template <typename Read>
void CheckArgument(const char* option, const Read& read) {
  try {
    read();
  } catch (const std::invalid_argument& error) {
    throw CLI::ValidationError(option, error.what());
  }
}

void AddWork(CLI::App& module, WorkOptions& work) {
  CLI::Option* feeds = module.add_option_function<std::string>(
      kFeeds,
      [&work](const std::string& day) {
        CheckArgument(kFeeds, [&] { work.first_day = ReadDay(day); });
      },
      "An indicator feeds by each download, from this day on (2026-01-05), and leaves its records");
  module.add_option("--days", work.days, "Days that it feeds by one download")
      ->check(CLI::Range(1, kMostDays))
      ->capture_default_str()
      ->needs(feeds);
  module.add_option("--ledger", work.ledger, "Where it writes down all that was weighed")
      ->needs(feeds);
}

CLI::App* AddModule(CLI::App& program, ModuleOptions& options, WorkOptions& work) {
  CLI::App* module = program.add_subcommand("module", "Plays the data module");
  module->add_option("--link", options.link, "Path of the link to the pseudo-terminal")->required();
  module->add_option("--load", options.load, "A file to put into its memory; may be repeated")
      ->allow_extra_args(false);
  module->add_option("--save", options.save, "Where its memory goes at the end and on SIGUSR1");
  module->add_option("--baud", options.baud, "Pace of its bytes in bits a second; 0 does not pace")
      ->check(CLI::Range(0U, Transmitter::kMaxBaud))
      ->capture_default_str();
  module
      ->add_option_function<std::vector<std::string>>(
          "--fault",
          [&options](const std::vector<std::string>& kinds) {
            for (const std::string& kind : kinds) {
              CheckArgument("--fault", [&] { AddFault(options.faults, kind); });
            }
          },
          "silent, garbage, cut-after=N, extra-us, stall=MS, hang-up=N, strays=N, xoff=N or "
          "deaf=N; may be repeated")
      ->allow_extra_args(false);
  AddWork(*module, work);
  return module;
}

void Play(const ModuleOptions& options, DataModule& module, Signals& signals) {
  PtyLine line(options.link);
  std::cout << "ready " << options.link.string() << std::endl;

  Transmitter transmitter(options.baud);
  LineLoop loop(line, transmitter, module, signals);
  if (options.faults.hang_up) {
    loop.HangUpAfter(*options.faults.hang_up);
  }
  if (options.faults.xoff) {
    loop.SendXoffAfter(*options.faults.xoff);
  }
  if (options.faults.deaf) {
    loop.StopReadingAfter(*options.faults.deaf);
  }
  loop.Run([&] {
    if (!options.save) {
      return;
    }
    try {
      WriteFile(*options.save, module.Memory());
    } catch (const std::system_error& error) {
      std::cerr << "vrx2260sim: " << error.what() << std::endl;
    }
  });
}

// Simulates the data module until a signal stops it or a fault hangs up. Writes "ready PATH" when
// the link exists.
void RunModule(const ModuleOptions& options) {
  Signals signals;
  const auto log = [](const std::string& message) {
    std::cerr << "vrx2260sim: " << message << std::endl;
  };
  DataModule module(options.faults, log);
  std::optional<WorkingIndicator> indicator;
  if (options.work) {
    indicator.emplace(*options.work, log);
    module.CarryBy([&](const std::string& memory) { return indicator->Visit(memory); });
  }
  for (const auto& path : options.load) {
    module.Load(ReadFile(path));
  }
  Play(options, module, signals);
  module.ReportDropped();
  if (options.save) {
    WriteFile(*options.save, module.Memory());
  }
}

// Simulates the indicator of the direct connection until its script ends or a signal stops it.
void RunIndicator(const IndicatorOptions& options) {
  const std::vector<Step> steps = ParseScript(ReadFile(options.script));
  Signals signals;
  PtyLine line(options.link);
  std::cout << "ready " << options.link.string() << std::endl;
  if (!Indicator(line, signals).Play(steps)) {
    std::cerr << "vrx2260sim: stopped before the end of the script" << std::endl;
  }
}

int Run(int argc, char** argv) {
  CLI::App program("Plays the far end of the serial line on a pseudo-terminal", "vrx2260sim");
  program.require_subcommand(1);
  ModuleOptions options;
  WorkOptions work;
  IndicatorOptions indicator_options;
  const CLI::App* module = AddModule(program, options, work);
  AddIndicator(program, indicator_options);
  try {
    program.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return program.exit(error) == 0 ? 0 : kWrongUsage;
  }
  if (module->parsed()) {
    if (module->count(kFeeds) > 0) {
      options.work = work;
    }
    RunModule(options);
    return 0;
  }
  try {
    RunIndicator(indicator_options);
  } catch (const ScriptError& error) {
    std::cerr << indicator_options.script.string() << ": " << error.what() << std::endl;
    return kWrongUsage;
  }
  return 0;
}

}  // namespace
}  // namespace vrx::simulator

int main(int argc, char** argv) {
  try {
    return vrx::simulator::Run(argc, argv);
  } catch (const std::exception& error) {
    std::cerr << "vrx2260sim: " << error.what() << std::endl;
    return 1;
  }
}
