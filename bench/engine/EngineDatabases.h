#ifndef BENCH_ENGINE_ENGINEDATABASES_H
#define BENCH_ENGINE_ENGINEDATABASES_H

#include "database/QulPatchDatabase.h"

// A patch and the target that it is for, opened as the launcher does. What the engine reports is
// counted from then on.
class EngineDatabases
{
public:
  // Paths of this machine, under Wine too: it is the driver that opens the files. A database that
  // can't be opened ends the program.
  EngineDatabases(const char* patchPath, const char* targetPath, const char* targetName);

  int Traces() const;

  QulPatchDatabase patch;
  QulDatabase target;
};

#endif
