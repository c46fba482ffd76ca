// The databases of an update, from its beginning to its end.
#include "update/DatabaseUpdateManager.h"

#include "tests/unit/settings/SettingsMachine.h"
#include "tests/unit/update/LeftToTheEnd.h"
#include "tests/unit/update/UpdateMachine.h"

#include <gtest/gtest.h>

#include <optional>
#include <type_traits>
#include <utility>

namespace {

class UpdateDatabases : public UpdateMachine
{
protected:
  static void AddAllProductDatabases()
  {
    for (const std::string& name : ProductNames())
      AddProductDatabase(name);
    SetMachineConnection("QuillProfiles2010", ProductConnection("QuillProfiles2010"));
    SetMachineConnection("NVCMapping2010", ProductConnection("NVCMapping2010"));
    (void)Odbc().Database(ModelConnection);
  }

  static std::vector<bool> Connected(const DatabaseUpdateManager& manager)
  {
    std::vector<bool> connected;
    for (int i = 0; i < manager.modelDatabases.count; ++i)
      connected.push_back(manager.modelDatabases.data[i]->connected);
    return connected;
  }

  static constexpr const char* ModelConnection =
      "DRIVER={Kestrel ODBC Driver};UID=;PWD=;DBQ=C:\\Data\\Kernel\\Data\\model.mdb";
};

}  // namespace

TEST_F(UpdateDatabases, StandInThreePlainArrays)
{
  static_assert(!std::is_polymorphic_v<DatabaseUpdateManager>);
  static_assert(!std::is_copy_constructible_v<DatabaseUpdateManager>);
  static_assert(!std::is_copy_assignable_v<DatabaseUpdateManager>);
  const DatabaseUpdateManager manager;
  EXPECT_EQ(manager.patchDatabases.growBy, 8);
  EXPECT_EQ(manager.projectPatchDatabases.growBy, 8);
  EXPECT_EQ(manager.modelDatabases.growBy, 8);
  EXPECT_EQ(manager.modelDatabases.capacity, 24);
}

TEST_F(UpdateDatabases, OfTheProductStandAtThePlacesOfTheirNames)
{
  AddAllProductDatabases();
  const DatabaseUpdateManager manager;
  EXPECT_EQ(NamesOf(manager.modelDatabases), ProductNames());
  EXPECT_EQ(Connected(manager), std::vector<bool>(17, true));
}

TEST_F(UpdateDatabases, OfTheProductAreOpenedInTheOrderOfTheirNames)
{
  AddAllProductDatabases();
  const DatabaseUpdateManager manager;
  Lines expected;
  for (const std::string& name : ProductNames())
    expected.push_back(name == "QuillCurrentProject" ? ModelConnection : ProductConnection(name));
  EXPECT_EQ(TriedConnections(), expected);
}

TEST_F(UpdateDatabases, OfTheProductKeepTheirPlacesIfTheyCanNotBeConnected)
{
  AddProductDatabase("QuillRules");
  AddProductDatabase("QuillGratings");
  const DatabaseUpdateManager manager;
  EXPECT_EQ(NamesOf(manager.modelDatabases), ProductNames());
  std::vector<bool> connected(17);
  connected[0] = connected[16] = true;
  EXPECT_EQ(Connected(manager), connected);
  EXPECT_EQ(Traces(), Lines(15, ConnectTrace));
}

TEST_F(UpdateDatabases, WithoutAConnectionStringAreTriedWithTheEmptyOne)
{
  const DatabaseUpdateManager manager;
  Lines expected(17);
  expected[9] = ModelConnection;
  EXPECT_EQ(TriedConnections(), expected);
  EXPECT_EQ(manager.modelDatabases.count, 17);
}

TEST_F(UpdateDatabases, OfTheProductAreReadAndNotChangedWhereThereAreNoPatches)
{
  AddAllProductDatabases();
  {
    const DatabaseUpdateManager manager;
  }
  Lines expected;
  int statement = 1;
  for (int database = 0; database < 17; ++database) {
    for (const char* table : {"KFVersion", "KFProjectsVersion", "Info"}) {
      const std::string code = database == 9 ? "-1" : "0";
      expected.push_back("SQLExecDirectW(stmt#" + std::to_string(statement++) +
                         ", \"SELECT * FROM " + table + "\", -3) = " + code);
    }
  }
  EXPECT_EQ(DiaryOf({"SQLExecDirectW"}), expected);
}

TEST_F(UpdateDatabases, AreOpenedPatchesFirstThenProjectPatchesThenTheProducts)
{
  AddAllProductDatabases();
  AddPatch("b.mdb");
  AddPatch("a.mdb", {}, ProjectFolder);
  const DatabaseUpdateManager manager;
  const Lines tried = TriedConnections();
  ASSERT_EQ(tried.size(), 19u);
  EXPECT_EQ(tried[0], PatchConnection("b.mdb"));
  EXPECT_EQ(tried[1], PatchConnection("a.mdb", ProjectFolder));
  EXPECT_EQ(tried[2], ProductConnection("QuillRules"));
}

