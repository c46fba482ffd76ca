// Whole updates on real SQL: what is in the databases afterwards, and what another start then does.
#include "tests/doubles/FilesDouble.h"
#include "tests/unit/update/LiveMachine.h"
#include "update/DatabaseUpdateManager.h"

#include <gtest/gtest.h>

namespace {

class LiveRun : public LiveMachine
{
protected:
  static std::string Rules() { return ProductFile("QuillRules"); }

  // QuillRules with a table of two parts, whose key is Id.
  static void AddRules(const Version& version)
  {
    AddProduct("QuillRules", version);
    GiveParts(Rules());
  }

  static void GiveParts(const std::string& path)
  {
    Sql(path, {"CREATE TABLE Parts (Id LONG NOT NULL, Name TEXT(20) NOT NULL, PRIMARY KEY (Id))",
               "INSERT INTO Parts VALUES (1, 'one')", "INSERT INTO Parts VALUES (2, 'two')",
               "INSERT INTO InfoTableRelations (TableName, ColumnName, TypeProperty) VALUES "
               "('Parts', 'Id', 'PrimaryKey')"});
  }

  // A patch with a step that merges one part into QuillRules.
  static void AddPatchOfPart(const std::string& name, const Version& version, int id,
                             const std::string& part)
  {
    AddLivePatch(name, version);
    GivePart(PatchFile(name), id, part);
  }

  static void GivePart(const std::string& path, int id, const std::string& part)
  {
    Sql(path, {"CREATE TABLE Parts (Id LONG NOT NULL, Name TEXT(20) NOT NULL)",
               "INSERT INTO Parts VALUES (" + std::to_string(id) + ", '" + part + "')"});
    AddStep(path, "QuillRules", "Parts", "Parts");
  }

  static Lines Parts(const std::string& name = "QuillRules")
  {
    return SelectRows(ProductFile(name), "SELECT * FROM Parts ORDER BY Id");
  }

  static int CountOf(const Lines& lines, const std::string& beginning)
  {
    int count = 0;
    for (const std::string& line : lines)
      count += line.starts_with(beginning) ? 1 : 0;
    return count;
  }
};

}  // namespace

TEST_F(LiveRun, BringsADatabaseThroughAllPatchesToTheNewest)
{
  AddRules({1, 0, 0, 0});
  AddPatchOfPart("a.mdb", {1, 2, 3, 4}, 1, "newest");
  AddPatchOfPart("b.mdb", {1, 1, 0, 0}, 1, "newer");
  Sql(PatchFile("b.mdb"), {"INSERT INTO Parts VALUES (3, 'three')"});
  (void)RunUpdate();
  EXPECT_EQ(StoredVersion("QuillRules"), "1.2 sp 3 build 4 comm 2010.0");
  EXPECT_EQ(Parts(), (Lines{"1|newest", "2|two", "3|three"}));
}

TEST_F(LiveRun, LeavesOutThePatchesThatADatabaseHasAlready)
{
  AddRules({1, 1, 0, 0});
  AddPatchOfPart("a.mdb", {1, 1, 0, 0}, 1, "newer");
  AddPatchOfPart("b.mdb", {1, 2, 0, 0}, 2, "newest");
  (void)RunUpdate();
  EXPECT_EQ(StoredVersion("QuillRules"), "1.2 sp 0 build 0 comm 2010.0");
  EXPECT_EQ(Parts(), (Lines{"1|one", "2|newest"}));
}

TEST_F(LiveRun, CarriesTheNumbersThatAreNotComparedAlong)
{
  AddRules({1, 0, 0, 0});
  AddLivePatch("a.mdb", {1, 1, 0, 0});
  Sql(PatchFile("a.mdb"),
      {"UPDATE KFVersion SET [Value]='2011' WHERE [Attribute]='CommMajorVersion'",
       "UPDATE KFVersion SET [Value]='3' WHERE [Attribute]='CommMinorVersion'"});
  (void)RunUpdate();
  EXPECT_EQ(StoredVersion("QuillRules"), "1.1 sp 0 build 0 comm 2011.3");
}

