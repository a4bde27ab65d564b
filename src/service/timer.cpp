// DSECND: wall-clock seconds from the processor's time-stamp counter, its rate
// calibrated once against the system's performance counter.
#include <atomic>
#include <cstdint>

#include "orb.h"
#include "service/platform/platform.h"
#include "service/tsc.h"

namespace orb {
namespace {

constexpr double kFallbackRate = 1e9;  // one tick per nanosecond
constexpr std::uint64_t kCalibrationMs = 100;

std::atomic<double> g_rate{0.0};
std::atomic<bool> g_measured{false};

std::uint64_t process_clock_ms() {
  return platform::system_time_filetime() / 10000;
}

double measure_rate() {
  std::int64_t frequency = 0, pc0 = 0, pc1 = 0;
  platform::perf_frequency(&frequency);
  platform::perf_counter(&pc0);
  std::uint64_t tsc0 = read_tsc();
  const std::uint64_t start = process_clock_ms();
  while (process_clock_ms() - start < kCalibrationMs) {
  }
  platform::perf_counter(&pc1);
  std::uint64_t tsc1 = read_tsc();
  if (frequency == 0) return kFallbackRate;
  double seconds = static_cast<double>(pc1 - pc0) / static_cast<double>(frequency);
  if (seconds < 0.0001 || tsc1 == tsc0) return kFallbackRate;
  return static_cast<double>(tsc1 - tsc0) / seconds;
}

// The counter as an unsigned 64-bit number.
double to_double(std::uint64_t ticks) {
  double d = static_cast<double>(static_cast<std::int64_t>(ticks));
  if (static_cast<std::int64_t>(ticks) < 0) d += 18446744073709551616.0;  // 2^64
  return d;
}

}  // namespace
}  // namespace orb

extern "C" ORB_API double DSECND(void) {
  if (!orb::g_measured.load(std::memory_order_acquire)) {
    orb::g_rate.store(orb::measure_rate(), std::memory_order_relaxed);
    orb::g_measured.store(true, std::memory_order_release);
  }
  return orb::to_double(orb::read_tsc()) / orb::g_rate.load(std::memory_order_relaxed);
}
