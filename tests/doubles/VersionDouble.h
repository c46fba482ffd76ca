#ifndef DOUBLES_VERSIONDOUBLE_H
#define DOUBLES_VERSIONDOUBLE_H

// Version resources of files, behind GetFileVersionInfoSizeA, GetFileVersionInfoA and
// VerQueryValueA. A file has none unless the test gives it one; paths have no regard to case. A
// version block has 100 bytes, more if the text needs them.

#include <string>

class VersionDouble
{
public:
  // A resource with this text at \StringFileInfo\040904b0\FileVersion.
  void SetFileVersion(const std::string& path, const std::string& version);
  // The same as a damaged file has it: the text fills the block to its end, without a terminator.
  void SetUnterminatedVersion(const std::string& path, const std::string& version);
  // A resource that lacks that text.
  void SetWithoutFileVersion(const std::string& path);
};

VersionDouble& Versions();

#endif
