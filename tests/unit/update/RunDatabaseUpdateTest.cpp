// The frame of the update, which lets nothing through. Memory that runs out and files that throw
// are in tests/memory.
#include "database/Trace.h"
#include "tests/doubles/FilesDouble.h"
#include "tests/unit/update/LeftToTheEnd.h"
#include "tests/unit/update/UpdateMachine.h"
#include "update/DatabaseUpdateManager.h"

#include <gtest/gtest.h>

#include <errno.h>

namespace {

int callbackCalls = 0;

void CountCall(const wchar_t* /*text*/)
{
  ++callbackCalls;
}

const char* const CriticalTrace = "\n\nCritical Error!!";

class DatabaseUpdate : public UpdateMachine
{
protected:
  void TearDown() override
  {
    TraceCallback = nullptr;
    TraceContext = nullptr;
    UpdateMachine::TearDown();
  }

  // Runs an update that breaks off, and lets what it had opened be.
  static void RunAndBreakOff()
  {
    const LeftToTheEnd whatWasOpened;
    RunDatabaseUpdate(0, 0);
  }
};

using DatabaseUpdateDeathTest = DatabaseUpdate;

}  // namespace

TEST_F(DatabaseUpdate, WithNothingInstalledReports17FailedConnections)
{
  RunDatabaseUpdate(0, 0);
  EXPECT_EQ(Traces(), Lines(17, ConnectTrace));
  EXPECT_EQ(Odbc().OpenEnvironments(), 0);
  EXPECT_EQ(Odbc().OpenConnections(), 0);
}

TEST_F(DatabaseUpdate, OpensEverythingAndClosesItAgain)
{
  AddProductDatabase("QuillRules");
  AddPatch("a.mdb");
  AddPatch("b.mdb", {}, ProjectFolder);
  RunDatabaseUpdate(0, 0);
  EXPECT_EQ(DiaryOf({"SQLDriverConnectW"}).size(), 19u);
  EXPECT_EQ(DiaryOf({"SQLDisconnect"}).size(), 19u);
  EXPECT_EQ(Odbc().OpenEnvironments(), 0);
  EXPECT_EQ(Files().OpenSearches(), 0);
}

TEST_F(DatabaseUpdate, ItsArgumentsHaveNoEffect)
{
  RunDatabaseUpdate(0, 0);
  const Lines first = Diary();
  ResetPlatform();
  SetDataPath("C:\\Data");
  RunDatabaseUpdate(-1, 12345);
  EXPECT_EQ(Diary(), first);
}

TEST_F(DatabaseUpdate, StartsAfreshEachTime)
{
  AddPatch("a.mdb");
  RunDatabaseUpdate(0, 0);
  AddPatch("b.mdb");
  ClearDiary();
  RunDatabaseUpdate(0, 0);
  EXPECT_EQ(TriedConnections()[1], PatchConnection("b.mdb"));
  EXPECT_EQ(TriedConnections().size(), 19u);
}

TEST_F(DatabaseUpdate, ClearsTheTraceCallbackAndItsContextBeforeAnythingElse)
{
  callbackCalls = 0;
  TraceCallback = CountCall;
  TraceContext = &callbackCalls;
  RunDatabaseUpdate(0, 0);
  EXPECT_EQ(TraceCallback, nullptr);
  EXPECT_EQ(TraceContext, nullptr);
  EXPECT_EQ(callbackCalls, 0);
  EXPECT_EQ(Traces().size(), 17u);
}

TEST_F(DatabaseUpdate, AnythingThrownEndsTheUpdateWithOneTrace)
{
  AddProductDatabase("QuillRules");
  FailOdbcCall("SQLFetch throwing", 1, 7);
  RunAndBreakOff();
  EXPECT_EQ(Traces(), Lines{CriticalTrace});
  EXPECT_EQ(DiaryOf({"OutputDebugStringW"}),
            (Lines{"OutputDebugStringW(\"\n\")", "OutputDebugStringW(\"\nCritical Error!!\")"}));
}

