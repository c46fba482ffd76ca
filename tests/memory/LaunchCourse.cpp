#include "tests/memory/LaunchCourse.h"

#include "tests/doubles/Diary.h"
#include "tests/doubles/LiveOdbc.h"
#include "tests/faults/DiaryLine.h"
#include "tests/faults/Watchdog.h"
#include "tests/memory/ProgramMemory.h"
#include "tests/unit/update/LeftToTheEnd.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <new>
#include <regex>

namespace {

using Lines = std::vector<std::string>;

const char* const CriticalLine = "OutputDebugStringW(\"\nCritical Error!!\")";

Lines Part(const Lines& lines, size_t begin, size_t end)
{
  return {lines.begin() + static_cast<std::ptrdiff_t>(begin),
          lines.begin() + static_cast<std::ptrdiff_t>(end)};
}

// Fewer keys are opened by a launch that breaks off, so that later ones get lower numbers.
Lines WithoutKeyNumbers(const Lines& lines)
{
  static const std::regex number("([(= ])#[0-9]+");
  Lines plain;
  for (const std::string& line : lines)
    plain.push_back(std::regex_replace(line, number, "$1#"));
  return plain;
}

// Index of the first line that begins so, or the number of lines.
size_t FirstOf(const Lines& lines, const std::string& beginning)
{
  const auto found = std::find_if(lines.begin(), lines.end(), [&beginning](const auto& line) {
    return line.starts_with(beginning);
  });
  return static_cast<size_t>(found - lines.begin());
}

// Index behind the last line that begins so, or 0.
size_t BehindLastOf(const Lines& lines, const std::string& beginning)
{
  const auto found = std::find_if(lines.rbegin(), lines.rend(), [&beginning](const auto& line) {
    return line.starts_with(beginning);
  });
  return static_cast<size_t>(lines.rend() - found);
}

size_t CountOf(const Lines& lines, const std::string& beginning)
{
  return static_cast<size_t>(
      std::count_if(lines.begin(), lines.end(),
                    [&beginning](const auto& line) { return line.starts_with(beginning); }));
}

void ExpectSameLines(const Lines& lines, const Lines& expected)
{
  const size_t count = std::min(lines.size(), expected.size());
  for (size_t i = 0; i < count; ++i)
    ASSERT_EQ(lines[i], expected[i]) << "line " << i;
  if (lines.size() > count)
    ADD_FAILURE() << "too much: " << lines[count];
  if (expected.size() > count)
    ADD_FAILURE() << "missing: " << expected[count];
}

// A statement that changes a database, and the path of that.
struct Change
{
  std::string path;
  std::string statement;
};

std::vector<Change> ChangesOf(const Lines& diary)
{
  std::map<std::string, std::string> owners;  // of connections and statements, by their handles
  std::vector<Change> changes;
  for (const std::string& line : diary) {
    if (line.starts_with("SQLDriverConnectW(")) {
      const std::string text = QuotedIn(line);
      owners[HandleIn(line)] = text.substr(text.rfind('=') + 1);
    }
    if (line.starts_with("SQLAllocHandle(STMT, "))
      owners[GivenHandleIn(line)] = owners[HandleIn(line)];
    if (line.starts_with("SQLExecDirectW(") && !QuotedIn(line).starts_with("SELECT "))
      changes.push_back({owners[HandleIn(line)], QuotedIn(line)});
  }
  return changes;
}

// What was written is there and nothing else is: values of the registry as a whole launch writes
// them, as many as the diary has, the PATH, and what databases hold after as many changes.
void ExpectWritten(const ReferenceCourse& whole, const LaunchOutcome& outcome)
{
  const LaunchOutcome& all = whole.course.outcome;
  EXPECT_EQ(outcome.registry.size() - whole.untouched.registry.size(),
            CountOf(outcome.diary, "RegSetValueExW("));
  for (const auto& [name, value] : outcome.registry) {
    ASSERT_TRUE(all.registry.contains(name)) << name;
    EXPECT_EQ(value, all.registry.at(name)) << name;
  }
  const bool isPathWritten = CountOf(outcome.diary, "SetEnvironmentVariableW(") > 0;
  EXPECT_EQ(outcome.path, isPathWritten ? all.path : whole.untouched.path);
  const size_t changes = ChangesOf(outcome.diary).size();
  ASSERT_LT(changes, whole.databases.size());
  EXPECT_EQ(outcome.databases, whole.databases[changes]) << "after " << changes << " changes";
}

// The process ended: not in the middle of the update, and before the host was started, which is the
// last call.
void ExpectEnd(const ReferenceCourse& whole, const LaunchOutcome& outcome)
{
  const Lines& all = whole.course.outcome.diary;
  const Lines& diary = outcome.diary;
  ASSERT_LT(diary.size(), all.size());
  ExpectSameLines(diary, Part(all, 0, diary.size()));
  EXPECT_TRUE(diary.size() < FirstOf(all, "SQLAllocHandle(ENV") ||
              diary.size() >= BehindLastOf(all, "SQLFreeHandle(ENV"));
  EXPECT_EQ(outcome.started, Lines());
}

// Behind the trace of an update that broke off while it opened its databases, nothing is closed.
// If it had begun to work on them, all are, and the program has kept what a whole launch leaves to
// the end of the process, and no more.
void ExpectRest(const LaunchCourse& whole, const LaunchCourse& broken, const Lines& rest)
{
  const Lines& all = whole.outcome.diary;
  const bool isClosed = FirstOf(rest, "SQLDisconnect(") < rest.size();
  const size_t next =
      isClosed ? FirstOf(all, "SQLDisconnect(") : BehindLastOf(all, "SQLFreeHandle(ENV");
  ExpectSameLines(WithoutKeyNumbers(rest), WithoutKeyNumbers(Part(all, next, all.size())));
  EXPECT_TRUE(isClosed || ChangesOf(broken.outcome.diary).empty());
  if (isClosed) {
    EXPECT_EQ(broken.blocks, whole.blocks);
    EXPECT_EQ(broken.outcome.openConnections, whole.outcome.openConnections);
    EXPECT_EQ(broken.outcome.openEnvironments, whole.outcome.openEnvironments);
  }
}

void ExpectBrokenUpdate(const LaunchCourse& whole, const LaunchCourse& broken)
{
  const Lines& diary = broken.outcome.diary;
  const size_t trace = FirstOf(diary, CriticalLine);
  ASSERT_LT(trace, diary.size()) << "No trace of an update that broke off.";
  ASSERT_EQ(diary.at(trace - 1), "OutputDebugStringW(\"\n\")");
  Lines before = Part(diary, 0, trace - 1);
  // A patch that fails behind its connection is closed by itself.
  const size_t closed = FirstOf(before, "SQLDisconnect(");
  if (closed < before.size()) {
    ASSERT_EQ(closed, before.size() - 3);
    before.resize(closed);
  }
  ASSERT_LE(before.size(), whole.outcome.diary.size());
  ExpectSameLines(before, Part(whole.outcome.diary, 0, before.size()));
  ExpectRest(whole, broken, Part(diary, trace + 1, diary.size()));
  EXPECT_EQ(broken.outcome.openKeys, whole.outcome.openKeys);
  EXPECT_EQ(broken.outcome.started, whole.outcome.started);
  EXPECT_EQ(broken.outcome.exitCode, 0);
  EXPECT_EQ(broken.outcome.openStreams, 0);
  EXPECT_LE(broken.outcome.openSearches, 1);
}

}  // namespace

