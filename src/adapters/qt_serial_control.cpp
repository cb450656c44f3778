#include "adapters/qt_serial_control.h"

#include <QSerialPort>
#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

namespace vrx {
namespace {

constexpr std::string_view kParityLetters = "neoms";  // in the order of Parity

// Removes the text up to the next comma, and the comma.
std::string_view NextField(std::string_view& text) {
  const std::string_view field = text.substr(0, text.find(','));
  text.remove_prefix(std::min(text.size(), field.size() + 1));
  return field;
}

// -1 unless the whole field is a number.
int Number(std::string_view field) {
  int value = 0;
  const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), value);
  return error == std::errc{} && end == field.data() + field.size() ? value : -1;
}

constexpr std::array kParities{QSerialPort::NoParity, QSerialPort::EvenParity,
                               QSerialPort::OddParity, QSerialPort::MarkParity,
                               QSerialPort::SpaceParity};

std::string Message(const std::string& device, std::string_view problem) {
  return device + ": " + std::string(problem);
}

// Checks what needs no opening, which raises DTR on some devices.
void CheckDevice(const std::string& device) {
  struct stat status {};
  if (stat(device.c_str(), &status) != 0) {
    throw SerialError(Message(device, errno == ENOENT ? "no such device" : std::strerror(errno)));
  }
  if (!S_ISCHR(status.st_mode)) {
    throw SerialError(Message(device, "is not a serial device"));
  }
  if (faccessat(AT_FDCWD, device.c_str(), R_OK | W_OK, AT_EACCESS) != 0) {
    throw SerialError(Message(device, "access denied: " + std::string(std::strerror(errno))));
  }
}

// Why a device that passed CheckDevice could not be opened.
std::string Refusal(const std::string& device, const QSerialPort& port) {
  const std::string text = port.errorString().toStdString();
  const int descriptor = open(device.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  const int open_error = descriptor < 0 ? errno : 0;
  const bool no_terminal = descriptor >= 0 && isatty(descriptor) == 0 && errno == ENOTTY;
  if (descriptor >= 0) {
    close(descriptor);
  }
  if (no_terminal) {
    return "is not a serial device";
  }
  if (port.error() == QSerialPort::PermissionError || open_error == EBUSY) {
    return "is in use (" + text + ")";
  }
  return "cannot be opened: " + text;
}

// One name for a device, whatever links lead to it: its lock file has that name.
QString PortName(const std::string& device) {
  std::error_code unresolved;
  const std::filesystem::path real = std::filesystem::canonical(device, unresolved);
  return QString::fromStdString(unresolved ? device : real.string());
}

}  // namespace

LineSettings ParseLineSettings(std::string_view text) {
  std::string_view rest = text;
  LineSettings settings;
  settings.baud = Number(NextField(rest));
  const std::string_view letter = NextField(rest);
  const std::size_t parity =
      letter.size() == 1 ? kParityLetters.find(letter) : std::string_view::npos;
  settings.data_bits = Number(NextField(rest));
  settings.stop_bits = Number(rest);
  if (settings.baud < 1 || parity == std::string_view::npos || settings.data_bits < 5 ||
      settings.data_bits > 8 || settings.stop_bits < 1 || settings.stop_bits > 2) {
    throw SerialError("\"" + std::string(text) + "\" are no settings of a serial line");
  }
  settings.parity = static_cast<Parity>(parity);
  return settings;
}

struct QtSerialControl::Properties {
  bool dtr = false;
  int in_buffer_size = 0;  // 0: no limit
  Handshaking handshaking = Handshaking::kNone;
  std::string device;
  LineSettings settings;
};

// An open device.
class QtSerialControl::Line {
 public:
  explicit Line(const Properties& properties) : device_(properties.device) {
    CheckDevice(device_);
    const LineSettings& settings = properties.settings;
    port_.setPortName(PortName(device_));
    port_.setBaudRate(settings.baud);
    port_.setParity(kParities.at(static_cast<std::size_t>(settings.parity)));
    port_.setDataBits(static_cast<QSerialPort::DataBits>(settings.data_bits));
    port_.setStopBits(settings.stop_bits == 2 ? QSerialPort::TwoStop : QSerialPort::OneStop);
    port_.setFlowControl(properties.handshaking == Handshaking::kXOnXOff
                             ? QSerialPort::SoftwareControl
                             : QSerialPort::NoFlowControl);
    port_.setReadBufferSize(properties.in_buffer_size);
    if (!port_.open(QIODevice::ReadWrite)) {
      throw SerialError(Message(device_, Refusal(device_, port_)));
    }
    ClearXoff();
    SetDTR(properties.dtr);
    // Otherwise a dead line keeps the event loop busy until the next call.
    QObject::connect(
        &port_, &QSerialPort::errorOccurred, &port_, [this] { NoticeLoss(); },
        Qt::QueuedConnection);
  }

