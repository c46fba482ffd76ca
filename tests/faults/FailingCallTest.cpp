// Every call of a launch fails once, in every way that it knows, and from every call on all that
// follow it do.
#include "tests/doubles/Diary.h"
#include "tests/faults/LaunchRules.h"
#include "tests/faults/RunCount.h"
#include "tests/faults/Sample.h"
#include "tests/faults/Watchdog.h"

#include <gtest/gtest.h>

#include <stdlib.h>

#include <algorithm>
#include <set>

namespace {

std::string Joined(const Sentences& sentences)
{
  std::string text;
  for (const std::string& sentence : sentences)
    text += "\n  " + sentence;
  return text;
}

class FailingCall : public testing::TestWithParam<FailureKind>
{
protected:
  // Runs the launch with this call failing and gives what it has left.
  static LaunchOutcome RunWith(const WholeLaunch& whole, const LaunchCall& call, bool forGood)
  {
    const FailureKind& kind = GetParam();
    LayOut(whole.machine);
    const unsigned long code = static_cast<unsigned long>(kind.code);
    if (forGood)
      FailCallsFrom(kind.Call(), call.number, code);
    else
      FailCall(kind.Call(), call.number, code);
    const Watchdog watchdog(RunName(whole, call, forGood));
    return TakeOutcome(Launch(whole.machine));
  }

  static std::string RunName(const WholeLaunch& whole, const LaunchCall& call, bool forGood)
  {
    return NameOf(whole.machine.route) + ", " + GetParam().Text() +
           (forGood ? " from call " : " at call ") + std::to_string(call.number) + ": " + call.line;
  }

  // The calls that can fail in this way. Those of ODBC are the same on all routes.
  static std::vector<LaunchCall> CallsOf(const WholeLaunch& whole)
  {
    const auto found = whole.calls.find(GetParam().Call());
    const bool same =
        GetParam().function.starts_with("SQL") && whole.machine.route != HostRoute::Current;
    return found == whole.calls.end() || same ? std::vector<LaunchCall>() : found->second;
  }
};

class LastingFailure : public FailingCall
{
};

std::string TestName(const testing::TestParamInfo<FailureKind>& info)
{
  std::string name = info.param.Call() + (info.param.code < 0 ? "Minus" : "Code") +
                     std::to_string(abs(info.param.code));
  std::replace(name.begin(), name.end(), ' ', '_');
  return name;
}

}  // namespace

TEST_P(FailingCall, OnceChangesWhatItIsToChangeAndNothingElse)
{
  size_t runs = 0;
  for (const HostRoute route : HostRoutes) {
    const WholeLaunch& whole = WholeLaunchOn(route);
    const std::vector<LaunchCall> calls = CallsOf(whole);
    const size_t sample = whole.machine.withDatabases ? 2 : 1;
    for (const size_t i : ChosenPlaces(calls.size(), sample)) {
      const LaunchOutcome outcome = RunWith(whole, calls[i], false);
      const Sentences faults = JudgeOnce(whole, calls[i], GetParam(), outcome);
      EXPECT_TRUE(faults.empty()) << RunName(whole, calls[i], false) << Joined(faults);
      CountRun("failing once");
      ++runs;
    }
  }
  EXPECT_GT(runs, 0u) << GetParam().Text() << " fails nowhere.";
}

TEST_P(LastingFailure, LeavesTheLaunchAndTheDatabasesSound)
{
  constexpr size_t sample = 1;
  size_t runs = 0;
  for (const HostRoute route : HostRoutes) {
    const WholeLaunch& whole = WholeLaunchOn(route);
    const std::vector<LaunchCall> calls = CallsOf(whole);
    const std::vector<size_t> chosen = ChosenPlaces(calls.size(), sample);
    std::set<size_t> places(chosen.begin(), chosen.end());
    // From the very first one in any case.
    if (!calls.empty())
      places.insert(0);
    for (const size_t i : places) {
      const LaunchOutcome outcome = RunWith(whole, calls[i], true);
      const Sentences faults = JudgeForGood(whole, GetParam(), outcome);
      EXPECT_TRUE(faults.empty()) << RunName(whole, calls[i], true) << Joined(faults);
      CountRun("failing for good");
      ++runs;
    }
  }
  EXPECT_GT(runs, 0u) << GetParam().Text() << " fails nowhere.";
}

INSTANTIATE_TEST_SUITE_P(Kinds, FailingCall, testing::ValuesIn(FailureKinds()), TestName);
INSTANTIATE_TEST_SUITE_P(Kinds, LastingFailure, testing::ValuesIn(LastingFailureKinds()), TestName);
