// Updates that are killed: what is in the databases then, and what the next start makes of it.
// Some calls are such moments, in the long form (KESTREL_LONG=1) each of them.
#include "tests/doubles/FilesDouble.h"
#include "tests/faults/RunCount.h"
#include "tests/faults/Sample.h"
#include "tests/faults/Watchdog.h"
#include "tests/kills/ExpectedUpdate.h"
#include "tests/kills/KillPoint.h"
#include "tests/kills/StoredContent.h"
#include "update/DatabaseUpdateManager.h"

#include <algorithm>
#include <set>

namespace {

bool Contains(const std::string& line, const std::string& text)
{
  return line.find(text) != std::string::npos;
}

bool OnlyReads(const std::string& line)
{
  return Contains(line, ": SELECT ") && !line.starts_with("trace: ");
}

// An update that nobody disturbed.
struct WholeUpdate
{
  std::vector<std::string> calls;  // at which a process may be killed
  // How many statements that change something have been sent before each of these calls, and in the
  // end.
  std::vector<size_t> sent;
  std::vector<Contents> states;  // before the first of these statements and after each

  int Calls() const { return static_cast<int>(calls.size()); }
  const Contents& StateAt(const KillPoint& point) const
  {
    return states.at(sent.at(static_cast<size_t>(point.call - (point.isAfter ? 0 : 1))));
  }
  // Some of the calls, or all, counted from 1. Among them are the last one and the first behind a
  // DROP: before that one a table is gone, after it a new one is empty.
  std::set<int> ChosenCalls() const
  {
    std::set<int> chosen = {Calls()};
    for (const size_t place : ChosenPlaces(calls.size(), 9))
      chosen.insert(static_cast<int>(place) + 1);
    const auto drop = std::find_if(calls.begin(), calls.end(), [](const std::string& call) {
      return Contains(call, "\"DROP TABLE ");
    });
    chosen.insert(static_cast<int>(drop - calls.begin()) + 2);
    return chosen;
  }
};

class KilledUpdate : public KillMachine
{
protected:
  using FileBytes = std::map<std::string, std::string>;

  void SetUp() override
  {
    ASSERT_NO_FATAL_FAILURE(KillMachine::SetUp());
    LayOut();
    laidOut = AllFiles();
  }

  static void TearDownTestSuite() { PrintRunCounts(); }

  // Puts the files in the place of those that there are.
  static void Restore(const FileBytes& files)
  {
    for (const auto& [name, bytes] : AllFiles()) {
      if (bytes != "folder")
        Files().Remove("C:\\" + name);
    }
    for (const auto& [name, bytes] : files) {
      if (bytes != "folder")
        Files().Put("C:\\" + name, bytes);
    }
  }

  static void ExpectStored(const Contents& contents)
  {
    for (const auto& [name, content] : contents)
      EXPECT_EQ(StoredContent(ProductFile(name)), content) << name;
  }

  // As WholeUpdate::sent.
  static std::vector<size_t> SentBefore(const Lines& calls)
  {
    std::vector<size_t> before = {0};
    for (const std::string& call : calls) {
      const bool changes = call.starts_with("SQLExecDirectW(") && !Contains(call, ", \"SELECT ");
      before.push_back(before.back() + (changes ? 1 : 0));
    }
    return before;
  }

  // Lets an update go its way on the machine as it is, and compares all that it did with the rules.
  static WholeUpdate RunUndisturbed(bool keepsStates)
  {
    const Watchdog watchdog("an undisturbed update");
    WholeUpdate update;
    const FileBytes before = AllFiles();
    Lines expected;
    {
      const ExpectedUpdate rules(ProductFile, keepsStates);
      expected = rules.lines;
      update.states = rules.states;
    }
    Restore(before);
    Lines changes;
    for (const std::string& line : RunUpdate()) {
      if (!OnlyReads(line))
        changes.push_back(line);
    }
    EXPECT_EQ(changes, expected);
    ExpectStored(update.states.back());
    update.calls = DiaryOf({"SQLDriverConnectW", "SQLExecDirectW", "SQLDisconnect"});
    update.sent = SentBefore(update.calls);
    EXPECT_EQ(update.states.size(), keepsStates ? update.sent.back() + 1 : 1);
    return update;
  }

  // Kills an update of these files, which goes like the whole one until then. What it has left is
  // there in the end.
  void Kill(const FileBytes& files, const WholeUpdate& whole, const KillPoint& point)
  {
    SCOPED_TRACE("killed " + std::string(point.isAfter ? "after" : "before") + " call " +
                 std::to_string(point.call));
    Restore(files);
    updatePromptPending = true;
    ASSERT_TRUE(IsKilledAt(point, [] { RunDatabaseUpdate(0, 0); }));
    const FileBytes left = AllFiles();
    ExpectStored(whole.StateAt(point));
    ExpectSoundDatabases();
    ExpectStored(whole.StateAt(point));
    Restore(left);
  }

  // All databases can be connected to, are sound, and consist of one file each afterwards. Nothing
  // has happened to the patches.
  void ExpectSoundDatabases() const
  {
    for (const auto& [name, bytes] : laidOut) {
      if (name.ends_with(".mdb")) {
        EXPECT_EQ(SelectRows("C:\\" + name, "PRAGMA integrity_check"), Lines{"ok"}) << name;
      }
    }
    const FileBytes after = AllFiles();
    for (const auto& [name, bytes] : after)
      EXPECT_TRUE(laidOut.contains(name)) << name << " is left.";
    for (const auto& [name, bytes] : laidOut) {
      if (name.find("DatabaseUpdate/") != std::string::npos) {
        EXPECT_TRUE(after.at(name) == bytes) << name << " has changed.";
      }
    }
  }

  FileBytes laidOut;
};

}  // namespace

TEST_F(KilledUpdate, LeavesWhatWasDoneAndTheNextOneGoesOn)
{
  const WholeUpdate whole = RunUndisturbed(true);
  ASSERT_FALSE(HasFailure());
  for (const int call : whole.ChosenCalls()) {
    for (const bool isAfter : {false, true}) {
      SCOPED_TRACE(std::to_string(call) + (isAfter ? " after" : " before"));
      Kill(laidOut, whole, {call, isAfter});
      (void)RunUndisturbed(false);
      ASSERT_FALSE(HasFailure());
      CountRun("points");
    }
  }
}

TEST_F(KilledUpdate, MayBeKilledAgain)
{
  const WholeUpdate whole = RunUndisturbed(true);
  for (int call = 30; call <= whole.Calls(); call += IsLongForm() ? 7 : 60) {
    Kill(laidOut, whole, {call, true});
    const FileBytes left = AllFiles();
    const WholeUpdate next = RunUndisturbed(true);
    for (int again = 26; again <= next.Calls(); again += IsLongForm() ? 11 : 60) {
      SCOPED_TRACE(std::to_string(call) + ", then " + std::to_string(again));
      Kill(left, next, {again, false});
      (void)RunUndisturbed(false);
      ASSERT_FALSE(HasFailure());
      CountRun("killed again");
    }
  }
}
