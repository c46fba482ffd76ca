#ifndef HOST_HOSTSELECTION_H
#define HOST_HOSTSELECTION_H

#include "foundation/QulString.h"
#include "host/HostRelease.h"

// Chooses the host to start: the one that the switch in commandLine demands, else version 15 if
// drawing files belong to it, else the version that the host last recorded as current.
// commandLine comes in as the user's arguments and becomes the host's command line on every road.
// hostKeyPath becomes the path of the host's key as far as it was found; hostExecutable is empty if
// no host was found, or a name without a folder (ResolveRequestedHost). hostIs64Bit comes in false.
// The release has the value reached so far when the search fails.
HostRelease SelectHost(QulString& commandLine, QulString& hostKeyPath, QulString& hostExecutable,
                       bool& hostIs64Bit);

// The version number at the end of the class name of drawing files, two characters long: 0 if there
// is no number, -1 if the class can't be read.
int ReadDwgAssociationVersion();

#endif
