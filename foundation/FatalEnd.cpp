#include "foundation/FatalEnd.h"

#include <windows.h>

void EndOnInvalidParameter()
{
  // Not abort() or exit(): both run handlers first.
  (void)TerminateProcess(GetCurrentProcess(), static_cast<UINT>(STATUS_INVALID_CRUNTIME_PARAMETER));
  __builtin_trap();
}
