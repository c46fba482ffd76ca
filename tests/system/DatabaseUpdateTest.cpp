// What a launch makes of the databases: which versions and contents they have afterwards, what is
// said about it, and what the next launch does. Whatever happens in there, the host is started.

#include "sandbox/common/SandboxFiles.h"
#include "tests/system/DatabaseMachine.h"
#include "tests/system/HeldDatabase.h"

namespace {

using Lines = std::vector<std::string>;

// A machine with QuillRules and QuillBase alone. Each has a table Parts with two rows and says that
// Id is its key.
class DatabaseUpdate : public DatabaseTest
{
protected:
  void SetUp() override
  {
    DatabaseTest::SetUp();
    for (const std::string& file : {Rules, Base}) {
      MakeDatabase(
          file, {.minorNumber = 0},
          {"CREATE TABLE InfoTableRelations ([TableName] TEXT(50), [ColumnName] TEXT(50), "
           "[TypeProperty] TEXT(50))",
           "INSERT INTO InfoTableRelations VALUES ('Parts', 'Id', 'PrimaryKey')", MakeParts,
           "INSERT INTO Parts VALUES (1, 'one')", "INSERT INTO Parts VALUES (2, 'two')"});
    }
    WriteConfiguration(Configuration(Element("QuillRules") + Element("QuillBase")));
  }

  // A patch of these steps, each as it stands behind its number in the table: "'QuillRules',
  // 'Source', 'Target', 0, 0, 0".
  static void LaySteps(const std::string& name, const PatchVersion& version, const Lines& steps,
                       const Lines& statements)
  {
    Lines all = {
        "CREATE TABLE UpdateTable ([ID] LONG, [Target] TEXT(49), [Source] TEXT(49), "
        "[Table] TEXT(49), [D] BIT, [R] BIT, [C] BIT)"};
    for (const std::string& step : steps) {
      all.push_back("INSERT INTO UpdateTable VALUES (" + std::to_string(all.size()) + ", " + step +
                    ")");
    }
    all.insert(all.end(), statements.begin(), statements.end());
    MakeDatabase("DatabaseUpdate\\" + name, version, all);
  }

  // A patch that merges one part into both databases.
  static void LayPart(const std::string& name, const PatchVersion& version, int id,
                      const std::string& part)
  {
    LaySteps(name, version, Merges,
             {MakeParts, "INSERT INTO Parts VALUES (" + std::to_string(id) + ", '" + part + "')"});
  }

  // The same for projects, with a number for the attribute SteelGrades.
  static void LayProjectPart(const std::string& name, int grades, int id, const std::string& part)
  {
    LayPart("Projects\\" + name, {}, id, part);
    Execute("DatabaseUpdate\\Projects\\" + name,
            {MakeProjectsVersion, "INSERT INTO KFProjectsVersion VALUES ('SteelGrades', '" +
                                      std::to_string(grades) + "')"});
  }

  // The traces of a run behind those of the fifteen databases that are missing.
  static Lines TracesOfUpdate(const DatabaseRun& run)
  {
    Lines traces = run.Traces();
    for (const std::string& missing : ConnectFailures(15)) {
      EXPECT_TRUE(!traces.empty() && traces.front() == missing);
      if (!traces.empty()) {
        traces.erase(traces.begin());
      }
    }
    return traces;
  }

  // What was sent to a database behind the three tables that are read when it is opened.
  static Lines SentTo(const DatabaseRun& run, const std::string& file)
  {
    Lines statements = run.StatementsOn(file);
    for (const char* table : {"KFVersion", "KFProjectsVersion", "Info"}) {
      const std::string read = std::string("SELECT * FROM ") + table;
      EXPECT_TRUE(!statements.empty() && statements.front() == read);
      if (!statements.empty()) {
        statements.erase(statements.begin());
      }
    }
    return statements;
  }

  static Lines Parts(const std::string& file)
  {
    return Select(file, "SELECT * FROM Parts ORDER BY Id");
  }

  static Lines VersionStatements(const std::string& minorNumber)
  {
    const std::pair<const char*, std::string> numbers[] = {
        {"CommMajorVersion", "2010"}, {"CommMinorVersion", "0"}, {"CommSPNumber", "0"},
        {"BuildNumber", "0"},         {"MajorNumber", "10"},     {"MinorNumber", minorNumber}};
    Lines statements;
    for (const auto& [attribute, number] : numbers) {
      statements.push_back("UPDATE KFVersion SET [Value]='" + number + "' WHERE [Attribute]='" +
                           attribute + "'");
    }
    return statements;
  }

