#include <atomic>
#include <thread>

#include <gtest/gtest.h>

#include "tests/driver/OdbcSession.h"
#include "tests/driver/TemporaryFolder.h"

namespace {

const int ThreadCount = 4;

class Threads : public testing::TestWithParam<bool>
{
protected:
  Threads() : calls(GetParam() ? ManagerCalls(true) : DriverCalls(true))
  {
    WriteFile(database, "");
    OdbcSession session(calls);
    EXPECT_EQ(session.Connect(database), SQL_SUCCESS);
    EXPECT_EQ(session.Run("CREATE TABLE [T] ([Id] LONG PRIMARY KEY, [Name] TEXT(20))"),
              SQL_SUCCESS);
  }

  // Runs the work in several threads at once, each with its number, and waits for all.
  template <typename Work>
  static void InThreads(Work work)
  {
    std::vector<std::thread> threads;
    for (int number = 0; number < ThreadCount; ++number)
      threads.emplace_back(work, number);
    for (std::thread& thread : threads)
      thread.join();
  }

  int Count()
  {
    OdbcSession session(calls);
    EXPECT_EQ(session.Connect(database), SQL_SUCCESS);
    return std::stoi(session.Select("SELECT COUNT(*) FROM [T]").front());
  }

  static std::string InsertOf(int thread, int row)
  {
    return "INSERT INTO [T] VALUES (" + std::to_string(1000 * thread + row) + ",'é')";
  }

  const OdbcCalls& calls;
  TemporaryFolder folder;
  std::string database = folder.File("test.mdb");
};

}  // namespace

TEST_P(Threads, WithTheirOwnConnectionsWriteAllTheirRows)
{
  std::atomic<int> failures = 0;
  InThreads([&](int number) {
    OdbcSession session(calls);
    failures += session.Connect(database) != SQL_SUCCESS;
    calls.SetStatementNumber(session.stmt, SQL_ATTR_QUERY_TIMEOUT, 30);
    for (int row = 0; row < 25; ++row) {
      failures += session.Run(InsertOf(number, row)) != SQL_SUCCESS;
      failures += session.Select("SELECT [Name] FROM [T] WHERE [Id]=" +
                                 std::to_string(1000 * number + row)) != Lines{"é"};
    }
  });
  EXPECT_EQ(failures, 0);
  EXPECT_EQ(Count(), ThreadCount * 25);
  EXPECT_EQ(folder.Names(), Lines{"test.mdb"});
}

TEST_P(Threads, WithTheirOwnDatabasesDoNotMeet)
{
  std::atomic<int> failures = 0;
  InThreads([&](int number) {
    const std::string own = folder.File(std::to_string(number) + ".mdb");
    WriteFile(own, "");
    OdbcSession session(calls);
    failures += session.Connect(own) != SQL_SUCCESS;
    failures += session.Run("CREATE TABLE [U] ([A] TEXT(9) PRIMARY KEY)") != SQL_SUCCESS;
    for (int row = 0; row < 25; ++row)
      failures += session.Run("INSERT INTO [U] VALUES ('" + std::to_string(row) + "')") != 0;
    failures += session.Select("SELECT COUNT(*) FROM [U]") != Lines{"25"};
  });
  EXPECT_EQ(failures, 0);
}

TEST_P(Threads, WithOneConnectionUseTheirOwnStatements)
{
  OdbcSession session(calls);
  ASSERT_EQ(session.Connect(database), SQL_SUCCESS);
  std::atomic<int> failures = 0;
  InThreads([&](int number) {
    for (int row = 0; row < 50; ++row) {
      SQLHSTMT stmt = nullptr;
      failures += calls.AllocHandle(SQL_HANDLE_STMT, session.dbc, &stmt) != SQL_SUCCESS;
      failures += calls.ExecDirect(stmt, InsertOf(number, row)) != SQL_SUCCESS;
      failures += calls.ExecDirect(stmt, "SELECT * FROM [T]") != SQL_SUCCESS;
      failures += calls.Fetch(stmt) != SQL_SUCCESS;
      calls.FreeHandle(SQL_HANDLE_STMT, stmt);
    }
  });
  EXPECT_EQ(failures, 0);
  session.Disconnect();
  EXPECT_EQ(Count(), ThreadCount * 50);
}

