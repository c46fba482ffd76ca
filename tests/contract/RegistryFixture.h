#ifndef TESTS_CONTRACT_REGISTRYFIXTURE_H
#define TESTS_CONTRACT_REGISTRYFIXTURE_H

#include "tests/contract/ContractTest.h"

#include <string.h>

#include <vector>

// A query's outputs, poisoned before the call.
struct QueryResult
{
  static constexpr DWORD BufferBytes = 64;

  QueryResult() { memset(data, 0xBD, sizeof(data)); }

  bool IsPoisonFrom(size_t offset) const
  {
    for (size_t i = offset; i < sizeof(data); ++i) {
      if (data[i] != 0xBD)
        return false;
    }
    return true;
  }

  LONG status = -1;
  DWORD type = 0xDEADBEEF;
  DWORD size = 0;
  BYTE data[BufferBytes];
};

// The tests' own key, open with all rights, and what they do to it in one line.
class RegistryContract : public ContractTest
{
protected:
  RegistryContract() { key = Create(HKEY_CURRENT_USER, ContractKey, KEY_ALL_ACCESS); }
  ~RegistryContract() override
  {
    for (HKEY handle : handles)
      (void)RegCloseKey(handle);
  }

  HKEY Keep(HKEY handle)
  {
    handles.push_back(handle);
    return handle;
  }

  // Null on failure.
  HKEY Create(HKEY parent, const wchar_t* path, REGSAM access)
  {
    HKEY created = nullptr;
    if (RegCreateKeyExW(parent, path, 0, nullptr, 0, access, nullptr, &created, nullptr) != 0)
      return nullptr;
    return Keep(created);
  }

  LONG Open(HKEY parent, const wchar_t* path, REGSAM access)
  {
    opened = reinterpret_cast<HKEY>(static_cast<uintptr_t>(0xDEAD0));
    const LONG status = RegOpenKeyExW(parent, path, 0, access, &opened);
    if (status == ERROR_SUCCESS)
      Keep(opened);
    return status;
  }

  LONG Write(HKEY handle, const wchar_t* name, DWORD type, const void* data, DWORD bytes)
  {
    return RegSetValueExW(handle, name, 0, type, static_cast<const BYTE*>(data), bytes);
  }

  QueryResult Query(HKEY handle, const wchar_t* name, DWORD told = QueryResult::BufferBytes)
  {
    QueryResult result;
    result.size = told;
    result.status =
        RegQueryValueExW(handle, name, nullptr, &result.type, result.data, &result.size);
    return result;
  }

  HKEY key = nullptr;
  HKEY opened = nullptr;
  std::vector<HKEY> handles;
};

#endif
