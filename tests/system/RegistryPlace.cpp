#include "tests/system/RegistryPlace.h"

#include <gtest/gtest.h>

const RegistryPlace User = {HKEY_CURRENT_USER, 0};
const RegistryPlace Machine64 = {HKEY_LOCAL_MACHINE, KEY_WOW64_64KEY};
const RegistryPlace Machine32 = {HKEY_LOCAL_MACHINE, KEY_WOW64_32KEY};
const RegistryPlace Classes64 = {HKEY_CLASSES_ROOT, KEY_WOW64_64KEY};
const RegistryPlace Classes32 = {HKEY_CLASSES_ROOT, KEY_WOW64_32KEY};

namespace {

size_t BytesOf(const std::wstring& text, size_t terminators)
{
  return (text.size() + terminators) * sizeof(wchar_t);
}

}  // namespace

void RegistryPlace::Write(const std::wstring& keyPath, const std::wstring& name, DWORD type,
                          const void* data, size_t size) const
{
  HKEY key = nullptr;
  ASSERT_EQ(RegCreateKeyExW(root, keyPath.c_str(), 0, nullptr, 0, KEY_SET_VALUE | view, nullptr,
                            &key, nullptr),
            ERROR_SUCCESS)
      << keyPath;
  EXPECT_EQ(RegSetValueExW(key, name.c_str(), 0, type, static_cast<const BYTE*>(data),
                           static_cast<DWORD>(size)),
            ERROR_SUCCESS)
      << keyPath << L" " << name;
  RegCloseKey(key);
}

void RegistryPlace::MakeKey(const std::wstring& keyPath) const
{
  HKEY key = nullptr;
  ASSERT_EQ(RegCreateKeyExW(root, keyPath.c_str(), 0, nullptr, 0, KEY_SET_VALUE | view, nullptr,
                            &key, nullptr),
            ERROR_SUCCESS)
      << keyPath;
  RegCloseKey(key);
}

void RegistryPlace::WriteText(const std::wstring& keyPath, const std::wstring& name,
                              const std::wstring& text) const
{
  Write(keyPath, name, REG_SZ, text.c_str(), BytesOf(text, 1));
}

void RegistryPlace::WriteNumber(const std::wstring& keyPath, const std::wstring& name,
                                DWORD number) const
{
  Write(keyPath, name, REG_DWORD, &number, sizeof number);
}

void RegistryPlace::WriteUnterminated(const std::wstring& keyPath, const std::wstring& name,
                                      const std::wstring& text) const
{
  Write(keyPath, name, REG_BINARY, text.data(), BytesOf(text, 0));
}

bool RegistryPlace::HasKey(const std::wstring& keyPath) const
{
  return !ReadTree(keyPath).empty();
}

std::optional<RegistryRecord> RegistryPlace::ReadValue(const std::wstring& keyPath,
                                                       const std::wstring& name) const
{
  for (const RegistryRecord& record : ReadTree(keyPath)) {
    if (record.keyPath == keyPath && record.name == name && record.type != REG_NONE) {
      return record;
    }
  }
  return std::nullopt;
}

std::wstring RegistryPlace::ReadText(const std::wstring& keyPath, const std::wstring& name) const
{
  const std::optional<RegistryRecord> record = ReadValue(keyPath, name);
  return record ? ReadableData(*record) : std::wstring();
}

std::vector<RegistryRecord> RegistryPlace::ReadTree(const std::wstring& keyPath) const
{
  return ReadRegistryTree(root, keyPath, view);
}

void RegistryPlace::RemoveValue(const std::wstring& keyPath, const std::wstring& name) const
{
  HKEY key = nullptr;
  ASSERT_EQ(RegOpenKeyExW(root, keyPath.c_str(), 0, KEY_SET_VALUE | view, &key), ERROR_SUCCESS);
  EXPECT_EQ(RegDeleteValueW(key, name.c_str()), ERROR_SUCCESS);
  RegCloseKey(key);
}

void RegistryPlace::RemoveTree(const std::wstring& keyPath) const
{
  const size_t backslash = keyPath.rfind(L'\\');
  const std::wstring parentPath =
      backslash == std::wstring::npos ? std::wstring() : keyPath.substr(0, backslash);
  const std::wstring name = keyPath.substr(parentPath.empty() ? 0 : backslash + 1);
  HKEY parent = nullptr;
  if (RegOpenKeyExW(root, parentPath.c_str(), 0, KEY_ALL_ACCESS | view, &parent) == 0) {
    RegDeleteTreeW(parent, name.c_str());
    // On its own for Windows before 8, where the call above may leave the emptied key itself.
    RegDeleteKeyExW(parent, name.c_str(), view, 0);
    RegCloseKey(parent);
  }
  EXPECT_FALSE(HasKey(keyPath)) << keyPath;
}
