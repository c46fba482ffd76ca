#include "launcher/CommandLine.h"

namespace {

// Unsigned: the characters beyond ASCII of the ANSI code page are no white space.
bool IsWhiteSpace(char character)
{
  return static_cast<unsigned char>(character) <= ' ';
}

}  // namespace

const char* SkipProgramName(const char* commandLine)
{
  const char* p = commandLine;
  bool quoted = false;
  while (*p != '\0' && (quoted || !IsWhiteSpace(*p))) {
    if (*p == '"')
      quoted = !quoted;
    ++p;
  }
  while (*p != '\0' && IsWhiteSpace(*p))
    ++p;
  return p;
}
