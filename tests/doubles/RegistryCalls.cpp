// Windows' side of the registry double.
#include "tests/doubles/Recorder.h"
#include "tests/doubles/RegistryStore.h"
#include "tests/doubles/Text.h"

#include <string.h>

#include <string>

namespace {

constexpr unsigned char Poison = 0xBD;

// Handles are multiples of this, so that neither a null nor a small number is one.
constexpr uintptr_t HandleStep = 0x10000;

HKEY HandleOf(size_t number)
{
  return reinterpret_cast<HKEY>(number * HandleStep);
}

// The entry of a handle, null if it was never given out.
GivenHandle* EntryOf(HKEY handle)
{
  const uintptr_t bits = reinterpret_cast<uintptr_t>(handle);
  std::vector<GivenHandle>& handles = Store().handles;
  if (bits == 0 || bits % HandleStep != 0 || bits / HandleStep > handles.size())
    return nullptr;
  return &handles[bits / HandleStep - 1];
}

std::string NameOf(HKEY handle)
{
  if (handle == nullptr)
    return "null";
  const StoredKey* root = Store().Root(handle);
  if (root != nullptr)
    return root->name;
  const GivenHandle* entry = EntryOf(handle);
  if (entry == nullptr || !entry->open)
    return "#?";
  return "#" + std::to_string(reinterpret_cast<uintptr_t>(handle) / HandleStep);
}

// The key of a handle with the rights that it was opened with, which are all for a root. Null, with
// the misuse noted, if it is no open handle.
struct UsedKey
{
  UsedKey(const char* function, HKEY handle)
  {
    key = Store().Root(handle);
    if (key != nullptr) {
      access = KEY_ALL_ACCESS;
      return;
    }
    const GivenHandle* entry = EntryOf(handle);
    if (entry != nullptr && entry->open) {
      key = entry->key.get();
      access = entry->access;
    } else if (handle != nullptr) {
      Misuse(std::string(function) + " was given a registry handle that is " +
             (entry == nullptr ? "none." : "closed."));
    }
  }

  bool Allows(REGSAM rights) const { return (access & rights) == rights; }

