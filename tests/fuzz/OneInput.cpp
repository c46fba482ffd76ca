// The functions __wrap_... stand in the place of those of the program and of the language's
// library, by way of the linker (see CMakeLists.txt).
#include "tests/fuzz/OneInput.h"

#include <stdint.h>
#include <stdlib.h>
#include <string.h>

#include <new>
#include <unordered_set>

namespace {

struct FatalEnd
{
};

bool counting = false;
bool endedFatally = false;

std::unordered_set<void*>& Arrays()
{
  static std::unordered_set<void*> arrays;
  return arrays;
}

}  // namespace

extern "C" {

// Little memory is kept behind what was freed, for the sake of speed.
const char* __asan_default_options()
{
  return "quarantine_size_mb=16:malloc_context_size=6";
}

void* __real__Znam(size_t size);
void __real__ZdaPv(void* memory);

[[noreturn]] void __wrap__Z21EndOnInvalidParameterv()
{
  endedFatally = true;
  throw FatalEnd();
}

// new[]. The sanitizer would report a size that no memory has.
void* __wrap__Znam(size_t size)
{
  if (size > PTRDIFF_MAX)
    throw std::bad_alloc();
  void* memory = __real__Znam(size);
  if (counting) {
    memset(memory, 0xBD, size);
    Arrays().insert(memory);
  }
  return memory;
}

// delete[].
void __wrap__ZdaPv(void* memory)
{
  if (counting)
    Arrays().erase(memory);
  __real__ZdaPv(memory);
}

}  // extern "C"

OneInput::OneInput()
{
  Arrays().clear();
  counting = true;
}

OneInput::~OneInput()
{
  counting = false;
  for (void* memory : Arrays())
    __real__ZdaPv(memory);
  Arrays().clear();
}

Ending OneInput::Run(const std::function<void()>& action)
{
  endedFatally = false;
  try {
    action();
  } catch (const FatalEnd&) {
    return Ending::Fatal;
  } catch (const std::bad_alloc&) {
    return Ending::OutOfMemory;
  }
  // The database update catches everything.
  return endedFatally ? Ending::Fatal : Ending::Returned;
}

size_t OneInput::ArraysLeft() const
{
  return Arrays().size();
}
