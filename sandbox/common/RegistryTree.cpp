#include "sandbox/common/RegistryTree.h"

#include <string.h>

namespace {

void ReadValues(HKEY key, const std::wstring& keyPath, std::vector<RegistryRecord>& records)
{
  bool hasValue = false;
  for (DWORD index = 0;; ++index) {
    wchar_t name[1024] = {};
    DWORD nameSize = 1024;
    RegistryRecord record;
    DWORD size = 0;
    if (RegEnumValueW(key, index, name, &nameSize, nullptr, nullptr, nullptr, &size) != 0) {
      break;
    }
    record.bytes.resize(size);
    nameSize = 1024;
    if (RegEnumValueW(key, index, name, &nameSize, nullptr, &record.type, record.bytes.data(),
                      &size) != 0) {
      break;
    }
    record.bytes.resize(size);
    record.keyPath = keyPath;
    record.name.assign(name, nameSize);
    records.push_back(record);
    hasValue = true;
  }
  if (!hasValue) {
    RegistryRecord empty;
    empty.keyPath = keyPath;
    records.push_back(empty);
  }
}

}  // namespace

std::vector<RegistryRecord> ReadRegistryTree(HKEY root, const std::wstring& keyPath, REGSAM view)
{
  std::vector<RegistryRecord> records;
  HKEY key = nullptr;
  if (RegOpenKeyExW(root, keyPath.c_str(), 0, KEY_READ | view, &key) != 0) {
    return records;
  }
  ReadValues(key, keyPath, records);
  for (DWORD index = 0;; ++index) {
    wchar_t name[256] = {};
    DWORD nameSize = 256;
    if (RegEnumKeyExW(key, index, name, &nameSize, nullptr, nullptr, nullptr, nullptr) != 0) {
      break;
    }
    for (const RegistryRecord& below : ReadRegistryTree(root, keyPath + L"\\" + name, view)) {
      records.push_back(below);
    }
  }
  RegCloseKey(key);
  return records;
}

std::wstring ReadableData(const RegistryRecord& record)
{
  if (record.type == REG_SZ || record.type == REG_EXPAND_SZ) {
    std::wstring text(record.bytes.size() / sizeof(wchar_t), L'\0');
    memcpy(text.data(), record.bytes.data(), text.size() * sizeof(wchar_t));
    return text.substr(0, text.find(L'\0'));
  }
  if (record.type == REG_DWORD && record.bytes.size() == sizeof(DWORD)) {
    DWORD number = 0;
    memcpy(&number, record.bytes.data(), sizeof number);
    return std::to_wstring(number);
  }
  std::wstring digits;
  for (const BYTE part : record.bytes) {
    digits += L"0123456789abcdef"[part >> 4];
    digits += L"0123456789abcdef"[part & 15];
  }
  return digits;
}
