// Undefined behaviour that a build with traps has to end, and one without them passes over.
#include <limits.h>
#include <stdio.h>

int main(int argc, char**)
{
  const int sum = INT_MAX - 1 + argc;
  (void)printf("went on with %d\n", sum + argc);
  return 0;
}
