// Every global operator new replaced by one that counts, so a benchmark can
// report the heap allocations of what it measures. Include it in exactly one
// file of a benchmark program.
#pragma once

#include <atomic>
#include <cstdlib>
#include <new>

namespace bench_alloc {

inline std::atomic<long long> g_allocations{0};

inline void* CountedAlloc(std::size_t size) {
  g_allocations.fetch_add(1, std::memory_order_relaxed);
  if (void* p = std::malloc(size ? size : 1)) return p;
  throw std::bad_alloc();
}

inline void* CountedAllocNoThrow(std::size_t size) noexcept {
  g_allocations.fetch_add(1, std::memory_order_relaxed);
  return std::malloc(size ? size : 1);
}

}  // namespace bench_alloc

void* operator new(std::size_t size) { return bench_alloc::CountedAlloc(size); }
void* operator new[](std::size_t size) { return bench_alloc::CountedAlloc(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return bench_alloc::CountedAllocNoThrow(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return bench_alloc::CountedAllocNoThrow(size);
}
void operator delete(void* p) noexcept { std::free(p); }
void operator delete[](void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
void operator delete[](void* p, std::size_t) noexcept { std::free(p); }
