#ifndef TESTS_SYSTEM_REGISTRYPLACE_H
#define TESTS_SYSTEM_REGISTRYPLACE_H

#include "sandbox/common/RegistryTree.h"

#include <optional>

// A root of the registry as seen through one view. Failed writes are test failures.
struct RegistryPlace
{
  HKEY root;
  REGSAM view;

  void MakeKey(const std::wstring& keyPath) const;
  // The value with its terminator.
  void WriteText(const std::wstring& keyPath, const std::wstring& name,
                 const std::wstring& text) const;
  void WriteNumber(const std::wstring& keyPath, const std::wstring& name, DWORD number) const;
  // The characters of the text and nothing behind them, in a type for which the registry adds no
  // terminator of its own.
  void WriteUnterminated(const std::wstring& keyPath, const std::wstring& name,
                         const std::wstring& text) const;

  // Without the key or the value: false, no record, or an empty text.
  bool HasKey(const std::wstring& keyPath) const;
  std::optional<RegistryRecord> ReadValue(const std::wstring& keyPath,
                                          const std::wstring& name) const;
  std::wstring ReadText(const std::wstring& keyPath, const std::wstring& name) const;
  std::vector<RegistryRecord> ReadTree(const std::wstring& keyPath) const;

  void RemoveValue(const std::wstring& keyPath, const std::wstring& name) const;
  // Removes the key with all below it; it need not be there.
  void RemoveTree(const std::wstring& keyPath) const;

private:
  void Write(const std::wstring& keyPath, const std::wstring& name, DWORD type, const void* data,
             size_t size) const;
};

extern const RegistryPlace User;
extern const RegistryPlace Machine64;
extern const RegistryPlace Machine32;
extern const RegistryPlace Classes64;
extern const RegistryPlace Classes32;

#endif
