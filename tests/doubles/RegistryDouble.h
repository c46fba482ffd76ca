#ifndef DOUBLES_REGISTRYDOUBLE_H
#define DOUBLES_REGISTRYDOUBLE_H

// A registry in memory, behind RegOpenKeyExW, RegCreateKeyExW, RegQueryValueExW, RegEnumKeyExW,
// RegEnumValueW, RegSetValueExW and RegCloseKey.
//
// Subkeys and values are enumerated in the order in which they were made. Names have no regard to
// case. Values keep exactly the bytes that they were given: no terminator is added, neither when a
// value is written nor when it is read, and what lies behind the data in a buffer is left alone. A
// buffer that is too small is filled with 0xBD. Access masks are kept with each handle and tested
// at each use. Use of a closed or unknown handle gives error 6 and fails the test in the end; a
// null handle gives error 6 and no more, for the code under test closes null by design.
//
// FailCall("RegEnumKeyExW with a name", n, code) makes the n-th call that finds a subkey give its
// name and report the error all the same.
//
// The roots are HKEY_CLASSES_ROOT, HKEY_CURRENT_USER and HKEY_LOCAL_MACHINE. The two views differ
// below HKLM\Software and HKCR\CLSID, and nowhere else. The 32-bit ones lie below
// HKLM\Software\Wow6432Node and HKCR\Wow6432Node\CLSID, as they do on Windows.

#include <windows.h>

#include <stdint.h>

#include <string>
#include <vector>

enum class RegistryView
{
  Native,
  Wow32
};

// A stored value as it is, or the absence of one.
struct RegistryValue
{
  bool exists = false;
  DWORD type = 0;
  std::vector<unsigned char> bytes;

  // The bytes as text, all of them but a terminator at the end.
  std::string Text() const;
  // The first four bytes as a number.
  uint32_t Number() const;
};

class RegistryDouble
{
public:
  // Paths are without a leading backslash. Whatever is missing on the way is made too.
  void AddKey(HKEY root, RegistryView view, const std::string& path);
  // REG_SZ with its terminator. The default value of a key has the name "".
  void SetText(HKEY root, RegistryView view, const std::string& path, const std::string& name,
               const std::string& text);
  // REG_DWORD.
  void SetNumber(HKEY root, RegistryView view, const std::string& path, const std::string& name,
                 uint32_t number);
  void SetRaw(HKEY root, RegistryView view, const std::string& path, const std::string& name,
              DWORD type, const std::vector<unsigned char>& bytes);

  void RemoveKey(HKEY root, RegistryView view, const std::string& path);
  void RemoveValue(HKEY root, RegistryView view, const std::string& path, const std::string& name);

  // Opening this key with any right of the mask gives error 5 from now on. KEY_CREATE_SUB_KEY also
  // denies the creation of keys directly below it.
  void DenyAccess(HKEY root, RegistryView view, const std::string& path, REGSAM mask);

  bool HasKey(HKEY root, RegistryView view, const std::string& path) const;
  RegistryValue Value(HKEY root, RegistryView view, const std::string& path,
                      const std::string& name) const;
  // Empty also if there is no such key.
  std::vector<std::string> SubkeyNames(HKEY root, RegistryView view, const std::string& path) const;
  std::vector<std::string> ValueNames(HKEY root, RegistryView view, const std::string& path) const;

  int OpenHandleCount() const;
  // Full paths of the keys that are open, such as `HKCU\Software\X`, by the time of their opening.
  std::vector<std::string> OpenKeyPaths() const;
};

RegistryDouble& Registry();

#endif
