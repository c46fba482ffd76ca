// Undefined behaviour that a build with traps has to end, and one without them passes over.
#include <limits.h>

int main(int argc, char**)
{
  const int sum = INT_MAX - 1 + argc;
  return sum + argc == 0 ? 1 : 0;
}
