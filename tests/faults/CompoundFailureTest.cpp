// Launches in which several things fail, one on top of the other, and the undisturbed launches
// that follow them.
#include "tests/doubles/Diary.h"
#include "tests/doubles/FilesDouble.h"
#include "tests/doubles/LiveOdbc.h"
#include "tests/faults/DiaryLine.h"
#include "tests/faults/OddOdbc.h"
#include "tests/faults/RunCount.h"
#include "tests/faults/Sample.h"
#include "tests/faults/Watchdog.h"
#include "tests/faults/WholeLaunch.h"
#include "update/DatabaseConfiguration.h"
#include "update/DatabaseUpdateManager.h"

#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <set>

namespace {

using Lines = std::vector<std::string>;

// A statement that changes a database: its text, and which one of that text it is in a launch.
using Change = std::pair<std::string, int>;

// Tells for each statement which one of its text it is.
class ChangeCounter
{
public:
  Change Next(const std::string& statement) { return {statement, ++counts[statement]}; }

private:
  std::map<std::string, int> counts;
};

bool IsChange(const std::string& statement)
{
  return !statement.empty() && !statement.starts_with("SELECT ");
}

std::vector<Change> ChangesOf(const Lines& diary)
{
  ChangeCounter counter;
  std::vector<Change> changes;
  for (const std::string& line : diary) {
    const std::string statement = line.starts_with("SQLExecDirectW(") ? QuotedIn(line) : "";
    if (IsChange(statement))
      changes.push_back(counter.Next(statement));
  }
  return changes;
}

bool IsAmong(const std::vector<Change>& changes, const std::string& beginning)
{
  return std::any_of(changes.begin(), changes.end(), [&beginning](const Change& change) {
    return change.first.starts_with(beginning);
  });
}

// A driver that refuses these statements.
OddAnswers Refusing(const std::set<Change>& refused)
{
  OddAnswers answers;
  answers.refuses = [refused, counter = ChangeCounter()](const std::string& statement) mutable {
    return IsChange(statement) && refused.contains(counter.Next(statement));
  };
  return answers;
}

LaunchOutcome RunLaunch()
{
  const Watchdog watchdog("compound failure");
  return TakeOutcome(Launch({}));
}

LaunchOutcome LaunchRefusing(const std::set<Change>& refused)
{
  LayOut({});
  AnswerOddly(Refusing(refused));
  return RunLaunch();
}

// The program is started again on what an earlier launch left, and nothing fails.
LaunchOutcome LaunchAgain()
{
  ClearDiary();
  DataSourceTable.Free();
  updatePromptPending = true;
  // An ordinary driver takes the place of the odd one.
  EXPECT_TRUE(UseLiveOdbc());
  return RunLaunch();
}

// The launch went on to its end.
void ExpectWholeCourse(const LaunchOutcome& outcome)
{
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.started, ReferenceLaunch({}).started);
  EXPECT_EQ(outcome.openKeys, ReferenceLaunch({}).openKeys);
  EXPECT_EQ(outcome.openConnections, ReferenceLaunch({}).openConnections);
  EXPECT_EQ(outcome.openStreams, 0);
  EXPECT_EQ(outcome.misuses, Lines());
  for (const auto& [name, content] : outcome.databases)
    EXPECT_FALSE(content.contains("damaged")) << name;
}

// A table's rows, its columns in front; empty if there is no such table.
Lines RowsOf(const LaunchOutcome& outcome, const std::string& database, const std::string& table)
{
  const DatabaseContent& content = outcome.databases.at(database);
  const auto found = content.find(table);
  return found == content.end() ? Lines() : found->second;
}

// The machine before a launch.
const LaunchOutcome& Untouched()
{
  static const LaunchOutcome outcome = [] {
    LayOut({});
    return TakeOutcome(0);
  }();
  return outcome;
}

using Place = std::pair<std::string, std::string>;  // database and table

