#ifndef TESTS_MEMORY_ALLOCATIONLOG_H
#define TESTS_MEMORY_ALLOCATIONLOG_H

// Replaces new and delete of the test program, so that a test sees what is allocated, from before
// the static objects on, and what memory holds at the moment in which it is freed.

#include <stddef.h>

// How many allocations were made so far, by new and new[] together.
size_t AllocationCount();

// How many of them were made by new[], and how many are of exactly that many bytes, up to 4095.
size_t ArrayCount();
size_t AllocationCountOf(size_t bytes);

// Position of the array at memory in the order of all allocations, -1 if new[] never gave it.
int AllocationPosition(const void* memory);

// Copies the bytes of the array at memory when delete[] gets it. One array at a time.
void WatchArray(const void* memory, size_t bytes);

// True once the watched array was freed.
bool WatchedArrayWasFreed();

// Byte of the watched array as it was when it was freed.
unsigned char FreedByte(size_t index);

// Makes the next new or new[] throw std::bad_alloc.
void FailNextAllocation();

// Makes the n-th new[] from now on do so (1 is the next one), or the n-th new or new[] of exactly
// that many bytes.
void FailArrayAllocation(int n);
void FailAllocationOf(size_t bytes, int n);

// True if the failure that was ordered last has come. If not, it is called off.
bool TakeFailure();

// What the memory of new arrays holds from now on; else it is what malloc left there.
void FillArraysWith(unsigned char byte);
void LeaveArraysUnfilled();

// From now on the arrays of exactly that many bytes are followed, and ArraysLeft tells how many of
// them are not freed yet.
void FollowArraysOf(size_t bytes);
size_t FollowedArrays();
size_t ArraysLeft();

#endif
