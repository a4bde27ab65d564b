// The vector-math mode word: its fields, the per-thread store and the table
// of floating-point control settings the fp-control field selects.
#pragma once

#include <cstdint>

namespace orb::vml {

// Fields of the mode word.
constexpr std::uint32_t kAccuracyMask = 0x0000000Fu;
constexpr std::uint32_t kFpControlMask = 0x000000F0u;
constexpr std::uint32_t kErrorMask = 0x0000FF00u;
constexpr std::uint32_t kAdditionalMask = 0x00030000u;
constexpr std::uint32_t kFieldMasks[] = {kAccuracyMask, kFpControlMask, kErrorMask,
                                         kAdditionalMask};

// Accuracy values (orb.h says what each records).
constexpr std::uint32_t kAccuracyHigh = 0x1;
constexpr std::uint32_t kAccuracyReduced = 0x2;
constexpr std::uint32_t kAccuracyFastest = 0x3;

// The fp-control value that restores the default state.
constexpr std::uint32_t kFpRestoreDefault = 0x30;

// The word of a thread that has not set one.
constexpr std::uint32_t kInitialMode = kAccuracyHigh;

// The processor's SSE control/status register bits a setting touches.
constexpr std::uint32_t kMxcsrDaz = 0x0040;       // denormal inputs read as zero
constexpr std::uint32_t kMxcsrRounding = 0x6000;  // 0 nearest, 1 down, 2 up, 3 toward zero
constexpr std::uint32_t kMxcsrFtz = 0x8000;       // denormal results flushed to zero

// One floating-point control setting: MXCSR := (MXCSR & ~clear) | set.
struct FpSetting {
  std::uint32_t clear;
  std::uint32_t set;
};
constexpr int kFpSettings = 19;
extern const FpSetting kFpSettingTable[kFpSettings];

// The setting (index into kFpSettingTable) that fp-control value `fp` (the
// field, bits 4-7) selects with accuracy `accuracy` (bits 0-3); -1 for 0 and
// for kFpRestoreDefault, which take their own paths.
int fp_setting_index(std::uint32_t fp, std::uint32_t accuracy);

// The mode word merge: each nonzero field of `request` replaces the field of
// `word`; zero fields and the bits outside the fields leave it.
constexpr std::uint32_t merge_mode(std::uint32_t word, std::uint32_t request) {
  for (std::uint32_t mask : kFieldMasks)
    if ((request & mask) != 0) word = (word & ~mask) | (request & mask);
  return word;
}

// The calling thread's word and its store (the process-wide word when the
// system gave no thread-local slot).
std::uint32_t mode_word();
void set_mode_word(std::uint32_t word);
// Whether the word is kept per thread; for tests.
bool mode_word_per_thread();

}  // namespace orb::vml