std::set<Place> PlacesOf(const std::vector<const LaunchOutcome*>& outcomes)
{
  std::set<Place> places;
  for (const LaunchOutcome* outcome : outcomes) {
    for (const auto& [name, content] : outcome->databases) {
      for (const auto& [table, rows] : content)
        places.insert({name, table});
    }
  }
  return places;
}

// What an UPDATE changes, and where: its text without the values.
std::string RowOf(const Change& change)
{
  const std::string& statement = change.first;
  const size_t values = statement.find(" SET ");
  const size_t condition = statement.rfind(" WHERE ");
  if (values == std::string::npos || condition == std::string::npos)
    return statement;
  return statement.substr(0, values) + statement.substr(condition);
}

// True if the later one is another database's if the earlier one is refused. Behind a table that
// could not be made or dropped, statements are left out, and with them those of one text are
// counted anew.
bool MayMoveOn(const Change& earlier, const Change& later, const std::vector<Change>& changes)
{
  const bool changesTheCourse =
      earlier.first.starts_with("CREATE ") || earlier.first.starts_with("DROP ");
  const auto hasItsText = [&later](const Change& change) { return change.first == later.first; };
  const bool isOneOfMany = std::count_if(changes.begin(), changes.end(), hasItsText) > 1;
  return changesTheCourse && isOneOfMany;
}

// Two statements that are refused in one launch. Independent: what the one costs doesn't depend on
// whether the other is refused, too. Of two that write one row, the second makes up for the first.
struct Pair
{
  Pair(const Change& earlier, const Change& later, const std::vector<Change>& changes)
      : laterText(later.first),
        movesOn(MayMoveOn(earlier, later, changes)),
        isIndependent(!movesOn && RowOf(earlier) != RowOf(later))
  {
  }

  // True if the later one may be refused where it is not if it is the only one.
  bool MayMoveTo(const std::string& table) const
  {
    return movesOn && laterText.find(table) != std::string::npos;
  }

  std::string laterText;
  bool movesOn;
  bool isIndependent;
};

bool Holds(const Lines& rows, const std::string& row)
{
  return std::find(rows.begin(), rows.end(), row) != rows.end();
}

// No row that was in none of the launches and not there before.
void ExpectKnownRows(const Lines& rows, const std::vector<Lines>& launches, const Lines& before)
{
  for (const std::string& row : rows) {
    EXPECT_TRUE(Holds(before, row) ||
                std::any_of(launches.begin(), launches.end(),
                            [&row](const Lines& launch) { return Holds(launch, row); }))
        << row;
  }
}

// Every row that was in all of the launches.
void ExpectSharedRows(const Lines& rows, const std::vector<Lines>& launches)
{
  for (const std::string& row : launches.at(0)) {
    const bool isShared = std::all_of(launches.begin(), launches.end(),
                                      [&row](const Lines& launch) { return Holds(launch, row); });
    EXPECT_TRUE(!isShared || Holds(rows, row)) << row << " is missing.";
  }
}

// Two failures that are independent: each leaves what it leaves alone. Else: what may be left of a
// table without one of them.
void ExpectTables(const LaunchOutcome& both, const LaunchOutcome& one, const LaunchOutcome& other,
                  const Pair& pair)
{
  const LaunchOutcome& none = ReferenceLaunch({});
  for (const Place& place : PlacesOf({&both, &none, &one, &other})) {
    const std::string& database = place.first;
    const std::string& table = place.second;
    SCOPED_TRACE(database + " " + table);
    const Lines rows = RowsOf(both, database, table);
    const Lines expected = RowsOf(none, database, table);
    const Lines ofOne = RowsOf(one, database, table);
    const Lines ofOther = RowsOf(other, database, table);
    if (pair.isIndependent && ofOne == expected) {
      EXPECT_EQ(rows, ofOther);
    } else if (pair.isIndependent && ofOther == expected) {
      EXPECT_EQ(rows, ofOne);
    } else {
      ExpectKnownRows(rows, {expected, ofOne, ofOther}, RowsOf(Untouched(), database, table));
      if (!pair.MayMoveTo(table))
        ExpectSharedRows(rows, {expected, ofOne, ofOther});
    }
  }
}

