#ifndef TESTS_SYSTEM_HARNESSCHILD_H
#define TESTS_SYSTEM_HARNESSCHILD_H

// The test program started by its own tests, so that they see that the harness notices what the
// launcher must not do. The argument tells what the child does before it ends.
bool IsHarnessChild(const char* argument);
int RunHarnessChild(const char* argument);

#endif
