// Applies a patch to a target and tells how long that took.
// usage: engine_run PATCH TARGET TARGET_NAME
#include "bench/engine/EngineDatabases.h"
#include "bench/engine/RunReport.h"

#include <stdio.h>

int main(int argumentCount, char** arguments)
{
  if (argumentCount != 4) {
    (void)fprintf(stderr, "usage: engine_run PATCH TARGET TARGET_NAME\n");
    return 2;
  }
  Stopwatch watch;
  int traces = 0;
  {
    EngineDatabases databases(arguments[1], arguments[2], arguments[3]);
    watch.Start();
    databases.patch.ApplyPatch(&databases.target);
    watch.Stop();
    traces = databases.Traces();
  }
  ReportRun(watch.Seconds(), traces);
  return 0;
}
