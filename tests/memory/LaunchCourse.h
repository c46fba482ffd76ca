#ifndef TESTS_MEMORY_LAUNCHCOURSE_H
#define TESTS_MEMORY_LAUNCHCOURSE_H

// A launch of the program for which memory runs out somewhere, beside the same launch for which it
// suffices.

#include "tests/faults/RichLaunch.h"

#include <stddef.h>

#include <string>
#include <vector>

struct LaunchCourse
{
  LaunchOutcome outcome;
  size_t allocations = 0;  // of the code under test
  size_t blocks = 0;       // those of them that it has not freed
  bool failed = false;     // the allocation that was to fail did
  bool ended = false;      // and that ended the process
};

// Launches on a machine that is laid out. The n-th allocation of the code under test fails, none if
// n is 0.
LaunchCourse LaunchOutOfMemory(const RichMachine& machine, size_t n = 0);

// A launch for which memory suffices.
struct ReferenceCourse
{
  LaunchCourse course;
  // Of the machine before it.
  LaunchOutcome untouched;
  // What the databases hold when so many of its changes have been made; the last is what it leaves.
  std::vector<std::map<std::string, DatabaseContent>> databases;
};

ReferenceCourse LaunchWithMemory(const RichMachine& machine);

// The launch did what a whole one does as far as it came, and nothing behind that: it ended, or its
// update broke off with its trace, what was open was closed, and the rest was done as ever.
void ExpectBrokenOff(const ReferenceCourse& whole, const LaunchCourse& broken);

#endif
