#ifndef LAUNCHER_INSTALLREPAIR_H
#define LAUNCHER_INSTALLREPAIR_H

// Has Windows Installer refresh every product of the add-on if its COM server is registered or its
// loader is older than this program; in the latter case files that are missing or older come back
// too. Waits for each repair. Failures are not reported and don't stop the other products.
void RepairInstallation();

// True if the add-on's COM server is registered with a path of more than 15 characters.
bool IsComServerRegistered();

// True if both the loader of release 2 for 32-bit hosts and this program have a version, and the
// first number of the loader's is the lower one.
bool IsLoaderOutdated();

#endif
