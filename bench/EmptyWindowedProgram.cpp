#include <windows.h>

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int)
{
  // A call of the windows' library, so that it is loaded.
  return GetSystemMetrics(SM_CXSCREEN) < 0 ? 1 : 0;
}
