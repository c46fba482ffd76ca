// Updates that memory doesn't suffice for: because it has run out, or because the configuration
// file asks for a text of negative length. They are here for the sake of the program's own new,
// which refuses what a sanitizer would end the program for.
#include "database/TableSchema.h"
#include "foundation/QulFileAccess.h"
#include "tests/doubles/FilesDouble.h"
#include "tests/memory/AllocationLog.h"
#include "tests/unit/update/LeftToTheEnd.h"
#include "tests/unit/update/UpdateMachine.h"
#include "update/DatabaseConfiguration.h"
#include "update/DatabaseUpdateManager.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <new>

namespace {

const char* const CriticalTrace = "\n\nCritical Error!!";

class UpdateMemory : public UpdateMachine
{
protected:
  static void RunAndBreakOff()
  {
    const LeftToTheEnd whatWasOpened;
    RunDatabaseUpdate(0, 0);
  }

  // A machine with a little of everything.
  static void LayOut()
  {
    ResetPlatform();
    DataSourceTable.Free();
    SetDataPath("C:\\Data");
    PutConfiguration(Entry("QuillRules", "DSN=r"));
    Odbc()
        .Database("DSN=r")
        .Table("KFVersion", {{"MajorNumber", "2"}})
        .Table("KFProjectsVersion", {{"a", "1"}})
        .Table("Info", {{"UpdateTable", "a;b", "LanguageDependentTable"}});
    AddPatch("a.mdb").Query("SELECT * FROM UpdateTable ORDER BY [ID]",
                            {{1, "QuillRules", "A", "B", 0, 0, 0}});
    AddPatch("b.mdb", {}, ProjectFolder);
  }

  // Runs it with a failure that was ordered. True if it came, which is then all that is reported of
  // it; nothing is closed but a patch that fails behind its connection.
  static bool BreaksOff()
  {
    RunAndBreakOff();
    if (!TakeFailure())
      return false;
    const Lines traces = Traces();
    EXPECT_EQ(std::count(traces.begin(), traces.end(), CriticalTrace), 1);
    EXPECT_EQ(Diary().back(), "OutputDebugStringW(\"\nCritical Error!!\")");
    EXPECT_LE(DiaryOf({"SQLDisconnect"}).size(), 1u);
    EXPECT_EQ(Files().OpenStreams(), 0);
    EXPECT_EQ(TakeMisuses(), Lines());
    return true;
  }
};

// An update with a merge, a new table, two delete passes and a project patch, for which memory runs
// out when everything is open.
class UpdateRunMemory : public UpdateMachine
{
protected:
  void SetUp() override
  {
    LayOut();
    const size_t before[] = {ArrayCount(), AllocationCountOf(sizeof(TableSchema)),
                             AllocationCountOf(sizeof(TableColumn))};
    {
      const DatabaseUpdateManager manager;
      arraysOfOpening = static_cast<int>(ArrayCount() - before[0]);
      schemasOfOpening = static_cast<int>(AllocationCountOf(sizeof(TableSchema)) - before[1]);
      columnsOfOpening = static_cast<int>(AllocationCountOf(sizeof(TableColumn)) - before[2]);
      linesOfOpening = Diary().size();
    }
    LayOut();
    RunDatabaseUpdate(0, 0);
    whole = Sent(linesOfOpening);
    ASSERT_EQ(whole.size(), 68u);
  }

  static void LayOut()
  {
    ResetPlatform();
    DataSourceTable.Free();
    updatePromptPending = true;
    SetDataPath("C:\\Data");
    AddWholeUpdate();
  }

  // Runs it with a failure that was ordered. True if it came: it is reported, what had been sent by
  // then is what a whole update sends up to there, and everything is closed. The leak check of the
  // program looks at all of it.
  bool BreaksOff() const
  {
    RunDatabaseUpdate(0, 0);
    if (!TakeFailure())
      return false;
    EXPECT_EQ(Odbc().OpenConnections(), 0);
    EXPECT_EQ(Odbc().OpenEnvironments(), 0);
    EXPECT_EQ(DiaryOf({"SQLDisconnect"}).size(), 19u);
    EXPECT_EQ(TakeMisuses(), Lines());
    Lines sent = Sent(linesOfOpening);
    EXPECT_FALSE(sent.empty());
    EXPECT_EQ(sent.back(), "trace: \nCritical Error!!");
    sent.pop_back();
    EXPECT_TRUE(std::equal(sent.begin(), sent.end(), whole.begin()));
    return true;
  }

  int arraysOfOpening = 0;
  // Allocations of the same sizes: nothing is described before the run.
  int schemasOfOpening = 0;
  int columnsOfOpening = 0;
  size_t linesOfOpening = 0;
  Lines whole;
};

struct MalformedFile
{
  const char* what;
  std::string text;
};

std::string Root(const std::string& elements)
{
  return "<Kestrelforge>" + elements + "</Kestrelforge>";
}

const std::string Complete = "<DataSource Platform=\"x64\" Name=\"QuillRules\" Value=\"v\"/>";

const MalformedFile MalformedFiles[] = {
    {"the root ends before it begins", "</Kestrelforge><Kestrelforge> "},
    {"the same with an entry", "</Kestrelforge>\n<Kestrelforge>" + Complete + "</Kestrelforge>"},
    {"another element in front of the entries", Root("<Other/>" + Complete)},
    {"another element between two entries", Root(Complete + "<Other/>" + Complete)},
    {"an empty element between two entries", Root(Complete + "/>" + Complete)},
    {"an end in front of an entry that has none", Root("/><DataSource ")},
    {"an end inside a value, and an entry behind it",
     Root("<DataSource Platform=\"x64\" Name=\"n\" Value=\"a/>b\"/>" + Complete)},
};

}  // namespace

