#include "adapters/qt_event_pump.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <utility>

namespace vrx {
namespace {

// Within the range of a QTimer. A longer wait returns early, as any wait may.
constexpr Milliseconds kLongestWait = std::chrono::hours{24};

class DepthScope {
 public:
  explicit DepthScope(int& depth) : depth_(depth) { ++depth_; }
  ~DepthScope() { --depth_; }
  DepthScope(const DepthScope&) = delete;
  DepthScope& operator=(const DepthScope&) = delete;

 private:
  int& depth_;
};

class QtTicker : public EventPump::Ticker {
 public:
  QtTicker(Milliseconds interval, std::function<void()> tick) {
    QObject::connect(&timer_, &QTimer::timeout, std::move(tick));
    timer_.start(interval);
  }

 private:
  QTimer timer_;
};

}  // namespace

Milliseconds QtEventPump::Now() const {
  return std::chrono::duration_cast<Milliseconds>(
      std::chrono::steady_clock::now().time_since_epoch());
}

void QtEventPump::Pump(Milliseconds limit) {
  const DepthScope depth_scope(depth_);
  QEventLoop loop;
  if (loop.processEvents() || limit <= Milliseconds{0}) {
    return;
  }
  QTimer end;
  end.setSingleShot(true);
  end.setTimerType(Qt::PreciseTimer);
  end.start(std::min(limit, kLongestWait));
  loop.processEvents(QEventLoop::WaitForMoreEvents);
}

std::unique_ptr<EventPump::Ticker> QtEventPump::StartTicker(Milliseconds interval,
                                                            std::function<void()> tick) {
  return std::make_unique<QtTicker>(interval, std::move(tick));
}

void QtEventPump::Close() {
  closing_ = true;
  QAbstractEventDispatcher::instance(QCoreApplication::instance()->thread())->wakeUp();
}

}  // namespace vrx
