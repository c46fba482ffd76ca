#include "bench/engine/EngineDatabases.h"

#include "database/Trace.h"

#include <stdio.h>
#include <stdlib.h>

namespace {

int traceCount = 0;

void CountTrace(const wchar_t* /*text*/)
{
  ++traceCount;
}

QulString ConnectionString(const char* path)
{
  return QulString::Concat(QulString(L"DRIVER={Kestrel ODBC Driver};UID=;PWD=;DBQ="),
                           QulString(path));
}

}  // namespace

EngineDatabases::EngineDatabases(const char* patchPath, const char* targetPath,
                                 const char* targetName)
    : patch(ConnectionString(patchPath).Text(), L"Patch.mdb"),
      target(ConnectionString(targetPath).Text(), QulString(targetName).Text())
{
  if (!patch.connected || !target.connected) {
    (void)fprintf(stderr, "Can't open %s and %s\n", patchPath, targetPath);
    exit(2);
  }
  TraceCallback = CountTrace;
}

int EngineDatabases::Traces() const
{
  return traceCount;
}
