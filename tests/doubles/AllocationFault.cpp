// malloc as the code under test calls it (--wrap, see WrappedNames.cmake). It does nothing of its
// own but to fail when a test wants it.
#include "tests/doubles/Recorder.h"

#include <stddef.h>

extern "C" {

void* __real_malloc(size_t size);

void* __wrap_malloc(size_t size)
{
  unsigned long code = 0;
  return TakeFault("malloc", code) ? nullptr : __real_malloc(size);
}

}  // extern "C"
