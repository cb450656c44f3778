// The time of a parse for different lengths of the text and values of the transaction numbers. It
// depends only on the length: the bytes per second should not fall with either argument.

#include <cstdint>
#include <string>

#include <benchmark/benchmark.h>

#include "exchange/transaction_parser.h"
#include "presenter/silent_ports.h"
#include "settings/settings.h"

namespace {

// Batches of two ingredients with two feeds each, numbered from `first_number`.
std::string FileOf(std::int64_t batches, std::int64_t first_number) {
  std::string text = "{BAT/FED},L\r\n[BAT],";
  std::string feeds = "[FED],";
  for (std::int64_t batch = 0; batch < batches; ++batch) {
    const std::string number = std::to_string(first_number + batch);
    text +=
        "B," + number + ",3,01152009,2,4,7,0,0;0830,0835,0,0;1000.0,500.0,0,0;998.0,503.5,0,0\r\n";
    for (const char* feed :
         {",12,2,0915,01152009,750.0,748.5\r\n", ",14,2,0921,01152009,750.0,752.0\r\n"}) {
      feeds += "B," + number + feed;
    }
  }
  return text + "\r\n" + feeds + "\r\n";
}

void Parse(benchmark::State& state, const std::string& text) {
  const vrx::PrivateINI settings;
  vrx::testing::SilentOperator op;
  vrx::testing::SilentProgress progress;
  vrx::TransFile file;
  file.SetText(text);
  for ([[maybe_unused]] auto _ : state) {
    const std::string error = file.ParseTransactionFile(progress, {}, op, settings);
    if (!error.empty()) {
      state.SkipWithError(error.c_str());
      break;
    }
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(text.size()) * state.iterations());
}

void BmParseByLength(benchmark::State& state) { Parse(state, FileOf(state.range(0), 1)); }
BENCHMARK(BmParseByLength)->RangeMultiplier(4)->Range(4, 256)->Arg(400);

void BmParseByTransactionNumber(benchmark::State& state) {
  Parse(state, FileOf(256, state.range(0)));
}
BENCHMARK(BmParseByTransactionNumber)->Arg(1)->Arg(1'000'000)->Arg(2'147'000'000);

// Every mark counts the one long list of times again; the text ends in an error after the counts.
void BmCountOfRepeatedMarks(benchmark::State& state) {
  std::string text = "{BAT/FED},L\r\n[BAT],";
  for (std::int64_t i = 0; i < state.range(0); ++i) {
    text += "B,";
  }
  text += ";";
  for (std::int64_t i = 0; i < state.range(0) * 2 / 5; ++i) {
    text += "0830,";
  }
  text += "0;\r\n\r\n[FED],\r\n\r\n";
  const vrx::PrivateINI settings;
  vrx::testing::SilentOperator op;
  vrx::testing::SilentProgress progress;
  vrx::TransFile file;
  file.SetText(text);
  for ([[maybe_unused]] auto _ : state) {
    benchmark::DoNotOptimize(file.ParseTransactionFile(progress, {}, op, settings));
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(text.size()) * state.iterations());
}
BENCHMARK(BmCountOfRepeatedMarks)->RangeMultiplier(4)->Range(250, 16'000);

}  // namespace
