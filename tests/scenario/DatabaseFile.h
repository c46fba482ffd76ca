#ifndef SCENARIO_DATABASEFILE_H
#define SCENARIO_DATABASEFILE_H

// Databases that are made for every scenario, and what can be done to a file.

#include "tests/scenario/Outcome.h"

// The text of a database with a version above any patch, for those of the product that a scenario
// doesn't name. projectAttributes are what project patches may compare.
Scenario::Script FillerScript(const std::set<std::string>& projectAttributes);

// What a project patch compares.
std::set<std::string> ProjectAttributes(const Query& projectPatch);

// Has the file's own header say that only a program to come may write to it. Permissions would not
// do: tests may run as root. False if these are no bytes of a database.
bool ForbidWriting(std::string& bytes);

#endif
