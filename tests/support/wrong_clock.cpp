// Loaded into a program before its libraries (LD_PRELOAD), shows it the time of day shifted by
// VRX_CLOCK_SHIFT seconds. Clocks that only measure stay right.

#include <cstdlib>
#include <ctime>

#include <dlfcn.h>
#include <sys/time.h>

namespace {

template <typename Function>
Function Next(const char* name) {
  return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

time_t Shift() {
  const char* const seconds = std::getenv("VRX_CLOCK_SHIFT");
  return seconds == nullptr ? 0 : std::atol(seconds);
}

}  // namespace

extern "C" {

int clock_gettime(clockid_t clock, timespec* now) noexcept {
  static const auto next = Next<int (*)(clockid_t, timespec*)>("clock_gettime");
  const int result = next(clock, now);
  if (clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE) {
    now->tv_sec += Shift();
  }
  return result;
}

int gettimeofday(timeval* __restrict now, void* __restrict zone) noexcept {
  static const auto next = Next<int (*)(timeval*, void*)>("gettimeofday");
  const int result = next(now, zone);
  now->tv_sec += Shift();
  return result;
}

time_t time(time_t* place) noexcept {
  static const auto next = Next<time_t (*)(time_t*)>("time");
  const time_t now = next(nullptr) + Shift();
  if (place != nullptr) {
    *place = now;
  }
  return now;
}
}
