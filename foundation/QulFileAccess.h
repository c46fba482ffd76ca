#ifndef FOUNDATION_QULFILEACCESS_H
#define FOUNDATION_QULFILEACCESS_H

#include "foundation/QulString.h"

#include <stdint.h>
#include <stdio.h>

// A text file of the runtime, opened by a wide path, that can be read whole into a string. The
// runtime is asked to look for a byte-order mark itself, and then delivers wide text.
class QulFileAccess
{
public:
  // Opens the file at path in the given mode ("r"), to which the request for wide text is added.
  // file stays null if that fails, or if path is empty. The last argument has no effect.
  QulFileAccess(const QulString& path, const QulString& mode, int unused);
  QulFileAccess(const QulFileAccess&) = delete;
  QulFileAccess& operator=(const QulFileAccess&) = delete;
  // Closes the file if it is open.
  virtual ~QulFileAccess();

  // Reads up to size items into result and returns how many of them were read: characters where the
  // stream delivers a byte-order mark, else bytes, which are taken as text in the ANSI code page.
  // The file is open, at its start, and size is its size in bytes. The text ends at the first
  // terminator in it. The memory that is read into is given up to the end of the process.
  uint64_t ReadAll(QulString& result, uint64_t size);

  FILE* file =
      nullptr;        // owned; the user of this object seeks in it and may close it, leaving null
  int32_t flags = 1;  // set for a reader to come
};

#endif
