#include "platform/model/storage/sqlite_memory.h"

#include <sanitizer/asan_interface.h>
#include <sanitizer/lsan_interface.h>
#include <sqlite3.h>
#include <sys/mman.h>

#include <array>
#include <cstddef>
#include <cstring>

namespace tavimodel::sqlite {
namespace {

#ifdef TAVI_SANITIZED
constexpr bool sanitized = true;
#else
constexpr bool sanitized = false;
#endif

constexpr std::size_t small = 1024;
constexpr std::size_t largest = std::size_t{64} << 10;  ///< in a pool; others are mapped alone
constexpr std::size_t chunkSize = std::size_t{128} << 10;
constexpr std::size_t huge = std::size_t{4} << 20;  ///< and more gets the system's huge pages

/// The granularity of block sizes, in bytes.
constexpr std::size_t stepOf(std::size_t size) {
  return size <= small ? 16 : 512;
}

/// The index of a rounded size in Pool::free.
constexpr std::size_t placeOf(std::size_t size) {
  return size / stepOf(size) + (size <= small ? 0 : small / stepOf(small));
}

/// The size of a block in bytes, stored in front of it, because SQLite asks for it. SQLite requires
/// an alignment of 8.
using Header = std::size_t;

struct FreeBlock {
  FreeBlock* next;
};

/// Maps fresh memory; null if that fails. All pages are populated at once, since nearly all will be
/// used and a page fault for each costs more than using it; a large block, which holds a large
/// text, in huge pages if the system has them. Under the address sanitizer, only bytes of allocated
/// blocks may be accessed, and what they point to is not a leak.
char* mapped(std::size_t size) {
  const bool isHuge = size >= huge;
  void* memory = mmap(nullptr, size, PROT_READ | PROT_WRITE,
                      MAP_PRIVATE | MAP_ANONYMOUS | (isHuge ? 0 : MAP_POPULATE), -1, 0);
  if (memory == MAP_FAILED) return nullptr;
  if (isHuge) {
    madvise(memory, size, MADV_HUGEPAGE);
    madvise(memory, size, MADV_POPULATE_WRITE);
  }
  ASAN_POISON_MEMORY_REGION(memory, size);
  if constexpr (sanitized) __lsan_register_root_region(memory, size);
  return static_cast<char*>(memory);
}

void unmap(char* memory, std::size_t size) {
  if constexpr (sanitized) __lsan_unregister_root_region(memory, size);
  ASAN_UNPOISON_MEMORY_REGION(memory, size);
  munmap(memory, size);
}

/// Free blocks by size, and a chunk from which new ones are cut. Memory is not returned to the
/// system, since it will be needed again.
struct Pool {
  std::array<FreeBlock*, placeOf(largest) + 1> free{};
  char* chunk = nullptr;
  std::size_t left = 0;

  FreeBlock*& freeOf(std::size_t size) { return free[placeOf(size)]; }

  char* cut(std::size_t size) {
    if (left < size) {
      char* fresh = mapped(chunkSize);
      if (fresh == nullptr) return nullptr;
      chunk = fresh;
      left = chunkSize;
    }
    char* piece = chunk;
    chunk += size;
    left -= size;
    return piece;
  }
};

// One pool per thread, without locks. A block may be released to the pool of another thread.
constinit thread_local Pool pool;

std::size_t roundedUp(int wanted) {
  const auto size = static_cast<std::size_t>(wanted);
  const std::size_t step = stepOf(size);
  return (size + step - 1) / step * step;
}

[[gnu::no_sanitize_address]] std::size_t sizeOf(const void* block) {
  return *(static_cast<const Header*>(block) - 1);
}

/// Writes a header for a block of `size` bytes, and returns the block after it.
[[gnu::no_sanitize_address]] void* blockAt(char* memory, std::size_t size) {
  *reinterpret_cast<Header*>(memory) = size;
  return memory + sizeof(Header);
}

void* takeFree(std::size_t size) {
  FreeBlock*& free = pool.freeOf(size);
  FreeBlock* block = free;
  if (block == nullptr) return nullptr;
  ASAN_UNPOISON_MEMORY_REGION(block, size);
  free = block->next;
  return block;
}

void* allocate(int wanted) {
  const std::size_t size = roundedUp(wanted);
  if (size <= largest) {
    if (void* block = takeFree(size)) return block;
  }
  const std::size_t whole = sizeof(Header) + size;
  char* memory = size <= largest ? pool.cut(whole) : mapped(whole);
  if (memory == nullptr) return nullptr;
  void* block = blockAt(memory, size);
  ASAN_UNPOISON_MEMORY_REGION(block, size);
  return block;
}

void release(void* block) {
  if (block == nullptr) return;
  const std::size_t size = sizeOf(block);
  if (size > largest) {
    unmap(static_cast<char*>(block) - sizeof(Header), sizeof(Header) + size);
    return;
  }
  auto* freed = static_cast<FreeBlock*>(block);
  freed->next = pool.freeOf(size);
  pool.freeOf(size) = freed;
  ASAN_POISON_MEMORY_REGION(block, size);
}

void* reallocate(void* block, int wanted) {
  const std::size_t size = sizeOf(block);
  if (roundedUp(wanted) <= size) return block;
  void* larger = allocate(wanted);
  if (larger == nullptr) return nullptr;
  std::memcpy(larger, block, size);
  release(block);
  return larger;
}

int blockSize(void* block) {
  return static_cast<int>(sizeOf(block));
}

int rounded(int size) {
  return static_cast<int>(roundedUp(size));
}

int start(void*) {
  return SQLITE_OK;
}

void stop(void*) {}

}  // namespace

void useMemoryPools() {
  static constexpr sqlite3_mem_methods methods{allocate, release, reallocate, blockSize,
                                               rounded,  start,   stop,       nullptr};
  sqlite3_config(SQLITE_CONFIG_MALLOC, &methods);
  // SQLite's own two pools would only touch more memory: twenty database pages for each cache, and
  // 48 KB of small blocks for each connection.
  sqlite3_config(SQLITE_CONFIG_PAGECACHE, nullptr, 0, 0);
  sqlite3_config(SQLITE_CONFIG_LOOKASIDE, 0, 0);
}

}  // namespace tavimodel::sqlite