  ~Line() {
    if (port_.isOpen()) {
      // Otherwise the system waits for a partner that holds the line.
      port_.clear(QSerialPort::Output);
      port_.close();
    }
  }

  Line(const Line&) = delete;
  Line& operator=(const Line&) = delete;

  // A line without DTR ignores it.
  void SetDTR(bool on) {
    if (!lost_) {
      port_.setDataTerminalReady(on);
    }
  }

  void CheckConnected() {
    NoticeLoss();
    if (lost_) {
      throw SerialError(Message(device_, "the line is gone"));
    }
  }

  qsizetype Waiting() {
    NoticeLoss();
    return lost_ ? rescued_.size() : port_.bytesAvailable();
  }

  QByteArray Take() { return lost_ ? std::exchange(rescued_, {}) : port_.readAll(); }

  void DiscardInput() {
    CheckConnected();
    // Reading comes first: a full buffer stops the reception, and clearing does not resume it.
    port_.readAll();
    port_.clear(QSerialPort::Input);
  }

  void DiscardOutput() {
    CheckConnected();
    port_.clear(QSerialPort::Output);
  }

  void Write(std::string_view bytes) {
    CheckConnected();
    const auto size = static_cast<qint64>(bytes.size());
    if (port_.write(bytes.data(), size) != size) {
      throw SerialError(Message(device_, port_.errorString().toStdString()));
    }
  }

  qint64 Unsent() {
    CheckConnected();
    int in_kernel = 0;
    if (ioctl(port_.handle(), TIOCOUTQ, &in_kernel) != 0) {
      in_kernel = 0;
    }
    return port_.bytesToWrite() + in_kernel;
  }

 private:
  // The system keeps an XOFF of an earlier opening as long as any program has the line open.
  void ClearXoff() {
    tcflow(port_.handle(), TCOOFF);
    tcflow(port_.handle(), TCOON);
  }

  void NoticeLoss() {
    if (lost_ || !HungUp()) {
      return;
    }
    lost_ = true;
    rescued_ = port_.readAll();
    port_.close();
  }

  [[nodiscard]] bool HungUp() const {
    pollfd line{.fd = port_.handle(), .events = 0, .revents = 0};
    return poll(&line, 1, 0) > 0 && (line.revents & (POLLHUP | POLLERR | POLLNVAL)) != 0;
  }

  std::string device_;
  QSerialPort port_;
  bool lost_ = false;
  QByteArray rescued_;  // received before the line was lost
};

QtSerialControl::QtSerialControl(DeviceOfPort device_of_port)
    : device_of_port_(std::move(device_of_port)), properties_(std::make_unique<Properties>()) {}

QtSerialControl::~QtSerialControl() = default;

void QtSerialControl::SetDTREnable(bool on) {
  properties_->dtr = on;
  if (line_) {
    line_->SetDTR(on);
  }
}

void QtSerialControl::SetInBufferSize(int bytes) { properties_->in_buffer_size = bytes; }

// The output buffer grows as needed.
void QtSerialControl::SetOutBufferSize(int /*bytes*/) {}

void QtSerialControl::SetHandshaking(Handshaking mode) { properties_->handshaking = mode; }

void QtSerialControl::SetCommPort(int number) { properties_->device = device_of_port_(number); }

void QtSerialControl::SetSettings(std::string_view settings) {
  properties_->settings = ParseLineSettings(settings);
}

bool QtSerialControl::PortOpen() const { return line_ != nullptr; }

void QtSerialControl::SetPortOpen(bool open) {
  if (!open) {
    line_.reset();
  } else if (!line_) {
    line_ = std::make_unique<Line>(*properties_);
  }
}

int QtSerialControl::InBufferCount() {
  if (!line_) {
    return 0;
  }
  const qsizetype waiting = line_->Waiting();
  if (waiting == 0) {
    line_->CheckConnected();
  }
  return static_cast<int>(waiting);
}

void QtSerialControl::DiscardInput() {
  if (line_) {
    line_->DiscardInput();
  }
}

int QtSerialControl::OutBufferCount() { return line_ ? static_cast<int>(line_->Unsent()) : 0; }

void QtSerialControl::DiscardOutput() {
  if (line_) {
    line_->DiscardOutput();
  }
}

std::string QtSerialControl::Input() { return line_ ? line_->Take().toStdString() : std::string(); }

void QtSerialControl::Output(std::string_view bytes) {
  if (!line_) {
    throw SerialError("the port is closed");
  }
  line_->Write(bytes);
}

}  // namespace vrx