  inline static const std::string Rules = ProductFile("QuillRules");
  inline static const std::string Base = ProductFile("QuillBase");
  inline static const std::string MakeParts =
      "CREATE TABLE Parts ([Id] LONG NOT NULL, [Name] TEXT(40) NOT NULL, PRIMARY KEY ([Id]))";
  inline static const std::string MakeProjectsVersion =
      "CREATE TABLE KFProjectsVersion ([Attribute] TEXT(255), [Value] TEXT(255))";
  inline static const Lines Merges = {"'QuillRules', 'Parts', 'Parts', 0, 0, 0",
                                      "'QuillBase', 'Parts', 'Parts', 0, 0, 0"};
};

// Tells SQLite that only a later release of it may write the file. Unlike an attribute of the file,
// this holds for root too.
void MakeUnwritable(const std::wstring& path)
{
  constexpr size_t writeVersionOffset = 18;
  std::string bytes;
  ASSERT_TRUE(ReadWholeFile(path, bytes));
  ASSERT_GT(bytes.size(), writeVersionOffset);
  bytes[writeVersionOffset] = 3;
  ASSERT_TRUE(WriteWholeFile(path, bytes));
}

}  // namespace

TEST_F(DatabaseUpdate, APatchRaisesTheVersionAndThenTheContent)
{
  LayPart("A.mdb", {.minorNumber = 1}, 3, "three");
  const DatabaseRun run = Launch();
  EXPECT_EQ(TracesOfUpdate(run), Lines());
  Lines expected = VersionStatements("1");
  const std::string key =
      "SELECT [ColumnName],[TypeProperty] FROM [InfoTableRelations] WHERE [TableName] = 'Parts'";
  expected.insert(expected.end(), {key, key, "UPDATE [Parts]  SET [Name]='three' WHERE [Id]=3",
                                   "INSERT INTO [Parts] ([Id],[Name]) VALUES (3,'three');"});
  EXPECT_EQ(SentTo(run, Rules), expected);
  EXPECT_EQ(SentTo(run, Base), expected);
  EXPECT_EQ(StoredVersion(Rules), "10.1.0.0");
  EXPECT_EQ(Parts(Rules), (Lines{"1|one", "2|two", "3|three"}));
}

TEST_F(DatabaseUpdate, EachDatabaseTakesThePatchesThatAreNewerFromTheOldestOn)
{
  Execute(Base, {"UPDATE KFVersion SET [Value]='1' WHERE [Attribute]='MinorNumber'"});
  LayPart("A.mdb", {.minorNumber = 2, .build = 7}, 1, "newest");
  LayPart("B.mdb", {.minorNumber = 1}, 2, "newer");
  EXPECT_EQ(TracesOfUpdate(Launch()), Lines());
  EXPECT_EQ(StoredVersion(Rules), "10.2.0.7");
  EXPECT_EQ(Parts(Rules), (Lines{"1|newest", "2|newer"}));
  EXPECT_EQ(StoredVersion(Base), "10.2.0.7");
  EXPECT_EQ(Parts(Base), (Lines{"1|newest", "2|two"}));
}

TEST_F(DatabaseUpdate, ADatabaseThatIsNewerKeepsEveryByte)
{
  Execute(Base, {"UPDATE KFVersion SET [Value]='11' WHERE [Attribute]='MajorNumber'"});
  LayPart("A.mdb", {.minorNumber = 1}, 1, "new");
  const std::string before = DataFiles()[ToUtf8(DataPath(Base))];
  (void)Launch();
  EXPECT_TRUE(DataFiles()[ToUtf8(DataPath(Base))] == before);
  EXPECT_EQ(Parts(Rules), (Lines{"1|new", "2|two"}));
}

TEST_F(DatabaseUpdate, APatchWithoutStepsForADatabaseRaisesItsVersion)
{
  LaySteps("A.mdb", {.minorNumber = 1}, {"'QuillGratings', 'Parts', 'Parts', 0, 0, 0"}, {});
  const DatabaseRun run = Launch();
  EXPECT_EQ(TracesOfUpdate(run), Lines());
  EXPECT_EQ(SentTo(run, Rules), VersionStatements("1"));
  EXPECT_EQ(StoredVersion(Rules), "10.1.0.0");
}

TEST_F(DatabaseUpdate, TheProjectPatchesFollowBehindTheOthers)
{
  Execute(Rules,
          {MakeProjectsVersion, "INSERT INTO KFProjectsVersion VALUES ('SteelGrades', '2')"});
  Execute(Base, {MakeProjectsVersion, "INSERT INTO KFProjectsVersion VALUES ('SteelGrades', '3')"});
  LayPart("A.mdb", {.minorNumber = 1}, 1, "of all");
  LayProjectPart("P.mdb", 3, 1, "of projects");
  EXPECT_EQ(TracesOfUpdate(Launch()), Lines());
  EXPECT_EQ(Parts(Rules), (Lines{"1|of projects", "2|two"}));
  EXPECT_EQ(Parts(Base), (Lines{"1|of all", "2|two"}));
  EXPECT_EQ(Select(Rules, "SELECT * FROM KFProjectsVersion"), Lines{"SteelGrades|3"});
}

