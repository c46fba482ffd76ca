#ifndef HOST_HOSTVERSIONARGUMENT_H
#define HOST_HOSTVERSIONARGUMENT_H

#include "foundation/QulString.h"
#include "host/HostRelease.h"

// The switch with which a user demands a host: "/AcadVer", blanks, and a value such as 17, R17.1,
// R17\ABCD-0001 or R17.1\ABCD-0001, in double quotes if it holds blanks.
extern const wchar_t* const HostVersionSwitch;

// Cuts the first switch with its value from commandLine, which holds one, and looks for the host
// demanded. A switch without a value or with an open quote stays in the line. An unusable value
// gives release 3 and leaves hostKeyPath and hostExecutable as they were; a version that is not
// served gives HostReleaseUnknown. Without a host, hostKeyPath becomes empty and hostExecutable
// stays; but a version and product that don't exist leave the base of all hosts in hostKeyPath, and
// in hostExecutable, if the machine has that key, a name without a folder. hostIs64Bit always gets
// a value.
HostRelease ResolveRequestedHost(QulString& commandLine, QulString& hostKeyPath,
                                 QulString& hostExecutable, bool& hostIs64Bit);

#endif
