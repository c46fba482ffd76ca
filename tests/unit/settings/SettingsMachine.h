#ifndef TESTS_SETTINGS_SETTINGSMACHINE_H
#define TESTS_SETTINGS_SETTINGSMACHINE_H

// A machine with an installed add-on, and the diary lines of a look at its settings.

#include "tests/doubles/RegistryDouble.h"
#include "tests/doubles/Text.h"

#include <string>

constexpr const char* EnvironmentPath = "Software\\Norvane\\Kestrelforge\\2010\\Environment";
constexpr const char* ConnectionsPath = "Software\\Norvane\\DatabaseConnections";

inline void SetMachine(const std::string& name, const std::string& text)
{
  Registry().SetText(HKEY_LOCAL_MACHINE, RegistryView::Native, EnvironmentPath, name, text);
}

inline void SetMachine32(const std::string& name, const std::string& text)
{
  Registry().SetText(HKEY_LOCAL_MACHINE, RegistryView::Wow32, EnvironmentPath, name, text);
}

inline void SetUser(const std::string& name, const std::string& text)
{
  Registry().SetText(HKEY_CURRENT_USER, RegistryView::Native, EnvironmentPath, name, text);
}

inline void SetMachineConnection(const std::string& name, const std::string& text)
{
  Registry().SetText(HKEY_LOCAL_MACHINE, RegistryView::Native, ConnectionsPath, name, text);
}

inline void SetUserConnection(const std::string& name, const std::string& text)
{
  Registry().SetText(HKEY_CURRENT_USER, RegistryView::Native, ConnectionsPath, name, text);
}

// An opening: access is hexadecimal; result is the status, and the handle if it was given one.
inline std::string OpenLine(const std::string& root, const std::string& path,
                            const std::string& access, const std::string& result)
{
  return "RegOpenKeyExW(" + root + ", \"" + path + "\", 0, " + access + ") = " + result;
}

// A query that expects text and offers 8192 bytes.
inline std::string QueryLine(const std::string& handle, const std::string& name,
                             const std::string& result)
{
  return "RegQueryValueExW(" + handle + ", \"" + name + "\", type 1, 8192) = " + result;
}

#endif