// The two numbers of a version that the patches differ in.
std::string VersionOf(const LaunchOutcome& outcome, const std::string& database)
{
  std::string version;
  for (const std::string& row : RowsOf(outcome, database, "KFVersion")) {
    if (row.starts_with("'BuildNumber'") || row.starts_with("'MinorNumber'"))
      version += row.substr(row.find('|'));
  }
  return version;
}

// A launch later those databases are at the newest version that were not, by the numbers that are
// compared. The others are left alone, but for projects that they lack.
void ExpectNextLaunch(const LaunchOutcome& broken)
{
  const LaunchOutcome& none = ReferenceLaunch({});
  const LaunchOutcome next = LaunchAgain();
  for (const std::string& name : RichDatabases()) {
    SCOPED_TRACE(name);
    const bool isNewest = VersionOf(broken, name) == VersionOf(none, name);
    EXPECT_EQ(RowsOf(next, name, "KFVersion"), RowsOf(isNewest ? broken : none, name, "KFVersion"));
    const bool hasProjects =
        RowsOf(broken, name, "KFProjectsVersion") == RowsOf(none, name, "KFProjectsVersion");
    if (isNewest && hasProjects) {
      EXPECT_EQ(next.databases.at(name), broken.databases.at(name));
    }
  }
  CountRun("next launches");
}

std::string Text(const Change& change)
{
  return change.first + " (" + std::to_string(change.second) + ")";
}

// The n-th writing of a number of a version.
Change VersionWrite(const std::string& attribute, const std::string& number, int n)
{
  return {"UPDATE KFVersion SET [Value]='" + number + "' WHERE [Attribute]='" + attribute + "'", n};
}

const Change CreateShapes = {
    "CREATE TABLE Shapes ([Id] LONG NOT NULL ,[Name] TEXT(20) NULL,PRIMARY KEY ([Id]));", 1};
const Change InsertPart = {
    "INSERT INTO [Parts] ([Id],[Name],[Weight]) VALUES (4,'O''Neil',0.500000);", 1};
const Change InsertColour = {
    "INSERT INTO [Colours] ([Code],[Name],[Since],[Used],[Remark]) VALUES "
    "('r','rot','31/3/2010',1,'a remark');",
    1};
const Change DeletePart = {"DELETE FROM Parts WHERE [Id]=3;", 1};

// Runs the launch in a process of its own, which is killed in front of a statement.
void LaunchAndBeKilled(const std::set<Change>& refused, const std::string& lastStatement)
{
  LayOut({});
  const pid_t child = fork();
  if (child == 0) {
    // The clock of a process is not that of its copy.
    const Watchdog watchdog("killed launch");
    OddAnswers answers = Refusing(refused);
    answers.refuses = [inner = answers.refuses, lastStatement](const std::string& statement) {
      if (statement == lastStatement)
        (void)raise(SIGKILL);
      return inner(statement);
    };
    AnswerOddly(answers);
    (void)Launch({});
    _exit(0);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << status;
}

class CompoundFailure : public testing::Test
{
protected:
  // Other machines are laid out for them, which a test in its course must not do.
  static void SetUpTestSuite()
  {
    (void)ReferenceLaunch({});
    (void)Untouched();
  }
};

// The number tells which share of all pairs of statements a test takes.
class TwoFailures : public CompoundFailure, public testing::WithParamInterface<size_t>
{
public:
  static constexpr size_t Shares = 8;

protected:
  // The launch that refuses this statement alone, done once.
  static const LaunchOutcome& LaunchRefusingOnly(size_t number, const Change& change)
  {
    static std::map<size_t, LaunchOutcome> launches;
    if (!launches.contains(number))
      launches[number] = LaunchRefusing({change});
    return launches[number];
  }
};

}  // namespace

