#ifndef KORMATH_PLATFORM_MEMORY_ALLOCATOR_H
#define KORMATH_PLATFORM_MEMORY_ALLOCATOR_H

// The host's pool allocator: a size-class pool with a locking policy. Heap
// transforms are allocated from the process-wide instance
// g_mmtransforms_kor_memory_allocator.

#include <kormath/export.h>

#include <cstddef>
#include <memory_resource>
#include <mutex>
#include <new>

// Under AddressSanitizer the pool passes every block straight to the global
// operator new and delete, so that a leaked or twice released transform is
// reported instead of hidden in the pool.
#if defined(__SANITIZE_ADDRESS__)
#define KORMATH_POOL_PASSTHROUGH 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KORMATH_POOL_PASSTHROUGH 1
#endif
#endif
#ifndef KORMATH_POOL_PASSTHROUGH
#define KORMATH_POOL_PASSTHROUGH 0
#endif

namespace StdBase {

// Locking policy: a mutex of its own, so that the allocator can be called
// from any thread.
class KORMATH_API LocalLocking {
 public:
  void Lock() { mutex_.lock(); }
  void Unlock() { mutex_.unlock(); }

 private:
  std::mutex mutex_;
};

// Locking policy for an allocator that one thread owns.
class NoLocking {
 public:
  void Lock() {}
  void Unlock() {}
};

}  // namespace StdBase

// Size-class allocator over a pool resource. Each block carries a small
// header with its size, so ReleaseObject needs nothing but the pointer.
template <class Locking>
class SizeMappedAllocator {
 public:
  SizeMappedAllocator() = default;
  SizeMappedAllocator(const SizeMappedAllocator &) = delete;
  SizeMappedAllocator &operator=(const SizeMappedAllocator &) = delete;

  // Storage for an object of `size` bytes; throws std::bad_alloc when the
  // pool cannot grow.
  void *NewObjectThrow(std::size_t size) {
    if (KORMATH_POOL_PASSTHROUGH) return ::operator new(size);
    Guard guard(locking_);
    void *block = pool_.allocate(size + kHeader, alignof(std::max_align_t));
    *static_cast<std::size_t *>(block) = size;
    return static_cast<char *>(block) + kHeader;
  }

  // Takes back storage that NewObjectThrow gave. A null pointer is ignored.
  void ReleaseObject(void *pointer) {
    if (pointer == nullptr) return;
    if (KORMATH_POOL_PASSTHROUGH) {
      ::operator delete(pointer);
      return;
    }
    char *block = static_cast<char *>(pointer) - kHeader;
    const std::size_t size = *reinterpret_cast<std::size_t *>(block);
    Guard guard(locking_);
    pool_.deallocate(block, size + kHeader, alignof(std::max_align_t));
  }

 private:
  static constexpr std::size_t kHeader = alignof(std::max_align_t);

  class Guard {
   public:
    explicit Guard(Locking &l) : l_(l) { l_.Lock(); }
    ~Guard() { l_.Unlock(); }
    Guard(const Guard &) = delete;
    Guard &operator=(const Guard &) = delete;

   private:
    Locking &l_;
  };

  Locking locking_;
  std::pmr::unsynchronized_pool_resource pool_;
};

extern KORMATH_API SizeMappedAllocator<StdBase::LocalLocking> g_mmtransforms_kor_memory_allocator;

#endif  // KORMATH_PLATFORM_MEMORY_ALLOCATOR_H
