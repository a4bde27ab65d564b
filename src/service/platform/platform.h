// The operating-system layer. Every call the library makes to the operating
// system goes through the functions declared here; one implementation per
// system (posix.cpp, win32.cpp) and nothing else in the tree includes a system
// header for these services.
#pragma once

#include <cstdint>

namespace orb::platform {

// ---- environment -----------------------------------------------------------
// Reads variable `name` into `buf` of `size` characters (size >= 1).
// Returns -1 when the variable is absent. Otherwise returns the length of its
// value (0 for a variable that is present but empty). When that length is
// below `size` the value and a terminating NUL are in `buf`; when it is not,
// the value did not fit and `buf` holds the empty string.
int env_get(const char *name, char *buf, int size);

// ---- modules ---------------------------------------------------------------
// Loads a module by its base name ("orbmalloc" is looked up as orbmalloc.dll on
// Windows and liborbmalloc.so on Linux, through the system's usual search).
// Returns null when it cannot be loaded.
void *module_load(const char *base_name);
// Loads a module by an exact relative or absolute path. Null on failure.
void *module_load_path(const char *path);
// The address of an exported symbol (function or data), or null.
void *module_symbol(void *module, const char *symbol);
void module_release(void *module);
// Fetches the text of message `id` in language `lang` from a module's message
// table into `buf` (at most size-1 characters and a NUL). Returns the number
// of characters stored, or -1 when the module has no such message or the
// system has no message tables (Linux).
int module_message(void *module, std::uint32_t id, std::uint32_t lang, char *buf, int size);
// The calling thread's locale identifier (LCID); 0 where the system has none.
std::uint32_t thread_locale();

// ---- thread-local storage ----------------------------------------------------
// A slot index valid for every thread; each thread sees its own value, null
// until it sets one. No destructor runs at thread exit.
struct TlsKey {
  std::uintptr_t value;
};
bool tls_create(TlsKey *key);
void tls_destroy(TlsKey key);
void *tls_get(TlsKey key);
void tls_set(TlsKey key, void *value);

// ---- affinity, scheduling --------------------------------------------------
// Bit i of a mask stands for logical processor i (the first 64 processors).
// Reads the affinity mask of the process and the mask of all processors of the
// system. Returns false if the system cannot tell.
bool affinity_masks(std::uint64_t *process_mask, std::uint64_t *system_mask);
// Pins the calling thread to `mask`; on success stores the thread's previous
// mask in *previous (when not null) and returns true.
bool thread_pin(std::uint64_t mask, std::uint64_t *previous);
// Gives up the rest of the calling thread's time slice (a sleep of 0).
void yield();
// Sleeps for at least `ms` milliseconds.
void sleep_ms(unsigned ms);

// ---- clocks ------------------------------------------------------------------
// The high-resolution performance counter and its frequency in ticks per
// second. Each returns false when the system has none.
bool perf_counter(std::int64_t *ticks);
bool perf_frequency(std::int64_t *ticks_per_second);
// The current system time as a file time: 100-nanosecond intervals since
// 1 January 1601 (UTC).
std::uint64_t system_time_filetime();

}  // namespace orb::platform
