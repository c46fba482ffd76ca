#ifndef FAULTS_RICHDATABASES_H
#define FAULTS_RICHDATABASES_H

#include <map>
#include <string>

// The databases and patches of a rich launch: their paths, and the statements that make each, with
// a semicolon and a line's end behind each statement.
const std::map<std::string, std::string>& DatabaseScripts();

extern const char* const PatchFolder;
extern const char* const ProjectFolder;

#endif
