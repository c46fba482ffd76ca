#ifndef HOST_HOSTENUMERATION_H
#define HOST_HOSTENUMERATION_H

#include "foundation/QulString.h"

#include <windows.h>

// The walks below "Software\Autodesk" that find the host's keys. All paths are relative to a
// registry root.

// "Software\Autodesk\", where every walk starts.
extern const wchar_t* const HostBasePath;

// Where a walk looks, and with which access.
struct HostKeyScope
{
  HKEY root;
  REGSAM valueAccess;
  REGSAM enumerationAccess;
};

// With useMachineRoot the scope of version 15, whose records are the machine's and 32-bit; without
// it that of every later version, whose records are the user's.
HostKeyScope ScopeOfHostKeys(bool useMachineRoot);

// Reads a text of up to 250 characters from an open key, of whatever type the value is. A value
// that is absent, longer or can't be read gives the empty string.
QulString ReadHostValue(HKEY key, const wchar_t* valueName);

// Opens the key of the product that "CurProd" names or, failing that, of the first subkey whose
// name holds "AutoCAD". path becomes its path, with a trailing backslash. Returns 0, or the error
// of the last open. On success the caller closes key; else key is null.
LONG OpenHostProductKey(bool useMachineRoot, HKEY& key, QulString& path);

// Composes the full path of the host's executable from the "AcadLocation" of hostKeyPath under
// HKEY_LOCAL_MACHINE. A key in the native view wins and makes hostIs64Bit true; one in the 32-bit
// view leaves the flag alone. Without a key in either view, hostExecutable is left alone too.
void LocateHostExecutable(QulString hostKeyPath, QulString exeName, QulString& hostExecutable,
                          bool& hostIs64Bit);

// Looks for major.minor\product below every product key. hostKeyPath comes in as the base; it gets
// the path found appended, without a trailing backslash, and stays the base if there is none.
void FindHostKeyExact(const HostKeyScope& scope, QulString& hostKeyPath, const QulString& majorPart,
                      const QulString& minorPart, const QulString& productPart);

// Looks below the current product for a version key whose name holds the version, and in it for a
// subkey whose name holds productPart (any subkey if that is empty). hostKeyPath becomes its path,
// with a trailing backslash, and productPart the subkey's whole name. If there is none,
// hostKeyPath becomes empty.
void FindHostKeyByVersion(bool useMachineRoot, const HostKeyScope& scope, QulString& hostKeyPath,
                          const QulString& majorPart, const QulString& minorPart,
                          QulString& productPart);

#endif
