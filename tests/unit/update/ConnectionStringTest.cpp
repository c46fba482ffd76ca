// Which of the three places a database's connection string comes from.
#include "database/DatabaseNames.h"
#include "tests/doubles/FilesDouble.h"
#include "tests/unit/settings/SettingsMachine.h"
#include "tests/unit/update/UpdateMachine.h"
#include "update/DatabaseConfiguration.h"

#include <gtest/gtest.h>

namespace {

const char* const ModelConnection =
    "DRIVER={Kestrel ODBC Driver};UID=;PWD=;DBQ=C:\\Data\\Kernel\\Data\\model.mdb";

class ConnectionString : public UpdateMachine
{
protected:
  static Lines ConnectionsOfAll()
  {
    Lines connections;
    for (const std::string& name : ProductNames())
      connections.push_back(ConnectionOf(name));
    return connections;
  }

  static size_t OpenedFiles() { return DiaryOf({"_wfopen_s"}).size(); }
};

}  // namespace

TEST_F(ConnectionString, OfEachDatabaseComesFromItsPlace)
{
  std::string elements;
  Lines expected;
  for (const std::string& name : ProductNames()) {
    elements += Entry(name, "file:" + name);
    expected.push_back("file:" + name);
  }
  PutConfiguration(elements);
  SetUserConnection("QuillProfiles2010", "registry:profiles");
  SetMachineConnection("NVCMapping2010", "registry:mapping");
  expected[4] = "registry:profiles";
  expected[9] = ModelConnection;
  expected[15] = "registry:mapping";
  EXPECT_EQ(ConnectionsOfAll(), expected);
}

TEST_F(ConnectionString, WithNothingInstalledOnlyTheCurrentProjectHasOne)
{
  Lines expected(17);
  expected[9] = ModelConnection;
  EXPECT_EQ(ConnectionsOfAll(), expected);
}

TEST_F(ConnectionString, OfARegisteredDatabaseIsTheWholeValueOfItsName)
{
  SetUserConnection("QuillProfiles2010", " DSN=a;DBQ=C:\\x\\ ");
  EXPECT_EQ(ConnectionOf("QuillProfiles2010"), " DSN=a;DBQ=C:\\x\\ ");
  EXPECT_EQ(DiaryOf({"RegQueryValueExW"}), Lines{QueryLine("#1", "QuillProfiles2010", "0")});
}

TEST_F(ConnectionString, OfARegisteredDatabaseIsLookedUpUnderTheNameThatWasAskedFor)
{
  SetMachineConnection("quillPROFILES2010", "a");
  SetMachineConnection("nvcMAPPING2010", "b");
  EXPECT_EQ(ConnectionOf("quillPROFILES2010"), "a");
  EXPECT_EQ(ConnectionOf("nvcMAPPING2010"), "b");
  EXPECT_EQ(DiaryOf({"RegQueryValueExW"}), (Lines{QueryLine("#1", "quillPROFILES2010", "0"),
                                                  QueryLine("#2", "nvcMAPPING2010", "0")}));
}

TEST_F(ConnectionString, OfTheCurrentProjectHasAFixedPlaceBelowTheDataPath)
{
  EXPECT_EQ(ConnectionOf("QuillCurrentProject"), ModelConnection);
  EXPECT_EQ(ConnectionOf("QUILLcurrentproject"), ModelConnection);
  SetDataPath("D:\\My Data");
  EXPECT_EQ(ConnectionOf("QuillCurrentProject"),
            "DRIVER={Kestrel ODBC Driver};UID=;PWD=;DBQ=D:\\My Data\\Kernel\\Data\\model.mdb");
}

TEST_F(ConnectionString, OfTheCurrentProjectBeginsAtTheRootWithoutADataPath)
{
  SetDataPath("");
  EXPECT_EQ(ConnectionOf("QuillCurrentProject"),
            "DRIVER={Kestrel ODBC Driver};UID=;PWD=;DBQ=\\Kernel\\Data\\model.mdb");
}

TEST_F(ConnectionString, OfTheThreeSpecialDatabasesIsNotTakenFromTheFile)
{
  PutConfiguration(Entry("QuillProfiles2010", "a") + Entry("QuillCurrentProject", "b") +
                   Entry("NVCMapping2010", "c"));
  EXPECT_EQ(ConnectionOf("QuillProfiles2010"), "");
  EXPECT_EQ(ConnectionOf("NVCMapping2010"), "");
  EXPECT_EQ(ConnectionOf("QuillCurrentProject"), ModelConnection);
  EXPECT_EQ(OpenedFiles(), 0u);
}

TEST_F(ConnectionString, OfAnotherDatabaseIsNotTakenFromTheRegistry)
{
  SetUserConnection("QuillRules", "registry");
  EXPECT_EQ(ConnectionOf("QuillRules"), "");
}

