#ifndef FUZZ_PLAINHOSTSELECTION_H
#define FUZZ_PLAINHOSTSELECTION_H

#include "tests/doubles/RegistryDouble.h"

#include <stddef.h>

#include <string>

// What SelectHost is to find, written a second time on the test's side of the registry. It knows
// nothing of rights.
struct PlainSelection
{
  std::u16string hostCommandLine;
  std::u16string hostKeyPath;
  std::u16string hostExecutable;
  bool hostIs64Bit = false;
  int release = -1;
};

PlainSelection SelectPlainly(const std::u16string& arguments);

// A text as a query for so many bytes reads it into zeros, which make half a character a whole one;
// empty if it is longer or isn't there.
std::u16string ReadText(HKEY root, RegistryView view, const std::u16string& path, const char* name,
                        size_t room);

#endif
