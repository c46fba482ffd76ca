// Which database takes which patch, in which order, and what doesn't stop it. Steps name tables
// that patches don't have, so that each leaves one trace and nothing else; what a step does is in
// tests/unit/patch.
#include "tests/unit/foundation/Texts.h"
#include "tests/unit/settings/SettingsMachine.h"
#include "tests/unit/update/UpdateMachine.h"
#include "update/DatabaseUpdateManager.h"

#include <gtest/gtest.h>

namespace {

const char* const Steps = "SELECT * FROM UpdateTable ORDER BY [ID]";

class UpdateRun : public UpdateMachine
{
protected:
  // A patch with a step for each of these databases, whose source table is named for the patch.
  static void GiveSteps(OdbcDatabase& patch, const std::string& source, const Lines& databases)
  {
    OdbcRows rows;
    for (const std::string& database : databases)
      rows.push_back({1, database, source, "T", 0, 0, 0});
    patch.Query(Steps, rows);
  }

  static OdbcDatabase& AddObedientDatabase(const std::string& name, const Version& version,
                                           const OdbcRows& projectsVersion = {})
  {
    return AddProductDatabase(name, version, projectsVersion)
        .OtherStatements(SQL_SUCCESS)
        .Columns("KFProjectsVersion", {{"Attribute", SQL_WVARCHAR, 255, 0}});
  }

  // Opens what there is, runs the update and gives what it sent.
  static Lines Run()
  {
    DatabaseUpdateManager manager;
    return RunOf(manager);
  }

  static Lines RunOf(DatabaseUpdateManager& manager)
  {
    const size_t begin = Diary().size();
    EXPECT_EQ(manager.Run(), 1);
    EXPECT_EQ(Odbc().OpenStatements(), 0);
    return Sent(begin);
  }

  // The statement that writes the last of a version's numbers, shortened to "QuillRules 1", and the
  // traces of missing source tables, shortened to the table.
  static Lines Outline(const Lines& sent)
  {
    const std::string update = ": UPDATE KFVersion SET [Value]='";
    const std::string missing = "trace: Source table ";
    Lines outline;
    for (const std::string& line : sent) {
      const size_t value = line.find(update);
      const bool isTrace = line.starts_with("trace: ");
      if (line.starts_with(missing))
        outline.push_back(line.substr(missing.size(), line.find(" not") - missing.size()));
      else if (!isTrace && line.ends_with("'MinorNumber'"))
        outline.push_back(
            line.substr(0, value) + " " +
            line.substr(value + update.size(),
                        line.find('\'', value + update.size()) - value - update.size()));
    }
    return outline;
  }

  static std::string ProjectUpdate(const std::string& database, const std::string& attribute,
                                   const std::string& value)
  {
    return database + ": UPDATE KFProjectsVersion SET [Value]='" + value + "' WHERE [Attribute]='" +
           attribute + "'";
  }

  static std::string MissingSource(const std::string& table)
  {
    return "trace: Source table " + table + " not found in patch database";
  }
};

}  // namespace

TEST_F(UpdateRun, WithNothingInstalledSendsNothing)
{
  EXPECT_EQ(Run(), Lines());
}

TEST_F(UpdateRun, WithNothingOlderSendsNothing)
{
  AddObedientDatabase("QuillRules", {2, 0, 0, 0}, {{"A", 3}});
  AddObedientDatabase("QuillBase", {1, 9, 0, 0}, {{"A", 5}});
  GiveSteps(AddPatch("a.mdb", {1, 9, 0, 0}), "S", {"QuillRules", "QuillBase"});
  GiveSteps(AddProjectPatch("p.mdb", {{"a", 3}}), "S", {"QuillRules", "QuillBase"});
  EXPECT_EQ(Run(), Lines());
  EXPECT_TRUE(updatePromptPending);
}

