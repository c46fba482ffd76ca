// The runtime's checked text calls: one that doesn't fit ends the process there and then. So there
// is no launch to be judged behind it, and for good is the same as once.
#include "tests/doubles/Diary.h"
#include "tests/faults/FailureKinds.h"
#include "tests/faults/RunCount.h"
#include "tests/faults/Sample.h"
#include "tests/faults/WholeLaunch.h"

#include <gtest/gtest.h>

#include <errno.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <iterator>
#include <set>

namespace {

struct CheckedFailure
{
  const char* function;
  int code;
};

const CheckedFailure CheckedFailures[] = {
    {"wcscpy_s", ERANGE},  {"wcscpy_s", EINVAL},  {"wcscat_s", ERANGE},  {"wcscat_s", EINVAL},
    {"wcsncpy_s", ERANGE}, {"wcsncpy_s", EINVAL}, {"wcsncat_s", ERANGE}, {"wcsncat_s", EINVAL},
    {"strcat_s", ERANGE},  {"strcat_s", EINVAL},  {"_wcslwr_s", EINVAL}, {"vswprintf_s", -1}};

// A copy of this process in which the call at hand fails. It must end with the code of an invalid
// parameter and say nothing else; whatever it would still do to the databases would show in what
// this process finds in them.
class FailingCopy
{
public:
  // In the copy this returns, with IsThis() from then on.
  void Make(const CheckedFailure& failure)
  {
    int ends[2] = {};
    if (pipe(ends) != 0)
      FAIL() << "no pipe";
    const pid_t child = fork();
    if (child == 0) {
      isThis = true;
      // One that hangs is ended, and doesn't end as it must.
      (void)alarm(60);
      (void)dup2(ends[1], STDERR_FILENO);
      (void)close(ends[0]);
      (void)close(ends[1]);
      FailCall(failure.function, 1, static_cast<unsigned long>(failure.code));
      return;
    }
    (void)close(ends[1]);
    std::string said;
    char buffer[256];
    for (ssize_t bytes = 0; (bytes = read(ends[0], buffer, sizeof(buffer))) > 0;)
      said.append(buffer, static_cast<size_t>(bytes));
    (void)close(ends[0]);
    int status = 0;
    (void)waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 3) << status;
    EXPECT_EQ(said, "TerminateProcess 0xC0000417\n");
  }

  bool IsThis() const { return isThis; }

private:
  bool isThis = false;
};

class CheckedCall : public testing::TestWithParam<CheckedFailure>
{
protected:
  // Launches once, and in a copy for each of the chosen calls. Gives their number.
  static size_t LaunchWithCopies(const WholeLaunch& whole)
  {
    constexpr size_t sample = 2;
    const auto calls = whole.calls.find(GetParam().function);
    if (calls == whole.calls.end())
      return 0;
    const size_t count = calls->second.size();
    const std::vector<size_t> places = ChosenPlaces(count, sample);
    const std::set<size_t> chosen(places.begin(), places.end());
    LayOut(whole.machine);
    FailingCopy copy;
    size_t place = 0;
    WatchCalls([&](const char* function) {
      if (copy.IsThis() || function != std::string(GetParam().function))
        return;
      if (chosen.contains(place)) {
        SCOPED_TRACE(place + 1);
        copy.Make(GetParam());
        CountRun("fatal ends");
      }
      ++place;
    });
    const int32_t exitCode = Launch(whole.machine);
    if (copy.IsThis())
      _exit(0);
    const LaunchOutcome outcome = TakeOutcome(exitCode);
    EXPECT_EQ(outcome.diary, whole.outcome.diary);
    EXPECT_EQ(outcome.databases, whole.outcome.databases);
    EXPECT_EQ(place, calls->second.size());
    return chosen.size();
  }
};

std::string TestName(const testing::TestParamInfo<CheckedFailure>& test)
{
  return std::string(test.param.function) +
         (test.param.code < 0 ? "" : std::to_string(test.param.code));
}

// True if there is a test in which this call fails.
bool IsMadeFail(const std::string& call)
{
  const std::vector<FailureKind>& kinds = FailureKinds();
  return std::any_of(kinds.begin(), kinds.end(),
                     [&call](const FailureKind& kind) { return kind.Call() == call; }) ||
         std::any_of(std::begin(CheckedFailures), std::end(CheckedFailures),
                     [&call](const CheckedFailure& failure) { return failure.function == call; });
}

}  // namespace

// Allocations fail in tests of their own. No call of ODBC throws: the two guards against one have
// unit tests.
TEST(FailingCalls, AreAllThatALaunchMakes)
{
  for (const HostRoute route : HostRoutes) {
    for (const auto& [call, places] : WholeLaunchOn(route).calls) {
      EXPECT_TRUE(IsMadeFail(call) || call == "malloc" || call.ends_with(" throwing")) << call;
    }
  }
}

TEST_P(CheckedCall, ThatDoesNotFitEndsTheProcessAtOnce)
{
  size_t copies = 0;
  for (const HostRoute route : HostRoutes)
    copies += LaunchWithCopies(WholeLaunchOn(route));
  EXPECT_GT(copies, 0u) << GetParam().function << " is never called.";
}

INSTANTIATE_TEST_SUITE_P(Kinds, CheckedCall, testing::ValuesIn(CheckedFailures), TestName);
