// The calls at which a process ends, which the linker puts in front of those of the ODBC double
// (--wrap).
#include "tests/kills/KillPoint.h"

#include "tests/faults/Watchdog.h"

#include <windows.h>
// The ODBC headers build on the one above.
#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// Only the copy that is to be killed has a point.
KillPoint armed;
int calls = 0;

void EndProcessIfReached(bool isAfter)
{
  if (armed.call != 0 && armed.call == calls && armed.isAfter == isAfter)
    (void)kill(getpid(), SIGKILL);
}

template <typename Call>
SQLRETURN Do(Call call)
{
  ++calls;
  EndProcessIfReached(false);
  const SQLRETURN result = call();
  EndProcessIfReached(true);
  return result;
}

}  // namespace

extern "C" {

SQLRETURN WINAPI __real_SQLDriverConnectW(SQLHDBC, SQLHWND, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*,
                                          SQLSMALLINT, SQLSMALLINT*, SQLUSMALLINT);
SQLRETURN WINAPI __real_SQLExecDirectW(SQLHSTMT, SQLWCHAR*, SQLINTEGER);
SQLRETURN WINAPI __real_SQLDisconnect(SQLHDBC);

SQLRETURN WINAPI __wrap_SQLDriverConnectW(SQLHDBC connection, SQLHWND window, SQLWCHAR* text,
                                          SQLSMALLINT textLength, SQLWCHAR* completed,
                                          SQLSMALLINT completedSize, SQLSMALLINT* completedLength,
                                          SQLUSMALLINT completion)
{
  return Do([&] {
    return __real_SQLDriverConnectW(connection, window, text, textLength, completed, completedSize,
                                    completedLength, completion);
  });
}

SQLRETURN WINAPI __wrap_SQLExecDirectW(SQLHSTMT statement, SQLWCHAR* text, SQLINTEGER length)
{
  return Do([&] { return __real_SQLExecDirectW(statement, text, length); });
}

SQLRETURN WINAPI __wrap_SQLDisconnect(SQLHDBC connection)
{
  return Do([&] { return __real_SQLDisconnect(connection); });
}

}  // extern "C"

bool IsKilledAt(const KillPoint& point, const std::function<void()>& work)
{
  const pid_t child = fork();
  if (child == 0) {
    const Watchdog watchdog("to be killed at call " + std::to_string(point.call));
    calls = 0;
    armed = point;
    work();
    _exit(EXIT_SUCCESS);
  }
  int status = 0;
  return child > 0 && waitpid(child, &status, 0) == child && WIFSIGNALED(status) &&
         WTERMSIG(status) == SIGKILL;
}
