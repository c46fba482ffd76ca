#include "tests/memory/AllocationLog.h"

#include <stdint.h>
#include <stdlib.h>
#include <string.h>

#include <new>

namespace {

// Constant-initialised: new is called by static objects of other files before this file has its
// turn. Only the first arrays matter, those of the static objects.
constexpr size_t LoggedArrays = 4096;
constexpr size_t WatchedBytes = 4096;

struct LoggedArray
{
  const void* memory;
  size_t position;
};

LoggedArray arrays[LoggedArrays];
size_t arrayCount;
size_t allocationCount;
bool failNext;

const void* watchedMemory;
size_t watchedBytes;
bool watchedFreed;
unsigned char freedBytes[WatchedBytes];

void* Allocate(size_t size)
{
  // Sanitizers report a size that no memory has before malloc can refuse it.
  const bool refused = failNext || size > PTRDIFF_MAX;
  void* memory = refused ? nullptr : malloc(size > 0 ? size : 1);
  failNext = false;
  if (memory == nullptr)
    throw std::bad_alloc();
  ++allocationCount;
  return memory;
}

void FreeArray(void* memory)
{
  if (memory != nullptr && memory == watchedMemory) {
    memcpy(freedBytes, memory, watchedBytes);
    watchedMemory = nullptr;
    watchedFreed = true;
  }
  free(memory);
}

}  // namespace

void* operator new(size_t size)
{
  return Allocate(size);
}

void* operator new[](size_t size)
{
  void* memory = Allocate(size);
  if (arrayCount < LoggedArrays)
    arrays[arrayCount++] = {memory, allocationCount};
  return memory;
}

void operator delete(void* memory) noexcept
{
  free(memory);
}

void operator delete(void* memory, size_t) noexcept
{
  free(memory);
}

void operator delete[](void* memory) noexcept
{
  FreeArray(memory);
}

void operator delete[](void* memory, size_t) noexcept
{
  FreeArray(memory);
}

size_t AllocationCount()
{
  return allocationCount;
}

int AllocationPosition(const void* memory)
{
  for (size_t i = 0; i < arrayCount; ++i) {
    if (arrays[i].memory == memory)
      return static_cast<int>(arrays[i].position);
  }
  return -1;
}

void WatchArray(const void* memory, size_t bytes)
{
  if (bytes > WatchedBytes)
    abort();
  watchedMemory = memory;
  watchedBytes = bytes;
  watchedFreed = false;
  memset(freedBytes, 0xbd, sizeof(freedBytes));
}

bool WatchedArrayWasFreed()
{
  return watchedFreed;
}

unsigned char FreedByte(size_t index)
{
  return freedBytes[index];
}

void FailNextAllocation()
{
  failNext = true;
}
