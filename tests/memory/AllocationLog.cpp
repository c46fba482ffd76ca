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
size_t loggedArrays;
size_t allocationCount;
size_t arrayCount;
constexpr size_t CountedBytes = 4096;
size_t allocationsOfSize[CountedBytes];

// The failure that is to come: of the allocations that it is about, the one behind so many others.
enum class Failing
{
  None,
  All,
  Arrays,
  OneSize
};
Failing failing;
size_t failingBytes;
int allocationsBefore;
bool failed;

bool fillsArrays;
unsigned char fillByte;

size_t followedBytes;
size_t followedArrays;
constexpr size_t FollowedArraysAtATime = 256;
const void* liveArrays[FollowedArraysAtATime];

const void* watchedMemory;
size_t watchedBytes;
bool watchedFreed;
unsigned char freedBytes[WatchedBytes];

void OrderFailure(Failing kind, size_t bytes, int n)
{
  failing = kind;
  failingBytes = bytes;
  allocationsBefore = n - 1;
  failed = false;
}

bool IsToFail(size_t size, bool isArray)
{
  const bool counts = failing == Failing::All || (failing == Failing::Arrays && isArray) ||
                      (failing == Failing::OneSize && size == failingBytes);
  if (!counts || allocationsBefore-- > 0)
    return false;
  failing = Failing::None;
  failed = true;
  return true;
}

void* Allocate(size_t size, bool isArray)
{
  // Sanitizers report a size that no memory has before malloc can refuse it.
  const bool refused = IsToFail(size, isArray) || size > PTRDIFF_MAX;
  void* memory = refused ? nullptr : malloc(size > 0 ? size : 1);
  if (memory == nullptr)
    throw std::bad_alloc();
  ++allocationCount;
  if (size < CountedBytes)
    ++allocationsOfSize[size];
  return memory;
}

// Puts memory in the place of the first one that is other.
void ReplaceLiveArray(const void* other, const void* memory)
{
  for (const void*& live : liveArrays) {
    if (live == other) {
      live = memory;
      return;
    }
  }
  if (other == nullptr)
    abort();
}

void FreeArray(void* memory)
{
  if (memory != nullptr && followedBytes > 0)
    ReplaceLiveArray(memory, nullptr);
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
  return Allocate(size, false);
}

void* operator new[](size_t size)
{
  void* memory = Allocate(size, true);
  if (fillsArrays)
    memset(memory, fillByte, size);
  if (followedBytes == size) {
    ReplaceLiveArray(nullptr, memory);
    ++followedArrays;
  }
  ++arrayCount;
  if (loggedArrays < LoggedArrays)
    arrays[loggedArrays++] = {memory, allocationCount};
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

size_t ArrayCount()
{
  return arrayCount;
}

size_t AllocationCountOf(size_t bytes)
{
  if (bytes >= CountedBytes)
    abort();
  return allocationsOfSize[bytes];
}

int AllocationPosition(const void* memory)
{
  for (size_t i = 0; i < loggedArrays; ++i) {
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
  OrderFailure(Failing::All, 0, 1);
}

void FailArrayAllocation(int n)
{
  OrderFailure(Failing::Arrays, 0, n);
}

void FailAllocationOf(size_t bytes, int n)
{
  OrderFailure(Failing::OneSize, bytes, n);
}

bool TakeFailure()
{
  failing = Failing::None;
  return failed;
}

void FillArraysWith(unsigned char byte)
{
  fillsArrays = true;
  fillByte = byte;
}

void LeaveArraysUnfilled()
{
  fillsArrays = false;
}

void FollowArraysOf(size_t bytes)
{
  followedBytes = bytes;
  followedArrays = 0;
  for (const void*& live : liveArrays)
    live = nullptr;
}

size_t FollowedArrays()
{
  return followedArrays;
}

size_t ArraysLeft()
{
  size_t left = 0;
  for (const void* live : liveArrays)
    left += live != nullptr ? 1 : 0;
  return left;
}
