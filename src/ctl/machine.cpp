#include "ctl/machine.h"

#include <optional>

#include "adapters/qt_event_pump.h"
#include "adapters/qt_serial_control.h"
#include "adapters/serial_ports.h"
#include "adapters/signals.h"

namespace vrx {
namespace {

namespace fs = std::filesystem;

class QtSerialLine : public SerialLine {
 public:
  QtSerialLine(const std::string& device, const fs::path& data_folder)
      : control_([device, data_folder](int number) {
          return device.empty() ? LinuxPortDevice(data_folder, number) : device;
        }) {}

  SerialControl& Control() override { return control_; }
  EventPump& Pump() override { return pump_; }
  void Close() override { pump_.Close(); }
  void CloseOnSignals() override {
    signals_.emplace([this] { pump_.Close(); });
  }

 private:
  QtEventPump pump_;
  std::optional<SignalHandler> signals_;
  QtSerialControl control_;
};

}  // namespace

std::unique_ptr<SerialLine> MakeSerialLine(const std::string& device, const fs::path& data_folder) {
  return std::make_unique<QtSerialLine>(device, data_folder);
}

}  // namespace vrx
