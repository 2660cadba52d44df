#include "platform/model/sqlite_memory.h"

#include <sqlite3.h>

#include <array>
#include <cstddef>
#include <cstdlib>
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

constexpr std::size_t step = 16;  ///< sizes of blocks are multiples of it
constexpr std::size_t largest = 1024;
constexpr std::size_t chunkSize = std::size_t{64} << 10;

/// In front of each block. SQLite asks for the size, and wants blocks at multiples of 8.
using Header = std::size_t;

struct FreeBlock {
  FreeBlock* next;
};

/// Blocks that are free, by size, and a chunk from which new ones are cut. Memory is not given
/// back: what was needed once is needed again.
struct Pool {
  std::array<FreeBlock*, largest / step + 1> free{};
  char* chunk = nullptr;
  std::size_t left = 0;

  FreeBlock*& freeOf(std::size_t size) { return free[size / step]; }

  char* cut(std::size_t size) {
    if (left < size) {
      char* fresh = static_cast<char*>(std::malloc(chunkSize));
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

std::size_t roundedUp(int size) {
  return (static_cast<std::size_t>(size) + step - 1) / step * step;
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
  char* memory = size <= largest ? pool.cut(whole) : static_cast<char*>(std::malloc(whole));
  if (memory == nullptr) return nullptr;
  std::memcpy(memory, &size, sizeof size);
  return memory + sizeof(Header);
}

void release(void* block) {
  if (block == nullptr) return;
  const std::size_t size = sizeOf(block);
  if (size > largest) {
    std::free(static_cast<char*>(block) - sizeof(Header));
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
  if (!sanitized) sqlite3_config(SQLITE_CONFIG_MALLOC, &methods);
}

}  // namespace tavimodel::sqlite