TEST_F(LiveRun, LeavesADatabaseThatIsNewerAloneToTheByte)
{
  AddRules({1, 0, 0, 0});
  AddProduct("QuillBase", {2, 0, 0, 0});
  AddPatchOfPart("a.mdb", {1, 1, 0, 0}, 1, "newer");
  AddStep(PatchFile("a.mdb"), "QuillBase", "Parts", "Parts", "0, 0, 1");
  const std::string before = Files().Read(ProductFile("QuillBase"));
  (void)RunUpdate();
  EXPECT_TRUE(Files().Read(ProductFile("QuillBase")) == before);
  EXPECT_EQ(StoredVersion("QuillRules"), "1.1 sp 0 build 0 comm 2010.0");
}

TEST_F(LiveRun, RaisesADatabaseThatThePatchHasNoStepsFor)
{
  AddProduct("QuillGratings", {1, 0, 0, 0});
  AddPatchOfPart("a.mdb", {1, 1, 0, 0}, 1, "newer");
  EXPECT_EQ(RunUpdate().size(), 6u);
  EXPECT_EQ(StoredVersion("QuillGratings"), "1.1 sp 0 build 0 comm 2010.0");
}

TEST_F(LiveRun, ASecondTimeChangesNoByteOfAnyFile)
{
  AddRules({1, 0, 0, 0});
  AddProduct("QuillBase", {1, 0, 0, 0});
  AddPatchOfPart("a.mdb", {1, 1, 0, 0}, 3, "three");
  Sql(PatchFile("a.mdb"), {"CREATE TABLE Old (Id LONG NOT NULL)", "INSERT INTO Old VALUES (2)"});
  AddStep(PatchFile("a.mdb"), "QuillRules", "Old", "Parts", "1, 0, 0");
  AddStep(PatchFile("a.mdb"), "QuillBase", "Parts", "New", "0, 0, 1");
  AddLiveProjectPatch("p.mdb", {{"SteelGrades", 3}});
  GivePart(ProjectFile("p.mdb"), 4, "four");
  (void)RunUpdate();
  EXPECT_EQ(Parts(), (Lines{"1|one", "3|three", "4|four"}));
  EXPECT_EQ(SelectRows(ProductFile("QuillBase"), "SELECT * FROM New"), Lines{"3|three"});
  EXPECT_EQ(StoredProjectsVersion("QuillBase"), Lines{"SteelGrades|3"});
  const auto after = AllFiles();
  EXPECT_EQ(RunUpdate(), Lines());
  ExpectSameFiles(after);
}

TEST_F(LiveRun, DoesNotTryAStepAgainThatFailed)
{
  AddRules({1, 0, 0, 0});
  AddLivePatch("a.mdb", {1, 1, 0, 0});
  // The target's table is dropped, and its successor has a column whose type has no word.
  Sql(PatchFile("a.mdb"), {"CREATE TABLE Bad (Id LONG NOT NULL, Code CHAR(3) NOT NULL)"});
  AddStep(PatchFile("a.mdb"), "QuillRules", "Bad", "Parts", "0, 1, 0");
  const Lines sent = RunUpdate();
  EXPECT_EQ(CountOf(sent, "QuillRules.mdb: CREATE TABLE Parts"), 1);
  EXPECT_EQ(CountOf(sent, "trace: Unable to create table Parts\nSql:CREATE TABLE Parts"), 1);
  EXPECT_EQ(SelectRows(Rules(), "SELECT name FROM sqlite_master WHERE name = 'Parts'"), Lines());
  EXPECT_EQ(StoredVersion("QuillRules"), "1.1 sp 0 build 0 comm 2010.0");
  const auto after = AllFiles();
  EXPECT_EQ(RunUpdate(), Lines());
  ExpectSameFiles(after);
}

