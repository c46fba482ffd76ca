#ifndef DOUBLES_REGISTRYSTORE_H
#define DOUBLES_REGISTRYSTORE_H

// The tree and the handles behind the registry double.

#include "tests/doubles/RegistryDouble.h"

#include <memory>
#include <string>
#include <vector>

struct StoredValue
{
  std::string name;
  DWORD type = REG_NONE;
  std::vector<unsigned char> bytes;
};

struct StoredKey
{
  StoredKey* FindSubkey(const std::string& subkeyName) const;
  StoredKey* FindOrAddSubkey(const std::string& subkeyName);
  StoredValue* FindValue(const std::string& valueName);
  void SetValue(const std::string& valueName, DWORD type, const std::vector<unsigned char>& bytes);
  std::string FullPath() const;

  std::string name;
  StoredKey* parent = nullptr;  // not owned
  REGSAM denied = 0;
  std::vector<std::shared_ptr<StoredKey>> subkeys;
  std::vector<StoredValue> values;
};

// A handle that was given out, closed or not. It keeps its key alive if that is removed meanwhile.
struct GivenHandle
{
  std::shared_ptr<StoredKey> key;
  REGSAM access = 0;
  bool open = false;
};

struct RegistryStore
{
  RegistryStore();

  // Null if it is none of the three.
  StoredKey* Root(HKEY root) const;
  // The names of the keys on the path below start, as the view has it. Backslashes at the end and
  // doubled ones are skipped.
  std::vector<std::string> NamesBelow(const StoredKey* start, const std::string& path,
                                      bool view32) const;

  std::shared_ptr<StoredKey> classesRoot;
  std::shared_ptr<StoredKey> currentUser;
  std::shared_ptr<StoredKey> localMachine;
  std::vector<GivenHandle> handles;
  std::vector<std::shared_ptr<StoredKey>> removed;  // for handles that are open below them
};

RegistryStore& Store();

// Follows the names from start; null if one is missing.
StoredKey* FindBelow(StoredKey* start, const std::vector<std::string>& names);

#endif
