#ifndef FUZZ_ONEINPUT_H
#define FUZZ_ONEINPUT_H

#include <stddef.h>

#include <functional>

// How the code under test may end.
enum class Ending
{
  Returned,
  Fatal,       // a checked text call overflowed, where the program ends its process
  OutOfMemory  // an allocation that no memory can serve
};

// The time of one input: while it lives, the arrays that are made are counted, and those that are
// left at its end are freed. New arrays are filled with 0xBD.
//
// A fatal end becomes an exception, which unwinds the code under test up to Run; what that code
// holds in plain pointers then is left, as it is when a process ends.
class OneInput
{
public:
  OneInput();
  OneInput(const OneInput&) = delete;
  OneInput& operator=(const OneInput&) = delete;
  ~OneInput();

  Ending Run(const std::function<void()>& action);

  // Arrays that were made since the beginning of this input and are not deleted.
  size_t ArraysLeft() const;
};

#endif