TEST_F(UpdateDatabases, StayConnectedSideBySideToTheEnd)
{
  AddAllProductDatabases();
  AddPatch("a.mdb");
  AddPatch("b.mdb", {}, ProjectFolder);
  {
    const DatabaseUpdateManager manager;
    EXPECT_EQ(Odbc().OpenEnvironments(), 19);
    EXPECT_EQ(Odbc().OpenConnections(), 19);
    EXPECT_EQ(DiaryOf({"SQLDisconnect"}), Lines());
  }
  EXPECT_EQ(Odbc().OpenEnvironments(), 0);
  EXPECT_EQ(Odbc().OpenConnections(), 0);
  EXPECT_EQ(Odbc().OpenStatements(), 0);
}

TEST_F(UpdateDatabases, AreClosedArrayByArrayInTheOrderOfTheArrays)
{
  AddAllProductDatabases();
  AddPatch("a.mdb", {2, 0, 0, 0});                 // dbc#1
  AddPatch("b.mdb", {1, 0, 0, 0});                 // dbc#2, in front of the other
  AddPatch("c.mdb", {2, 0, 0, 0}, ProjectFolder);  // dbc#3
  AddPatch("d.mdb", {1, 0, 0, 0}, ProjectFolder);  // dbc#4
  std::optional<DatabaseUpdateManager> manager(std::in_place);
  ClearDiary();
  manager.reset();
  Lines expected;
  for (const int n : {2, 1, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21}) {
    const std::string number = std::to_string(n);
    expected.push_back("SQLDisconnect(dbc#" + number + ") = 0");
    expected.push_back("SQLFreeHandle(DBC, dbc#" + number + ") = 0");
    expected.push_back("SQLFreeHandle(ENV, env#" + number + ") = 0");
  }
  EXPECT_EQ(Diary(), expected);
}

TEST_F(UpdateDatabases, ThatAreNotConnectedAreClosedToo)
{
  std::optional<DatabaseUpdateManager> manager(std::in_place);
  ClearDiary();
  manager.reset();
  EXPECT_EQ(DiaryOf({"SQLFreeHandle"}).size(), 34u);
  EXPECT_EQ(Odbc().OpenEnvironments(), 0);
}

TEST_F(UpdateDatabases, ThatAreNullArePassedOver)
{
  AddPatch("a.mdb");
  AddPatch("b.mdb", {}, ProjectFolder);
  {
    DatabaseUpdateManager manager;
    delete std::exchange(manager.patchDatabases.data[0], nullptr);
    delete std::exchange(manager.projectPatchDatabases.data[0], nullptr);
    delete std::exchange(manager.modelDatabases.data[3], nullptr);
  }
  EXPECT_EQ(DiaryOf({"SQLDisconnect"}).size(), 19u);
}

TEST_F(UpdateDatabases, EightPatchesFillTheFirstStepOfTheArrayAndNineTakeAnother)
{
  for (int i = 1; i <= 8; ++i)
    AddPatch("p" + std::to_string(i) + ".mdb");
  EXPECT_EQ(DatabaseUpdateManager().patchDatabases.capacity, 8);
  AddPatch("p9.mdb");
  const DatabaseUpdateManager manager;
  EXPECT_EQ(manager.patchDatabases.count, 9);
  EXPECT_EQ(manager.patchDatabases.capacity, 16);
  EXPECT_EQ(NamesOf(manager.patchDatabases)[8], "p9.mdb");
}

TEST_F(UpdateDatabases, OnePatchTakesAWholeStepOfTheArray)
{
  AddPatch("a.mdb", {}, ProjectFolder);
  const DatabaseUpdateManager manager;
  EXPECT_EQ(manager.projectPatchDatabases.count, 1);
  EXPECT_EQ(manager.projectPatchDatabases.capacity, 8);
}

TEST_F(UpdateDatabases, OfTheProductAreFoundInTheConfigurationFile)
{
  PutConfiguration(Entry("QuillRules", ProductConnection("QuillRules")) +
                   Entry("QuillBase", ProductConnection("QuillBase"), "x86"));
  const LeftToTheEnd buffersOfTheFile;
  const DatabaseUpdateManager manager;
  const Lines tried = TriedConnections();
  EXPECT_EQ(tried[0], ProductConnection("QuillRules"));
  EXPECT_EQ(tried[3], "");
  EXPECT_EQ(DiaryOf({"_wfopen_s"}).size(), 1u);
}

TEST_F(UpdateDatabases, TheFileIsOpenedForEachLookupBeforeTheDatabaseIs)
{
  const DatabaseUpdateManager manager;
  const Lines lines = DiaryOf({"_wfopen_s", "SQLDriverConnectW"});
  ASSERT_EQ(lines.size(), 14u + 17u);
  EXPECT_TRUE(lines[0].starts_with("_wfopen_s(\"C:\\Data\\Configuration\\"));
  EXPECT_TRUE(lines[1].starts_with("SQLDriverConnectW(dbc#1, "));
  EXPECT_TRUE(lines[2].starts_with("_wfopen_s("));
}
