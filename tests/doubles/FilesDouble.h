#ifndef DOUBLES_FILESDOUBLE_H
#define DOUBLES_FILESDOUBLE_H

// Files and folders, behind FindFirstFileW, FindNextFileW, FindClose and _wfopen_s. They are real
// ones in a temporary folder, `dosdevices/c:` and so on as in a Wine prefix, which is made at first
// use and removed by ResetPlatform. A path without a drive lies on C:. Names have no regard to
// case.
//
//   Files().Put("C:\\Data\\Configuration\\x.xml", "<Kestrelforge>");
//
// The diary has no line for fread, fseek, ftell and fclose, which work on what _wfopen_s gives:
//
//   FindFirstFileW("C:\Data\*.mdb") = find#1 "a.mdb"
//   FindNextFileW(find#1) = 1 "b.mdb"
//   FindNextFileW(find#1) = 0
//   FindClose(find#1) = 1
//   FindFirstFileW("C:\None\*.mdb") = invalid
//   _wfopen_s("C:\Data\x.xml", "r, ccs=UNICODE") = 0
//
// FailCall works for all of them: the searches fail with the code as the last error, _wfopen_s
// returns it. fread then delivers nothing, fseek and ftell give -1 and the place stays; fclose
// closes and gives EOF. A search handle that is closed or never existed is a misuse,
// INVALID_HANDLE_VALUE is none.

#include <string>
#include <vector>

class FilesDouble
{
public:
  // The folders on the way are made too. A file that is there is replaced.
  void Put(const std::string& path, const std::string& bytes);
  void MakeFolder(const std::string& path);
  void Remove(const std::string& path);

  bool Exists(const std::string& path) const;
  std::string Read(const std::string& path) const;  // empty if it isn't there

  // Searches find the names in this order, where they find them; what isn't named comes last. At
  // first the order is that of the alphabet, without regard to case.
  void SetSearchOrder(const std::vector<std::string>& names);

  // The same file for Linux, with the spelling that it has there if it exists.
  std::string UnixPath(const std::string& path) const;
  // The folder that holds `dosdevices`.
  std::string Prefix() const;

  int OpenSearches() const;
  int OpenStreams() const;  // opened by _wfopen_s and not closed
};

FilesDouble& Files();

#endif