TEST_F(DatabaseUpdate, AProjectPatchMakesTheTableOfItsVersionWhereThereIsNone)
{
  LayProjectPart("P.mdb", 3, 3, "three");
  const DatabaseRun run = Launch();
  EXPECT_EQ(TracesOfUpdate(run), Lines());
  EXPECT_EQ(SentTo(run, Rules)[0],
            "CREATE TABLE KFProjectsVersion ([Attribute] varchar(255) PRIMARY KEY NOT NULL,[Value] "
            "varchar(255) NOT NULL)");
  EXPECT_EQ(Select(Rules, "SELECT * FROM KFProjectsVersion"), Lines{"SteelGrades|3"});
  EXPECT_EQ(StoredVersion(Rules), "10.0.0.0");
}

TEST_F(DatabaseUpdate, ANewAttributeOfProjectsIsReportedAndAdded)
{
  Execute(Rules, {MakeProjectsVersion});
  Execute(Base, {MakeProjectsVersion, "INSERT INTO KFProjectsVersion VALUES ('SteelGrades', '9')"});
  LayProjectPart("P.mdb", 3, 3, "three");
  EXPECT_EQ(TracesOfUpdate(Launch()),
            (Lines{"Error executeSQL in QuillRules database.",
                   "UPDATE KFProjectsVersion SET [Value]='3' WHERE [Attribute]='SteelGrades'"}));
  EXPECT_EQ(Select(Rules, "SELECT * FROM KFProjectsVersion"), Lines{"SteelGrades|3"});
}

TEST_F(DatabaseUpdate, ARowThatTheTargetRefusesIsReportedAndTheNextOnesFollow)
{
  LaySteps("A.mdb", {.minorNumber = 1}, {Merges[0]},
           {MakeParts, "INSERT INTO Parts VALUES (3, '')", "INSERT INTO Parts VALUES (4, 'four')"});
  const DatabaseRun run = Launch();
  const Lines traces = TracesOfUpdate(run);
  EXPECT_EQ(traces, Lines{"INSERT INTO [Parts] ([Id],[Name]) VALUES (3,NULL);"});
  // So it arrives at a debugger: a line feed and the text.
  EXPECT_EQ(run.debugOutput[30], "\n");
  EXPECT_EQ(run.debugOutput[31], "INSERT INTO [Parts] ([Id],[Name]) VALUES (3,NULL);");
  EXPECT_EQ(Parts(Rules), (Lines{"1|one", "2|two", "4|four"}));
}

TEST_F(DatabaseUpdate, ATableThatCanNotBeMadeAfterItsDropStaysGoneAndTheVersionRaised)
{
  LaySteps("A.mdb", {.minorNumber = 1}, {"'QuillRules', 'Bad', 'Parts', 0, 1, 0"},
           {"CREATE TABLE Bad ([Id] LONG NOT NULL, [Code] CHAR(3) NOT NULL)"});
  const std::string create =
      "CREATE TABLE Parts ([Id] LONG NOT NULL , NOT NULL,PRIMARY KEY ([Id]));";
  EXPECT_EQ(TracesOfUpdate(Launch()), (Lines{"Error executeSQL in QuillRules database.", create,
                                             "Unable to create table Parts\nSql:" + create}));
  EXPECT_EQ(StoredVersion(Rules), "10.1.0.0");
  EXPECT_EQ(Select(Rules, "SELECT name FROM sqlite_master WHERE name = 'Parts'"), Lines());
  const std::map<std::string, std::string> after = DataFiles();
  EXPECT_EQ(TracesOfUpdate(Launch()), Lines());
  EXPECT_TRUE(DataFiles() == after);
}

TEST_F(DatabaseUpdate, AReadOnlyDatabaseIsReportedAndTheOthersAreUpdated)
{
  LayPart("A.mdb", {.minorNumber = 1}, 3, "three");
  MakeUnwritable(DataPath(Rules));
  const std::map<std::string, std::string> before = DataFiles();
  Lines expected;
  for (const std::string& statement : VersionStatements("1")) {
    expected.insert(expected.end(), {"Error executeSQL in QuillRules database.", statement});
  }
  expected.push_back("INSERT INTO [Parts] ([Id],[Name]) VALUES (3,'three');");
  EXPECT_EQ(TracesOfUpdate(Launch()), expected);
  EXPECT_TRUE(DataFiles()[ToUtf8(DataPath(Rules))] == before.at(ToUtf8(DataPath(Rules))));
  EXPECT_EQ(StoredVersion(Base), "10.1.0.0");
  // Its version is as old as before, so the next launch tries all of it again.
  EXPECT_EQ(TracesOfUpdate(Launch()), expected);
}

