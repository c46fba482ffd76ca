#ifndef LAUNCHER_LAUNCHERMAIN_H
#define LAUNCHER_LAUNCHERMAIN_H

#include "foundation/QulString.h"
#include "host/HostRelease.h"

#include <windows.h>

#include <stdint.h>

// The whole run: chooses the host, records the loader for it, registers the add-on, repairs it,
// brings its databases up to date, rewrites PATH and starts the host. arguments are the user's in
// the ANSI code page, without the program's name, and may be null; nothing else is looked at.
// Always returns 0: every stop is silent.
int32_t LauncherMain(HINSTANCE instance, HINSTANCE previousInstance, const char* arguments,
                     int32_t showState);

// The file name's end that tells for which release and width a loader is made; nothing for a
// release that is not served. Releases 0 and 1 have 32-bit loaders only.
const wchar_t* LoaderSuffix(HostRelease hostRelease, bool hostIs64Bit);

// Starts the host, which runs on by itself and inherits the environment and the current folder.
// commandLine is all that it sees: the program's name doesn't stand in front. A failed start is not
// reported.
void StartHost(QulString hostExecutable, QulString commandLine);

#endif