TEST_F(UpdateMemory, AMalformedFileAsksForMoreThanMemoryGives)
{
  for (const MalformedFile& file : MalformedFiles) {
    PutFile(file.text);
    EXPECT_THROW((void)Load(), std::bad_alloc) << file.what;
    EXPECT_EQ(Entries(), Lines()) << file.what;
    EXPECT_EQ(Files().OpenStreams(), 0) << file.what;
  }
}

TEST_F(UpdateMemory, AMalformedFileEndsTheUpdateAtTheFirstDatabaseThatIsLookedUp)
{
  for (const MalformedFile& file : MalformedFiles) {
    ClearDiary();
    PutFile(file.text);
    RunAndBreakOff();
    EXPECT_EQ(DiaryOf({"SQLAllocHandle"}), Lines()) << file.what;
    EXPECT_EQ(Traces().back(), CriticalTrace) << file.what;
  }
  EXPECT_EQ(Traces(), Lines(std::size(MalformedFiles), CriticalTrace));
}

TEST_F(UpdateMemory, AMalformedFileLeavesThePatchesConnected)
{
  PutFile(MalformedFiles[0].text);
  AddPatch("a.mdb");
  AddPatch("b.mdb", {}, ProjectFolder);
  RunAndBreakOff();
  EXPECT_EQ(Odbc().OpenConnections(), 2);
  EXPECT_EQ(DiaryOf({"SQLDisconnect"}), Lines());
}

TEST_F(UpdateMemory, AnUpdateThatBreaksOffFreesItsArraysAndNothingElse)
{
  // 16 pointers to the product's databases, which take two steps of the array.
  FollowArraysOf(16 * sizeof(void*));
  FailOdbcCall("SQLDriverConnectW throwing", 17, 7);
  RunAndBreakOff();
  EXPECT_EQ(Traces().back(), CriticalTrace);
  EXPECT_EQ(FollowedArrays(), 1u);
  EXPECT_EQ(ArraysLeft(), 0u);
  EXPECT_EQ(Odbc().OpenConnections(), 17);
}

TEST_F(UpdateMemory, WhatMemoryHeldBeforeIsNoPartOfAMark)
{
  PutFile("\xFF");
  QulFileAccess access(L"C:\\Data\\Configuration\\DatabaseConfiguration.xml", L"r", 1);
  QulString text;
  const LeftToTheEnd buffersOfTheFile;
  FillArraysWith(0xFE);
  EXPECT_EQ(access.ReadAll(text, 1), 1u);
  LeaveArraysUnfilled();
  EXPECT_STREQ(text.Text(), L"\xFF");
}

TEST_F(UpdateMemory, AnyArrayThatCanNotBeAllocatedEndsTheOpening)
{
  LayOut();
  const size_t before = ArrayCount();
  size_t arraysOfOpening = 0;
  {
    const LeftToTheEnd buffersOfTheFile;
    const DatabaseUpdateManager manager;
    arraysOfOpening = ArrayCount() - before;
  }
  EXPECT_GT(arraysOfOpening, 200u);
  for (size_t n = 1; n <= arraysOfOpening; ++n) {
    LayOut();
    FailArrayAllocation(static_cast<int>(n));
    EXPECT_TRUE(BreaksOff()) << n;
  }
}

TEST_F(UpdateMemory, AnyDatabaseThatCanNotBeAllocatedEndsTheUpdate)
{
  for (const size_t bytes : {sizeof(QulDatabase), sizeof(QulPatchDatabase)}) {
    int n = 0;
    do {
      LayOut();
      FailAllocationOf(bytes, ++n);
    } while (BreaksOff());
    EXPECT_GT(n, 2) << bytes << " bytes";
  }
}

TEST_F(UpdateMemory, AManagerThatCanNotBeAllocatedEndsTheUpdateBeforeAnythingIsOpened)
{
  LayOut();
  FailAllocationOf(sizeof(DatabaseUpdateManager), 1);
  EXPECT_TRUE(BreaksOff());
  EXPECT_EQ(DiaryOf({"FindFirstFileW", "SQLAllocHandle"}), Lines());
}

TEST_F(UpdateRunMemory, AnyArrayThatCanNotBeAllocatedEndsTheRun)
{
  int n = arraysOfOpening;
  do {
    LayOut();
    FailArrayAllocation(++n);
  } while (BreaksOff());
  // The last one found nothing left to fail.
  EXPECT_GT(n - arraysOfOpening, 200);
  EXPECT_EQ(Sent(linesOfOpening), whole);
}

TEST_F(UpdateRunMemory, AnyTableDescriptionThatCanNotBeAllocatedEndsTheRun)
{
  int n = schemasOfOpening;
  do {
    LayOut();
    FailAllocationOf(sizeof(TableSchema), ++n);
  } while (BreaksOff());
  // Six steps with a source and a target each.
  EXPECT_EQ(n - schemasOfOpening, 12 + 1);
}

TEST_F(UpdateRunMemory, AnyColumnThatCanNotBeAllocatedEndsTheRun)
{
  int n = columnsOfOpening;
  do {
    LayOut();
    FailAllocationOf(sizeof(TableColumn), ++n);
  } while (BreaksOff());
  EXPECT_GE(n - columnsOfOpening, 26 + 1);
}
