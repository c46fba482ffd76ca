#ifndef HOST_HOSTVERSIONARGUMENT_H
#define HOST_HOSTVERSIONARGUMENT_H

#include "foundation/QulString.h"
#include "host/HostRelease.h"

// The switch with which a user demands a host: "/AcadVer", blanks, and a value such as 17, R17.1,
// R17\ABCD-0001 or R17.1\ABCD-0001, in double quotes if it holds blanks.
extern const wchar_t* const HostVersionSwitch;

// Takes the first switch and its value out of commandLine, which holds one, and looks for the host
// demanded. A switch without a value or with an open quote stays in the line. An unusable value
// gives release 3, a version that is not served HostReleaseUnknown. hostExecutable is left as it
// was if no host is found; hostKeyPath then is empty or the base of all hosts. hostIs64Bit always
// gets a value.
HostRelease ResolveRequestedHost(QulString& commandLine, QulString& hostKeyPath,
                                 QulString& hostExecutable, bool& hostIs64Bit);

#endif
