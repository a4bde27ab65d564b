// The operating-system layer on Linux (glibc).
#include "service/platform/platform.h"

#include <dlfcn.h>
#include <pthread.h>
#include <sched.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace orb::platform {

// ---- environment -----------------------------------------------------------

int env_get(const char *name, char *buf, int size) {
  buf[0] = '\0';
  const char *value = std::getenv(name);
  if (value == nullptr) return -1;
  const std::size_t len = std::strlen(value);
  if (len < static_cast<std::size_t>(size)) std::memcpy(buf, value, len + 1);
  // A value longer than an int can hold cannot fit any buffer we are given.
  return len > 0x7fffffff ? 0x7fffffff : static_cast<int>(len);
}

// ---- modules ---------------------------------------------------------------

void *module_load(const char *base_name) {
  // Built on the stack: the memory manager looks for its allocator module
  // before it can hand out memory.
  char file[256];
  const int n = std::snprintf(file, sizeof file, "lib%s.so", base_name);
  if (n < 0 || n >= static_cast<int>(sizeof file)) return nullptr;
  return module_load_path(file);
}

void *module_load_path(const char *path) {
  // A name without a slash goes through the loader's search (LD_LIBRARY_PATH,
  // the cache, the default directories); one with a slash is taken as it is.
  // RTLD_LOCAL keeps the module's symbols out of the global namespace.
  return dlopen(path, RTLD_NOW | RTLD_LOCAL);
}

void *module_symbol(void *module, const char *symbol) {
  if (module == nullptr) return nullptr;
  return dlsym(module, symbol);
}

void module_release(void *module) {
  if (module != nullptr) dlclose(module);
}

int module_message(void *, std::uint32_t, std::uint32_t, char *buf, int size) {
  if (size > 0) buf[0] = '\0';
  return -1;
}

std::uint32_t thread_locale() {
  return 0;
}

// ---- thread-local storage ----------------------------------------------------

bool tls_create(TlsKey *key) {
  pthread_key_t k;
  if (pthread_key_create(&k, nullptr) != 0) return false;
  key->value = static_cast<std::uintptr_t>(k);
  return true;
}

void tls_destroy(TlsKey key) {
  pthread_key_delete(static_cast<pthread_key_t>(key.value));
}

void *tls_get(TlsKey key) {
  return pthread_getspecific(static_cast<pthread_key_t>(key.value));
}

void tls_set(TlsKey key, void *value) {
  pthread_setspecific(static_cast<pthread_key_t>(key.value), value);
}

// ---- affinity, scheduling --------------------------------------------------

namespace {

std::uint64_t low_bits(const cpu_set_t &set) {
  std::uint64_t mask = 0;
  for (int i = 0; i < 64 && i < CPU_SETSIZE; ++i)
    if (CPU_ISSET(i, &set)) mask |= std::uint64_t{1} << i;
  return mask;
}

}  // namespace

bool affinity_masks(std::uint64_t *process_mask, std::uint64_t *system_mask) {
  // Linux has no process-wide mask: each thread has its own. The process's
  // own id names the main thread, whose mask is what the process was started
  // with unless the program changed it, and which does not change when the
  // calling thread is pinned.
  cpu_set_t set;
  CPU_ZERO(&set);
  if (sched_getaffinity(getpid(), sizeof set, &set) != 0) return false;
  const long online = sysconf(_SC_NPROCESSORS_ONLN);
  if (online < 1) return false;
  *process_mask = low_bits(set);
  *system_mask = online >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << online) - 1;
  return true;
}

bool thread_pin(std::uint64_t mask, std::uint64_t *previous) {
  // Masks speak of the first 64 processors only, so a thread that was allowed
  // on processors beyond them loses those when its previous mask is restored.
  const pthread_t self = pthread_self();
  cpu_set_t old_set;
  CPU_ZERO(&old_set);
  if (pthread_getaffinity_np(self, sizeof old_set, &old_set) != 0) return false;
  cpu_set_t set;
  CPU_ZERO(&set);
  for (int i = 0; i < 64 && i < CPU_SETSIZE; ++i)
    if (mask >> i & 1) CPU_SET(i, &set);
  if (pthread_setaffinity_np(self, sizeof set, &set) != 0) return false;
  if (previous != nullptr) *previous = low_bits(old_set);
  return true;
}

void yield() {
  sched_yield();
}

void sleep_ms(unsigned ms) {
  timespec left;
  left.tv_sec = static_cast<time_t>(ms / 1000);
  left.tv_nsec = static_cast<long>(ms % 1000) * 1000000L;
  // A signal cuts nanosleep short; sleep on for what remains.
  while (nanosleep(&left, &left) != 0 && errno == EINTR) {
  }
}

// ---- clocks ------------------------------------------------------------------

bool perf_counter(std::int64_t *ticks) {
  timespec ts;
  if (clock_gettime(CLOCK_MONOTONIC, &ts) != 0) return false;
  *ticks = static_cast<std::int64_t>(ts.tv_sec) * 1000000000 + ts.tv_nsec;
  return true;
}

bool perf_frequency(std::int64_t *ticks_per_second) {
  *ticks_per_second = 1000000000;
  return true;
}

std::uint64_t system_time_filetime() {
  // Seconds from 1601-01-01 to the Unix epoch 1970-01-01.
  constexpr std::uint64_t kEpochShift = 11644473600u;
  timespec ts;
  if (clock_gettime(CLOCK_REALTIME, &ts) != 0) return 0;
  return (static_cast<std::uint64_t>(ts.tv_sec) + kEpochShift) * 10000000u +
         static_cast<std::uint64_t>(ts.tv_nsec) / 100u;
}

}  // namespace orb::platform
