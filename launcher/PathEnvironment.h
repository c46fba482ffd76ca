#ifndef LAUNCHER_PATHENVIRONMENT_H
#define LAUNCHER_PATHENVIRONMENT_H

#include <stddef.h>

// Characters of a PATH and of one of its elements, terminators counted. An element or a new PATH
// that is longer ends the process; an old PATH that is longer counts as empty.
constexpr size_t PathListCharacters = 32768;
constexpr size_t PathElementCharacters = 2048;

// Rewrites PATH of this process: the folders of the registry value "AddPath" in front, then the old
// elements that are neither the add-on's own nor of the shared folder of common binaries. Without a
// PATH nothing is changed, and a failure is not reported.
void UpdatePathEnvironment();

// Puts the elements to keep, each followed by ";", into cleaned, a buffer of PathListCharacters.
// current holds as many and is turned to lower case in place; what is kept is in lower case too.
// Elements of one character and empty ones are dropped.
void CleanPathList(wchar_t* current, wchar_t* cleaned);

#endif
