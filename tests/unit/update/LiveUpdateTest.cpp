// The databases of an update over real files: opened, read and closed.
#include "database/UpdateTable.h"
#include "tests/doubles/FilesDouble.h"
#include "tests/doubles/Text.h"
#include "tests/unit/update/LeftToTheEnd.h"
#include "tests/unit/update/LiveMachine.h"
#include "update/DatabaseUpdateManager.h"

#include <gtest/gtest.h>

namespace {

using LiveUpdate = LiveMachine;

}  // namespace

TEST_F(LiveUpdate, OpensAllDatabasesInOrderAndClosesThemInOrder)
{
  InstallProduct({9, 0, 0, 0});
  AddLivePatch("a.mdb", {3, 0, 0, 0});  // dbc#1
  AddLivePatch("b.mdb", {2, 0, 0, 0});  // dbc#2, the older one
  AddLiveProjectPatch("c.mdb", {});
  RunDatabaseUpdate(0, 0);
  EXPECT_EQ(Traces(), Lines());
  Lines connections = {ConnectionStringOf(PatchFile("a.mdb")),
                       ConnectionStringOf(PatchFile("b.mdb")),
                       ConnectionStringOf(ProjectFile("c.mdb"))};
  for (const std::string& name : ProductNames())
    connections.push_back(ConnectionStringOf(ProductFile(name)));
  EXPECT_EQ(TriedConnections(), connections);
  Lines disconnects = {"SQLDisconnect(dbc#2) = 0", "SQLDisconnect(dbc#1) = 0"};
  for (int n = 3; n <= 20; ++n)
    disconnects.push_back("SQLDisconnect(dbc#" + std::to_string(n) + ") = 0");
  EXPECT_EQ(DiaryOf({"SQLDisconnect"}), disconnects);
  EXPECT_EQ(Odbc().OpenEnvironments(), 0);
}

TEST_F(LiveUpdate, ThatFindsNothingOlderChangesNoByteOfAnyFileAndLeavesNoneBehind)
{
  InstallProduct({9, 0, 0, 0});
  AddLivePatch("a.mdb", {9, 0, 0, 0});
  AddLiveProjectPatch("c.mdb", {});
  const auto before = AllFiles();
  RunDatabaseUpdate(0, 0);
  ExpectSameFiles(before);
}

TEST_F(LiveUpdate, ReadsWhatTheDatabasesSayAboutThemselves)
{
  InstallProduct({9, 0, 0, 0});
  AddLivePatch("a.mdb", {3, 0, 0, 0});
  AddLivePatch("b.mdb", {2, 0, 0, 0});
  AddStep(PatchFile("b.mdb"), "QuillRules", "Parts", "OldParts");
  const DatabaseUpdateManager manager;
  ASSERT_EQ(NamesOf(manager.patchDatabases), (Lines{"b.mdb", "a.mdb"}));
  const QulPatchDatabase& older = *manager.patchDatabases.data[0];
  ASSERT_EQ(older.updateTable->steps.count, 1);
  EXPECT_EQ(Utf8(older.updateTable->steps.data[0].targetTable.Text()), "OldParts");
  EXPECT_EQ(older.GetMajorNumber(), 2);
  for (int i = 0; i < 17; ++i) {
    EXPECT_TRUE(manager.modelDatabases.data[i]->connected) << i;
    EXPECT_TRUE(older.IsOlderThan(manager.modelDatabases.data[i])) << i;
  }
}

TEST_F(LiveUpdate, PassesOverADamagedPatch)
{
  InstallProduct({9, 0, 0, 0});
  AddLivePatch("a.mdb", {3, 0, 0, 0});
  Files().Put(PatchFile("b.mdb"), std::string(5000, 'x'));
  AddLivePatch("c.mdb", {2, 0, 0, 0});
  const auto before = AllFiles();
  {
    const LeftToTheEnd damagedPatch;
    const DatabaseUpdateManager manager;
    EXPECT_EQ(NamesOf(manager.patchDatabases), (Lines{"c.mdb", "a.mdb"}));
  }
  EXPECT_EQ(Traces(), Lines{ConnectTrace});
  ExpectSameFiles(before);
}

TEST_F(LiveUpdate, PassesOverAFolderWithTheNameOfAPatch)
{
  InstallProduct({9, 0, 0, 0});
  Files().MakeFolder(PatchFile("folder.mdb"));
  {
    const LeftToTheEnd folderThatIsNoPatch;
    RunDatabaseUpdate(0, 0);
  }
  EXPECT_EQ(Traces(), Lines{ConnectTrace});
  EXPECT_EQ(TriedConnections()[0], ConnectionStringOf(PatchFile("folder.mdb")));
}

TEST_F(LiveUpdate, KeepsThePlaceOfADatabaseThatIsMissingAndDoesNotMakeIt)
{
  InstallProduct({9, 0, 0, 0});
  Files().Remove(ProductFile("QuillAddition"));
  Files().Remove(ProductFile("QuillCurrentProject"));
  const auto before = AllFiles();
  {
    const DatabaseUpdateManager manager;
    EXPECT_EQ(NamesOf(manager.modelDatabases), ProductNames());
    for (int i = 0; i < 17; ++i)
      EXPECT_EQ(manager.modelDatabases.data[i]->connected, i != 1 && i != 9) << i;
  }
  EXPECT_EQ(Traces(), (Lines{ConnectTrace, ConnectTrace}));
  ExpectSameFiles(before);
}

TEST_F(LiveUpdate, ReportsADamagedDatabaseOfTheProductAndGoesOn)
{
  InstallProduct({9, 0, 0, 0});
  Files().Put(ProductFile("QuillRules"), std::string(5000, 'x'));
  RunDatabaseUpdate(0, 0);
  EXPECT_EQ(Traces(), Lines{ConnectTrace});
  EXPECT_EQ(DiaryOf({"SQLDisconnect"}).size(), 17u);
}

TEST_F(LiveUpdate, TakesADatabaseWithoutTablesForOneOfNoVersion)
{
  InstallProduct({9, 0, 0, 0});
  Files().Remove(ProductFile("QuillBase"));
  ASSERT_EQ(RunSql(ProductFile("QuillBase"), {"CREATE TABLE Other (A LONG)"}), "");
  const DatabaseUpdateManager manager;
  EXPECT_EQ(Traces(), Lines());
  EXPECT_TRUE(manager.modelDatabases.data[3]->connected);
  EXPECT_EQ(manager.modelDatabases.data[3]->GetMajorNumber(), 0);
}
