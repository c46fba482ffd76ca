// How the patches of the two folders are found and opened.
#include "database/UpdateTable.h"
#include "tests/doubles/FilesDouble.h"
#include "tests/doubles/RegistryDouble.h"
#include "tests/unit/update/LeftToTheEnd.h"
#include "tests/unit/update/UpdateMachine.h"
#include "update/DatabaseUpdateManager.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

const std::string PatchSearch = "FindFirstFileW(\"C:\\Data\\DatabaseUpdate\\*.mdb\") = ";
const std::string ProjectSearch =
    "FindFirstFileW(\"C:\\Data\\DatabaseUpdate\\Projects\\*.mdb\") = ";

class PatchScan : public UpdateMachine
{
protected:
  // Everything that the scans call, with the connections that they make in between.
  static Lines ScanLines()
  {
    Lines lines;
    for (const std::string& line :
         DiaryOf({"FindFirstFileW", "FindNextFileW", "FindClose", "SQLDriverConnectW"})) {
      if (line.starts_with("Find"))
        lines.push_back(line);
      else if (line.find("DatabaseUpdate\\") != std::string::npos)
        lines.push_back("connect " + line.substr(line.rfind('\\') + 1, 5));
    }
    return lines;
  }
};

}  // namespace

TEST_F(PatchScan, GoesThroughTheFolderOfThePatchesAndThenThroughThatOfTheProjects)
{
  AddPatch("a.mdb");
  AddPatch("b.mdb");
  AddPatch("c.mdb", {}, ProjectFolder);
  const DatabaseUpdateManager manager;
  EXPECT_EQ(ScanLines(), (Lines{PatchSearch + "find#1 \"a.mdb\"", "connect a.mdb",
                                "FindNextFileW(find#1) = 1 \"b.mdb\"", "connect b.mdb",
                                "FindNextFileW(find#1) = 0", "FindClose(find#1) = 1",
                                ProjectSearch + "find#2 \"c.mdb\"", "connect c.mdb",
                                "FindNextFileW(find#2) = 0", "FindClose(find#2) = 1"}));
}

TEST_F(PatchScan, ClosesTheSearchAlsoWhereThereAreNoFolders)
{
  const DatabaseUpdateManager manager;
  EXPECT_EQ(ScanLines(), (Lines{PatchSearch + "invalid", "FindClose(invalid) = 0",
                                ProjectSearch + "invalid", "FindClose(invalid) = 0"}));
  EXPECT_EQ(manager.patchDatabases.count, 0);
  EXPECT_EQ(manager.patchDatabases.capacity, 0);
  EXPECT_EQ(manager.projectPatchDatabases.count, 0);
}

TEST_F(PatchScan, FindsNothingInFoldersThatHoldOtherFiles)
{
  Files().Put("C:\\Data\\DatabaseUpdate\\readme.txt", "");
  Files().Put("C:\\Data\\DatabaseUpdate\\mdb", "");
  Files().MakeFolder(ProjectFolder);
  const DatabaseUpdateManager manager;
  EXPECT_EQ(ScanLines(), (Lines{PatchSearch + "invalid", "FindClose(invalid) = 0",
                                ProjectSearch + "invalid", "FindClose(invalid) = 0"}));
}

TEST_F(PatchScan, ReportsNothingAboutAFolderWithoutPatches)
{
  const DatabaseUpdateManager manager;
  // One for each of the product's databases.
  EXPECT_EQ(Traces(), Lines(17, ConnectTrace));
}

TEST_F(PatchScan, ScansTheProjectsAlsoWithoutAPatch)
{
  AddPatch("c.mdb", {}, ProjectFolder);
  const DatabaseUpdateManager manager;
  EXPECT_EQ(NamesOf(manager.projectPatchDatabases), Lines{"c.mdb"});
}

TEST_F(PatchScan, AFindNextThatFailsEndsTheScan)
{
  AddPatch("a.mdb");
  AddPatch("b.mdb");
  FailCall("FindNextFileW", 1, ERROR_ACCESS_DENIED);
  const DatabaseUpdateManager manager;
  EXPECT_EQ(NamesOf(manager.patchDatabases), Lines{"a.mdb"});
  EXPECT_EQ(DiaryOf({"FindClose"})[0], "FindClose(find#1) = 1");
}