TEST_F(LiveRun, TakesAPatchAgainAtEachStartAsLongAsTheVersionCanNotBeWritten)
{
  AddRules({1, 0, 0, 0});
  Sql(Rules(), {"DELETE FROM KFVersion WHERE [Attribute]='MinorNumber'"});
  AddPatchOfPart("a.mdb", {1, 1, 0, 7}, 1, "newer");
  for (int start = 1; start <= 3; ++start) {
    Sql(Rules(), {"UPDATE Parts SET Name='by hand'"});
    const Lines sent = RunUpdate();
    EXPECT_EQ(CountOf(sent, "QuillRules.mdb: UPDATE [Parts]"), 1) << start;
    EXPECT_EQ(CountOf(sent, "trace: "), 2) << start;
    EXPECT_EQ(Parts(), (Lines{"1|newer", "2|by hand"})) << start;
    // The other numbers were written, which makes a mix of both versions.
    EXPECT_EQ(StoredVersion("QuillRules"), "1. sp 0 build 7 comm 2010.0") << start;
  }
}

TEST_F(LiveRun, PassesOverAMissingDatabaseAndTakesItThroughAllPatchesWhenItIsBack)
{
  AddRules({1, 0, 0, 0});
  AddProduct("QuillBase", {1, 0, 0, 0});
  const std::string rules = Files().Read(Rules());
  Files().Remove(Rules());
  AddPatchOfPart("a.mdb", {1, 1, 0, 0}, 1, "newer");
  EXPECT_EQ(RunUpdate().size(), 6u);
  EXPECT_FALSE(Files().Exists(Rules()));
  EXPECT_EQ(StoredVersion("QuillBase"), "1.1 sp 0 build 0 comm 2010.0");
  Files().Put(Rules(), rules);
  AddPatchOfPart("b.mdb", {1, 2, 0, 0}, 2, "newest");
  (void)RunUpdate();
  EXPECT_EQ(Parts(), (Lines{"1|newer", "2|newest"}));
  EXPECT_EQ(StoredVersion("QuillRules"), "1.2 sp 0 build 0 comm 2010.0");
}

TEST_F(LiveRun, AReadOnlyDatabaseStaysAsItIsWhileTheOthersAreUpdated)
{
  AddRules({1, 0, 0, 0});
  AddProduct("QuillBase", {1, 0, 0, 0});
  AddPatchOfPart("a.mdb", {1, 1, 0, 0}, 1, "newer");
  SetReadOnly(Rules(), true);
  const std::string before = Files().Read(Rules());
  const Lines sent = RunUpdate();
  EXPECT_EQ(CountOf(sent, "trace: Error executeSQL in QuillRules database."), 6);
  EXPECT_EQ(CountOf(sent, "QuillRules.mdb: UPDATE [Parts]  SET [Name]='newer' WHERE [Id]=1 -> -1"),
            1);
  EXPECT_EQ(CountOf(sent, "trace: INSERT INTO [Parts] ([Id],[Name]) VALUES (1,'newer');"), 1);
  EXPECT_TRUE(Files().Read(Rules()) == before);
  EXPECT_EQ(StoredVersion("QuillBase"), "1.1 sp 0 build 0 comm 2010.0");
  // The next start in which it can be written makes up for it.
  SetReadOnly(Rules(), false);
  (void)RunUpdate();
  EXPECT_EQ(StoredVersion("QuillRules"), "1.1 sp 0 build 0 comm 2010.0");
  EXPECT_EQ(Parts(), (Lines{"1|newer", "2|two"}));
}

TEST_F(LiveRun, AddsTheAttributesOfAProjectPatchAndKeepsTheOthers)
{
  AddRules({});
  MakeProjectsVersion(Rules(), {{"Plants", 8}, {"SteelGrades", 2}});
  AddLiveProjectPatch("p.mdb", {{"BoltSets", 4}, {"SteelGrades", 3}});
  GivePart(ProjectFile("p.mdb"), 3, "three");
  const Lines sent = RunUpdate();
  EXPECT_EQ(StoredProjectsVersion("QuillRules"),
            (Lines{"BoltSets|4", "Plants|8", "SteelGrades|3"}));
  EXPECT_EQ(Parts(), (Lines{"1|one", "2|two", "3|three"}));
  const std::string update =
      "UPDATE KFProjectsVersion SET [Value]='4' WHERE [Attribute]='BoltSets'";
  EXPECT_EQ(CountOf(sent, "trace: "), 2);
  EXPECT_EQ(sent[1], "trace: Error executeSQL in QuillRules database.");
  EXPECT_EQ(sent[2], "trace: " + update);
}

