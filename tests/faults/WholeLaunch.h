#ifndef FAULTS_WHOLELAUNCH_H
#define FAULTS_WHOLELAUNCH_H

#include "tests/faults/RichLaunch.h"

// A call of a launch in which nothing fails, and what it was for.
struct LaunchCall
{
  std::string function;  // in the form in which it can be made fail: "SQLFetch afterwards"
  int number = 0;        // which of the calls of that name, counted from 1
  size_t lineIndex = 0;  // of its diary line
  std::string line;      // empty for functions that write none

  // Of calls of ODBC:
  std::string database;   // whose handle is used, "QuillRules" or "Spring.mdb"; empty if missing
  std::string statement;  // SQL text, "columns of TABLE" or "tables"; empty for other handles
  bool isLookup = false;  // one row of the catalogue is asked for, to see whether there is any
  int place = 0;          // of a fetch: which one of this statement
  int column = 0;         // of a binding: of the result
  int step = -1;          // in WholeLaunch::steps; -1 outside all of them
};

// A table of one database that is brought up to date from a table of one patch.
struct LaunchStep
{
  std::string patch;
  std::string source;
  std::string database;
  std::string table;
};

struct WholeLaunch
{
  RichMachine machine;
  LaunchOutcome outcome;
  std::map<std::string, std::vector<LaunchCall>> calls;  // by function and form
  std::vector<LaunchStep> steps;
  std::map<std::string, DatabaseContent> before;  // databases and patches at the start
};

// The launch on a whole machine; run once in a process for each route.
const WholeLaunch& WholeLaunchOn(HostRoute route);

// The same without a failure on a machine that differs; run once in a process.
const LaunchOutcome& ReferenceLaunch(const RichMachine& machine);

#endif