TEST_F(DatabaseUpdate, AMissingDatabaseIsPassedOverAndTheOthersAreUpdated)
{
  LayPart("A.mdb", {.minorNumber = 1}, 3, "three");
  ASSERT_TRUE(DeleteFileW(DataPath(Rules).c_str()));
  EXPECT_EQ(Launch().Traces(), ConnectFailures(16));
  EXPECT_EQ(StoredVersion(Base), "10.1.0.0");
  EXPECT_EQ(Parts(Base), (Lines{"1|one", "2|two", "3|three"}));
  EXPECT_EQ(GetFileAttributesW(DataPath(Rules).c_str()), INVALID_FILE_ATTRIBUTES);
}

TEST_F(DatabaseUpdate, ALockedDatabaseIsWaitedForReportedAndCaughtUpAtTheNextLaunch)
{
  LayPart("A.mdb", {.minorNumber = 1}, 3, "three");
  const ULONGLONG start = GetTickCount64();
  {
    const HeldDatabase held(DataPath(Rules));
    const DatabaseRun run = Launch();
    EXPECT_EQ(run.Traces(), ConnectFailures(16));
    EXPECT_EQ(run.Refused().front(), Rules);
  }
  const ULONGLONG milliseconds = GetTickCount64() - start;
  EXPECT_GE(milliseconds, 4500u);
  EXPECT_LT(milliseconds, 15000u);
  EXPECT_EQ(StoredVersion(Base), "10.1.0.0");
  EXPECT_EQ(StoredVersion(Rules), "10.0.0.0");
  EXPECT_EQ(TracesOfUpdate(Launch()), Lines());
  EXPECT_EQ(StoredVersion(Rules), "10.1.0.0");
  EXPECT_EQ(Parts(Rules), (Lines{"1|one", "2|two", "3|three"}));
}

TEST_F(DatabaseUpdate, TextsOfAllKindsReachTheTarget)
{
  const std::string text = "O'Neil's \"Tr\xC3\xA4ger\" [\xC5\x81] \xF0\x9F\x94\xA9 100 % ;--";
  std::string quoted = text;
  for (size_t at = quoted.find('\''); at != std::string::npos; at = quoted.find('\'', at + 2)) {
    quoted.insert(at, "'");
  }
  LayPart("A.mdb", {.minorNumber = 1}, 1, quoted);
  EXPECT_EQ(TracesOfUpdate(Launch()), Lines());
  EXPECT_EQ(Parts(Rules), (Lines{"1|" + text, "2|two"}));
}

TEST_F(DatabaseUpdate, AStatementBeyondTheLimitEndsTheProgramAndWhatWasWrittenStays)
{
  std::string columns = "[Id] LONG NOT NULL";
  Lines statements = {MakeParts, "INSERT INTO Parts VALUES (1, 'new')", "",
                      "INSERT INTO Long ([Id]) VALUES (1)"};
  for (int i = 0; i < 9; ++i) {
    const std::string column = "[M" + std::to_string(i) + "]";
    columns += ", " + column + " MEMO";
    statements.push_back("UPDATE Long SET " + column + "='" + std::string(60000, 'x') + "'");
  }
  statements[2] = "CREATE TABLE Long (" + columns + ")";
  LaySteps("A.mdb", {.minorNumber = 1}, {Merges[0], "'QuillRules', 'Long', 'Long', 0, 1, 0"},
           statements);
  const LauncherRun run = Run(L"a.dwg");
  EXPECT_EQ(run.exitCode, 0xC0000417u);
  EXPECT_EQ(run.exceptions, std::vector<DWORD>());
  EXPECT_EQ(run.children, 0u);
  EXPECT_EQ(StoredVersion(Rules), "10.1.0.0");
  EXPECT_EQ(Parts(Rules), (Lines{"1|new", "2|two"}));
  EXPECT_EQ(Select(Rules, "SELECT [Id] FROM Long"), Lines());
}

TEST_F(DatabaseUpdate, ASecondLaunchOfTheWholeProductChangesNoByte)
{
  LayProduct();
  LayCopy("updates\\Spring2010.mdb", "DatabaseUpdate\\Spring2010.mdb");
  LayCopy("updates\\Autumn2010.mdb", "DatabaseUpdate\\Autumn2010.mdb");
  LayCopy("updates\\projects\\SteelProjects.mdb", "DatabaseUpdate\\Projects\\SteelProjects.mdb");
  const std::map<std::string, std::string> before = DataFiles();
  EXPECT_EQ(Launch().Opened().size(), 20u);
  const std::map<std::string, std::string> after = DataFiles();
  EXPECT_EQ(after.size(), before.size());
  EXPECT_FALSE(after == before);
  EXPECT_EQ(Launch().Traces(), Lines());
  EXPECT_TRUE(DataFiles() == after);
}
