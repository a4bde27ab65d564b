// The vector-math mode word, kept per thread, and the two entries that read
// and merge it.
#include "vml/mode.h"

#include <xmmintrin.h>

#include <atomic>
#include <cstdint>

#include "orb.h"
#include "service/dispatch.h"
#include "service/platform/platform.h"

namespace orb::vml {

// Rounding control values of MXCSR, in place.
namespace {
constexpr std::uint32_t kNearest = 0x0000, kDown = 0x2000, kUp = 0x4000, kTowardZero = 0x6000;
constexpr std::uint32_t kAll = kMxcsrRounding | kMxcsrFtz | kMxcsrDaz;
constexpr std::uint32_t kDenormals = kMxcsrFtz | kMxcsrDaz;
}  // namespace

// Settings 0-15: rounding r (nearest, down, up, toward zero) with denormal
// handling d (kept, results flushed, results flushed and inputs read as
// zero, inputs read as zero) at 4 r + d. Settings 16-18: rounding kept,
// denormal handling kept / flushed / flushed and read as zero.
const FpSetting kFpSettingTable[kFpSettings] = {
    {kAll, kNearest},
    {kAll, kNearest | kMxcsrFtz},
    {kAll, kNearest | kMxcsrFtz | kMxcsrDaz},
    {kAll, kNearest | kMxcsrDaz},
    {kAll, kDown},
    {kAll, kDown | kMxcsrFtz},
    {kAll, kDown | kMxcsrFtz | kMxcsrDaz},
    {kAll, kDown | kMxcsrDaz},
    {kAll, kUp},
    {kAll, kUp | kMxcsrFtz},
    {kAll, kUp | kMxcsrFtz | kMxcsrDaz},
    {kAll, kUp | kMxcsrDaz},
    {kAll, kTowardZero},
    {kAll, kTowardZero | kMxcsrFtz},
    {kAll, kTowardZero | kMxcsrFtz | kMxcsrDaz},
    {kAll, kTowardZero | kMxcsrDaz},
    {kDenormals, 0},
    {kDenormals, kMxcsrFtz},
    {kDenormals, kMxcsrFtz | kMxcsrDaz},
};

namespace {

// The setting for fp-control value v (bits 4-7 shifted down) and accuracy
// class: high (accuracy 1 and every value other than 2 and 3), reduced (2),
// fastest (3). -1: v takes its own path (0 nothing, 3 the default state).
constexpr signed char kFpSettingIndex[16][3] = {
    {-1, -1, -1},  // 0x00: the state is left alone
    {0, 1, 2},     // 0x10: round to nearest
    {4, 5, 6},     // 0x20: round down
    {-1, -1, -1},  // 0x30: the default state
    {8, 9, 10},    // 0x40: round up
    {12, 13, 14},  // 0x50: round toward zero
    {16, 17, 18},  // 0x60: rounding kept
    {0, 1, 2},     // 0x70: as 0x10
    {3, 3, 3},     // 0x80: round to nearest, denormal inputs read as zero
    {7, 7, 7},     // 0x90: round down, denormal inputs read as zero
    {11, 11, 11},  // 0xA0: round up, denormal inputs read as zero
    {15, 15, 15},  // 0xB0: round toward zero, denormal inputs read as zero
    {0, 1, 2},     // 0xC0 - 0xF0: as 0x10
    {0, 1, 2},    {0, 1, 2}, {0, 1, 2},
};

int accuracy_class(std::uint32_t accuracy) {
  switch (accuracy & kAccuracyMask) {
    case kAccuracyReduced:
      return 1;
    case kAccuracyFastest:
      return 2;
    default:
      return 0;
  }
}

}  // namespace

int fp_setting_index(std::uint32_t fp, std::uint32_t accuracy) {
  return kFpSettingIndex[(fp & kFpControlMask) >> 4][accuracy_class(accuracy)];
}

namespace {

// The word of a thread lives in its thread-local slot as a pointer-sized
// value: bits 0-17 the word, bit 31 set so that a thread that stored a word
// is told from one that never did (null). Nothing is allocated, so nothing is
// left behind when a thread ends.
constexpr std::uintptr_t kStored = std::uintptr_t{1} << 31;
constexpr std::uint32_t kWordBits = kAccuracyMask | kFpControlMask | kErrorMask | kAdditionalMask;

struct Store {
  bool per_thread = false;
  platform::TlsKey key{};
};

const Store &store() {
  static const Store s = [] {
    Store st;
    st.per_thread = platform::tls_create(&st.key);
    return st;
  }();
  return s;
}

// The word used when no thread-local slot could be had.
std::atomic<std::uint32_t> g_shared_word{kInitialMode};

void apply_fp_control(std::uint32_t fp, std::uint32_t accuracy) {
  if (fp == 0) return;
  std::uint32_t csr = _mm_getcsr();
  if (fp == kFpRestoreDefault) {
    csr &= ~(kMxcsrRounding | kMxcsrFtz | kMxcsrDaz);  // nearest, denormals kept
  } else {
    const FpSetting &s = kFpSettingTable[fp_setting_index(fp, accuracy)];
    csr = (csr & ~s.clear) | s.set;
  }
  _mm_setcsr(csr);
}

unsigned int get_mode() {
  return mode_word();
}

unsigned int set_mode(const unsigned int *mode) {
  const std::uint32_t previous = mode_word();
  const std::uint32_t request = mode != nullptr ? *mode : 0;
  const std::uint32_t word = merge_mode(previous, request);
  if (word != previous) set_mode_word(word);
  apply_fp_control(request & kFpControlMask, word & kAccuracyMask);
  return previous;
}

using GetFn = unsigned int (*)();
using SetFn = unsigned int (*)(const unsigned int *);
VmlSlot<GetFn> g_get{
    per_vml_type<GetFn>(get_mode, get_mode, get_mode, get_mode, get_mode, get_mode, get_mode)};
VmlSlot<SetFn> g_set{
    per_vml_type<SetFn>(set_mode, set_mode, set_mode, set_mode, set_mode, set_mode, set_mode)};

}  // namespace

std::uint32_t mode_word() {
  const Store &s = store();
  if (!s.per_thread) return g_shared_word.load(std::memory_order_relaxed);
  const auto v = reinterpret_cast<std::uintptr_t>(platform::tls_get(s.key));
  return v == 0 ? kInitialMode : static_cast<std::uint32_t>(v) & kWordBits;
}

void set_mode_word(std::uint32_t word) {
  const Store &s = store();
  word &= kWordBits;
  if (!s.per_thread)
    g_shared_word.store(word, std::memory_order_relaxed);
  else
    platform::tls_set(s.key, reinterpret_cast<void *>(static_cast<std::uintptr_t>(word) | kStored));
}

bool mode_word_per_thread() {
  return store().per_thread;
}

}  // namespace orb::vml

extern "C" {

ORB_API unsigned int vmlsetmode(const unsigned int *mode) {
  return orb::vml::g_set(mode);
}

ORB_API unsigned int vmlgetmode(void) {
  return orb::vml::g_get();
}

}  // extern "C"
