#include "foundation/FatalEnd.h"

#include "tests/doubles/PlatformTest.h"

#include <gtest/gtest.h>

#include <stdio.h>
#include <stdlib.h>

#include <limits>

namespace {

const auto EndedAbnormally = testing::ExitedWithCode(3);

// The whole of what a program prints that ends this way, so a handler that ran would show.
const char* const OnlyTheEnd = "^TerminateProcess 0xC0000417\n$";

void SayThatHandlerRan()
{
  (void)fprintf(stderr, "handler ran\n");
}

struct SaysWhenDestroyed
{
  ~SaysWhenDestroyed() { SayThatHandlerRan(); }
};

void EndInsideAScope()
{
  const SaysWhenDestroyed guard;
  EndOnInvalidParameter();
}

void EndInsideATryBlock()
{
  try {
    EndOnInvalidParameter();
  } catch (...) {
    SayThatHandlerRan();
  }
}

}  // namespace

TEST(FatalEndDeathTest, TheProcessEndsWithTheCodeOfAnInvalidParameter)
{
  EXPECT_EXIT(EndOnInvalidParameter(), EndedAbnormally, OnlyTheEnd);
}

TEST(FatalEndDeathTest, NoExitHandlerRuns)
{
  EXPECT_EXIT(
      {
        (void)atexit(SayThatHandlerRan);
        EndOnInvalidParameter();
      },
      EndedAbnormally, OnlyTheEnd);
}

TEST(FatalEndDeathTest, NoQuickExitOrAbortHandlerRuns)
{
  EXPECT_EXIT(
      {
        (void)at_quick_exit(SayThatHandlerRan);
        (void)std::set_terminate(SayThatHandlerRan);
        EndOnInvalidParameter();
      },
      EndedAbnormally, OnlyTheEnd);
}

TEST(FatalEndDeathTest, NoDestructorRuns)
{
  EXPECT_EXIT(EndInsideAScope(), EndedAbnormally, OnlyTheEnd);
}

TEST(FatalEndDeathTest, NoCatchAllSeesIt)
{
  EXPECT_EXIT(EndInsideATryBlock(), EndedAbnormally, OnlyTheEnd);
}

TEST(FatalEndDeathTest, AnyErrorOfACheckedCallEndsTheProcess)
{
  for (const errno_t error : {ERANGE, EINVAL, STRUNCATE, -1})
    EXPECT_EXIT(RequireFits(error), EndedAbnormally, OnlyTheEnd) << "error " << error;
}

TEST(FatalEndDeathTest, ANegativeCountOfAPrintfCallEndsTheProcess)
{
  for (const int written : {-1, std::numeric_limits<int>::min()})
    EXPECT_EXIT(RequireFormatted(written, 8), EndedAbnormally, OnlyTheEnd) << "count " << written;
}

TEST(FatalEndDeathTest, ACountThatLeavesNoRoomForTheTerminatorEndsTheProcess)
{
  for (const int written : {8, 9, std::numeric_limits<int>::max()})
    EXPECT_EXIT(RequireFormatted(written, 8), EndedAbnormally, OnlyTheEnd) << "count " << written;
}

TEST(FatalEnd, ACallThatSucceededGoesOn)
{
  RequireFits(0);
  RequireFormatted(0, 8);
  RequireFormatted(7, 8);
  EXPECT_TRUE(DiaryOf({"TerminateProcess"}).empty());
}
