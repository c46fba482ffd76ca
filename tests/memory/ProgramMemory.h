#ifndef TESTS_MEMORY_PROGRAMMEMORY_H
#define TESTS_MEMORY_PROGRAMMEMORY_H

// The memory of the code under test, and of nothing else: its objects are linked with calls of new
// and delete that come here, while those of the tests, of the doubles and of a driver stay the
// runtime's. Its malloc is failed by FailCall("malloc", n).

#include <stddef.h>

// How many allocations the code under test has made so far, by new and new[] together.
size_t ProgramAllocations();

// How many of them it has not freed yet.
size_t ProgramBlocks();

// Makes the n-th allocation from now on (1 is the next one) throw std::bad_alloc.
void FailProgramAllocation(size_t n);

// True if that failure has come. If not, it is called off.
bool TakeProgramFailure();

#endif
