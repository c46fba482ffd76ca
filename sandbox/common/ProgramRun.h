#ifndef SANDBOX_COMMON_PROGRAMRUN_H
#define SANDBOX_COMMON_PROGRAMRUN_H

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

struct ProgramStart
{
  std::wstring program;                     // full path
  std::optional<std::wstring> commandLine;  // the whole line; none hands over a null pointer
  std::wstring folder;                      // the program's current folder
  std::optional<std::wstring> path;         // PATH; none starts it without the variable
  DWORD timeLimit = 60000;                  // in milliseconds, for the program and its children
  bool leaveChildren = false;               // neither count, await nor end its children
};

struct ProgramRun
{
  bool started = false;
  bool inTime = false;
  DWORD exitCode = 0;
  std::vector<std::string> debugOutput;
  std::vector<DWORD> exceptions;
  DWORD children = 0;  // processes that were started by it or by one of its children
};

// Runs a program as its debugger and waits until it and all its children have ended. Under Wine the
// first program to show a window gets the desktop's process for a child, which stays; so who can't
// rule that out leaves the children alone.
ProgramRun RunProgram(const ProgramStart& start);

#endif