TEST_F(UpdateRun, TakesEveryPatchFromTheOldestToTheNewestThroughAllDatabases)
{
  AddObedientDatabase("QuillRules", {1, 0, 0, 0});
  AddObedientDatabase("QuillBase", {1, 0, 0, 0});
  AddObedientDatabase("QuillGratings", {1, 0, 0, 0});
  const Lines all = {"QuillGratings", "QuillBase", "QuillRules"};
  GiveSteps(AddPatch("a.mdb", {1, 2, 0, 0}), "SecondPatch", all);
  GiveSteps(AddPatch("b.mdb", {1, 1, 0, 0}), "FirstPatch", all);
  EXPECT_EQ(Outline(Run()),
            (Lines{"QuillRules 1", "FirstPatch", "QuillBase 1", "FirstPatch", "QuillGratings 1",
                   "FirstPatch", "QuillRules 2", "SecondPatch", "QuillBase 2", "SecondPatch",
                   "QuillGratings 2", "SecondPatch"}));
}

TEST_F(UpdateRun, TakesAllSeventeenDatabasesInTheOrderOfTheirNames)
{
  Lines expected;
  for (const std::string& name : ProductNames()) {
    AddObedientDatabase(name, {1, 0, 0, 0});
    expected.push_back((name == "QuillCurrentProject" ? "model.mdb" : name) + " 5");
  }
  SetMachineConnection("QuillProfiles2010", ProductConnection("QuillProfiles2010"));
  SetMachineConnection("NVCMapping2010", ProductConnection("NVCMapping2010"));
  Odbc()
      .Database("DRIVER={Kestrel ODBC Driver};UID=;PWD=;DBQ=C:\\Data\\Kernel\\Data\\model.mdb")
      .OtherStatements(SQL_SUCCESS);
  AddPatch("a.mdb", {1, 5, 0, 0});
  EXPECT_EQ(Outline(Run()), expected);
}

TEST_F(UpdateRun, WritesTheVersionBeforeTheContent)
{
  AddObedientDatabase("QuillRules", {1, 0, 0, 0});
  GiveSteps(AddPatch("a.mdb", {1, 2, 3, 4}), "S", {"QuillRules"});
  const auto update = [](const std::string& value, const std::string& attribute) {
    return "QuillRules: UPDATE KFVersion SET [Value]='" + value + "' WHERE [Attribute]='" +
           attribute + "'";
  };
  EXPECT_EQ(Run(),
            (Lines{update("0", "CommMajorVersion"), update("0", "CommMinorVersion"),
                   update("3", "CommSPNumber"), update("4", "BuildNumber"),
                   update("1", "MajorNumber"), update("2", "MinorNumber"), MissingSource("S")}));
}

TEST_F(UpdateRun, LeavesOutPatchesThatAreNotNewer)
{
  AddObedientDatabase("QuillRules", {1, 0, 0, 0});
  AddObedientDatabase("QuillBase", {1, 1, 0, 0});
  AddObedientDatabase("QuillGratings", {1, 2, 0, 0});
  AddPatch("a.mdb", {1, 1, 0, 0});
  AddPatch("b.mdb", {1, 2, 0, 0});
  EXPECT_EQ(Outline(Run()), (Lines{"QuillRules 1", "QuillRules 2", "QuillBase 2"}));
}

TEST_F(UpdateRun, ComparesByFourNumbersInTheOrderOfTheirWeight)
{
  const Version older = {2, 2, 2, 2};
  for (const Version& newer :
       {Version{3, 0, 0, 0}, Version{2, 3, 0, 0}, Version{2, 2, 3, 0}, Version{2, 2, 2, 3}}) {
    ResetPlatform();
    SetDataPath("C:\\Data");
    updatePromptPending = true;
    AddObedientDatabase("QuillRules", older);
    AddPatch("a.mdb", newer);
    EXPECT_EQ(Run().size(), 6u) << newer.major << newer.minor << newer.servicePack << newer.build;
  }
}

