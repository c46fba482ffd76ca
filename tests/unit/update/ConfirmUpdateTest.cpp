// Whether an update is due, which is asked once in a process.
#include "tests/unit/foundation/Texts.h"
#include "tests/unit/update/UpdateMachine.h"
#include "update/DatabaseUpdateManager.h"

#include <gtest/gtest.h>

namespace {

class ConfirmUpdate : public UpdateMachine
{
protected:
  static bool Confirms()
  {
    const DatabaseUpdateManager manager;
    return manager.ConfirmUpdate();
  }
};

}  // namespace

TEST_F(ConfirmUpdate, IsNoForAProductWithoutPatches)
{
  AddProductDatabase("QuillRules");
  AddProjectPatch("p.mdb", {{"A", 1}});
  EXPECT_FALSE(Confirms());
  EXPECT_TRUE(updatePromptPending);
}

TEST_F(ConfirmUpdate, IsYesForADatabaseThatIsOlderThanThePatch)
{
  AddProductDatabase("QuillRules", {1, 0, 0, 0});
  AddPatch("a.mdb", {1, 0, 0, 1});
  EXPECT_TRUE(Confirms());
  EXPECT_FALSE(updatePromptPending);
}

TEST_F(ConfirmUpdate, IsYesForTheLastOfTheDatabasesToo)
{
  AddProductDatabase("QuillRules", {9, 0, 0, 0});
  AddProductDatabase("QuillGratings", {1, 0, 0, 0});
  AddPatch("a.mdb", {2, 0, 0, 0});
  EXPECT_TRUE(Confirms());
}

TEST_F(ConfirmUpdate, IsNoForDatabasesAtOrAboveThePatchAndStaysPending)
{
  AddProductDatabase("QuillRules", {2, 0, 0, 0});
  AddProductDatabase("QuillBase", {2, 1, 0, 0});
  AddPatch("a.mdb", {2, 0, 0, 0});
  EXPECT_FALSE(Confirms());
  EXPECT_TRUE(updatePromptPending);
}

TEST_F(ConfirmUpdate, ComparesWithTheNewestPatchWhereverItWasFound)
{
  AddProductDatabase("QuillRules", {2, 0, 0, 0});
  AddPatch("a.mdb", {3, 0, 0, 0});
  AddPatch("b.mdb", {1, 0, 0, 0});
  EXPECT_TRUE(Confirms());
}

TEST_F(ConfirmUpdate, LeavesOutDatabasesThatAreNotConnected)
{
  AddPatch("a.mdb", {3, 0, 0, 0});
  EXPECT_FALSE(Confirms());
  EXPECT_TRUE(updatePromptPending);
}

TEST_F(ConfirmUpdate, LeavesOutProjectPatches)
{
  AddProductDatabase("QuillRules", {1, 0, 0, 0});
  AddPatch("a.mdb", {1, 0, 0, 0});
  AddPatch("b.mdb", {9, 0, 0, 0}, ProjectFolder);
  EXPECT_FALSE(Confirms());
}

TEST_F(ConfirmUpdate, LeavesOutTheNumbersThatAreNotCompared)
{
  AddProductDatabase("QuillRules")
      .Table("KFVersion", {{"MajorNumber", "1"}, {"CommMajorVersion", "1"}});
  AddPatch("a.mdb").Table(
      "KFVersion", {{"MajorNumber", "1"}, {"CommMajorVersion", "9"}, {"CommMinorVersion", "9"}});
  EXPECT_FALSE(Confirms());
}

TEST_F(ConfirmUpdate, IsYesOnlyOnceInAProcess)
{
  AddProductDatabase("QuillRules", {1, 0, 0, 0});
  AddPatch("a.mdb", {2, 0, 0, 0});
  const DatabaseUpdateManager manager;
  EXPECT_TRUE(manager.ConfirmUpdate());
  EXPECT_FALSE(manager.ConfirmUpdate());
  EXPECT_FALSE(Confirms());
}

TEST_F(ConfirmUpdate, ComposesTheQuestionForTheFirstDatabaseThatIsOlder)
{
  AddProductDatabase("QuillRules", {2, 0, 0, 0});
  AddProductDatabase("QuillBase", {1, 0, 0, 0});
  AddProductDatabase("QuillGratings", {1, 0, 0, 0});
  AddPatch("a.mdb", {2, 0, 0, 0});
  EXPECT_TRUE(Confirms());
  // The working area holds what was composed last.
  EXPECT_EQ(Utf8(QulWideScratch), "QuillBase database is not up to date!\nUpdate?");
}

TEST_F(ConfirmUpdate, AsksNobody)
{
  AddProductDatabase("QuillRules", {1, 0, 0, 0});
  AddPatch("a.mdb", {2, 0, 0, 0});
  const DatabaseUpdateManager manager;
  const size_t before = Diary().size();
  EXPECT_TRUE(manager.ConfirmUpdate());
  EXPECT_EQ(Diary().size(), before);
}

TEST_F(ConfirmUpdate, ComposesNothingWhereTheAnswerIsNo)
{
  AddProductDatabase("QuillRules", {2, 0, 0, 0});
  for (const bool hasPatch : {false, true}) {
    if (hasPatch)
      AddPatch("a.mdb", {2, 0, 0, 0});
    const DatabaseUpdateManager manager;
    QulWideScratch[0] = L'?';
    EXPECT_FALSE(manager.ConfirmUpdate());
    EXPECT_EQ(QulWideScratch[0], L'?') << hasPatch;
  }
}
