// The memory manager: per-thread caches of aligned blocks in front of the
// system allocator (see memory.h).
//
// Shared state and who may touch it:
// - g_lock, a spin lock, guards the one-time reading of the environment, the
//   creation of the thread-local-storage key, the record table and
//   ORB_FreeBuffers.
// - g_state and g_key are written under the lock and read without it on every
//   call, hence atomics (release on write, acquire on read).
// - A thread's record is reached only through that thread's TLS value (and
//   the copy it remembers, see memory.h) and is touched by no other thread,
//   except ORB_FreeBuffers, which must not run while other threads are inside
//   the library. It bumps g_generation (under the lock) so that no thread
//   trusts its remembered record afterwards.
// The common path (memory.h) touches only the thread's own record and reads
// g_generation; everything else is here.
#include "service/memory.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "orb.h"
#include "service/platform/platform.h"

namespace orb::mem {
using namespace detail;
namespace {

// ---- the system allocator ----------------------------------------------------

using MallocFn = void *(*)(std::size_t);
using CallocFn = void *(*)(std::size_t, std::size_t);
using ReallocFn = void *(*)(void *, std::size_t);
using FreeFn = void (*)(void *);

struct SystemAllocator {
  MallocFn malloc;
  CallocFn calloc;
  ReallocFn realloc;
  FreeFn free;
};

void *c_malloc(std::size_t n) {
  return std::malloc(n);
}
void *c_calloc(std::size_t n, std::size_t size) {
  return std::calloc(n, size);
}
void *c_realloc(void *p, std::size_t n) {
  return std::realloc(p, n);
}
void c_free(void *p) {
  std::free(p);
}

// Reads the function address held by data export `name` of `module`.
template <class Fn>
Fn exported_function(void *module, const char *name) {
  void *variable = platform::module_symbol(module, name);
  return variable == nullptr ? nullptr : *static_cast<Fn *>(variable);
}

// The allocator-override module replaces the C library's four functions when
// it exports all four, each non-null. Its handle is released again at once:
// the override lives only as long as something else keeps the module loaded.
SystemAllocator find_system_allocator() {
  SystemAllocator table{c_malloc, c_calloc, c_realloc, c_free};
  void *module = platform::module_load("orbmalloc");
  if (module == nullptr) return table;
  const SystemAllocator found{exported_function<MallocFn>(module, "i_malloc_dll"),
                              exported_function<CallocFn>(module, "i_calloc_dll"),
                              exported_function<ReallocFn>(module, "i_realloc_dll"),
                              exported_function<FreeFn>(module, "i_free_dll")};
  if (found.malloc != nullptr && found.calloc != nullptr && found.realloc != nullptr &&
      found.free != nullptr)
    table = found;
  platform::module_release(module);
  return table;
}

// Looked up once, on the manager's first use (a function-local static, so no
// dependence on the order in which the library's globals are constructed).
const SystemAllocator &sys() {
  static const SystemAllocator table = find_system_allocator();
  return table;
}

// ---- the spin lock -------------------------------------------------------------

std::atomic<std::uint32_t> g_lock{0};

void lock() {
  std::uint32_t expected = 0;
  while (!g_lock.compare_exchange_weak(expected, 1, std::memory_order_acquire,
                                       std::memory_order_relaxed))
    expected = 0;
}

void unlock() {
  g_lock.store(0, std::memory_order_release);
}

// ---- the state, the key and the records -------------------------------------------

// The manager state: unset until the environment has been read.
enum : std::uint32_t { kUnset = 0, kEnabled = 1, kDisabled = 2 };
std::atomic<std::uint32_t> g_state{kUnset};

// The TLS key plus one; 0 while there is none.
std::atomic<std::uintptr_t> g_key{0};

// Every record created since the table was last emptied (under the lock).
Record *g_records[kMaxRecords];
int g_record_count = 0;

bool env_disables(const char *name) {
  char value[16];
  return platform::env_get(name, value, sizeof value) > 0;
}

// The state, reading the environment on the first call. The system allocator
// is looked up before the lock is taken: loading a module while spinning
// others would make them wait on the system's loader.
[[gnu::noinline, gnu::cold]] std::uint32_t read_state() {
  sys();
  lock();
  std::uint32_t s = g_state.load(std::memory_order_relaxed);
  if (s == kUnset) {
    s = env_disables("ORB_DISABLE_FAST_MM") || env_disables("ORB_MM_DISABLE") ? kDisabled
                                                                              : kEnabled;
    g_state.store(s, std::memory_order_release);
  }
  unlock();
  return s;
}

inline std::uint32_t state() {
  const std::uint32_t s = g_state.load(std::memory_order_acquire);
  return s != kUnset ? s : read_state();
}

// The TLS key plus one, created on first use; 0 when the system has no key
// left.
[[gnu::noinline, gnu::cold]] std::uintptr_t create_key() {
  lock();
  std::uintptr_t k = g_key.load(std::memory_order_relaxed);
  platform::TlsKey created;
  if (k == 0 && platform::tls_create(&created)) {
    k = created.value + 1;
    g_key.store(k, std::memory_order_release);
  }
  unlock();
  return k;
}

inline Record *remembered_record() {
  const Remembered &m = t_remembered;
  return is_current(m) ? m.record : nullptr;
}

Record *slot_record(std::uintptr_t k) {
  Record *r = static_cast<Record *>(platform::tls_get(platform::TlsKey{k - 1}));
  if (r != nullptr) t_remembered = {r, g_generation.load(std::memory_order_relaxed)};
  return r;
}

// The calling thread's record, or null. Never creates the key.
Record *current_record() {
  if (Record *r = remembered_record()) return r;
  const std::uintptr_t k = g_key.load(std::memory_order_acquire);
  if (k == 0) return nullptr;
  return slot_record(k);
}

// A new, empty record for the calling thread, or null once the table has
// given out all its records (or the system allocator fails).
[[gnu::noinline, gnu::cold]] Record *create_record(platform::TlsKey k) {
  Record *r = nullptr;
  lock();
  if (g_record_count < kMaxRecords) {
    r = static_cast<Record *>(sys().malloc(sizeof(Record)));
    if (r != nullptr) {
      std::memset(r, 0, sizeof(Record));
      platform::tls_set(k, r);
      g_records[g_record_count++] = r;
    }
  }
  unlock();
  return r;
}

// A new block of `capacity` bytes for slot i; false when the system has none,
// and the slot is then left empty (capacity 0).
bool fill(Record *r, int i, std::uint64_t capacity) {
  // At most kMaxCachedSize plus 2^30: within any size_t.
  r->block[i] = sys().malloc(static_cast<std::size_t>(capacity));
  r->address[i] = nullptr;
  r->capacity[i] = r->block[i] != nullptr ? capacity : 0;
  return r->block[i] != nullptr;
}

// No free slot has the capacity needed: a new slot while there is room, else
// the first free larger block as it is, else the first free smaller slot with
// a new block, else (every slot in use) an untracked system block.
[[gnu::noinline]] void *refill(Record *r, std::uint32_t n, std::uint32_t align) {
  const std::uint64_t needed = std::uint64_t{n} + align;
  const int filled = static_cast<int>(r->filled);
  if (filled < kSlots) {
    if (!fill(r, filled, needed)) return nullptr;
    r->filled += 1;
    r->total += needed;
    return hand_out(r, filled, n, align);
  }
  int smaller = -1, larger = -1;
  for (int i = 0; i < filled; ++i) {
    if (r->in_use[i] != 0) continue;
    if (r->capacity[i] < needed) {
      if (smaller < 0) smaller = i;
    } else if (larger < 0) {
      larger = i;
    }
  }
  if (larger >= 0) return hand_out(r, larger, n, align);
  if (smaller >= 0) {
    // The slot keeps its place; a failed refill leaves it empty, the first
    // to be refilled next time.
    sys().free(r->block[smaller]);
    r->total -= r->capacity[smaller];
    if (!fill(r, smaller, needed)) return nullptr;
    r->total += needed;
    return hand_out(r, smaller, n, align);
  }
  return sys().malloc(n);
}

}  // namespace

namespace detail {

// The library's one definition of the remembered record.
__thread Remembered t_remembered = {nullptr, 0};
std::atomic<std::uint32_t> g_generation{1};

// Everything but the common path: size 0, first use, disabled manager, huge
// requests, no record, and no free slot of the exact capacity.
void *allocate_slow(std::uint32_t n, std::int32_t alignment) {
  if (n == 0) return nullptr;
  std::uintptr_t k = g_key.load(std::memory_order_acquire);
  if (k == 0) k = create_key();
  if (state() == kDisabled || n > kMaxCachedSize) return sys().malloc(n);

  const std::uint32_t align = effective_alignment(alignment);
  Record *r = remembered_record();
  if (r == nullptr && k != 0) r = slot_record(k);
  if (r == nullptr) {
    if (k == 0 || (r = create_record(platform::TlsKey{k - 1})) == nullptr) return sys().malloc(n);
  }
  const int i = exact_fit(r, std::uint64_t{n} + align);
  if (i >= 0) return hand_out(r, i, n, align);
  return refill(r, n, align);
}

void release_slow(void *p) {
  if (p == nullptr) return;
  if (state() == kDisabled) {
    sys().free(p);
    return;
  }
  if (Record *r = current_record()) {
    const int i = slot_of(r, p);
    if (i >= 0) {
      r->in_use[i] = 0;
      return;
    }
  }
  sys().free(p);
}

}  // namespace detail

namespace test_hooks {

bool tracked(const void *p) {
  const Record *r = current_record();
  if (r == nullptr || p == nullptr) return false;
  const int i = slot_of(r, p);
  return i >= 0 && r->in_use[i] != 0;
}

int slots_filled() {
  const Record *r = current_record();
  return r == nullptr ? 0 : static_cast<int>(r->filled);
}

bool disabled() {
  return state() == kDisabled;
}

}  // namespace test_hooks
}  // namespace orb::mem

// Every cached block of every thread back to the system allocator; the next
// allocation on any thread starts with a new key and a new record.
extern "C" ORB_API void ORB_FreeBuffers(void) {
  using namespace orb::mem;
  if (state() == kDisabled) return;
  lock();
  for (int i = 0; i < g_record_count; ++i) {
    Record *r = g_records[i];
    for (std::uint64_t j = 0; j < r->filled; ++j)
      if (r->block[j] != nullptr) sys().free(r->block[j]);
    sys().free(r);
    g_records[i] = nullptr;
  }
  g_record_count = 0;
  if (g_generation.fetch_add(1, std::memory_order_relaxed) + 1 == 0)
    g_generation.store(1, std::memory_order_relaxed);
  const std::uintptr_t k = g_key.load(std::memory_order_relaxed);
  if (k != 0) {
    orb::platform::tls_destroy(orb::platform::TlsKey{k - 1});
    g_key.store(0, std::memory_order_release);
  }
  unlock();
}
