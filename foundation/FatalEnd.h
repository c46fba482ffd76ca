#ifndef FOUNDATION_FATALEND_H
#define FOUNDATION_FATALEND_H

#include <errno.h>

// Ends the process at once with the code STATUS_INVALID_CRUNTIME_PARAMETER: no exit handler, no
// exception filter and no destructor runs.
[[noreturn]] void EndOnInvalidParameter();

// Takes the result of a checked runtime text call (wcscpy_s and its kin) and returns only if it
// is 0. Some Windows runtimes end the process themselves when a text doesn't fit, the one that this
// program links only says so: every checked call passes its result through here.
inline void RequireFits(errno_t result)
{
  if (result != 0)
    EndOnInvalidParameter();
}

// The same for the checked printf calls into a buffer of size characters, which give the count of
// characters written, or a negative number. A count of size or more is an overflow as well: some
// runtimes give it for a text that lacks only the room for its terminator.
inline void RequireFormatted(int written, int size)
{
  if (written < 0 || written >= size)
    EndOnInvalidParameter();
}

#endif
