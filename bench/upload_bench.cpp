// An upload of a full module over a pseudo-terminal that is paced like the real line, compared with
// the time of the line itself and the fixed waits of the protocol.

#include <QCoreApplication>
#include <chrono>
#include <string>

#include <benchmark/benchmark.h>

#include "adapters/qt_event_pump.h"
#include "adapters/qt_serial_control.h"
#include "link/krmcomm.h"
#include "settings/settings.h"
#include "simulated_module.h"
#include "support/recording_operator.h"
#include "support/temp_folder.h"

namespace {

using Seconds = std::chrono::duration<double>;

constexpr std::size_t kMemorySize = 65'000;
constexpr double kBitsPerByte = 10;  // start, 8 data, stop
constexpr double kBaud = 19'200;
constexpr Seconds kFixedWaits{2 * (1.0 + 0.5)};  // two commands: wake and release of DTR
constexpr double kHighestRatio = 1.03;

void UploadOfAFullModule(benchmark::State& state) {
  const vrx::testing::TempFolder folder;
  const vrx::bench::SimulatedModule module(folder, kMemorySize);
  vrx::QtEventPump pump;
  vrx::QtSerialControl serial([&](int) { return module.Device(); });
  vrx::testing::RecordingOperator op;
  const vrx::PrivateINI settings;
  vrx::KRMCOMM krm(serial, pump, op, settings);

  for ([[maybe_unused]] auto iteration : state) {
    std::size_t bytes = 0;
    const auto start = std::chrono::steady_clock::now();
    bool done = krm.KRM_OnlineCheck();
    bytes += 1 + krm.GS_KRM_RxDBuffer().size();
    done = done && krm.KRM_Dump();
    bytes += 1 + krm.GS_KRM_RxDBuffer().size();
    const Seconds measured = std::chrono::steady_clock::now() - start;
    if (!done || krm.KRM_ExtractData(krm.GS_KRM_RxDBuffer()).size() != kMemorySize) {
      state.SkipWithError(("the upload failed: " + krm.KRM_FailureCause()).c_str());
      return;
    }
    const Seconds own = Seconds(static_cast<double>(bytes) * kBitsPerByte / kBaud) + kFixedWaits;
    state.SetIterationTime(measured.count());
    state.counters["line_and_waits_s"] = own.count();
    state.counters["measured_s"] = measured.count();
    state.counters["ratio"] = measured / own;
    if (measured / own > kHighestRatio) {
      state.SkipWithError("slower than the line by more than 3 %");
    }
  }
}

BENCHMARK(UploadOfAFullModule)->UseManualTime()->Iterations(1)->Unit(benchmark::kSecond);

}  // namespace

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
}