TEST_F(ConnectionString, IsUsedAsItStandsInTheFile)
{
  PutConfiguration(Entry("QuillRules", " ;DBQ=..\\x;;PWD={a}b; "));
  EXPECT_EQ(ConnectionOf("QuillRules"), " ;DBQ=..\\x;;PWD={a}b; ");
}

TEST_F(ConnectionString, IsThatOfTheFirstOfSeveralEntries)
{
  PutConfiguration(Entry("QuillRules", "x86", "x86") + Entry("QuillBase", "other") +
                   Entry("QuillRules", "first") + Entry("QuillRules", "second"));
  EXPECT_EQ(ConnectionOf("QuillRules"), "first");
}

TEST_F(ConnectionString, OfAnEntryWithAnEmptyValueIsEmptyAndEndsTheSearch)
{
  PutConfiguration(Entry("QuillRules", "") + Entry("QuillRules", "second"));
  EXPECT_EQ(ConnectionOf("QuillRules"), "");
}

TEST_F(ConnectionString, IsNotTakenFromAnEntryOfAnotherPlatform)
{
  std::string elements;
  for (const char* platform : {"X64", " x64", "x64 ", "x6", "x645", "x86", "64", ""})
    elements += Entry("QuillRules", "v", platform);
  PutConfiguration(elements);
  EXPECT_EQ(ConnectionOf("QuillRules"), "");
  EXPECT_EQ(Entries().size(), 8u);
}

TEST_F(ConnectionString, IsNotTakenFromAnEntryWhoseNameDiffersInCaseOrBlanks)
{
  PutConfiguration(Entry("quillRules", "a") + Entry("QUILLRULES", "b") + Entry("QuillRules ", "c") +
                   Entry("QuillRule", "d"));
  EXPECT_EQ(ConnectionOf("QuillRules"), "");
  EXPECT_EQ(ConnectionOf("quillRules"), "a");
}

TEST_F(ConnectionString, OfANameThatNobodyKnowsIsEmpty)
{
  PutConfiguration(Entry("QuillRules", "v"));
  EXPECT_EQ(ConnectionOf("Other"), "");
  EXPECT_EQ(ConnectionOf(""), "");
}

TEST_F(ConnectionString, LooksForAMissingFileAgainForEachOfThe14Databases)
{
  (void)ConnectionsOfAll();
  EXPECT_EQ(OpenedFiles(), 14u);
}

TEST_F(ConnectionString, ReadsAFileThatGivesNothingAgainForEachOfThe14Databases)
{
  PutConfiguration("<DataSource Platform=\"x64\" Name=\"QuillRules\" />");
  (void)ConnectionsOfAll();
  EXPECT_EQ(OpenedFiles(), 14u);
  EXPECT_EQ(DiaryOf({"MultiByteToWideChar"}).size(), 14u);
}

TEST_F(ConnectionString, ReadsAFileThatGivesSomethingOnce)
{
  PutConfiguration(Entry("Other", "v", "x86"));
  (void)ConnectionsOfAll();
  EXPECT_EQ(OpenedFiles(), 1u);
}

TEST_F(ConnectionString, FindsAFileThatAppearsLater)
{
  EXPECT_EQ(ConnectionOf("QuillRules"), "");
  PutConfiguration(Entry("QuillRules", "a") + Entry("QuillBase", "b"));
  EXPECT_EQ(ConnectionOf("QuillBase"), "b");
  EXPECT_EQ(ConnectionOf("QuillRules"), "a");
  EXPECT_EQ(OpenedFiles(), 2u);
}

TEST_F(ConnectionString, KeepsWhatTheFileSaidWhenItWasRead)
{
  PutConfiguration(Entry("QuillRules", "a"));
  EXPECT_EQ(ConnectionOf("QuillRules"), "a");
  PutConfiguration(Entry("QuillRules", "b") + Entry("QuillBase", "b"));
  EXPECT_EQ(ConnectionOf("QuillRules"), "a");
  EXPECT_EQ(ConnectionOf("QuillBase"), "");
}

TEST_F(ConnectionString, AsksForTheDataPathEachTime)
{
  (void)ConnectionOf("QuillRules");
  SetDataPath("D:\\Moved");
  (void)ConnectionOf("QuillRules");
  EXPECT_EQ(DiaryOf({"RegQueryValueExW"}),
            (Lines{QueryLine("#1", "DataPath", "0"), QueryLine("#2", "DataPath", "0")}));
  EXPECT_EQ(DiaryOf({"_wfopen_s"})[1],
            "_wfopen_s(\"D:\\Moved\\Configuration\\DatabaseConfiguration.xml\", \"r, "
            "ccs=UNICODE\") = 2");
}

TEST_F(ConnectionString, OfAnUnknownDatabaseIsNotReported)
{
  (void)ConnectionsOfAll();
  EXPECT_EQ(DiaryOf({"OutputDebugStringW"}), Lines());
}
