#include "launcher/CommandLine.h"
#include "launcher/LauncherMain.h"

#include <windows.h>

int WINAPI WinMain(HINSTANCE instance, HINSTANCE previousInstance, LPSTR /*arguments*/,
                   int showState)
{
  // Not the arguments handed in: mingw's start-up code takes characters beyond ASCII for white
  // space and swallows those that an argument begins with.
  return LauncherMain(instance, previousInstance, SkipProgramName(GetCommandLineA()), showState);
}
