#include "memory/failingnew.h"
#include "support/test.h"

namespace {

constexpr long kNever = std::numeric_limits<long>::max();

long g_skipped = kNever;
long g_count = 0;
long g_living = 0;
bool g_forever = false;

bool mayAllocate() {
  const long at = g_count++;
  return at < g_skipped || (at > g_skipped && !g_forever);
}

void* counted(void* memory) {
  if (memory != nullptr) ++g_living;
  return memory;
}

void* allocate(std::size_t size) {
  return mayAllocate() ? counted(std::malloc(size != 0 ? size : 1)) : nullptr;
}

void* allocate(std::size_t size, std::align_val_t alignment) {
  const auto step = static_cast<std::size_t>(alignment);
  return mayAllocate() ? counted(std::aligned_alloc(step, (size + step - 1) / step * step))
                       : nullptr;
}

void* orThrow(void* memory) {
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

void give(void* memory) {
  if (memory != nullptr) --g_living;
  std::free(memory);
}

}  // namespace

namespace vek0::test {

void FailingNew::arm(long skipped, bool forever) {
  g_count = 0;
  g_forever = forever;
  g_skipped = skipped;
}

void FailingNew::disarm() { g_skipped = kNever; }

long FailingNew::count() { return g_count; }
long FailingNew::living() { return g_living; }

}  // namespace vek0::test

void* operator new(std::size_t size) { return orThrow(allocate(size)); }
void* operator new[](std::size_t size) { return orThrow(allocate(size)); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void* operator new(std::size_t size, std::align_val_t to) { return orThrow(allocate(size, to)); }
void* operator new[](std::size_t size, std::align_val_t to) { return orThrow(allocate(size, to)); }
void* operator new(std::size_t size, std::align_val_t to, const std::nothrow_t&) noexcept {
  return allocate(size, to);
}
void operator delete(void* memory) noexcept { give(memory); }
void operator delete[](void* memory) noexcept { give(memory); }
void operator delete(void* memory, std::size_t) noexcept { give(memory); }
void operator delete[](void* memory, std::size_t) noexcept { give(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { give(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { give(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { give(memory); }
void operator delete[](void* memory, std::align_val_t) noexcept { give(memory); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { give(memory); }
