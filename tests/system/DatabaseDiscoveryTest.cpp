// Which databases a launch opens, what it reads of them, what it says of those that it can't open,
// and that it leaves every one as it was if no patch is newer.

#include "sandbox/common/SandboxFiles.h"
#include "tests/system/DatabaseMachine.h"
#include "tests/system/HeldDatabase.h"

#include <filesystem>
#include <map>

namespace {

// A patch of this version is older than every database.
constexpr PatchVersion Outdated = {.majorNumber = 1};

class DatabaseDiscovery : public DatabaseTest
{
protected:
  static void MakeReadOnly(const std::string& file)
  {
    ASSERT_TRUE(SetFileAttributesW(DataPath(file).c_str(), FILE_ATTRIBUTE_READONLY));
  }

  // Without one file, all others are opened in their order, and it is reported once.
  void ExpectOnlyMissing(const DatabaseRun& run, const std::string& file)
  {
    std::vector<std::string> others = ProductFiles();
    std::erase(others, file);
    EXPECT_EQ(run.Opened(), others);
    EXPECT_EQ(run.Refused(), std::vector<std::string>{file});
    EXPECT_EQ(run.Traces(), ConnectFailures(1));
  }
};

}  // namespace

TEST_F(DatabaseDiscovery, WithoutAnyDatabaseAllSeventeenAreReported)
{
  const DatabaseRun run = Launch();
  EXPECT_EQ(run.debugOutput, NoDatabaseTraces());
  EXPECT_EQ(run.Opened(), std::vector<std::string>());
  EXPECT_EQ(run.traffic.connections.size(), 17u);
}

TEST_F(DatabaseDiscovery, AllSeventeenAreOpenedInTheirOrderWithoutAWord)
{
  LayProduct();
  const DatabaseRun run = Launch();
  EXPECT_EQ(run.Opened(), ProductFiles());
  EXPECT_EQ(run.debugOutput, std::vector<std::string>());
}

TEST_F(DatabaseDiscovery, AllAreClosedAgain)
{
  LayProduct();
  EXPECT_EQ(Launch().traffic.closed, ProductFiles());
}

TEST_F(DatabaseDiscovery, AnAbsentDatabaseIsReportedAndPassedOver)
{
  LayProduct();
  ASSERT_TRUE(DeleteFileW(DataPath(ProductFile("QuillBase")).c_str()));
  ExpectOnlyMissing(Launch(), ProductFile("QuillBase"));
}

TEST_F(DatabaseDiscovery, AFileThatIsNoDatabaseIsReportedAndPassedOver)
{
  LayProduct();
  LayBytes(ProductFile("QuillGratings"), std::string(5000, 'x'));
  ExpectOnlyMissing(Launch(), ProductFile("QuillGratings"));
}

TEST_F(DatabaseDiscovery, ADatabaseCutShortIsReportedAndPassedOver)
{
  LayProduct();
  std::string bytes;
  ASSERT_TRUE(ReadWholeFile(DataPath(ProductFile("QuillDetails")), bytes));
  LayBytes(ProductFile("QuillDetails"), bytes.substr(0, 1000));
  ExpectOnlyMissing(Launch(), ProductFile("QuillDetails"));
}

TEST_F(DatabaseDiscovery, AFolderInThePlaceOfADatabaseIsReportedAndPassedOver)
{
  LayProduct();
  ASSERT_TRUE(DeleteFileW(DataPath(ProductFile("QuillCurrentProject")).c_str()));
  ASSERT_TRUE(MakeFolders(DataPath(ProductFile("QuillCurrentProject"))));
  ExpectOnlyMissing(Launch(), ProductFile("QuillCurrentProject"));
}

TEST_F(DatabaseDiscovery, ALockedPatchIsWaitedForReportedAndLeftOut)
{
  LayProduct();
  LayPatch("A.mdb", Outdated);
  LayPatch("B.mdb", Outdated);
  const HeldDatabase held(DataPath("DatabaseUpdate\\A.mdb"));
  const DatabaseRun run = Launch();
  EXPECT_EQ(run.Refused(), std::vector<std::string>{"DatabaseUpdate\\A.mdb"});
  EXPECT_EQ(run.Opened().size(), 18u);
  EXPECT_EQ(run.Traces(), ConnectFailures(1));
}

