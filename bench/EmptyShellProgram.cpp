#include <windows.h>

#include <shlobj.h>

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int)
{
  // The one call that every launch makes into the shell's library.
  char folder[MAX_PATH] = {};
  (void)SHGetSpecialFolderPathA(nullptr, folder, CSIDL_PROGRAM_FILES_COMMONX86, FALSE);
  return 0;
}