  StoredKey* key;
  REGSAM access = 0;
};

std::shared_ptr<StoredKey> Share(StoredKey* key)
{
  if (key->parent == nullptr) {
    for (const auto& root : {Store().classesRoot, Store().currentUser, Store().localMachine}) {
      if (root.get() == key)
        return root;
    }
  } else {
    for (const auto& subkey : key->parent->subkeys) {
      if (subkey.get() == key)
        return subkey;
    }
  }
  EndUnprepared("a key was used that the test has removed.");
}

HKEY GiveHandle(StoredKey* key, REGSAM access)
{
  std::vector<GivenHandle>& handles = Store().handles;
  handles.push_back({Share(key), access, true});
  return HandleOf(handles.size());
}

std::string ResultText(LSTATUS status)
{
  return ") = " + std::to_string(status);
}

std::string OpenedText(LSTATUS status, HKEY handle)
{
  return ResultText(status) + (status == ERROR_SUCCESS ? " " + NameOf(handle) : "");
}

// Below HKEY_CLASSES_ROOT alone a path may begin with a backslash.
bool IsBadPath(const StoredKey* parent, const wchar_t* path)
{
  return path != nullptr && path[0] == L'\\' && parent != Store().classesRoot.get();
}

LSTATUS OpenKey(HKEY parent, const wchar_t* path, REGSAM access, HKEY& result)
{
  const UsedKey used("RegOpenKeyExW", parent);
  if (used.key == nullptr)
    return ERROR_INVALID_HANDLE;
  if (IsBadPath(used.key, path))
    return ERROR_BAD_PATHNAME;
  if (used.key->parent == nullptr && (path == nullptr || path[0] == L'\0')) {
    result = parent;
    return ERROR_SUCCESS;
  }
  const bool view32 = (access & KEY_WOW64_32KEY) != 0;
  StoredKey* key = FindBelow(used.key, Store().NamesBelow(used.key, Utf8(path), view32));
  if (key == nullptr)
    return ERROR_FILE_NOT_FOUND;
  if ((key->denied & access) != 0)
    return ERROR_ACCESS_DENIED;
  result = GiveHandle(key, access);
  return ERROR_SUCCESS;
}

LSTATUS CreateKey(HKEY parent, const wchar_t* path, REGSAM access, HKEY& result, DWORD* disposition)
{
  const UsedKey used("RegCreateKeyExW", parent);
  if (used.key == nullptr)
    return ERROR_INVALID_HANDLE;
  if (path == nullptr)
    return ERROR_BADKEY;
  if (IsBadPath(used.key, path))
    return ERROR_BAD_PATHNAME;
  const bool view32 = (access & KEY_WOW64_32KEY) != 0;
  StoredKey* key = used.key;
  bool created = false;
  for (const std::string& name : Store().NamesBelow(used.key, Utf8(path), view32)) {
    StoredKey* subkey = key->FindSubkey(name);
    if (subkey == nullptr) {
      // The rights of the parent count, not those that its handle was opened with.
      if ((key->denied & KEY_CREATE_SUB_KEY) != 0)
        return ERROR_ACCESS_DENIED;
      subkey = key->FindOrAddSubkey(name);
      created = true;
    }
    key = subkey;
  }
  if ((key->denied & access) != 0)
    return ERROR_ACCESS_DENIED;
  if (disposition != nullptr)
    *disposition = created ? REG_CREATED_NEW_KEY : REG_OPENED_EXISTING_KEY;
  result = GiveHandle(key, access);
  return ERROR_SUCCESS;
}

// Copies a value's data as a query does: size becomes what the data needs, a buffer that is too
// small holds nothing to rely on, and no terminator is added.
LSTATUS GiveData(const StoredValue& value, DWORD* type, BYTE* data, DWORD* size)
{
  if (type != nullptr)
    *type = value.type;
  if (size == nullptr)
    return ERROR_SUCCESS;
  const DWORD room = *size;
  *size = static_cast<DWORD>(value.bytes.size());
  if (data == nullptr)
    return ERROR_SUCCESS;
  if (room < value.bytes.size()) {
    memset(data, Poison, room);
    return ERROR_MORE_DATA;
  }
  if (!value.bytes.empty())
    memcpy(data, value.bytes.data(), value.bytes.size());
  return ERROR_SUCCESS;
}

LSTATUS QueryValue(HKEY handle, const wchar_t* name, DWORD* type, BYTE* data, DWORD* size)
{
  const UsedKey used("RegQueryValueExW", handle);
  if (data != nullptr && size == nullptr)
    return ERROR_INVALID_PARAMETER;
  if (used.key == nullptr)
    return ERROR_INVALID_HANDLE;
  if (!used.Allows(KEY_QUERY_VALUE))
    return ERROR_ACCESS_DENIED;
  const StoredValue* value = used.key->FindValue(Utf8(name));
  if (value == nullptr)
    return ERROR_FILE_NOT_FOUND;
  return GiveData(*value, type, data, size);
}

// Copies a name with its terminator. size counts that before the call and not after it.
bool GiveName(const std::string& name, wchar_t* buffer, DWORD* size)
{
  WideText text(name);
  if (*size <= text.Length())
    return false;
  memcpy(buffer, text.c_str(), (text.Length() + 1) * sizeof(wchar_t));
  *size = static_cast<DWORD>(text.Length());
  return true;
}

LSTATUS EnumKey(HKEY handle, DWORD index, wchar_t* name, DWORD* nameSize)
{
  const UsedKey used("RegEnumKeyExW", handle);
  if (used.key == nullptr)
    return ERROR_INVALID_HANDLE;
  if (!used.Allows(KEY_ENUMERATE_SUB_KEYS))
    return ERROR_ACCESS_DENIED;
  if (index >= used.key->subkeys.size())
    return ERROR_NO_MORE_ITEMS;
  return GiveName(used.key->subkeys[index]->name, name, nameSize) ? ERROR_SUCCESS : ERROR_MORE_DATA;
}

LSTATUS EnumValue(HKEY handle, DWORD index, wchar_t* name, DWORD* nameSize, DWORD* type, BYTE* data,
                  DWORD* size)
{
  const UsedKey used("RegEnumValueW", handle);
  if (used.key == nullptr)
    return ERROR_INVALID_HANDLE;
  if (!used.Allows(KEY_QUERY_VALUE))
    return ERROR_ACCESS_DENIED;
  if (index >= used.key->values.size())
    return ERROR_NO_MORE_ITEMS;
  const StoredValue& value = used.key->values[index];
  if (!GiveName(value.name, name, nameSize)) {
    (void)GiveData(value, type, nullptr, size);
    return ERROR_MORE_DATA;
  }
  return GiveData(value, type, data, size);
}

LSTATUS SetValue(HKEY handle, const wchar_t* name, DWORD type, const BYTE* data, DWORD size)
{
  const UsedKey used("RegSetValueExW", handle);
  if (used.key == nullptr)
    return ERROR_INVALID_HANDLE;
  if (!used.Allows(KEY_SET_VALUE))
    return ERROR_ACCESS_DENIED;
  used.key->SetValue(Utf8(name), type, std::vector<unsigned char>(data, data + size));
  return ERROR_SUCCESS;
}

std::string TypeText(const DWORD* type)
{
  return type == nullptr ? "type null" : "type " + std::to_string(*type);
}

// The part of a line that tells what a write was given.
std::string DataText(DWORD type, const BYTE* data, DWORD size)
{
  if (data == nullptr)
    return std::to_string(type) + ", null";
  if (type == REG_SZ) {
    const RegistryValue value{true, type, std::vector<unsigned char>(data, data + size)};
    return "REG_SZ, " + Quoted(std::string(value.Text().c_str()));
  }
  if (type == REG_DWORD && size == sizeof(DWORD)) {
    DWORD number = 0;
    memcpy(&number, data, sizeof(number));
    return "REG_DWORD, " + std::to_string(number);
  }
  std::string text = "type " + std::to_string(type) + ", bytes";
  for (DWORD i = 0; i < size; ++i)
    text += " " + Hex(data[i]).substr(2);
  return text;
}

}  // namespace

