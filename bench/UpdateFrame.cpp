// The database update of a launch and nothing else, to measure what it costs to open, read, sort
// and close all databases.
#include "update/DatabaseUpdateManager.h"

#include <windows.h>

int WINAPI WinMain(HINSTANCE /*instance*/, HINSTANCE /*previous*/, LPSTR /*arguments*/,
                   int /*showState*/)
{
  RunDatabaseUpdate(0, 0);
  return 0;
}
