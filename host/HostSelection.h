#ifndef HOST_HOSTSELECTION_H
#define HOST_HOSTSELECTION_H

#include "foundation/QulString.h"
#include "host/HostRelease.h"

// Chooses the host to start: the one that the switch in commandLine demands, else version 15 if
// drawing files belong to it, else the host's own record of the current product and version.
// commandLine comes in as the user's arguments and becomes the host's command line on every road.
// hostKeyPath becomes the path of the host's key as far as it was found; hostExecutable is empty if
// no host was found. hostIs64Bit comes in false. The release has the value reached so far when the
// search fails.
HostRelease SelectHost(QulString& commandLine, QulString& hostKeyPath, QulString& hostExecutable,
                       bool& hostIs64Bit);

// The number made of the last two characters of the class that drawing files belong to: 0 if they
// are no number, -1 if the class can't be read.
int ReadDwgAssociationVersion();

#endif
