#ifndef DOUBLES_SHELLDOUBLE_H
#define DOUBLES_SHELLDOUBLE_H

// Special folders, behind SHGetSpecialFolderPathW and SHGetSpecialFolderPathA. At first the machine
// has the two folders of common files:
//
//   CSIDL_PROGRAM_FILES_COMMON (43)      C:\Program Files\Common Files
//   CSIDL_PROGRAM_FILES_COMMONX86 (44)   C:\Program Files (x86)\Common Files
//
// A folder that the test has neither set nor removed ends the test program. A failed call leaves
// the buffer as it is.

#include <string>

class ShellDouble
{
public:
  void SetFolder(int folder, const std::string& path);
  // Asking for it fails from now on.
  void RemoveFolder(int folder);
};

ShellDouble& ShellFolders();

#endif
