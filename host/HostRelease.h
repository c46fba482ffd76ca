#ifndef HOST_HOSTRELEASE_H
#define HOST_HOSTRELEASE_H

#include <stdint.h>

// Index of the host's version: 0, 1, 2, 3 stand for the versions 15, 16, 17, 18.
using HostRelease = int32_t;

// A version that the add-on has no loader for.
constexpr HostRelease HostReleaseUnknown = -1;

#endif
