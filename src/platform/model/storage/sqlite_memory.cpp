#include "platform/model/storage/sqlite_memory.h"

#include <sqlite3.h>
#include <sys/mman.h>

#include <array>
#include <cstddef>
#include <cstring>

namespace tavimodel::sqlite {
namespace {

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TAVI_SANITIZED
#endif
#endif
#ifdef TAVI_SANITIZED
constexpr bool sanitized = true;
#else
constexpr bool sanitized = false;
#endif

constexpr std::size_t small = 1024;
constexpr std::size_t largest = std::size_t{64} << 10;  ///< in a pool; others are mapped alone
constexpr std::size_t chunkSize = std::size_t{128} << 10;

/// Sizes of blocks are multiples of it.
constexpr std::size_t stepOf(std::size_t size) {
  return size <= small ? 16 : 512;
}

/// The place of a rounded size among the sizes of a pool's blocks.
constexpr std::size_t placeOf(std::size_t size) {
  return size / stepOf(size) + (size <= small ? 0 : small / stepOf(small));
}

/// In front of each block. SQLite asks for the size, and wants blocks at multiples of 8.
using Header = std::size_t;

struct FreeBlock {
  FreeBlock* next;
};

/// Null where there is no memory. All pages are mapped at once: nearly all will be used, and a page
/// fault each would cost more than what is done with the memory.
char* mapped(std::size_t size) {
  void* memory = mmap(nullptr, size, PROT_READ | PROT_WRITE,
                      MAP_PRIVATE | MAP_ANONYMOUS | MAP_POPULATE, -1, 0);
  return memory == MAP_FAILED ? nullptr : static_cast<char*>(memory);
}

/// Blocks that are free, by size, and a chunk from which new ones are cut. Memory is not given
/// back: what was needed once is needed again.
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

// A thread's own, so that none waits for another; a block may come home to another thread's.
constinit thread_local Pool pool;

std::size_t roundedUp(int wanted) {
  const auto size = static_cast<std::size_t>(wanted);
  const std::size_t step = stepOf(size);
  return (size + step - 1) / step * step;
}

std::size_t sizeOf(const void* block) {
  Header header = 0;
  std::memcpy(&header, static_cast<const char*>(block) - sizeof(Header), sizeof header);
  return header;
}

void* allocate(int wanted) {
  const std::size_t size = roundedUp(wanted);
  if (size <= largest) {
    FreeBlock*& free = pool.freeOf(size);
    if (free != nullptr) {
      FreeBlock* block = free;
      free = block->next;
      return block;
    }
  }
  const std::size_t whole = sizeof(Header) + size;
  char* memory = size <= largest ? pool.cut(whole) : mapped(whole);
  if (memory == nullptr) return nullptr;
  std::memcpy(memory, &size, sizeof size);
  return memory + sizeof(Header);
}

void release(void* block) {
  if (block == nullptr) return;
  const std::size_t size = sizeOf(block);
  if (size > largest) {
    munmap(static_cast<char*>(block) - sizeof(Header), sizeof(Header) + size);
    return;
  }
  auto* freed = static_cast<FreeBlock*>(block);
  freed->next = pool.freeOf(size);
  pool.freeOf(size) = freed;
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
  if (sanitized) return;
  sqlite3_config(SQLITE_CONFIG_MALLOC, &methods);
  // SQLite's own two pools would do nothing but touch more memory: twenty pages of a file for each
  // cache, and 48 KB of small blocks for each connection.
  sqlite3_config(SQLITE_CONFIG_PAGECACHE, nullptr, 0, 0);
  sqlite3_config(SQLITE_CONFIG_LOOKASIDE, 0, 0);
}

}  // namespace tavimodel::sqlite
