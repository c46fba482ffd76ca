#ifndef DOUBLES_PROCESSDOUBLE_H
#define DOUBLES_PROCESSDOUBLE_H

// Processes, the environment of this one, and long path names, behind CreateProcessW,
// GetCurrentProcess, TerminateProcess, CloseHandle, GetModuleFileNameExA, GetEnvironmentVariableW,
// SetEnvironmentVariableW and GetLongPathNameW.
//
// Every start succeeds unless FailCall says otherwise, and nothing is started. TerminateProcess of
// the current process really ends it, with exit code 3 and a line on the standard error output:
//
//   EXPECT_EXIT(Run(), testing::ExitedWithCode(3), "TerminateProcess 0xC0000417");
//
// The environment is empty at first; names have no regard to case. No path exists unless it was
// given a long form; a failed call leaves the buffer as it is. A variable longer than the buffer
// fills the buffer with 0xBD.

#include <windows.h>

#include <string>
#include <vector>

struct StartedProcess
{
  std::string application;
  std::string commandLine;
  bool inheritsHandles = false;
  std::string path;  // PATH at that moment, which the process inherits
};

class ProcessDouble
{
public:
  void SetVariable(const std::string& name, const std::string& value);
  void RemoveVariable(const std::string& name);
  bool HasVariable(const std::string& name) const;
  std::string Variable(const std::string& name) const;  // empty if it isn't set

  // From now on path exists, and this is its long form; path is found without regard to case.
  void SetLongPath(const std::string& path, const std::string& longPath);

  // File of the running program, at first `C:\Launcher\KestrelforgeLauncher.exe`.
  void SetModulePath(const std::string& path);

  const std::vector<StartedProcess>& Started() const;
};

ProcessDouble& Processes();

#endif
