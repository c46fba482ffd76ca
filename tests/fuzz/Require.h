#ifndef FUZZ_REQUIRE_H
#define FUZZ_REQUIRE_H

#include <cstdio>
#include <cstdlib>

// Ends the program with the sentence if what it says doesn't hold; the fuzzer keeps the input.
inline void Require(bool holds, const char* sentence)
{
  if (holds)
    return;
  (void)std::fprintf(stderr, "Not so: %s\n", sentence);
  std::abort();
}

#endif
