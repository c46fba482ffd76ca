#ifndef FAULTS_RUNCOUNT_H
#define FAULTS_RUNCOUNT_H

#include <string>

// Counts a launch that was run and judged, under what was done to it: "odd drivers".
void CountRun(const std::string& kind);

// Prints a line `runs: KIND NUMBER` for each kind, in the order of the alphabet. For the end of the
// program; scripts read it.
void PrintRunCounts();

#endif
