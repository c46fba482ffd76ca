// The patches of a launch: which files are taken for patches, and their order by version. The
// launcher closes them in that order, which shows it from outside.

#include "sandbox/common/SandboxFiles.h"
#include "tests/system/DatabaseMachine.h"

#include <algorithm>

namespace {

class PatchOrder : public DatabaseTest
{
protected:
  // Files of the folder below DatabaseUpdate in the order of the file search.
  static std::vector<std::string> Found(const std::string& folder)
  {
    std::vector<std::string> files;
    WIN32_FIND_DATAW found = {};
    const HANDLE search = FindFirstFileW(DataPath(folder + "\\*.mdb").c_str(), &found);
    if (search != INVALID_HANDLE_VALUE) {
      do {
        files.push_back(folder + "\\" + ToUtf8(found.cFileName));
      } while (FindNextFileW(search, &found));
      FindClose(search);
    }
    return files;
  }

  static std::vector<std::string> Patches(const std::vector<std::string>& names)
  {
    std::vector<std::string> files;
    for (const std::string& name : names) {
      files.push_back("DatabaseUpdate\\" + name);
    }
    return files;
  }

  // A machine without product databases: only patches are opened and closed.
  std::vector<std::string> ClosedByLaunch()
  {
    const DatabaseRun run = Launch();
    EXPECT_EQ(run.Traces(), ConnectFailures(17));
    return run.traffic.closed;
  }
};

}  // namespace

TEST_F(PatchOrder, PatchesAreOpenedAsTheyAreFound)
{
  LayPatch("A.mdb", {.minorNumber = 3});
  LayPatch("B.mdb", {.minorNumber = 1});
  LayPatch("C.mdb", {.minorNumber = 2});
  EXPECT_EQ(Launch().Opened(), Found("DatabaseUpdate"));
}

TEST_F(PatchOrder, TheOldestPatchComesFirst)
{
  LayPatch("A.mdb", {.minorNumber = 3});
  LayPatch("B.mdb", {.minorNumber = 1});
  LayPatch("C.mdb", {.minorNumber = 2});
  EXPECT_EQ(ClosedByLaunch(), Patches({"B.mdb", "C.mdb", "A.mdb"}));
}

TEST_F(PatchOrder, AServicePackWeighsMoreThanABuild)
{
  LayPatch("A.mdb", {.servicePack = 1, .build = 3});
  LayPatch("B.mdb", {.servicePack = 0, .build = 500});
  EXPECT_EQ(ClosedByLaunch(), Patches({"B.mdb", "A.mdb"}));
}

TEST_F(PatchOrder, PatchesOfEqualVersionStayAsTheyAreFound)
{
  LayPatch("A.mdb", {.minorNumber = 3});
  LayPatch("B.mdb", {.minorNumber = 1});
  LayPatch("C.mdb", {.minorNumber = 2});
  LayPatch("D.mdb", {.minorNumber = 1});
  const std::vector<std::string> found = Found("DatabaseUpdate");
  const bool firstIsB = std::find(found.begin(), found.end(), Patches({"B.mdb"})[0]) <
                        std::find(found.begin(), found.end(), Patches({"D.mdb"})[0]);
  const std::vector<std::string> expected = firstIsB
                                                ? Patches({"B.mdb", "D.mdb", "C.mdb", "A.mdb"})
                                                : Patches({"D.mdb", "B.mdb", "C.mdb", "A.mdb"});
  EXPECT_EQ(ClosedByLaunch(), expected);
}

TEST_F(PatchOrder, MoreThanEightPatchesAreAllSorted)
{
  std::vector<std::string> names;
  for (int i = 0; i < 11; ++i) {
    const std::string name = std::string(1, static_cast<char>('A' + i)) + ".mdb";
    LayPatch(name, {.build = 100 - i});
    names.push_back(name);
  }
  std::reverse(names.begin(), names.end());
  EXPECT_EQ(ClosedByLaunch(), Patches(names));
}

TEST_F(PatchOrder, APatchWithoutAVersionIsTheOldest)
{
  LayPatch("A.mdb", {});
  LayPatch("B.mdb", {});
  Execute("DatabaseUpdate\\B.mdb", {"DROP TABLE KFVersion"});
  EXPECT_EQ(ClosedByLaunch(), Patches({"B.mdb", "A.mdb"}));
}

