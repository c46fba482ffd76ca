#ifndef SANDBOX_COMMON_REGISTRYTREE_H
#define SANDBOX_COMMON_REGISTRYTREE_H

#include <windows.h>

#include <string>
#include <vector>

struct RegistryRecord
{
  std::wstring keyPath;  // relative to the root, no trailing backslash
  std::wstring name;
  DWORD type = REG_NONE;
  std::vector<BYTE> bytes;

  bool operator==(const RegistryRecord&) const = default;
};

// Every value of the key and of all keys below it, in the order of enumeration. A key without a
// value stands there as a record of type REG_NONE with no name. Empty if there is no such key. view
// is 0, KEY_WOW64_32KEY or KEY_WOW64_64KEY.
std::vector<RegistryRecord> ReadRegistryTree(HKEY root, const std::wstring& keyPath, REGSAM view);

// The value as a person reads it: text up to the first terminator, a number, or bytes in
// hexadecimal.
std::wstring ReadableData(const RegistryRecord& record);

#endif