TEST_P(TwoFailures, CostWhatEachOfThemCosts)
{
  const std::vector<Change> changes = ChangesOf(ReferenceLaunch({}).diary);
  ASSERT_GT(changes.size(), 60u);
  std::vector<std::pair<size_t, size_t>> pairs;
  for (size_t j = 1; j < changes.size(); ++j) {
    for (size_t i = 0; i < j; ++i)
      pairs.emplace_back(i, j);
  }
  const std::vector<size_t> chosen = ChosenPlaces(pairs.size(), 15);
  for (size_t place = GetParam(); place < chosen.size(); place += Shares) {
    const auto [i, j] = pairs[chosen[place]];
    SCOPED_TRACE(Text(changes[i]) + " and " + Text(changes[j]));
    const LaunchOutcome& one = LaunchRefusingOnly(i, changes[i]);
    const LaunchOutcome& other = LaunchRefusingOnly(j, changes[j]);
    const LaunchOutcome both = LaunchRefusing({changes[i], changes[j]});
    ExpectWholeCourse(both);
    ExpectTables(both, one, other, Pair(changes[i], changes[j], changes));
    CountRun("compound failures");
    ExpectNextLaunch(both);
    if (HasFailure())
      return;
  }
}

// Each share is a test of its own, so that processes can divide them among themselves.
INSTANTIATE_TEST_SUITE_P(Shares, TwoFailures, testing::Range<size_t>(0, TwoFailures::Shares));

TEST_F(CompoundFailure, ATableThatIsDroppedAndNotCreatedStaysAwayAndTheRowsAfterItAreTried)
{
  const LaunchOutcome outcome = LaunchRefusing({CreateShapes, InsertPart, InsertColour});
  ExpectWholeCourse(outcome);
  EXPECT_EQ(RowsOf(outcome, "QuillRules", "Shapes"), Lines());
  EXPECT_FALSE(IsAmong(ChangesOf(outcome.diary), "INSERT INTO [Shapes]"));
  // A later patch brings the part after all, without what only the first one knew of it.
  EXPECT_EQ(RowsOf(outcome, "QuillRules", "Parts").at(3), "4|'angle'|NULL");
  EXPECT_EQ(RowsOf(outcome, "QuillRules", "Colours").size(), 2u);
  const size_t ordinary = ReferenceLaunch({}).traces.size();
  ASSERT_EQ(outcome.traces.size(), ordinary + 3 + 2);
  for (const std::string& trace :
       {std::string("Error executeSQL in QuillRules database."), CreateShapes.first,
        "Unable to create table Shapes\nSql:" + CreateShapes.first, InsertPart.first,
        InsertColour.first})
    EXPECT_EQ(std::count(outcome.traces.begin(), outcome.traces.end(), trace), 1) << trace;
  CountRun("compound failures");
  // The version was written before, so that the patches are not offered again.
  const LaunchOutcome next = LaunchAgain();
  EXPECT_EQ(next.databases, outcome.databases);
  EXPECT_EQ(ChangesOf(next.diary), std::vector<Change>());
  CountRun("next launches");
}

