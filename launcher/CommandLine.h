#ifndef LAUNCHER_COMMANDLINE_H
#define LAUNCHER_COMMANDLINE_H

// The arguments in the whole command line of a process: what stands behind the program's name and
// the white space after it. The name ends at the first white space outside double quotes; all
// characters up to the blank count as white space. Points into commandLine, which is not null.
const char* SkipProgramName(const char* commandLine);

#endif
