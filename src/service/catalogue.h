// The numbered message catalogue: every diagnostic text of the library.
#pragma once

namespace orb::msg {

// Size of the formatting buffer; a formatted message longer than this ends
// the process (exit code 8) after an overflow report.
constexpr int kBufferSize = 512;

// Message numbers used across the library.
enum Number : int {
  kEmpty = 0,
  kCannotLoad = 1,
  kCannotLoadEither = 2,
  kCannotLoadFunction = 3,
  kCpuTypeNotConvenient = 4,
  kLibraryNotConvenient = 5,
  kParameterIncorrect = 6,
  kCondition = 7,
  kNoWorkMemory = 8,
  kIncompatibleOptions = 9,
  kRule = 10,
  kTesseraReleaseFailed = 774,
  kOocConfigPath = 956,
  kOocConfigFileName = 957,
  kOocDataPath = 958,
  kOocMaxCoreSize = 959,
  kOocKeepFile = 960,
  kOocConfigOpenFailed = 961,
};

// The text of a message: from the localised catalogue module when one was
// loaded and holds it, else the built-in English text; null for a number the
// catalogue does not have.
const char *text(int number);

// Formats message `number` with the arguments (printf conventions), prints it
// and a line feed on standard output and flushes every stream.
void print(int number, ...);

// The built-in English text, whatever module is loaded (for tests and for the
// solvers' writers that must quote it word for word).
const char *builtin_text(int number);

}  // namespace orb::msg