LaunchCourse LaunchOutOfMemory(const RichMachine& machine, size_t n)
{
  const Watchdog watchdog("the failing allocation is " + std::to_string(n) + ", with 0 none");
  LaunchCourse course;
  const size_t allocations = ProgramAllocations();
  const size_t blocks = ProgramBlocks();
  if (n > 0)
    FailProgramAllocation(n);
  int32_t exitCode = 0;
  try {
    const LeftToTheEnd whatTheProcessTakesAlong;
    exitCode = Launch(machine);
  } catch (const std::bad_alloc&) {
    course.ended = true;
  }
  course.failed = n > 0 && TakeProgramFailure();
  course.allocations = ProgramAllocations() - allocations;
  course.blocks = ProgramBlocks() - blocks;
  course.outcome = TakeOutcome(exitCode);
  return course;
}

ReferenceCourse LaunchWithMemory(const RichMachine& machine)
{
  ReferenceCourse whole;
  LayOut(machine);
  whole.course = LaunchOutOfMemory(machine);
  LayOut(machine);
  whole.untouched = TakeOutcome(0);
  whole.databases.push_back(whole.untouched.databases);
  for (const Change& change : ChangesOf(whole.course.outcome.diary)) {
    // One that fails counts too: it does the same here.
    (void)RunSql(change.path, {change.statement});
    whole.databases.push_back(TakeOutcome(0).databases);
  }
  EXPECT_EQ(whole.databases.back(), whole.course.outcome.databases);
  return whole;
}

void ExpectBrokenOff(const ReferenceCourse& whole, const LaunchCourse& broken)
{
  if (broken.ended)
    ExpectEnd(whole, broken.outcome);
  else
    ExpectBrokenUpdate(whole.course, broken);
  ExpectWritten(whole, broken.outcome);
  EXPECT_EQ(broken.outcome.misuses, Lines());
}