TEST_F(CompoundFailure, AKillBehindThemKeepsWhatWasDoneAndTheNextLaunchTakesTheLaterPatches)
{
  LaunchAndBeKilled({CreateShapes, InsertPart, InsertColour}, DeletePart.first);
  const LaunchOutcome killed = TakeOutcome(0);
  EXPECT_EQ(RowsOf(killed, "QuillRules", "Shapes"), Lines());
  EXPECT_EQ(RowsOf(killed, "QuillRules", "Parts"),
            (Lines{"Id LONG not null key,Name TEXT(30),Weight DOUBLE", "1|'bolt'|1.5",
                   "2|'sheet'|4.25", "3|'gone'|3.5"}));
  EXPECT_EQ(RowsOf(killed, "QuillRules", "Colours").size(), 2u);
  EXPECT_EQ(RowsOf(killed, "QuillRules", "Notes"), RowsOf(Untouched(), "QuillRules", "Notes"));
  EXPECT_EQ(VersionOf(killed, "QuillRules"), "|'1'|'1'");
  for (const std::string name : {"QuillProfiles2010", "NVCMapping2010", "QuillCurrentProject"})
    EXPECT_EQ(killed.databases.at(name), Untouched().databases.at(name)) << name;
  CountRun("compound failures");

  const LaunchOutcome next = LaunchAgain();
  ExpectWholeCourse(next);
  EXPECT_EQ(VersionOf(next, "QuillRules"), "|'2'|'2'");
  EXPECT_FALSE(IsAmong(ChangesOf(next.diary), "DELETE "));
  EXPECT_FALSE(IsAmong(ChangesOf(next.diary), "INSERT INTO [Colours]"));
  EXPECT_EQ(RowsOf(next, "QuillRules", "Colours"), RowsOf(killed, "QuillRules", "Colours"));
  EXPECT_EQ(RowsOf(next, "QuillRules", "Parts").back(), "4|'angle'|NULL");
  EXPECT_EQ(RowsOf(next, "QuillRules", "Shapes"), Lines());
  for (const std::string name : {"QuillProfiles2010", "NVCMapping2010", "QuillCurrentProject"})
    EXPECT_EQ(next.databases.at(name), ReferenceLaunch({}).databases.at(name)) << name;
  CountRun("next launches");
}

TEST_F(CompoundFailure, ADatabaseThatIsAwayOneThatKeepsItsVersionAndAPatchWithoutStepsAreThree)
{
  RichMachine machine;
  machine.without = {"QuillProfiles2010"};
  LayOut(machine);
  // NVCMapping2010 comes behind QuillRules, which is written to for two patches.
  OddAnswers answers = Refusing(
      {VersionWrite("CommMajorVersion", "2012", 2), VersionWrite("CommMinorVersion", "2", 2),
       VersionWrite("CommSPNumber", "0", 3), VersionWrite("BuildNumber", "2", 2),
       VersionWrite("MajorNumber", "1", 3), VersionWrite("MinorNumber", "2", 2)});
  answers.isEmpty = [](const std::string& question) {
    return question == "SELECT * FROM GradeNew" || question == "SELECT * FROM NewParts";
  };
  AnswerOddly(answers);
  const LaunchOutcome outcome = RunLaunch();
  EXPECT_EQ(outcome.started, ReferenceLaunch({}).started);
  EXPECT_FALSE(outcome.databases.contains("QuillProfiles2010"));
  const LaunchOutcome& none = ReferenceLaunch({});
  EXPECT_EQ(RowsOf(outcome, "NVCMapping2010", "KFVersion"),
            RowsOf(Untouched(), "NVCMapping2010", "KFVersion"));
  EXPECT_EQ(RowsOf(outcome, "NVCMapping2010", "Maps"), RowsOf(none, "NVCMapping2010", "Maps"));
  EXPECT_EQ(RowsOf(outcome, "QuillRules", "Colours"), RowsOf(none, "QuillRules", "Colours"));
  EXPECT_EQ(RowsOf(outcome, "QuillRules", "GradeB"), RowsOf(Untouched(), "QuillRules", "GradeB"));
  CountRun("compound failures");
  // Only the one without its version is offered its patches again.
  const LaunchOutcome next = LaunchAgain();
  EXPECT_EQ(next.databases.at("NVCMapping2010"), none.databases.at("NVCMapping2010"));
  EXPECT_EQ(next.databases.at("QuillRules"), outcome.databases.at("QuillRules"));
  EXPECT_TRUE(IsAmong(ChangesOf(next.diary), "UPDATE [Maps]"));
  for (const Change& change : ChangesOf(next.diary)) {
    EXPECT_TRUE(change.first.starts_with("UPDATE KF") || change.first.starts_with("UPDATE [Maps]"))
        << change.first;
  }
  CountRun("next launches");
}