TEST_F(UpdateRun, TakesNoPatchForNewerByANumberThatIsOnlyCarriedAlong)
{
  AddObedientDatabase("QuillRules", {1, 0, 0, 0});
  AddPatch("a.mdb").Table(
      "KFVersion", {{"MajorNumber", "1"}, {"CommMajorVersion", "2011"}, {"CommMinorVersion", "9"}});
  EXPECT_EQ(Run(), Lines());
}

TEST_F(UpdateRun, ComparesWithTheVersionsOfTheBeginning)
{
  AddObedientDatabase("QuillRules", {1, 0, 0, 0});
  AddPatch("a.mdb", {1, 2, 0, 0});
  AddPatch("b.mdb", {1, 2, 0, 0});
  DatabaseUpdateManager manager;
  EXPECT_EQ(Outline(RunOf(manager)), (Lines{"QuillRules 2", "QuillRules 2"}));
  EXPECT_EQ(manager.modelDatabases.data[0]->GetMinorNumber(), 0);
}

TEST_F(UpdateRun, RaisesTheVersionOfADatabaseThatThePatchHasNoStepsFor)
{
  AddObedientDatabase("QuillRules", {1, 0, 0, 0});
  GiveSteps(AddPatch("a.mdb", {1, 1, 0, 0}), "S", {"QuillBase"});
  EXPECT_EQ(Outline(Run()), Lines{"QuillRules 1"});
}

TEST_F(UpdateRun, PassesOverDatabasesThatAreNotConnected)
{
  AddObedientDatabase("QuillRules", {1, 0, 0, 0});
  AddProductDatabase("QuillBase", {1, 0, 0, 0}).ConnectGives(SQL_ERROR);
  GiveSteps(AddPatch("a.mdb", {1, 1, 0, 0}), "S", {"QuillBase", "QuillRules"});
  GiveSteps(AddProjectPatch("p.mdb", {{"A", 1}}), "P", {"QuillBase", "QuillRules"});
  const Lines sent = Run();
  EXPECT_EQ(Outline(sent), (Lines{"QuillRules 1", "S", "P"}));
  for (const std::string& line : sent)
    EXPECT_EQ(line.find("QuillBase"), std::string::npos) << line;
}

TEST_F(UpdateRun, PatchesTheContentAlthoughTheVersionCouldNotBeWritten)
{
  AddObedientDatabase("QuillRules", {1, 0, 0, 0}).OtherStatements(SQL_ERROR);
  AddObedientDatabase("QuillBase", {1, 0, 0, 0});
  GiveSteps(AddPatch("a.mdb", {1, 1, 0, 0}), "S", {"QuillRules", "QuillBase"});
  const Lines sent = Run();
  EXPECT_EQ(sent.size(), 6u * 3 + 1 + 6 + 1);
  EXPECT_EQ(sent[18], MissingSource("S"));
  EXPECT_EQ(Outline(sent), (Lines{"S", "QuillBase 1", "S"}));
}

TEST_F(UpdateRun, ASecondOneInAProcessLeavesThePatchesOutAndTakesTheProjectPatches)
{
  AddObedientDatabase("QuillRules", {1, 0, 0, 0}, {{"A", 1}});
  AddPatch("a.mdb", {1, 1, 0, 0});
  AddProjectPatch("p.mdb", {{"A", 2}});
  DatabaseUpdateManager manager;
  EXPECT_EQ(RunOf(manager).size(), 6u + 1u);
  EXPECT_EQ(RunOf(manager), Lines{ProjectUpdate("QuillRules", "A", "2")});
}

TEST_F(UpdateRun, TakesThePatchesFirstAndThenTheProjectPatches)
{
  AddObedientDatabase("QuillRules", {1, 0, 0, 0}, {{"A", 1}});
  AddObedientDatabase("QuillBase", {1, 0, 0, 0}, {{"A", 1}});
  GiveSteps(AddPatch("a.mdb", {1, 1, 0, 0}), "S", {"QuillRules", "QuillBase"});
  GiveSteps(AddProjectPatch("p.mdb", {{"A", 2}}), "P", {"QuillRules", "QuillBase"});
  EXPECT_EQ(Outline(Run()), (Lines{"QuillRules 1", "S", "QuillBase 1", "S", "P", "P"}));
}