TEST_F(LiveRun, MakesTheTableOfProjectsWhereThereIsNone)
{
  AddRules({});
  AddLiveProjectPatch("p.mdb", {{"BoltSets", 4}, {"SteelGrades", 3}});
  const Lines sent = RunUpdate();
  EXPECT_EQ(CountOf(sent, "trace: "), 0);
  EXPECT_EQ(sent.size(), 3u);
  EXPECT_EQ(StoredProjectsVersion("QuillRules"), (Lines{"BoltSets|4", "SteelGrades|3"}));
}

TEST_F(LiveRun, TheLaterOfTwoProjectPatchesWinsAlsoWithTheLowerNumber)
{
  AddRules({});
  MakeProjectsVersion(Rules(), {{"SteelGrades", 1}});
  AddLiveProjectPatch("a.mdb", {{"SteelGrades", 5}});
  GivePart(ProjectFile("a.mdb"), 1, "of five");
  AddLiveProjectPatch("b.mdb", {{"SteelGrades", 3}});
  GivePart(ProjectFile("b.mdb"), 1, "of three");
  (void)RunUpdate();
  EXPECT_EQ(StoredProjectsVersion("QuillRules"), Lines{"SteelGrades|3"});
  EXPECT_EQ(Parts(), (Lines{"1|of three", "2|two"}));
  // So the next start takes the first of them again.
  (void)RunUpdate();
  EXPECT_EQ(StoredProjectsVersion("QuillRules"), Lines{"SteelGrades|5"});
  EXPECT_EQ(Parts(), (Lines{"1|of five", "2|two"}));
}

TEST_F(LiveRun, AQuoteInAnAttributeBreaksItsStatementsAndNoOther)
{
  AddRules({});
  AddLiveProjectPatch("p.mdb", {{"Bolts", 1}});
  Sql(ProjectFile("p.mdb"), {"INSERT INTO KFProjectsVersion VALUES ('O''Neil', '2')"});
  const Lines sent = RunUpdate();
  EXPECT_EQ(StoredProjectsVersion("QuillRules"), Lines{"Bolts|1"});
  EXPECT_EQ(sent.back(),
            "trace: INSERT INTO [KFProjectsVersion] ([Attribute],[Value]) "
            "VALUES('O'Neil','2')");
}

TEST_F(LiveRun, WhatWasWrittenBeforeAnEndStays)
{
  AddRules({1, 0, 0, 0});
  AddProduct("QuillBase", {1, 0, 0, 0});
  AddPatchOfPart("a.mdb", {1, 1, 0, 0}, 1, "newer");
  Sql(PatchFile("a.mdb"), {"INSERT INTO Parts VALUES (2, 'never')"});
  ClearDiary();
  // A patch and two databases are read at first; then come six statements for the version, two for
  // the key, one for the rows and one for the first row.
  const int before = 4 + 2 * 3 + 6 + 2 + 1 + 1;
  FailOdbcCall("SQLExecDirectW throwing", before + 1, 7);
  RunDatabaseUpdate(0, 0);
  EXPECT_EQ(Traces().back(), "\n\nCritical Error!!");
  EXPECT_EQ(Odbc().OpenConnections(), 0);
  EXPECT_EQ(StoredVersion("QuillRules"), "1.1 sp 0 build 0 comm 2010.0");
  EXPECT_EQ(Parts(), (Lines{"1|newer", "2|two"}));
  EXPECT_EQ(StoredVersion("QuillBase"), "1.0 sp 0 build 0 comm 2010.0");
}

TEST_F(LiveRun, UpdatesAllSeventeenDatabasesFoundInTheirThreePlaces)
{
  InstallProduct({1, 0, 0, 0});
  AddLivePatch("a.mdb", {1, 0, 1, 0});
  EXPECT_EQ(RunUpdate().size(), 17u * 6);
  for (const std::string& name : ProductNames())
    EXPECT_EQ(StoredVersion(name), "1.0 sp 1 build 0 comm 2010.0") << name;
}
