// The operating-system layer on Windows. Only KERNEL32 is used.
#include "service/platform/platform.h"

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX  // libstdc++ may have defined it already
#define NOMINMAX
#endif
#include <windows.h>

#include <cstdio>

namespace orb::platform {

// ---- environment -----------------------------------------------------------

int env_get(const char *name, char *buf, int size) {
  buf[0] = '\0';
  // A result of 0 means either an empty value or no variable; only the error
  // code tells them apart, and it is not cleared on success.
  SetLastError(0);
  const DWORD n = GetEnvironmentVariableA(name, buf, static_cast<DWORD>(size));
  if (n == 0) {
    buf[0] = '\0';
    return GetLastError() == ERROR_ENVVAR_NOT_FOUND ? -1 : 0;
  }
  // When the value fits, n is its length without the NUL; when it does not,
  // n is the size needed including the NUL, hence never below `size`.
  if (n < static_cast<DWORD>(size)) return static_cast<int>(n);
  buf[0] = '\0';
  return static_cast<int>(n - 1);
}

// ---- modules ---------------------------------------------------------------

void *module_load(const char *base_name) {
  // Built on the stack: the memory manager looks for its allocator module
  // before it can hand out memory.
  char file[256];
  const int n = std::snprintf(file, sizeof file, "%s.dll", base_name);
  if (n < 0 || n >= static_cast<int>(sizeof file)) return nullptr;
  return module_load_path(file);
}

void *module_load_path(const char *path) {
  // A bare name goes through the standard DLL search order; a path is used as
  // it is.
  return reinterpret_cast<void *>(LoadLibraryA(path));
}

void *module_symbol(void *module, const char *symbol) {
  if (module == nullptr) return nullptr;
  return reinterpret_cast<void *>(GetProcAddress(static_cast<HMODULE>(module), symbol));
}

void module_release(void *module) {
  if (module != nullptr) FreeLibrary(static_cast<HMODULE>(module));
}

int module_message(void *module, std::uint32_t id, std::uint32_t lang, char *buf, int size) {
  if (size <= 0) return -1;
  buf[0] = '\0';
  // A message longer than the buffer makes FormatMessageA fail rather than
  // truncate; that, too, is reported as -1.
  const DWORD n = FormatMessageA(FORMAT_MESSAGE_FROM_HMODULE | FORMAT_MESSAGE_IGNORE_INSERTS,
                                 module, id, lang, buf, static_cast<DWORD>(size), nullptr);
  if (n == 0) {
    buf[0] = '\0';
    return -1;
  }
  return static_cast<int>(n);
}

std::uint32_t thread_locale() {
  return GetThreadLocale();
}

// ---- thread-local storage ----------------------------------------------------

bool tls_create(TlsKey *key) {
  const DWORD index = TlsAlloc();
  if (index == TLS_OUT_OF_INDEXES) return false;
  key->value = index;
  return true;
}

void tls_destroy(TlsKey key) {
  TlsFree(static_cast<DWORD>(key.value));
}

void *tls_get(TlsKey key) {
  return TlsGetValue(static_cast<DWORD>(key.value));
}

void tls_set(TlsKey key, void *value) {
  TlsSetValue(static_cast<DWORD>(key.value), value);
}

// ---- affinity, scheduling --------------------------------------------------

bool affinity_masks(std::uint64_t *process_mask, std::uint64_t *system_mask) {
  DWORD_PTR process = 0, system = 0;
  if (!GetProcessAffinityMask(GetCurrentProcess(), &process, &system)) return false;
  *process_mask = process;
  *system_mask = system;
  return true;
}

bool thread_pin(std::uint64_t mask, std::uint64_t *previous) {
  // A 32-bit process sees at most 32 processors; higher bits are dropped, and
  // a mask left empty by that is refused by the system like any empty mask.
  const DWORD_PTR old = SetThreadAffinityMask(GetCurrentThread(), static_cast<DWORD_PTR>(mask));
  if (old == 0) return false;
  if (previous != nullptr) *previous = old;
  return true;
}

void yield() {
  Sleep(0);
}

void sleep_ms(unsigned ms) {
  Sleep(ms);
}

// ---- clocks ------------------------------------------------------------------

bool perf_counter(std::int64_t *ticks) {
  LARGE_INTEGER value;
  if (!QueryPerformanceCounter(&value)) return false;
  *ticks = value.QuadPart;
  return true;
}

bool perf_frequency(std::int64_t *ticks_per_second) {
  LARGE_INTEGER value;
  if (!QueryPerformanceFrequency(&value) || value.QuadPart <= 0) return false;
  *ticks_per_second = value.QuadPart;
  return true;
}

std::uint64_t system_time_filetime() {
  FILETIME ft;
  GetSystemTimeAsFileTime(&ft);
  return static_cast<std::uint64_t>(ft.dwHighDateTime) << 32 | ft.dwLowDateTime;
}

}  // namespace orb::platform
