#include "counting_memory.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <malloc.h>
#include <new>

namespace {

std::atomic<std::size_t> live{0};
std::atomic<std::size_t> peak{0};

void* counted(void* place) {
  if (place == nullptr) {
    throw std::bad_alloc{};
  }
  // What the allocator set aside, not what was asked for.
  const std::size_t now = live.fetch_add(malloc_usable_size(place)) + malloc_usable_size(place);
  if (now > peak.load()) {
    peak = now;
  }
  return place;
}

void release(void* place) {
  if (place != nullptr) {
    live.fetch_sub(malloc_usable_size(place));
    std::free(place);
  }
}

}  // namespace

void* operator new(std::size_t size) { return counted(std::malloc(size)); }
void* operator new[](std::size_t size) { return counted(std::malloc(size)); }
void* operator new(std::size_t size, std::align_val_t alignment) {
  const auto unit = static_cast<std::size_t>(alignment);
  return counted(std::aligned_alloc(unit, (size + unit - 1) / unit * unit));
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
  return operator new(size, alignment);
}
void operator delete(void* place) noexcept { release(place); }
void operator delete[](void* place) noexcept { release(place); }
void operator delete(void* place, std::size_t) noexcept { release(place); }
void operator delete[](void* place, std::size_t) noexcept { release(place); }
void operator delete(void* place, std::align_val_t) noexcept { release(place); }
void operator delete[](void* place, std::align_val_t) noexcept { release(place); }
void operator delete(void* place, std::size_t, std::align_val_t) noexcept { release(place); }
void operator delete[](void* place, std::size_t, std::align_val_t) noexcept { release(place); }

namespace azcoll::bench {

std::size_t liveBytes() { return live; }
std::size_t peakBytes() { return peak; }
void startPeak() { peak = live.load(); }

}  // namespace azcoll::bench
