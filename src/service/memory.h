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
void *allocate(std::int32_t size, std::int32_t alignment);

// Gives a block back: a cached block stays with the thread for its next
// request, anything else goes to the system allocator. Null is ignored.
void release(void *p);

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
