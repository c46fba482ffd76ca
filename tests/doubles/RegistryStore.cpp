#include "tests/doubles/RegistryStore.h"

#include "tests/doubles/Recorder.h"
#include "tests/doubles/Text.h"

namespace {

const char* const NodeOf32BitView = "Wow6432Node";

std::shared_ptr<StoredKey> MakeRoot(const char* name)
{
  auto root = std::make_shared<StoredKey>();
  root->name = name;
  return root;
}

std::vector<std::string> SplitPath(const std::string& path)
{
  std::vector<std::string> names;
  std::string name;
  for (const char c : path) {
    if (c != '\\') {
      name += c;
    } else if (!name.empty()) {
      names.push_back(name);
      name.clear();
    }
  }
  if (!name.empty())
    names.push_back(name);
  return names;
}

bool NameAt(const std::vector<std::string>& names, size_t index, const char* name)
{
  return index < names.size() && SameName(names[index], name);
}

}  // namespace

StoredKey* StoredKey::FindSubkey(const std::string& subkeyName) const
{
  for (const auto& subkey : subkeys) {
    if (SameName(subkey->name, subkeyName))
      return subkey.get();
  }
  return nullptr;
}

StoredKey* StoredKey::FindOrAddSubkey(const std::string& subkeyName)
{
  StoredKey* found = FindSubkey(subkeyName);
  if (found != nullptr)
    return found;
  subkeys.push_back(MakeRoot(subkeyName.c_str()));
  subkeys.back()->parent = this;
  return subkeys.back().get();
}

StoredValue* StoredKey::FindValue(const std::string& valueName)
{
  for (StoredValue& value : values) {
    if (SameName(value.name, valueName))
      return &value;
  }
  return nullptr;
}

void StoredKey::SetValue(const std::string& valueName, DWORD type,
                         const std::vector<unsigned char>& bytes)
{
  StoredValue* value = FindValue(valueName);
  if (value == nullptr) {
    values.push_back({valueName, type, bytes});
  } else {
    value->type = type;
    value->bytes = bytes;
  }
}

std::string StoredKey::FullPath() const
{
  return parent == nullptr ? name : parent->FullPath() + "\\" + name;
}

// What every Windows machine has.
RegistryStore::RegistryStore()
    : classesRoot(MakeRoot("HKCR")), currentUser(MakeRoot("HKCU")), localMachine(MakeRoot("HKLM"))
{
  (void)classesRoot->FindOrAddSubkey("CLSID");
  (void)classesRoot->FindOrAddSubkey(NodeOf32BitView)->FindOrAddSubkey("CLSID");
  (void)currentUser->FindOrAddSubkey("Software");
  (void)localMachine->FindOrAddSubkey("Software")->FindOrAddSubkey(NodeOf32BitView);
}

StoredKey* RegistryStore::Root(HKEY root) const
{
  if (root == HKEY_CLASSES_ROOT)
    return classesRoot.get();
  if (root == HKEY_CURRENT_USER)
    return currentUser.get();
  if (root == HKEY_LOCAL_MACHINE)
    return localMachine.get();
  return nullptr;
}

std::vector<std::string> RegistryStore::NamesBelow(const StoredKey* start, const std::string& path,
                                                   bool view32) const
{
  std::vector<std::string> names = SplitPath(path);
  if (!view32)
    return names;
  // Only where the views part. A path below one of these keys stays in the view it has begun with.
  size_t place = 0;
  if (start == localMachine.get() && NameAt(names, 0, "Software"))
    place = 1;
  else if (start == classesRoot.get() && NameAt(names, 0, "CLSID"))
    place = 0;
  else if (start == localMachine->FindSubkey("Software"))
    place = 0;
  else
    return names;
  if (!NameAt(names, place, NodeOf32BitView))
    names.insert(names.begin() + static_cast<std::ptrdiff_t>(place), NodeOf32BitView);
  return names;
}

RegistryStore& Store()
{
  static RegistryStore store;
  return store;
}

StoredKey* FindBelow(StoredKey* start, const std::vector<std::string>& names)
{
  StoredKey* key = start;
  for (const std::string& name : names) {
    key = key->FindSubkey(name);
    if (key == nullptr)
      return nullptr;
  }
  return key;
}

void ResetRegistry()
{
  Store() = RegistryStore();
}
