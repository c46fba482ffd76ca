// Prints every value below the keys that it is given, a line each, with a tab between the columns:
// key, value name, type, size in bytes, data. The root of a key is written HKCU, HKLM (the 64-bit
// view) or HKLM32 (the 32-bit view). A key that isn't there prints nothing.

#include "sandbox/common/RegistryTree.h"
#include "sandbox/common/SandboxFiles.h"

#include <shellapi.h>
#include <stdio.h>

namespace {

std::wstring TypeName(DWORD type)
{
  switch (type) {
    case REG_SZ: return L"REG_SZ";
    case REG_EXPAND_SZ: return L"REG_EXPAND_SZ";
    case REG_BINARY: return L"REG_BINARY";
    case REG_DWORD: return L"REG_DWORD";
    default: return L"type " + std::to_wstring(type);
  }
}

bool Dump(const std::wstring& argument)
{
  const size_t backslash = argument.find(L'\\');
  const std::wstring rootName = argument.substr(0, backslash);
  if (backslash == std::wstring::npos ||
      (rootName != L"HKCU" && rootName != L"HKLM" && rootName != L"HKLM32")) {
    fprintf(stderr, "registry-dump: no root in \"%s\"\n", ToUtf8(argument).c_str());
    return false;
  }
  const HKEY root = rootName == L"HKCU" ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE;
  const REGSAM view = rootName == L"HKLM32" ? KEY_WOW64_32KEY : KEY_WOW64_64KEY;
  for (const RegistryRecord& record :
       ReadRegistryTree(root, argument.substr(backslash + 1), view)) {
    if (record.type == REG_NONE) {
      continue;
    }
    const std::wstring line = rootName + L"\\" + record.keyPath + L"\t" + record.name + L"\t" +
                              TypeName(record.type) + L"\t" + std::to_wstring(record.bytes.size()) +
                              L"\t" + ReadableData(record) + L"\n";
    fputs(ToUtf8(line).c_str(), stdout);
  }
  return true;
}

}  // namespace

int main()
{
  int count = 0;
  wchar_t** arguments = CommandLineToArgvW(GetCommandLineW(), &count);
  bool good = count > 1;
  for (int i = 1; i < count; ++i) {
    good = Dump(arguments[i]) && good;
  }
  LocalFree(arguments);
  return good ? 0 : 1;
}
