#ifndef DOUBLES_PLATFORMTEST_H
#define DOUBLES_PLATFORMTEST_H

#include "tests/doubles/Diary.h"

#include <gtest/gtest.h>

// Base of all fixtures that touch the platform: each test starts on an empty machine, and it fails
// if a handle was misused or a failure that it ordered was never reached.
class PlatformTest : public testing::Test
{
protected:
  PlatformTest() { ResetPlatform(); }

  void TearDown() override
  {
    for (const std::string& misuse : TakeMisuses())
      ADD_FAILURE() << misuse;
    ResetPlatform();
  }
};

#endif
