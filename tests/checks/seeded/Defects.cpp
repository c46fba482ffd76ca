// Defects that the analysers have to report: the first two each of them, the last one those that
// look for it. Nothing builds this file: it shows that a tool which reports nothing elsewhere has
// looked.
#include <stdlib.h>
#include <string.h>

int ReadThroughNull(int choice)
{
  int* number = nullptr;
  if (choice == 1)
    return *number;
  return 0;
}

bool LoseMemory(const char* text)
{
  char* copy = static_cast<char*>(malloc(16));
  if (copy == nullptr)
    return false;
  copy[0] = text[0];
  return copy[0] == 'a';
}

int ReadAfterFree()
{
  int* number = static_cast<int*>(malloc(sizeof(int)));
  if (number == nullptr)
    return 0;
  *number = 1;
  free(number);
  return *number;
}
