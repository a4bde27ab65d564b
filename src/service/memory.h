// The memory manager: every work buffer of the library comes from here. Each
// thread keeps a small cache of aligned blocks so that a routine called in a
// loop does not go to the system allocator each time; very large requests go
// straight to the system allocator, and the environment variables
// ORB_DISABLE_FAST_MM and ORB_MM_DISABLE switch the cache off.
//
// The system allocator is the C library's, or the four functions of an
// allocator-override module "orbmalloc" (orbmalloc.dll, liborbmalloc.so) when
// that module is loaded in the process at the manager's first use.
//
// A block must be released on the thread that allocated it. Released on
// another thread, it is not found in that thread's cache and goes to the
// system allocator's free (harmful when the address handed out is not the
// start of the system block), while its slot in the owner's cache stays in
// use. Blocks must not be held across ORB_FreeBuffers.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

namespace orb::mem {

// Blocks cached per thread.
constexpr int kSlots = 5;
// Requests above this many bytes (40 MiB) are never cached.
constexpr std::uint32_t kMaxCachedSize = 0x2800000;
// Threads that get a cache over the life of the record table; later threads
// get plain system blocks.
constexpr int kMaxRecords = 8193;

// The alignment a request gets: a power of two of at least 4 as asked, 32 for
// any other value of at least 4, none (0) below 4.
constexpr std::uint32_t effective_alignment(std::int32_t alignment) {
  if (alignment < 4) return 0;
  const auto a = static_cast<std::uint32_t>(alignment);
  return (a & (a - 1)) == 0 ? a : 32u;
}

// A block of `size` bytes whose address is a multiple of the effective
// alignment, or null for size 0 or when the system allocator fails. The size is
// taken as unsigned: a negative size is a huge request. Requests above
// kMaxCachedSize, requests made while the manager is disabled, and requests
// made while all of the thread's slots are in use get a plain system block of
// `size` bytes, without the alignment.
inline void *allocate(std::int32_t size, std::int32_t alignment);

// Gives a block back: a cached block stays with the thread for its next
// request, anything else goes to the system allocator. Null is ignored.
inline void release(void *p);

// ---- the common path, inline in every caller -----------------------------------
//
// A routine called in a loop asks again for a block of a size it used before.
// That request, and the release of a block from the thread's own cache, are
// served here without a lock or a call; everything else goes to memory.cpp.
namespace detail {

// One thread's cache of five slots, stored field by field so that the scans
// compare a few adjacent words. Slot i is filled when i < filled; an unfilled
// slot has capacity 0 and no address, so it never matches a request (whose
// capacity is at least 1) nor a released block.
struct Record {
  std::uint64_t capacity[kSlots];  // bytes of the block: requested size plus alignment
  void *address[kSlots];           // the aligned address handed out
  std::uint32_t in_use[kSlots];    // 1 while the slot is handed out
  std::uint32_t size[kSlots];      // bytes requested
  void *block[kSlots];             // as the system allocator returned it
  std::uint64_t filled;            // slots filled, in order from the first
  std::uint64_t total;             // sum of the filled slots' capacities
};

// A thread finds its record through the manager's TLS key; it also remembers
// it here, with the generation of the record table it belongs to. Freeing
// all buffers starts a new generation, after which the key is asked again.
// Only a record is ever remembered, a record exists only while the manager
// is enabled, and 0 is never a current generation: a remembered generation
// that is current says that the record, the key and the manager are there.
struct Remembered {
  Record *record;
  std::uint32_t generation;
};
// A plain thread-local (no constructor to run, so no wrapper call on access).
// The library is loaded at run time by its hosts, so it keeps the default
// model: an initial-exec block would have to fit the loader's small reserve.
#if defined(_WIN32)
#define ORB_MEM_INTERNAL
#else
#define ORB_MEM_INTERNAL [[gnu::visibility("hidden")]]
#endif
ORB_MEM_INTERNAL extern __thread Remembered t_remembered;
ORB_MEM_INTERNAL extern std::atomic<std::uint32_t> g_generation;
#undef ORB_MEM_INTERNAL

void *allocate_slow(std::uint32_t n, std::int32_t alignment);
void release_slow(void *p);

inline bool is_current(const Remembered &m) {
  return m.generation == g_generation.load(std::memory_order_relaxed);
}

// The scans test one slot after the other with early exits rather than
// combining all five comparisons: a repeated request takes the same branches
// each time, and predicted branches do not wait for the flags and addresses
// that the previous call has just stored.

// The first free slot of exactly `capacity` bytes, or -1.
inline int exact_fit(const Record *r, std::uint64_t capacity) {
  for (int i = 0; i < kSlots; ++i)
    if (r->capacity[i] == capacity && r->in_use[i] == 0) return i;
  return -1;
}

// The first slot that handed out `p`, or -1.
inline int slot_of(const Record *r, const void *p) {
  for (int i = 0; i < kSlots; ++i)
    if (r->address[i] == p) return i;
  return -1;
}

// Slot i of `r` taken for `size` bytes at effective alignment `align`: the
// block's address when it is a multiple of the alignment, else rounded up to
// the next multiple (no alignment counts as 1 here).
inline void *hand_out(Record *r, int i, std::uint32_t size, std::uint32_t align) {
  r->size[i] = size;
  r->in_use[i] = 1;
  const std::uintptr_t mask = std::uintptr_t{align} - (align != 0);  // a power of two, less one
  void *a =
      reinterpret_cast<void *>((reinterpret_cast<std::uintptr_t>(r->block[i]) + mask) & ~mask);
  r->address[i] = a;
  return a;
}

}  // namespace detail

inline void *allocate(std::int32_t size, std::int32_t alignment) {
  using namespace detail;
  const auto n = static_cast<std::uint32_t>(size);
  const Remembered &m = t_remembered;
  if (is_current(m) && n - 1 < kMaxCachedSize) {  // 1 <= n <= kMaxCachedSize
    const std::uint32_t align = effective_alignment(alignment);
    const int i = exact_fit(m.record, std::uint64_t{n} + align);
    if (i >= 0) return hand_out(m.record, i, n, align);
  }
  return allocate_slow(n, alignment);
}

// A null address needs no test of its own: it can only match a slot that is
// not filled, or emptied by a failed refill, and such a slot is not in use.
inline void release(void *p) {
  using namespace detail;
  const Remembered &m = t_remembered;
  if (is_current(m)) {
    const int i = slot_of(m.record, p);
    if (i >= 0) {
      m.record->in_use[i] = 0;
      return;
    }
  }
  release_slow(p);
}

// A work buffer of `count` elements of T, released when it goes out of scope.
// Unlike a bare allocate(), the address is always a multiple of the effective
// alignment, also when the manager hands out a plain system block (the
// request is then repeated with room to align it here).
template <class T>
class Buffer {
  static_assert(std::is_trivially_destructible_v<T>, "work buffers hold plain data");