LSTATUS WINAPI RegOpenKeyExW(HKEY parent, LPCWSTR path, DWORD options, REGSAM access, PHKEY result)
{
  const std::string line = "RegOpenKeyExW(" + NameOf(parent) + ", " + Quoted(path) + ", " +
                           std::to_string(options) + ", " + Hex(access);
  HKEY opened = nullptr;
  unsigned long code = 0;
  LSTATUS status = ERROR_INVALID_PARAMETER;
  if (TakeFault("RegOpenKeyExW", code))
    status = static_cast<LSTATUS>(code);
  else if (result != nullptr)
    status = OpenKey(parent, path, access, opened);
  if (result != nullptr)
    *result = opened;
  WriteDiary(line + OpenedText(status, opened));
  return status;
}

LSTATUS WINAPI RegCreateKeyExW(HKEY parent, LPCWSTR path, DWORD reserved, LPWSTR keyClass,
                               DWORD options, REGSAM access, LPSECURITY_ATTRIBUTES security,
                               PHKEY result, LPDWORD disposition)
{
  const std::string line = "RegCreateKeyExW(" + NameOf(parent) + ", " + Quoted(path) + ", " +
                           std::to_string(reserved) + ", class " + Quoted(keyClass) + ", " +
                           std::to_string(options) + ", " + Hex(access) + ", " +
                           (security == nullptr ? "null" : "security") + ", " +
                           (disposition == nullptr ? "null" : "disposition");
  HKEY opened = nullptr;
  unsigned long code = 0;
  LSTATUS status = ERROR_INVALID_PARAMETER;
  if (TakeFault("RegCreateKeyExW", code))
    status = static_cast<LSTATUS>(code);
  else if (reserved == 0 && result != nullptr)
    status = CreateKey(parent, path, access, opened, disposition);
  if (result != nullptr && status == ERROR_SUCCESS)
    *result = opened;
  WriteDiary(line + OpenedText(status, opened));
  return status;
}