TEST_F(CompoundFailure, ARowThatCanNotBeDeletedIsReportedAndTheNextOneIsTried)
{
  const LaunchOutcome outcome = LaunchRefusing(
      {DeletePart, {"DELETE FROM Notes WHERE [Code]='drop' AND [Since]='1/2/2003';", 1}});
  ExpectWholeCourse(outcome);
  EXPECT_TRUE(IsAmong(ChangesOf(outcome.diary), "DELETE FROM Parts WHERE [Id]=9;"));
  EXPECT_EQ(RowsOf(outcome, "QuillRules", "Parts").at(3), "3|'gone'|3.5");
  EXPECT_EQ(RowsOf(outcome, "QuillRules", "Notes"), RowsOf(Untouched(), "QuillRules", "Notes"));
  EXPECT_EQ(std::count(outcome.traces.begin(), outcome.traces.end(),
                       "Unable to delete record! SQL = '" + DeletePart.first + "'"),
            1);
  CountRun("compound failures");
}

TEST_F(CompoundFailure, ATableThatTakesNoRowsAnyMoreCostsThemAlone)
{
  RichMachine machine;
  machine.changes = {{"QuillRules",
                      "CREATE TRIGGER Full BEFORE INSERT ON Parts BEGIN SELECT RAISE(FAIL, "
                      "'database or disk is full'); END;"
                      "CREATE TRIGGER Fuller BEFORE UPDATE ON Parts BEGIN SELECT RAISE(FAIL, "
                      "'database or disk is full'); END;"}};
  LayOut(machine);
  const LaunchOutcome outcome = RunLaunch();
  ExpectWholeCourse(outcome);
  const LaunchOutcome& none = ReferenceLaunch({});
  EXPECT_EQ(
      RowsOf(outcome, "QuillRules", "Parts"),
      (Lines{"Id LONG not null key,Name TEXT(30),Weight DOUBLE", "1|'bolt'|1.5", "2|'plate'|2.5"}));
  // Each row's UPDATE fails in silence and its INSERT with a trace.
  EXPECT_EQ(outcome.traces.size(), none.traces.size() + 3);
  DatabaseContent rest = outcome.databases.at("QuillRules");
  DatabaseContent expected = none.databases.at("QuillRules");
  rest.erase("Parts");
  expected.erase("Parts");
  EXPECT_EQ(rest, expected);
  CountRun("compound failures");
}

TEST_F(CompoundFailure, ADatabaseThatCanOnlyBeReadIsOfferedEverythingAgainWhenItCanBeWritten)
{
  LayOut({});
  const std::string file = FileOf("QuillRules");
  // The format that a writer has to know stands in the file's header.
  constexpr size_t writeVersion = 18;
  std::string bytes = Files().Read(file);
  const char own = bytes[writeVersion];
  bytes[writeVersion] = 3;
  Files().Put(file, bytes);
  const LaunchOutcome outcome = RunLaunch();
  EXPECT_EQ(outcome.started, ReferenceLaunch({}).started);
  EXPECT_EQ(Files().Read(file), bytes);
  for (const std::string name : {"QuillProfiles2010", "NVCMapping2010", "QuillCurrentProject"})
    EXPECT_EQ(outcome.databases.at(name), ReferenceLaunch({}).databases.at(name)) << name;
  CountRun("compound failures");
  bytes[writeVersion] = own;
  Files().Put(file, bytes);
  EXPECT_EQ(LaunchAgain().databases, ReferenceLaunch({}).databases);
  CountRun("next launches");
}