TEST_F(PatchOrder, ADamagedPatchIsReportedAndDropped)
{
  LayPatch("A.mdb", {.minorNumber = 2});
  LayBytes("DatabaseUpdate\\B.mdb", std::string(3000, 'x'));
  LayPatch("C.mdb", {.minorNumber = 1});
  const DatabaseRun run = Launch();
  EXPECT_EQ(run.Traces(), ConnectFailures(1 + 17));
  EXPECT_EQ(run.Opened(), Patches({"A.mdb", "C.mdb"}));
  EXPECT_EQ(run.traffic.closed, Patches({"C.mdb", "A.mdb"}));
}

TEST_F(PatchOrder, ADamagedPatchIsNotReleasedAndAMissingDatabaseIs)
{
  LayBytes("DatabaseUpdate\\A.mdb", std::string(3000, 'x'));
  const DatabaseRun run = Launch();
  ASSERT_EQ(run.traffic.connections.size(), 1u + 17u);
  EXPECT_FALSE(run.traffic.connections.front().released);
  EXPECT_TRUE(run.traffic.connections.back().released);
}

TEST_F(PatchOrder, AFolderThatIsNamedLikeAPatchIsReportedAndDropped)
{
  LayPatch("A.mdb", {});
  ASSERT_TRUE(MakeFolders(DataPath("DatabaseUpdate\\B.mdb")));
  const DatabaseRun run = Launch();
  EXPECT_EQ(run.Traces(), ConnectFailures(1 + 17));
  EXPECT_EQ(run.Opened(), Patches({"A.mdb"}));
}

TEST_F(PatchOrder, AnExtensionInCapitalsIsFound)
{
  LayPatch("SPRING.MDB", {});
  EXPECT_EQ(Launch().Opened(), Patches({"SPRING.MDB"}));
}

TEST_F(PatchOrder, FilesWithAnotherExtensionAreNoPatches)
{
  LayPatch("A.mdb", {});
  LayBytes("DatabaseUpdate\\A.ldb", "x");
  LayBytes("DatabaseUpdate\\mdb", "x");
  LayBytes("DatabaseUpdate\\A.mdb.txt", "x");
  EXPECT_EQ(ClosedByLaunch(), Patches({"A.mdb"}));
}

TEST_F(PatchOrder, TheNameOfAPatchMayHoldBlanksAndOtherLetters)
{
  LayPatch("St\xC3\xBCtzen 2010.mdb", {});
  // The trace holds the lowest byte of each character.
  EXPECT_EQ(Launch().Opened(), Patches({"St\xFCtzen 2010.mdb"}));
}

TEST_F(PatchOrder, ProjectPatchesAreNotSortedAndComeBehindThePatches)
{
  LayPatch("Projects\\A.mdb", {.minorNumber = 2});
  LayPatch("Projects\\B.mdb", {.minorNumber = 1});
  LayPatch("Z.mdb", {.minorNumber = 9});
  std::vector<std::string> expected = Patches({"Z.mdb"});
  for (const std::string& file : Found("DatabaseUpdate\\Projects")) {
    expected.push_back(file);
  }
  EXPECT_EQ(expected.size(), 3u);
  const DatabaseRun run = Launch();
  EXPECT_EQ(run.Opened(), expected);
  EXPECT_EQ(run.traffic.closed, expected);
}

TEST_F(PatchOrder, ProjectPatchesAreFoundWithoutAnyOtherPatch)
{
  LayPatch("Projects\\A.mdb", {});
  EXPECT_EQ(ClosedByLaunch(), Patches({"Projects\\A.mdb"}));
}

TEST_F(PatchOrder, ThePatchesAreClosedBeforeTheProduct)
{
  LayProduct();
  LayPatch("A.mdb", {.majorNumber = 2});
  LayPatch("B.mdb", {.majorNumber = 1});
  std::vector<std::string> expected = Patches({"B.mdb", "A.mdb"});
  for (const std::string& file : ProductFiles()) {
    expected.push_back(file);
  }
  const DatabaseRun run = Launch();
  EXPECT_EQ(run.traffic.closed, expected);
  EXPECT_EQ(run.debugOutput, std::vector<std::string>());
}
