#include "service/catalogue.h"

#include <array>
#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "service/platform/platform.h"

namespace orb::msg {
namespace {

enum Class : unsigned char { kError = 2, kInfo = 4 };

struct Record {
  const char *text;
  int number_plus_one;  // 0 marks a number the catalogue does not have
  Class cls;
};

struct Entry {
  int number;
  Class cls;
  const char *text;
};

// The built-in texts: every subsystem's message table, as the build lists
// them (each subsystem declares its own with orb_message_table).
constexpr Entry kBuiltin[] = {
#define ORB_MESSAGE(number, cls, text) {number, cls, text},
#include "orb_messages.inc"
#undef ORB_MESSAGE
};

constexpr int kCount = 962;

constexpr std::array<Record, kCount> make_table() {
  std::array<Record, kCount> t{};
  for (const Entry &e : kBuiltin) {
    // A number out of range or given twice stops the compilation here.
    if (e.number < 0 || e.number >= kCount || t[e.number].number_plus_one != 0) throw e.number;
    t[e.number] = Record{e.text, e.number + 1, e.cls};
  }
  return t;
}
constexpr std::array<Record, kCount> kTable = make_table();
static_assert(kTable[6].number_plus_one == 7 && kTable[5].number_plus_one == 6);

// The localised catalogue module, looked for once per process. Racing first
// uses may both load it; the last store wins and the other handle stays loaded.
std::atomic<bool> g_load_tried{false};
std::atomic<void *> g_module{nullptr};

constexpr const char *kModuleName = "orb_msg";
constexpr std::uint32_t kMessageIdBase = 0x80000000u;
constexpr std::uint32_t kLanguageUsEnglish = 1033;

void try_load_module() {
  if (g_load_tried.load(std::memory_order_acquire)) return;
  std::uint32_t locale = platform::thread_locale();
  if (locale != 0) {
    char path[64];
    std::snprintf(path, sizeof path, "%lu/%s", static_cast<unsigned long>(locale), kModuleName);
    g_module.store(platform::module_load_path(path), std::memory_order_release);
  }
  g_load_tried.store(true, std::memory_order_release);
}

// Each thread formats into its own buffers, so concurrent reports may
// interleave their lines but never mix their characters.
thread_local char t_fetched[kBufferSize + 1];
thread_local char t_formatted[4 * kBufferSize];

}  // namespace

const char *builtin_text(int number) {
  if (number < 0 || number >= kCount || kTable[number].number_plus_one == 0) return nullptr;
  return kTable[number].text;
}

const char *text(int number) {
  if (number != 0) try_load_module();
  if (void *module = g_module.load(std::memory_order_acquire)) {
    int n = platform::module_message(module, kMessageIdBase + static_cast<std::uint32_t>(number),
                                     kLanguageUsEnglish, t_fetched, sizeof t_fetched);
    if (n > 0) {
      if (n >= 2 && t_fetched[n - 2] == '\r' && t_fetched[n - 1] == '\n') t_fetched[n - 2] = '\0';
      return t_fetched;
    }
  }
  return builtin_text(number);
}

void print(int number, ...) {
  const char *format = text(number);
  if (format == nullptr) format = "";
  va_list args;
  va_start(args, number);
  int length = std::vsnprintf(t_formatted, sizeof t_formatted, format, args);
  va_end(args);
  if (length - 1 > kBufferSize) {
    std::fputs("\nORB INTERNAL ERROR: message buffer overflow.", stdout);
    std::fflush(stdout);
    std::printf("\n       Message N %d   Lenght: %d   Buffer size: %d\n", number, length,
                kBufferSize);
    std::fflush(stdout);
    std::exit(8);
  }
  std::fputs(t_formatted, stdout);
  std::fputs("\n", stdout);
  std::fflush(nullptr);
}

}  // namespace orb::msg
