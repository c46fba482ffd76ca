#include <atomic>
#include <thread>

#include <gtest/gtest.h>

#include "tests/driver/OdbcSession.h"
#include "tests/driver/TemporaryFolder.h"

TEST(Cancel, OfAnIdleStatementLeavesTheOneAtWorkAlone)
{
  const TemporaryFolder folder;
  WriteFile(folder.File("test.mdb"), "");
  OdbcSession session(DriverCalls(true));
  ASSERT_EQ(session.Connect(folder.File("test.mdb")), SQL_SUCCESS);
  SQLHSTMT idle = nullptr;
  ASSERT_EQ(session.calls.AllocHandle(SQL_HANDLE_STMT, session.dbc, &idle), SQL_SUCCESS);
  std::atomic<bool> ended = false;
  std::thread canceller([&] {
    while (!ended) {
      EXPECT_EQ(session.calls.Cancel(idle), SQL_SUCCESS);
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
  });
  EXPECT_EQ(session.Select("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE "
                           "i<300000) SELECT COUNT(*) FROM n"),
            Lines{"300000"});
  ended = true;
  canceller.join();
}