 public:
  Buffer() = default;
  Buffer(std::int64_t count, std::int32_t alignment) {
    if (count <= 0) return;
    const std::uint64_t align = effective_alignment(alignment);
    if (static_cast<std::uint64_t>(count) > (0xffffffffu - align) / sizeof(T)) return;
    const std::uint64_t bytes = static_cast<std::uint64_t>(count) * sizeof(T);
    raw_ = allocate(as_size(bytes), alignment);
    if (raw_ != nullptr && align != 0 &&
        (reinterpret_cast<std::uintptr_t>(raw_) & (align - 1)) != 0) {
      release(raw_);
      raw_ = allocate(as_size(bytes + align), alignment);
    }
    if (raw_ == nullptr) return;
    std::uintptr_t p = reinterpret_cast<std::uintptr_t>(raw_);
    if (align != 0) p = (p + align - 1) & ~static_cast<std::uintptr_t>(align - 1);
    ptr_ = reinterpret_cast<T *>(p);
    count_ = count;
  }
  Buffer(const Buffer &) = delete;
  Buffer &operator=(const Buffer &) = delete;
  Buffer(Buffer &&other) noexcept
      : raw_(std::exchange(other.raw_, nullptr)),
        ptr_(std::exchange(other.ptr_, nullptr)),
        count_(std::exchange(other.count_, 0)) {}
  Buffer &operator=(Buffer &&other) noexcept {
    if (this != &other) {
      reset();
      raw_ = std::exchange(other.raw_, nullptr);
      ptr_ = std::exchange(other.ptr_, nullptr);
      count_ = std::exchange(other.count_, 0);
    }
    return *this;
  }
  ~Buffer() { reset(); }

  void reset() {
    release(raw_);
    raw_ = nullptr;
    ptr_ = nullptr;
    count_ = 0;
  }
  T *get() const { return ptr_; }
  std::int64_t size() const { return count_; }
  T &operator[](std::int64_t i) const { return ptr_[i]; }
  explicit operator bool() const { return ptr_ != nullptr; }

 private:
  // Byte counts travel as 32-bit values that the manager reads as unsigned.
  static std::int32_t as_size(std::uint64_t bytes) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(bytes));
  }

  void *raw_ = nullptr;  // what allocate() returned, for release()
  T *ptr_ = nullptr;
  std::int64_t count_ = 0;
};

// ---- for tests only ----------------------------------------------------------
namespace test_hooks {
// True when `p` is the address of a block in use in the calling thread's cache.
bool tracked(const void *p);
// The number of filled slots of the calling thread's cache (0 without one).
int slots_filled();
// True when the environment switched the manager off (reads it if need be).
bool disabled();
}  // namespace test_hooks

}  // namespace orb::mem
