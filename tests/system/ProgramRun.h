#ifndef TESTS_SYSTEM_PROGRAMRUN_H
#define TESTS_SYSTEM_PROGRAMRUN_H

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

// Runs a program as its debugger and waits until it and all its children have ended.
ProgramRun RunProgram(const ProgramStart& start);

#endif