TEST_F(PatchScan, ASearchThatCanNotBeginIsAnEmptyFolder)
{
  AddPatch("a.mdb");
  AddPatch("c.mdb", {}, ProjectFolder);
  FailCall("FindFirstFileW", 1, ERROR_ACCESS_DENIED);
  const DatabaseUpdateManager manager;
  EXPECT_EQ(manager.patchDatabases.count, 0);
  EXPECT_EQ(NamesOf(manager.projectPatchDatabases), Lines{"c.mdb"});
}

TEST_F(PatchScan, TheResultOfFindCloseIsNotLookedAt)
{
  AddPatch("a.mdb");
  AddPatch("c.mdb", {}, ProjectFolder);
  FailCall("FindClose", 1, ERROR_INVALID_HANDLE);
  const DatabaseUpdateManager manager;
  EXPECT_EQ(NamesOf(manager.patchDatabases), Lines{"a.mdb"});
  EXPECT_EQ(NamesOf(manager.projectPatchDatabases), Lines{"c.mdb"});
}

TEST_F(PatchScan, APatchIsConnectedByItsPathAsItStands)
{
  SetDataPath("D:\\My Data;x=1");
  const std::string folder = "D:\\My Data;x=1\\DatabaseUpdate";
  AddPatch("Patch 1 {a}.mdb", {}, folder);
  const DatabaseUpdateManager manager;
  ASSERT_EQ(manager.patchDatabases.count, 1);
  EXPECT_EQ(TriedConnections()[0],
            "DRIVER={Kestrel ODBC Driver};UID=;PWD=;DBQ=D:\\My Data;x=1\\DatabaseUpdate\\Patch 1 "
            "{a}.mdb");
}

TEST_F(PatchScan, APatchIsNamedAfterItsFileWithTheExtension)
{
  AddPatch("Patch1.mdb");
  const DatabaseUpdateManager manager;
  EXPECT_EQ(NamesOf(manager.patchDatabases), Lines{"Patch1.mdb"});
}

TEST_F(PatchScan, APatchOfEitherFolderReadsItsUpdateTable)
{
  const OdbcRows oneStep = {{1, "QuillRules", "A", "B", 0, 0, 0}};
  AddPatch("a.mdb").Query("SELECT * FROM UpdateTable ORDER BY [ID]", oneStep);
  AddPatch("c.mdb", {}, ProjectFolder).Query("SELECT * FROM UpdateTable ORDER BY [ID]", oneStep);
  const DatabaseUpdateManager manager;
  ASSERT_EQ(manager.patchDatabases.count, 1);
  ASSERT_EQ(manager.projectPatchDatabases.count, 1);
  EXPECT_EQ(manager.patchDatabases.data[0]->updateTable->steps.count, 1);
  EXPECT_EQ(manager.projectPatchDatabases.data[0]->updateTable->steps.count, 1);
  EXPECT_EQ(manager.patchDatabases.data[0]->targetDatabase, nullptr);
}

TEST_F(PatchScan, AnUpperCaseExtensionIsFoundAndKeptAsItIs)
{
  AddPatch("OLD.MDB");
  const DatabaseUpdateManager manager;
  EXPECT_EQ(NamesOf(manager.patchDatabases), Lines{"OLD.MDB"});
  EXPECT_EQ(TriedConnections()[0], PatchConnection("OLD.MDB"));
}

TEST_F(PatchScan, WhatTheSearchFindsIsNotFiltered)
{
  Files().MakeFolder(std::string(PatchFolder) + "\\folder.mdb");
  AddPatch("x.mdbx");
  {
    const LeftToTheEnd folderThatIsNoDatabase;
    const DatabaseUpdateManager manager;
    EXPECT_EQ(NamesOf(manager.patchDatabases), Lines{"x.mdbx"});
  }
  EXPECT_EQ(TriedConnections()[0], PatchConnection("folder.mdb"));
  EXPECT_EQ(TriedConnections()[1], PatchConnection("x.mdbx"));
}

TEST_F(PatchScan, AnUnreadableDataPathMeansTheRootOfTheDrive)
{
  Registry().RemoveKey(HKEY_LOCAL_MACHINE, RegistryView::Native,
                       "Software\\Norvane\\Kestrelforge\\2010\\Environment");
  const DatabaseUpdateManager manager;
  EXPECT_EQ(DiaryOf({"FindFirstFileW"}),
            (Lines{"FindFirstFileW(\"\\DatabaseUpdate\\*.mdb\") = invalid",
                   "FindFirstFileW(\"\\DatabaseUpdate\\Projects\\*.mdb\") = invalid"}));
}

