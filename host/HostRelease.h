#ifndef HOST_HOSTRELEASE_H
#define HOST_HOSTRELEASE_H

#include <stdint.h>

// The host's version as an index: 0 is version 15, and so on to 3 for version 18.
using HostRelease = int32_t;

// A version that the add-on has no loader for.
constexpr HostRelease HostReleaseUnknown = -1;

#endif
