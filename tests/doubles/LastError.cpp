#include "tests/doubles/Recorder.h"

#include <windows.h>

namespace {

DWORD lastError = 0;

}  // namespace

DWORD WINAPI GetLastError()
{
  return lastError;
}

void WINAPI SetLastError(DWORD code)
{
  lastError = code;
}

void ResetLastError()
{
  lastError = 0;
}
