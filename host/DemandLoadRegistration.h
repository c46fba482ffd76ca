#ifndef HOST_DEMANDLOADREGISTRATION_H
#define HOST_DEMANDLOADREGISTRATION_H

#include "foundation/QulString.h"
#include "host/HostRelease.h"

#include <stddef.h>
#include <stdint.h>

// The entries below the host's "Applications" key that make the host load the add-on's modules.
// Everything stands under HKEY_CURRENT_USER. Paths that pass their buffers end the process.

// Characters of the buffers of a module's path and of a key path, terminators counted.
constexpr size_t ModulePathCharacters = 2048;
constexpr size_t KeyPathCharacters = 512;

// Writes the entries for a host whose key can be opened with full access, unless the entry of the
// start-up loader is there already. "Applications" is joined to hostKeyPath as that stands, with or
// without a backslash. Nothing is reported.
void RegisterDemandLoad(QulString hostKeyPath, HostRelease hostRelease, bool hostIs64Bit);

// Tells whether the start-up loader's entry, which marks the whole registration, exists.
// applicationsPath has no trailing backslash, here and below.
bool IsLoaderRegistered(QulString applicationsPath);

// Writes all entries over what is there; returns 0 with nothing written for HostReleaseUnknown,
// else 1. A single failed write doesn't stop the others.
int32_t WriteDemandLoadEntries(QulString applicationsPath, HostRelease hostRelease,
                               bool hostIs64Bit);

// Composes the modules' full paths into buffers of the given sizes in characters; each holds
// MAX_PATH characters or more. Always returns 1.
int32_t ComposeLoaderFileNames(HostRelease hostRelease, wchar_t* startupLoaderFile,
                               size_t startupLoaderSize, wchar_t* demandLoadFile,
                               size_t demandLoadSize, wchar_t* profileDesignerFile,
                               size_t profileDesignerSize, bool hostIs64Bit);

// Writes a REG_SZ value, without its terminator, and creates the key if need be. Returns 1 if the
// value was written, else 0.
int32_t SetRegistryString(const wchar_t* keyPath, const wchar_t* valueName, const wchar_t* text);

// The same for the REG_DWORD value "LOADCTRLS"; the name given has no effect.
int32_t SetLoadCtrls(const wchar_t* keyPath, const wchar_t* valueName, uint32_t number);

#endif
