// The test's side of the registry double.
#include "tests/doubles/RegistryDouble.h"

#include "tests/doubles/Recorder.h"
#include "tests/doubles/RegistryStore.h"
#include "tests/doubles/Text.h"

#include <string.h>

namespace {

StoredKey* RootOf(HKEY root)
{
  StoredKey* key = Store().Root(root);
  if (key == nullptr)
    EndUnprepared("the registry has the roots HKCR, HKCU and HKLM alone.");
  return key;
}

std::vector<std::string> NamesOf(HKEY root, RegistryView view, const std::string& path)
{
  return Store().NamesBelow(RootOf(root), path, view == RegistryView::Wow32);
}

StoredKey* Find(HKEY root, RegistryView view, const std::string& path)
{
  return FindBelow(RootOf(root), NamesOf(root, view, path));
}

StoredKey* FindOrAdd(HKEY root, RegistryView view, const std::string& path)
{
  StoredKey* key = RootOf(root);
  for (const std::string& name : NamesOf(root, view, path))
    key = key->FindOrAddSubkey(name);
  return key;
}

}  // namespace

std::string RegistryValue::Text() const
{
  std::vector<wchar_t> characters(bytes.size() / sizeof(wchar_t));
  if (!characters.empty())
    memcpy(characters.data(), bytes.data(), characters.size() * sizeof(wchar_t));
  if (!characters.empty() && characters.back() == L'\0')
    characters.pop_back();
  return Utf8(characters.data(), characters.size());
}

uint32_t RegistryValue::Number() const
{
  uint32_t number = 0;
  if (bytes.size() >= sizeof(number))
    memcpy(&number, bytes.data(), sizeof(number));
  return number;
}

void RegistryDouble::AddKey(HKEY root, RegistryView view, const std::string& path)
{
  (void)FindOrAdd(root, view, path);
}

void RegistryDouble::SetText(HKEY root, RegistryView view, const std::string& path,
                             const std::string& name, const std::string& text)
{
  SetRaw(root, view, path, name, REG_SZ, TextBytesWithTerminator(text));
}

void RegistryDouble::SetNumber(HKEY root, RegistryView view, const std::string& path,
                               const std::string& name, uint32_t number)
{
  std::vector<unsigned char> bytes(sizeof(number));
  memcpy(bytes.data(), &number, sizeof(number));
  SetRaw(root, view, path, name, REG_DWORD, bytes);
}

void RegistryDouble::SetRaw(HKEY root, RegistryView view, const std::string& path,
                            const std::string& name, DWORD type,
                            const std::vector<unsigned char>& bytes)
{
  FindOrAdd(root, view, path)->SetValue(name, type, bytes);
}

void RegistryDouble::RemoveKey(HKEY root, RegistryView view, const std::string& path)
{
  StoredKey* key = Find(root, view, path);
  if (key == nullptr || key->parent == nullptr)
    return;
  std::erase_if(key->parent->subkeys, [key](const auto& subkey) {
    const bool isKey = subkey.get() == key;
    if (isKey)
      Store().removed.push_back(subkey);
    return isKey;
  });
}

void RegistryDouble::RemoveValue(HKEY root, RegistryView view, const std::string& path,
                                 const std::string& name)
{
  StoredKey* key = Find(root, view, path);
  if (key == nullptr)
    return;
  std::erase_if(key->values, [&name](const auto& value) { return SameName(value.name, name); });
}

void RegistryDouble::DenyAccess(HKEY root, RegistryView view, const std::string& path, REGSAM mask)
{
  FindOrAdd(root, view, path)->denied |= mask;
}

bool RegistryDouble::HasKey(HKEY root, RegistryView view, const std::string& path) const
{
  return Find(root, view, path) != nullptr;
}

RegistryValue RegistryDouble::Value(HKEY root, RegistryView view, const std::string& path,
                                    const std::string& name) const
{
  StoredKey* key = Find(root, view, path);
  const StoredValue* value = key == nullptr ? nullptr : key->FindValue(name);
  return value == nullptr ? RegistryValue() : RegistryValue{true, value->type, value->bytes};
}

std::vector<std::string> RegistryDouble::SubkeyNames(HKEY root, RegistryView view,
                                                     const std::string& path) const
{
  std::vector<std::string> names;
  const StoredKey* key = Find(root, view, path);
  if (key != nullptr) {
    for (const auto& subkey : key->subkeys)
      names.push_back(subkey->name);
  }
  return names;
}

std::vector<std::string> RegistryDouble::ValueNames(HKEY root, RegistryView view,
                                                    const std::string& path) const
{
  std::vector<std::string> names;
  const StoredKey* key = Find(root, view, path);
  if (key != nullptr) {
    for (const StoredValue& value : key->values)
      names.push_back(value.name);
  }
  return names;
}

int RegistryDouble::OpenHandleCount() const
{
  return static_cast<int>(OpenKeyPaths().size());
}

std::vector<std::string> RegistryDouble::OpenKeyPaths() const
{
  std::vector<std::string> paths;
  for (const GivenHandle& handle : Store().handles) {
    if (handle.open)
      paths.push_back(handle.key->FullPath());
  }
  return paths;
}

RegistryDouble& Registry()
{
  static RegistryDouble registry;
  return registry;
}
