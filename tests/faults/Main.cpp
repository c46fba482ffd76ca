#include "tests/faults/RunCount.h"

#include <gtest/gtest.h>

// What a launch leaves to the end of the process on purpose: the buffers that the configuration
// file is read into, and patches that could not be opened.
extern "C" const char* __lsan_default_suppressions()
{
  return "leak:QulFileAccess::ReadAll\nleak:OpenPatches\n";
}

int main(int argc, char** argv)
{
  testing::InitGoogleTest(&argc, argv);
  const int result = RUN_ALL_TESTS();
  PrintRunCounts();
  return result;
}
