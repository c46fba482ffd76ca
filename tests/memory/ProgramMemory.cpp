#include "tests/memory/ProgramMemory.h"

#include <new>
#include <unordered_set>

namespace {

size_t allocations;
size_t allocationsBefore;
bool isOrdered;
bool failed;

// Never freed: static objects of the code under test allocate before this one is made, and free
// when the tests are over.
std::unordered_set<const void*>& Blocks()
{
  static auto& blocks = *new std::unordered_set<const void*>;
  return blocks;
}

void CountAllocation()
{
  ++allocations;
  if (!isOrdered || allocationsBefore-- > 0)
    return;
  isOrdered = false;
  failed = true;
  throw std::bad_alloc();
}

void* Keep(void* memory)
{
  Blocks().insert(memory);
  return memory;
}

}  // namespace

// The names that the linker gives to the operators of the code under test (--wrap).
extern "C" {

void* __wrap__Znwm(size_t size)
{
  CountAllocation();
  return Keep(::operator new(size));
}

void* __wrap__Znam(size_t size)
{
  CountAllocation();
  return Keep(::operator new[](size));
}

void __wrap__ZdlPv(void* memory)
{
  Blocks().erase(memory);
  ::operator delete(memory);
}

void __wrap__ZdlPvm(void* memory, size_t /*size*/)
{
  __wrap__ZdlPv(memory);
}

void __wrap__ZdaPv(void* memory)
{
  Blocks().erase(memory);
  ::operator delete[](memory);
}

void __wrap__ZdaPvm(void* memory, size_t /*size*/)
{
  __wrap__ZdaPv(memory);
}

}  // extern "C"

size_t ProgramAllocations()
{
  return allocations;
}

size_t ProgramBlocks()
{
  return Blocks().size();
}

void FailProgramAllocation(size_t n)
{
  allocationsBefore = n - 1;
  isOrdered = true;
  failed = false;
}

bool TakeProgramFailure()
{
  isOrdered = false;
  return failed;
}
