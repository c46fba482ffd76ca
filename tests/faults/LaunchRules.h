#ifndef FAULTS_LAUNCHRULES_H
#define FAULTS_LAUNCHRULES_H

#include "tests/faults/ExpectedDatabases.h"
#include "tests/faults/FailureKinds.h"
#include "tests/faults/WholeLaunch.h"

// The rules of a launch. Each function tells what is wrong, a sentence each.
using Sentences = std::vector<std::string>;

// What holds whatever has failed, once or for good: the exit code; the host is started exactly if
// its executable was found and the two keys of the add-on could be opened, and as the last thing;
// nothing is written for a host that isn't; every handle is given back once, but for those that are
// left to the end of the process; and each database is sound.
Sentences JudgeAlways(const WholeLaunch& whole, const LaunchOutcome& outcome);

// What one call that fails may change, and that it changes nothing else. If it had a part in the
// choice of the host, another one may be started; the rest is done for that one.
Sentences JudgeOnce(const WholeLaunch& whole, const LaunchCall& call, const FailureKind& kind,
                    const LaunchOutcome& outcome);

// The same if a call and all that follow it fail in this way. Functions that keep nothing from the
// databases leave them as in a whole launch. Behind others, tables that no step and no version is
// written to are as they were; the rest hold no value that neither they nor a patch had, and only
// what was to be made anew may be missing. Calls of ODBC change nothing else.
Sentences JudgeForGood(const WholeLaunch& whole, const FailureKind& kind,
                       const LaunchOutcome& outcome);

#endif