TEST_F(UpdateRun, TakesProjectPatchesAlsoWithoutAnyOtherPatch)
{
  AddObedientDatabase("QuillRules", {1, 0, 0, 0}, {{"SteelGrades", 1}});
  GiveSteps(AddProjectPatch("p.mdb", {{"SteelGrades", 2}, {"BoltSets", 7}}), "P", {"quillrules"});
  EXPECT_EQ(Run(), (Lines{ProjectUpdate("QuillRules", "SteelGrades", "2"),
                          ProjectUpdate("QuillRules", "BoltSets", "7"), MissingSource("P")}));
}

TEST_F(UpdateRun, TakesEveryProjectPatchInTheOrderOfTheSearchThroughAllDatabases)
{
  AddObedientDatabase("QuillRules", {}, {{"A", 1}});
  AddObedientDatabase("QuillBase", {}, {{"A", 4}});
  AddObedientDatabase("QuillGratings", {}, {{"A", 1}});
  AddProjectPatch("a.mdb", {{"A", 5}});
  AddProjectPatch("b.mdb", {{"A", 3}});
  EXPECT_EQ(Run(),
            (Lines{ProjectUpdate("QuillRules", "A", "5"), ProjectUpdate("QuillBase", "A", "5"),
                   ProjectUpdate("QuillGratings", "A", "5"), ProjectUpdate("QuillRules", "A", "3"),
                   ProjectUpdate("QuillGratings", "A", "3")}));
}

TEST_F(UpdateRun, FindsTheOneProjectPatchThatIsNewerForOneDatabase)
{
  AddObedientDatabase("QuillRules", {}, {{"A", 9}});
  AddObedientDatabase("QuillGratings", {}, {{"A", 2}});
  AddProjectPatch("a.mdb", {{"A", 1}});
  AddProjectPatch("b.mdb", {{"A", 2}});
  AddProjectPatch("c.mdb", {{"A", 3}});
  EXPECT_EQ(Run(), Lines{ProjectUpdate("QuillGratings", "A", "3")});
}

TEST_F(UpdateRun, NeverTakesAProjectPatchWithoutAVersionForProjects)
{
  AddObedientDatabase("QuillRules", {});
  GiveSteps(AddProjectPatch("a.mdb", {}), "P", {"QuillRules"});
  GiveSteps(AddPatch("b.mdb", {9, 0, 0, 0}, ProjectFolder), "P", {"QuillRules"});
  GiveSteps(AddProjectPatch("c.mdb", {{"", "1"}, {"A", ""}}), "P", {"QuillRules"});
  EXPECT_EQ(Run(), Lines());
}

TEST_F(UpdateRun, ThatCanNotMakeTheTableOfProjectsGoesOnWithTheContent)
{
  AddProductDatabase("QuillRules").Columns("KFProjectsVersion", {});
  GiveSteps(AddProjectPatch("p.mdb", {{"A", "x"}}), "P", {"QuillRules"});
  const Lines sent = Run();
  ASSERT_EQ(sent.size(), 5u);
  EXPECT_TRUE(sent[0].starts_with("QuillRules: CREATE TABLE KFProjectsVersion (")) << sent[0];
  EXPECT_TRUE(sent[3].starts_with("trace: Unable to create table KFProjectsVersion\nSql:CREATE "))
      << sent[3];
  EXPECT_EQ(sent[4], MissingSource("P"));
}

TEST_F(UpdateRun, IsPartOfTheWholeUpdate)
{
  AddObedientDatabase("QuillRules", {1, 0, 0, 0});
  GiveSteps(AddPatch("a.mdb", {1, 1, 0, 0}), "S", {"QuillRules"});
  RunDatabaseUpdate(0, 0);
  EXPECT_EQ(Outline(Sent()), (Lines{"QuillRules 1", "S"}));
  EXPECT_EQ(Diary().back(), "SQLFreeHandle(ENV, env#18) = 0");
}
