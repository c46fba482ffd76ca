// Updates over real files, by way of the driver manager and the driver of development machines.
#include "database/UpdateTable.h"
#include "tests/doubles/FilesDouble.h"
#include "tests/doubles/LiveOdbc.h"
#include "tests/unit/settings/SettingsMachine.h"
#include "tests/unit/update/LeftToTheEnd.h"
#include "tests/unit/update/UpdateMachine.h"
#include "update/DatabaseUpdateManager.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>

namespace {

class LiveUpdate : public UpdateMachine
{
protected:
  void SetUp() override { ASSERT_TRUE(UseLiveOdbc()); }

  static std::string ProductFile(const std::string& name)
  {
    return name == "QuillCurrentProject" ? "C:\\Data\\Kernel\\Data\\model.mdb"
                                         : "C:\\Data\\Bases\\" + name + ".mdb";
  }

  static std::string PatchFile(const std::string& name)
  {
    return std::string(PatchFolder) + "\\" + name;
  }

  static std::string ProjectFile(const std::string& name)
  {
    return std::string(ProjectFolder) + "\\" + name;
  }

  static void MakeDatabase(const std::string& path, int major)
  {
    ASSERT_EQ(RunSql(path, {"CREATE TABLE KFVersion (Attribute TEXT(50), [Value] TEXT(50))",
                            "INSERT INTO KFVersion VALUES ('MajorNumber', '" +
                                std::to_string(major) + "')",
                            "CREATE TABLE KFProjectsVersion (Attribute TEXT(50), [Value] TEXT(50))",
                            "CREATE TABLE Info (Name TEXT(50), [Value] MEMO, Type TEXT(50))",
                            "INSERT INTO Info VALUES ('Parts', 'a;b', 'LanguageDependent')"}),
              "");
  }

  // A patch of one step.
  static void MakePatch(const std::string& path, int major, const std::string& table)
  {
    MakeDatabase(path, major);
    ASSERT_EQ(RunSql(path, {"CREATE TABLE UpdateTable (ID COUNTER, Base TEXT(50), Source TEXT(50), "
                            "Target TEXT(50), DeleteRows BIT, Recreate BIT, CreateIfMissing BIT)",
                            "INSERT INTO UpdateTable VALUES (1, 'QuillRules', '" + table + "', '" +
                                table + "', 0, 0, 1)"}),
              "");
  }

  // All of the product's databases, found in the three places.
  static void InstallProduct()
  {
    std::string elements;
    for (const std::string& name : ProductNames()) {
      MakeDatabase(ProductFile(name), 1);
      elements += Entry(name, ConnectionStringOf(ProductFile(name)));
    }
    PutConfiguration(elements);
    SetUserConnection("QuillProfiles2010", ConnectionStringOf(ProductFile("QuillProfiles2010")));
    SetMachineConnection("NVCMapping2010", ConnectionStringOf(ProductFile("NVCMapping2010")));
    EXPECT_EQ(Load(), 17);
    ClearDiary();
  }

  // The bytes of all files that there are.
  static std::map<std::string, std::string> AllFiles()
  {
    std::map<std::string, std::string> files;
    const std::filesystem::path root = Files().UnixPath("C:\\");
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
      const std::string name = std::filesystem::relative(entry.path(), root).string();
      std::string path = "C:\\" + name;
      std::replace(path.begin(), path.end(), '/', '\\');
      files[name] = entry.is_regular_file() ? Files().Read(path) : "folder";
    }
    return files;
  }

  static void ExpectSameFiles(const std::map<std::string, std::string>& before)
  {
    const auto after = AllFiles();
    EXPECT_EQ(after.size(), before.size());
    for (const auto& [name, bytes] : before) {
      ASSERT_TRUE(after.contains(name)) << name;
      EXPECT_TRUE(after.at(name) == bytes) << name << " has changed.";
    }
  }
};

}  // namespace

TEST_F(LiveUpdate, OpensAllDatabasesInOrderAndClosesThemInOrder)
{
  InstallProduct();
  MakePatch(PatchFile("a.mdb"), 3, "Parts");  // dbc#1
  MakePatch(PatchFile("b.mdb"), 2, "Parts");  // dbc#2, the older one
  MakePatch(ProjectFile("c.mdb"), 1, "Parts");
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

TEST_F(LiveUpdate, ChangesNoByteOfAnyFileAndLeavesNoneBehind)
{
  InstallProduct();
  MakePatch(PatchFile("a.mdb"), 3, "Parts");
  MakePatch(ProjectFile("c.mdb"), 1, "Parts");
  const auto before = AllFiles();
  RunDatabaseUpdate(0, 0);
  ExpectSameFiles(before);
}

TEST_F(LiveUpdate, ReadsWhatTheDatabasesSayAboutThemselves)
{
  InstallProduct();
  MakePatch(PatchFile("a.mdb"), 3, "NewParts");
  MakePatch(PatchFile("b.mdb"), 2, "OldParts");
  const DatabaseUpdateManager manager;
  ASSERT_EQ(NamesOf(manager.patchDatabases), (Lines{"b.mdb", "a.mdb"}));
  const QulPatchDatabase& older = *manager.patchDatabases.data[0];
  ASSERT_EQ(older.updateTable->steps.count, 1);
  EXPECT_EQ(Utf8(older.updateTable->steps.data[0].targetTable.Text()), "OldParts");
  EXPECT_EQ(older.GetMajorNumber(), 2);
  for (int i = 0; i < 17; ++i) {
    EXPECT_TRUE(manager.modelDatabases.data[i]->connected) << i;
    EXPECT_TRUE(manager.modelDatabases.data[i]->IsOlderThan(&older)) << i;
  }
}

TEST_F(LiveUpdate, PassesOverADamagedPatch)
{
  InstallProduct();
  MakePatch(PatchFile("a.mdb"), 3, "Parts");
  Files().Put(PatchFile("b.mdb"), std::string(5000, 'x'));
  MakePatch(PatchFile("c.mdb"), 2, "Parts");
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
  InstallProduct();
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
  InstallProduct();
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
  InstallProduct();
  Files().Put(ProductFile("QuillRules"), std::string(5000, 'x'));
  RunDatabaseUpdate(0, 0);
  EXPECT_EQ(Traces(), Lines{ConnectTrace});
  EXPECT_EQ(DiaryOf({"SQLDisconnect"}).size(), 17u);
}

TEST_F(LiveUpdate, TakesADatabaseWithoutTablesForOneOfNoVersion)
{
  InstallProduct();
  Files().Remove(ProductFile("QuillBase"));
  ASSERT_EQ(RunSql(ProductFile("QuillBase"), {"CREATE TABLE Other (A LONG)"}), "");
  const DatabaseUpdateManager manager;
  EXPECT_EQ(Traces(), Lines());
  EXPECT_TRUE(manager.modelDatabases.data[3]->connected);
  EXPECT_EQ(manager.modelDatabases.data[3]->GetMajorNumber(), 0);
}
