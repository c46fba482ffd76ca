#ifndef TESTS_SYSTEM_PORTABLEEXECUTABLE_H
#define TESTS_SYSTEM_PORTABLEEXECUTABLE_H

#include <windows.h>

#include <string>
#include <vector>

// A program file of 64-bit Windows as it lies on the disk.
class PortableExecutable
{
public:
  // Reads the file. IsWhole says whether it is one and could be read to its end.
  explicit PortableExecutable(const std::wstring& path);

  bool IsWhole() const { return whole; }
  const IMAGE_NT_HEADERS64& Headers() const { return headers; }
  const std::string& Bytes() const { return bytes; }

  // Size of one of the tables that the optional header lists (IMAGE_DIRECTORY_ENTRY_...).
  DWORD TableSize(int entry) const;

  // Names of the libraries of the import table, in the file's spelling. GNU ld lists no delayed
  // imports in the headers.
  std::vector<std::string> Imports() const;

  // Each time stamp in the file's headers and tables that isn't 0.
  std::vector<DWORD> TimeStamps() const;

private:
  // Place in the file of an address relative to the image's base; the file's size if there is none.
  size_t FileOffset(DWORD address) const;
  std::string TextAt(DWORD address) const;

  // A record of the file, zeros if it lies outside.
  template <typename Record>
  Record RecordAt(size_t offset) const;
  // Those of a table up to its end or to the first one that holds zeros alone, which ends the lists
  // of imports long before the table's size does.
  template <typename Record>
  std::vector<Record> RecordsOfTable(int entry) const;

  std::string bytes;
  IMAGE_NT_HEADERS64 headers = {};
  std::vector<IMAGE_SECTION_HEADER> sections;
  bool whole = false;
};

#endif
