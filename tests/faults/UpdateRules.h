#ifndef FAULTS_UPDATERULES_H
#define FAULTS_UPDATERULES_H

#include "tests/faults/ExpectedDatabases.h"
#include "tests/faults/FailureKinds.h"
#include "tests/faults/WholeLaunch.h"

// The rules of the database update for one call of ODBC that fails and all others that don't.

// What the databases hold then.
ExpectedDatabases ExpectAfter(const WholeLaunch& whole, const LaunchCall& call,
                              const FailureKind& kind);

// What is wrong with the traces, a sentence each.
std::vector<std::string> JudgeTraces(const WholeLaunch& whole, const LaunchCall& call,
                                     const FailureKind& kind,
                                     const std::vector<std::string>& traces);

// The databases of a launch on a machine that differs: by statements that were run on a database or
// patch beforehand, by those that aren't there, or by its language.
const ExpectedDatabases::Contents& ContentsWith(const WholeLaunch& whole,
                                                const std::string& database,
                                                const std::string& statements);
const ExpectedDatabases::Contents& ContentsWithout(const WholeLaunch& whole,
                                                   const std::set<std::string>& names);
const ExpectedDatabases::Contents& ContentsInEnglish(const WholeLaunch& whole);

#endif