TEST_F(DatabaseUpdate, TheTraceOfAnEndIsTheLastCall)
{
  FailOdbcCall("SQLSetEnvAttr throwing", 3, 7);
  RunAndBreakOff();
  EXPECT_EQ(Diary().back(), "OutputDebugStringW(\"\nCritical Error!!\")");
  EXPECT_EQ(TriedConnections().size(), 2u);
}

TEST_F(DatabaseUpdate, WhatWasOpenedBeforeAnEndStaysConnected)
{
  AddProductDatabase("QuillRules");
  AddPatch("a.mdb");
  AddPatch("b.mdb", {}, ProjectFolder);
  FailOdbcCall("SQLDriverConnectW throwing", 5, 7);
  RunAndBreakOff();
  EXPECT_EQ(DiaryOf({"SQLDisconnect"}), Lines());
  const Lines freed = DiaryOf({"SQLFreeHandle"});
  EXPECT_EQ(freed.size(), 4u + 4u + 3u);
  for (const std::string& line : freed)
    EXPECT_TRUE(line.starts_with("SQLFreeHandle(STMT, ")) << line;
  EXPECT_EQ(Odbc().OpenConnections(), 5);
}

TEST_F(DatabaseUpdate, APatchThatFailsBehindItsConnectionIsTheOnlyOneThatIsClosed)
{
  AddPatch("a.mdb");
  AddPatch("b.mdb");
  // The fourth statement of a patch reads its update table.
  FailOdbcCall("SQLExecDirectW throwing", 8, 7);
  RunAndBreakOff();
  EXPECT_EQ(DiaryOf({"SQLDisconnect"}), Lines{"SQLDisconnect(dbc#2) = 0"});
  EXPECT_EQ(Odbc().OpenConnections(), 1);
}

TEST_F(DatabaseUpdate, AnEndInTheMiddleOfAScanLeavesTheSearchOpen)
{
  AddPatch("a.mdb");
  FailOdbcCall("SQLDriverConnectW throwing", 1, 7);
  RunAndBreakOff();
  EXPECT_EQ(Traces(), Lines{CriticalTrace});
  EXPECT_EQ(DiaryOf({"FindClose", "FindNextFileW"}), Lines());
  EXPECT_EQ(Files().OpenSearches(), 1);
}

TEST_F(DatabaseUpdate, AnEndAtAnyConnectionIsCaught)
{
  for (int n = 1; n <= 19; ++n) {
    ResetPlatform();
    SetDataPath("C:\\Data");
    AddPatch("a.mdb");
    AddPatch("b.mdb", {}, ProjectFolder);
    FailOdbcCall("SQLDriverConnectW throwing", n, 7);
    RunAndBreakOff();
    EXPECT_EQ(Traces().back(), CriticalTrace) << n;
    EXPECT_EQ(TriedConnections().size(), static_cast<size_t>(n));
    EXPECT_EQ(TakeMisuses(), Lines()) << n;
  }
}

TEST_F(DatabaseUpdate, NothingIsCarriedOverFromOneThatBrokeOff)
{
  FailOdbcCall("SQLDriverConnectW throwing", 1, 7);
  RunAndBreakOff();
  ClearDiary();
  RunDatabaseUpdate(0, 0);
  EXPECT_EQ(TriedConnections().size(), 17u);
  EXPECT_EQ(DiaryOf({"SQLDisconnect"}).size(), 17u);
}

TEST_F(DatabaseUpdateDeathTest, ATextBeyondTheLimitEndsTheProcessPastTheGuard)
{
  EXPECT_EXIT(
      {
        FailCall("wcscat_s", 1, ERANGE);
        RunDatabaseUpdate(0, 0);
      },
      testing::ExitedWithCode(3), "^TerminateProcess 0xC0000417\n$");
}
