// An ODBC driver that kills its process at a chosen statement, and is the driver of development
// machines in all else. It is linked with that one, where the driver manager finds every function
// that isn't here.
#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>

#include <dlfcn.h>
#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

namespace {

int statements = 0;

// KESTREL_KILL_AT holds "before 17" or "after 17": the statement, counted from 1.
void EndProcessIfReached(const char* side)
{
  const char* const point = getenv("KESTREL_KILL_AT");
  const size_t length = strlen(side);
  if (point != nullptr && strncmp(point, side, length) == 0 && atoi(point + length) == statements)
    (void)kill(getpid(), SIGKILL);
}

using ExecDirect = SQLRETURN (*)(SQLHSTMT, SQLWCHAR*, SQLINTEGER);

}  // namespace

extern "C" SQLRETURN SQLExecDirectW(SQLHSTMT statement, SQLWCHAR* text, SQLINTEGER length)
{
  // The next one behind this library, not that of the driver manager in front of it.
  static const auto driversOwn = reinterpret_cast<ExecDirect>(dlsym(RTLD_NEXT, "SQLExecDirectW"));
  ++statements;
  EndProcessIfReached("before ");
  const SQLRETURN result = driversOwn(statement, text, length);
  EndProcessIfReached("after ");
  return result;
}