TEST_F(DatabaseDiscovery, ReadOnlyDatabasesAreOpenedAndRead)
{
  LayProduct();
  LayPatch("A.mdb", Outdated);
  for (const std::string& file : ProductFiles()) {
    MakeReadOnly(file);
  }
  MakeReadOnly("DatabaseUpdate\\A.mdb");
  const DatabaseRun run = Launch();
  EXPECT_EQ(run.debugOutput, std::vector<std::string>());
  EXPECT_EQ(run.Opened().size(), 18u);
}

TEST_F(DatabaseDiscovery, TheVersionsAndTheLanguagesOfADatabaseAreRead)
{
  LayProduct();
  EXPECT_EQ(Launch().StatementsOn(ProductFile("QuillBase")),
            (std::vector<std::string>{"SELECT * FROM KFVersion", "SELECT * FROM KFProjectsVersion",
                                      "SELECT * FROM Info"}));
}

TEST_F(DatabaseDiscovery, OfAPatchTheStepsAreReadToo)
{
  LayPatch("A.mdb", {});
  EXPECT_EQ(
      Launch().StatementsOn("DatabaseUpdate\\A.mdb"),
      (std::vector<std::string>{"SELECT * FROM KFVersion", "SELECT * FROM KFProjectsVersion",
                                "SELECT * FROM Info", "SELECT * FROM UpdateTable ORDER BY [ID]"}));
}

TEST_F(DatabaseDiscovery, TheStepsAreReadFromTheTableOfTheLanguage)
{
  LayPatch("A.mdb", {});
  Execute("DatabaseUpdate\\A.mdb",
          {"CREATE TABLE UpdateTableDE ([ID] LONG NOT NULL)",
           "INSERT INTO Info VALUES ('UpdateTable', 'UpdateTable;U;U;UpdateTableDE', "
           "'LanguageDependentTables')"});
  const DWORD german = 1031;
  Machine64.WriteNumber(EnvironmentKey, L"Language", german);
  EXPECT_EQ(Launch().StatementsOn("DatabaseUpdate\\A.mdb").back(),
            "SELECT * FROM UpdateTableDE ORDER BY [ID]");
}

TEST_F(DatabaseDiscovery, MissingTablesOfVersionAndLanguageAreNoFailure)
{
  LayBytes(ProductFile("QuillCurrentProject"), "");
  const DatabaseRun run = Launch();
  EXPECT_EQ(run.Opened(), std::vector<std::string>{ProductFile("QuillCurrentProject")});
  EXPECT_EQ(run.Traces(), ConnectFailures(16));
}

TEST_F(DatabaseDiscovery, ALaunchWithoutANewerPatchChangesNoByteOfAnyFileAndLeavesNoneBehind)
{
  LayProduct();
  LayPatch("A.mdb", Outdated);
  LayPatch("Projects\\P.mdb", {});
  const std::map<std::string, std::string> before = DataFiles();
  ASSERT_EQ(before.size(), 20u);
  EXPECT_EQ(Launch().Opened().size(), 19u);
  EXPECT_TRUE(DataFiles() == before);
}

TEST_F(DatabaseDiscovery, TheDataFolderOfTheUserIsTakenBeforeThatOfTheMachine)
{
  LayCopy("QuillCurrentProject.mdb", "Own\\Kernel\\Data\\model.mdb");
  User.WriteText(EnvironmentKey, L"DataPath", DataPath("Own") + L"\\");
  EXPECT_EQ(Launch().Opened(), std::vector<std::string>{"Own\\Kernel\\Data\\model.mdb"});
}

TEST_F(DatabaseDiscovery, WithoutADataFolderTheRootOfTheDriveIsSearched)
{
  Machine64.RemoveValue(EnvironmentKey, L"DataPath");
  const std::wstring folder = L"C:\\DatabaseUpdate";
  ASSERT_TRUE(MakeFolders(folder));
  ASSERT_TRUE(CopyFileW(SandboxFile(L"databases\\updates\\Spring2010.mdb").c_str(),
                        (folder + L"\\Root.mdb").c_str(), FALSE));
  EXPECT_EQ(Launch().Opened(), std::vector<std::string>{"\\DatabaseUpdate\\Root.mdb"});
  std::filesystem::remove_all(folder);
}
