#include "database/Trace.h"

#include <windows.h>

TraceFunction TraceCallback = nullptr;
void* TraceContext = nullptr;

void ReportTrace(const wchar_t* text)
{
  if (TraceCallback != nullptr) {
    TraceCallback(text);
    return;
  }
  OutputDebugStringW(L"\n");
  OutputDebugStringW(text);
}