TEST_P(Threads, DiagnosticsStayWithTheirStatement)
{
  OdbcSession session(calls);
  ASSERT_EQ(session.Connect(database), SQL_SUCCESS);
  std::atomic<int> failures = 0;
  InThreads([&](int number) {
    const std::string absent = "Absent" + std::to_string(number);
    SQLHSTMT stmt = nullptr;
    calls.AllocHandle(SQL_HANDLE_STMT, session.dbc, &stmt);
    for (int round = 0; round < 50; ++round) {
      failures += calls.ExecDirect(stmt, "SELECT * FROM [" + absent + "]") != SQL_ERROR;
      const auto records = calls.Diagnostics(SQL_HANDLE_STMT, stmt);
      failures += records.empty() || records[0].message.find(absent) == std::string::npos;
    }
    calls.FreeHandle(SQL_HANDLE_STMT, stmt);
  });
  EXPECT_EQ(failures, 0);
}

TEST_P(Threads, RowCountsStayWithTheirStatement)
{
  OdbcSession session(calls);
  ASSERT_EQ(session.Connect(database), SQL_SUCCESS);
  for (int row = 0; row < 10; ++row)
    session.Run(InsertOf(0, row));
  std::atomic<int> failures = 0;
  InThreads([&](int number) {
    SQLHSTMT stmt = nullptr;
    calls.AllocHandle(SQL_HANDLE_STMT, session.dbc, &stmt);
    for (int round = 0; round < 50; ++round) {
      const SQLRETURN result =
          calls.ExecDirect(stmt, "UPDATE [T] SET [Name]='x' WHERE [Id]<" + std::to_string(number));
      SQLLEN count = -1;
      calls.RowCount(stmt, &count);
      failures += count != number || result != (number == 0 ? SQL_NO_DATA : SQL_SUCCESS);
    }
    calls.FreeHandle(SQL_HANDLE_STMT, stmt);
  });
  EXPECT_EQ(failures, 0);
}

TEST_P(Threads, ConnectAndDisconnectAllTheTime)
{
  std::atomic<int> failures = 0;
  InThreads([&](int number) {
    OdbcSession session(calls);
    for (int round = 0; round < 15; ++round) {
      failures += session.Connect(database) != SQL_SUCCESS;
      calls.SetStatementNumber(session.stmt, SQL_ATTR_QUERY_TIMEOUT, 30);
      failures += round % 5 == 0 && session.Run(InsertOf(number, round)) != SQL_SUCCESS;
      failures += session.Run("SELECT * FROM [T]") != SQL_SUCCESS;
      failures += session.Disconnect() != SQL_SUCCESS;
    }
  });
  EXPECT_EQ(failures, 0);
  EXPECT_EQ(Count(), ThreadCount * 3);
  EXPECT_EQ(folder.Names(), Lines{"test.mdb"});
}

TEST_P(Threads, CancelEndsTheStatementOfAnotherThread)
{
  OdbcSession session(calls);
  ASSERT_EQ(session.Connect(database), SQL_SUCCESS);
  const std::string endless =
      "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n) SELECT COUNT(*) FROM n";
  std::atomic<bool> ended = false;
  // Once as a rule. A cancellation that comes before the statement has started is lost, and the
  // manager can't take one while the statement ends.
  std::thread canceller([&] {
    for (int wait = 0; !ended; ++wait) {
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
      if (wait % 40 == 2 && !ended)
        calls.Cancel(session.stmt);
    }
  });
  const SQLRETURN executed = calls.ExecDirect(session.stmt, endless);
  const SQLRETURN fetched =
      SQL_SUCCEEDED(executed) ? calls.Fetch(session.stmt) : SQLRETURN{SQL_ERROR};
  const std::string state = session.State();
  ended = true;
  canceller.join();
  EXPECT_EQ(fetched, SQL_ERROR);
  EXPECT_EQ(state, "HY008");
  EXPECT_EQ(session.Select("SELECT 1"), Lines{"1"});
}

INSTANTIATE_TEST_SUITE_P(Each, Threads, testing::Bool(),
                         [](const testing::TestParamInfo<bool>& way) {
                           return way.param ? "ThroughManager" : "Straight";
                         });