TEST_F(PatchScan, TheDataPathIsAskedForBeforeEachSearch)
{
  const DatabaseUpdateManager manager;
  const Lines lines = DiaryOf({"RegQueryValueExW", "FindFirstFileW"});
  const std::string query = "RegQueryValueExW(#1, \"DataPath\", type 1, 8192) = 0";
  EXPECT_EQ(lines[0], query);
  EXPECT_EQ(lines[1], PatchSearch + "invalid");
  EXPECT_EQ(lines[2], "RegQueryValueExW(#2, \"DataPath\", type 1, 8192) = 0");
  EXPECT_EQ(lines[3], ProjectSearch + "invalid");
}

TEST_F(PatchScan, APatchThatCanNotBeConnectedLeavesNoGap)
{
  AddDamagedPatch("a.mdb");
  AddPatch("b.mdb");
  AddDamagedPatch("c.mdb");
  AddPatch("d.mdb");
  const LeftToTheEnd damagedPatches;
  const DatabaseUpdateManager manager;
  EXPECT_EQ(NamesOf(manager.patchDatabases), (Lines{"b.mdb", "d.mdb"}));
}

TEST_F(PatchScan, APatchThatCanNotBeConnectedIsReportedByItsConnectionAlone)
{
  AddDamagedPatch("a.mdb");
  AddDamagedPatch("b.mdb", ProjectFolder);
  {
    const LeftToTheEnd damagedPatches;
    const DatabaseUpdateManager manager;
    EXPECT_EQ(manager.projectPatchDatabases.count, 0);
  }
  EXPECT_EQ(Traces(), Lines(2 + 17, ConnectTrace));
}

TEST_F(PatchScan, APatchThatCanNotBeConnectedKeepsItsHandles)
{
  AddDamagedPatch("a.mdb");
  AddDamagedPatch("b.mdb", ProjectFolder);
  {
    const LeftToTheEnd damagedPatches;
    const DatabaseUpdateManager manager;
  }
  EXPECT_EQ(Odbc().OpenEnvironments(), 2);
  EXPECT_EQ(Odbc().OpenConnections(), 2);
  const Lines freed = DiaryOf({"SQLFreeHandle", "SQLDisconnect"});
  for (const char* line : {"SQLDisconnect(dbc#1) = 0", "SQLFreeHandle(ENV, env#1) = 0",
                           "SQLFreeHandle(ENV, env#2) = 0", "SQLFreeHandle(DBC, dbc#2) = 0"})
    EXPECT_EQ(std::count(freed.begin(), freed.end(), line), 0) << line;
}

TEST_F(PatchScan, APatchWhoseEnvironmentFailsIsDroppedToo)
{
  AddPatch("a.mdb");
  AddPatch("b.mdb");
  FailOdbcCall("SQLAllocHandle", 1, SQL_ERROR);
  const LeftToTheEnd failedPatch;
  const DatabaseUpdateManager manager;
  EXPECT_EQ(NamesOf(manager.patchDatabases), Lines{"b.mdb"});
  EXPECT_EQ(Traces()[0], "\nError in Allocating Environment.");
}

TEST_F(PatchScan, AConnectionWithInformationIsOne)
{
  AddPatch("a.mdb").ConnectGives(SQL_SUCCESS_WITH_INFO);
  const DatabaseUpdateManager manager;
  EXPECT_EQ(NamesOf(manager.patchDatabases), Lines{"a.mdb"});
}

TEST_F(PatchScan, ProjectPatchesKeepTheOrderOfTheSearch)
{
  Files().SetSearchOrder({"c.mdb", "a.mdb", "b.mdb"});
  AddPatch("a.mdb", {3, 0, 0, 0}, ProjectFolder);
  AddPatch("b.mdb", {2, 0, 0, 0}, ProjectFolder);
  AddPatch("c.mdb", {9, 0, 0, 0}, ProjectFolder);
  const DatabaseUpdateManager manager;
  EXPECT_EQ(NamesOf(manager.projectPatchDatabases), (Lines{"c.mdb", "a.mdb", "b.mdb"}));
}