LSTATUS WINAPI RegQueryValueExW(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data,
                                LPDWORD size)
{
  const std::string line =
      "RegQueryValueExW(" + NameOf(key) + ", " + Quoted(name) + ", " + TypeText(type) + ", " +
      (data == nullptr || size == nullptr ? "size null" : std::to_string(*size));
  unsigned long code = 0;
  LSTATUS status = ERROR_INVALID_PARAMETER;
  if (TakeFault("RegQueryValueExW", code))
    status = static_cast<LSTATUS>(code);
  else if (reserved == nullptr)
    status = QueryValue(key, name, type, data, size);
  WriteDiary(line + ResultText(status));
  return status;
}

LSTATUS WINAPI RegEnumKeyExW(HKEY key, DWORD index, LPWSTR name, LPDWORD nameSize, LPDWORD reserved,
                             LPWSTR keyClass, LPDWORD classSize, LPFILETIME lastWrite)
{
  if (keyClass != nullptr || classSize != nullptr)
    EndUnprepared("RegEnumKeyExW was asked for the class of a key.");
  const std::string line = "RegEnumKeyExW(" + NameOf(key) + ", " + std::to_string(index) + ", " +
                           (nameSize == nullptr ? "null" : std::to_string(*nameSize));
  unsigned long code = 0;
  LSTATUS status = ERROR_INVALID_PARAMETER;
  if (TakeFault("RegEnumKeyExW", code))
    status = static_cast<LSTATUS>(code);
  else if (reserved == nullptr && name != nullptr && nameSize != nullptr)
    status = EnumKey(key, index, name, nameSize);
  if (status == ERROR_SUCCESS && TakeFault("RegEnumKeyExW with a name", code))
    status = static_cast<LSTATUS>(code);
  const bool given = status == ERROR_SUCCESS;
  if (given && lastWrite != nullptr)
    *lastWrite = FILETIME{0x12345678, 0x01CA0000};
  WriteDiary(line + ResultText(status) + (given ? " " + Quoted(name) : ""));
  return status;
}

LSTATUS WINAPI RegEnumValueW(HKEY key, DWORD index, LPWSTR name, LPDWORD nameSize, LPDWORD reserved,
                             LPDWORD type, LPBYTE data, LPDWORD size)
{
  const std::string line = "RegEnumValueW(" + NameOf(key) + ", " + std::to_string(index) +
                           ", name " + (nameSize == nullptr ? "null" : std::to_string(*nameSize)) +
                           ", " + TypeText(type) + ", data " +
                           (data == nullptr || size == nullptr ? "null" : std::to_string(*size));
  unsigned long code = 0;
  LSTATUS status = ERROR_INVALID_PARAMETER;
  if (TakeFault("RegEnumValueW", code))
    status = static_cast<LSTATUS>(code);
  else if (reserved == nullptr && name != nullptr && nameSize != nullptr &&
           (data == nullptr || size != nullptr))
    status = EnumValue(key, index, name, nameSize, type, data, size);
  WriteDiary(line + ResultText(status) + (status == ERROR_SUCCESS ? " " + Quoted(name) : ""));
  return status;
}

LSTATUS WINAPI RegSetValueExW(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data,
                              DWORD size)
{
  if (data == nullptr && size > 0)
    EndUnprepared("RegSetValueExW was given a size and no data.");
  const std::string line = "RegSetValueExW(" + NameOf(key) + ", " + Quoted(name) + ", " +
                           std::to_string(reserved) + ", " + DataText(type, data, size) + ", " +
                           std::to_string(size);
  unsigned long code = 0;
  LSTATUS status = ERROR_INVALID_PARAMETER;
  if (TakeFault("RegSetValueExW", code))
    status = static_cast<LSTATUS>(code);
  else if (reserved == 0)
    status = SetValue(key, name, type, data, size);
  WriteDiary(line + ResultText(status));
  return status;
}

LSTATUS WINAPI RegCloseKey(HKEY key)
{
  const std::string line = "RegCloseKey(" + NameOf(key);
  unsigned long code = 0;
  LSTATUS status = ERROR_SUCCESS;
  if (TakeFault("RegCloseKey", code)) {
    status = static_cast<LSTATUS>(code);
  } else if (UsedKey("RegCloseKey", key).key == nullptr) {
    status = ERROR_INVALID_HANDLE;
  } else if (GivenHandle* entry = EntryOf(key)) {
    entry->open = false;
    entry->key.reset();
  }
  WriteDiary(line + ResultText(status));
  return status;
}
