#ifndef SETTINGS_ENVIRONMENTSETTINGS_H
#define SETTINGS_ENVIRONMENTSETTINGS_H

#include "foundation/QulString.h"

// What the add-on's installation tells about itself in the registry. Every call reads anew; a
// value that can't be read, or has more than 4,096 characters, gives the empty string, and nothing
// is reported. Where trailing backslashes are taken off, a lone one stays.

// Path of the registry key that holds the settings; the registry is not looked at.
QulString GetEnvironmentKey();

// The install folder of the add-on, from HKEY_LOCAL_MACHINE only, without up to two trailing
// backslashes. With use32BitView it is the folder that the 32-bit installation recorded.
QulString GetBinPath(bool use32BitView);

// The data folder. A value of the user wins over that of the machine, also an empty one. A user's
// value loses one trailing backslash, a machine's up to two.
QulString GetDataPath();

// The connection string registered for the database name, as it stands; the user's wins over that
// of the machine.
QulString GetRegisteredConnection(const QulString& name);

// Reads a text below HKEY_LOCAL_MACHINE, of whatever type the value is, up to its first terminator.
// Returns 1 if the value was read, else 0 with result as it was. In both cases result loses a
// trailing backslash, if it has two characters or more. The argument unused has no effect.
int ReadMachineRegistryString(const QulString& key, const QulString& valueName, QulString& result,
                              int unused, bool use32BitView);

#endif
