// Launches in which one allocation of the program fails, each in its turn.
#include "tests/doubles/Diary.h"
#include "tests/faults/RunCount.h"
#include "tests/faults/Sample.h"
#include "tests/memory/LaunchCourse.h"

#include <gtest/gtest.h>

namespace {

using Lines = std::vector<std::string>;

class LaunchMemory : public testing::Test
{
protected:
  static void TearDownTestSuite() { PrintRunCounts(); }

  void TearDown() override { ResetPlatform(); }

  // Lets the allocations of a launch fail one by one: each of them in the long form, else about as
  // many as wanted.
  static void FailEach(const RichMachine& machine, size_t wanted)
  {
    const ReferenceCourse reference = LaunchWithMemory(machine);
    ASSERT_EQ(reference.course.outcome.started.size(), 1u);
    const size_t all = reference.course.allocations;
    ASSERT_GT(all, 0u);
    for (const size_t place : ChosenPlaces(all, wanted)) {
      SCOPED_TRACE("allocation " + std::to_string(place + 1) + " of " + std::to_string(all));
      LayOut(machine);
      const LaunchCourse broken = LaunchOutOfMemory(machine, place + 1);
      ASSERT_TRUE(broken.failed);
      ExpectBrokenOff(reference, broken);
      if (HasFailure())
        return;
      CountRun(broken.ended ? "outside" : "inside");
    }
    LayOut(machine);
    EXPECT_FALSE(LaunchOutOfMemory(machine, all + 1).failed);
  }
};

// What remains of a diary without the reading of versions and the repairs.
Lines WithoutRepair(const Lines& diary)
{
  Lines rest;
  for (const std::string& line : diary) {
    if (!line.starts_with("GetFileVersionInfo") && !line.starts_with("VerQueryValueA(") &&
        !line.starts_with("MsiReinstallProductW("))
      rest.push_back(line);
  }
  return rest;
}

RichMachine WithoutDatabases(HostRoute route = HostRoute::Current)
{
  RichMachine machine;
  machine.route = route;
  machine.withDatabases = false;
  return machine;
}

}  // namespace

TEST_F(LaunchMemory, AnyAllocationThatFailsEndsTheLaunchOrItsUpdate)
{
  FailEach(WithoutDatabases(), 100);
}

TEST_F(LaunchMemory, AlsoWhereTheHostIsTheOneOfDrawings)
{
  FailEach(WithoutDatabases(HostRoute::DrawingClass), 50);
}

TEST_F(LaunchMemory, AlsoWhereTheHostIsAskedForByItsVersion)
{
  FailEach(WithoutDatabases(HostRoute::RequestedVersion), 50);
}

TEST_F(LaunchMemory, AlsoWhereTheHostIsAskedForByItsProduct)
{
  FailEach(WithoutDatabases(HostRoute::RequestedExactly), 50);
}

TEST_F(LaunchMemory, AlsoInAnUpdateWhoseDatabasesHoldWhatWasDoneByThen)
{
  FailEach({}, 100);
}

TEST_F(LaunchMemory, AVersionThatFindsNoMemoryCountsAsNoneAndTheLaunchGoesOn)
{
  LayOut(WithoutDatabases());
  const LaunchCourse whole = LaunchOutOfMemory(WithoutDatabases());
  for (const int n : {1, 2}) {
    LayOut(WithoutDatabases());
    FailCall("malloc", n);
    const LaunchCourse course = LaunchOutOfMemory(WithoutDatabases());
    EXPECT_EQ(course.outcome.exitCode, 0);
    EXPECT_EQ(course.outcome.misuses, Lines());
    EXPECT_EQ(WithoutRepair(course.outcome.diary), WithoutRepair(whole.outcome.diary));
    // A loader that isn't known to be outdated: files are not replaced.
    const Lines repairs = DiaryOf({"MsiReinstallProductW"});
    ASSERT_EQ(repairs.size(), 2u);
    EXPECT_TRUE(repairs[0].ends_with(", 0x100) = 0")) << repairs[0];
    EXPECT_EQ(course.blocks, whole.blocks);
    CountRun("malloc");
  }
}

TEST_F(LaunchMemory, IsAskedForByMallocForTheTwoVersionsAndNothingElse)
{
  LayOut(WithoutDatabases());
  FailCall("malloc", 3);
  EXPECT_EQ(LaunchOutOfMemory(WithoutDatabases()).outcome.misuses,
            Lines{"A failure of malloc was ordered and never reached."});
}
