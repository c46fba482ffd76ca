// That the tests read the driver manager's trace rightly.

#include "sandbox/common/OdbcTrace.h"

#include <gtest/gtest.h>

namespace {

std::string Head(const std::string& function)
{
  return "[ODBC][77][1795266177.926920][" + function + ".c][298]\n";
}

std::string Entry(const std::string& function, const std::string& values)
{
  return Head(function) + "\t\tEntry:\n" + values;
}

std::string Exit(const std::string& function, const std::string& result,
                 const std::string& values = "")
{
  return Head(function) + "\t\tExit:[" + result + "]\n" + values;
}

std::string Connect(const std::string& handle, const std::string& file)
{
  return Entry("SQLDriverConnectW", "\t\t\tConnection = " + handle +
                                        "\n\t\t\tStr In = [DRIVER={D};PWD=;DBQ=" + file +
                                        "][length = 30 (SQL_NTS)]\n");
}

}  // namespace

TEST(OdbcTrace, TellsConnectionsThatWereMadeFromThoseThatWereNot)
{
  const OdbcTraffic traffic =
      ParseOdbcTrace(Connect("0x1", "C:\\a.mdb") + Exit("SQLDriverConnectW", "SQL_ERROR") +
                     Connect("0x2", "C:\\b.mdb") + Exit("SQLDriverConnectW", "SQL_SUCCESS") +
                     Connect("0x3", "C:\\c.mdb"));
  ASSERT_EQ(traffic.connections.size(), 3u);
  EXPECT_EQ(traffic.connections[0].file, "C:\\a.mdb");
  EXPECT_FALSE(traffic.connections[0].connected);
  EXPECT_TRUE(traffic.connections[1].connected);
  EXPECT_FALSE(traffic.connections[2].connected);
}

TEST(OdbcTrace, TakesARemarkOnTheWayForNoConnection)
{
  const std::string remark =
      "[ODBC][77][1795266962.686670][SQLDriverConnectW.c][658]Error: IM002\n";
  EXPECT_EQ(ParseOdbcTrace(Connect("0x1", "") + remark).connections.size(), 1u);
}

TEST(OdbcTrace, GivesEachStatementToItsConnection)
{
  const std::string alloc =
      Entry("SQLAllocHandle", "\t\t\tHandle Type = 3\n\t\t\tInput Handle = 0x1\n") +
      Exit("SQLAllocHandle", "SQL_SUCCESS", "\t\t\tOutput Handle = 0x9\n");
  const std::string execute =
      Entry("SQLExecDirectW",
            "\t\t\tStatement = 0x9\n\t\t\tSQL = [SELECT * FROM Info][length = 18 (SQL_NTS)]\n");
  const OdbcTraffic traffic = ParseOdbcTrace(
      Connect("0x1", "a") + Exit("SQLDriverConnectW", "SQL_SUCCESS") + Connect("0x2", "b") +
      Exit("SQLDriverConnectW", "SQL_SUCCESS") + alloc + execute);
  ASSERT_EQ(traffic.connections.size(), 2u);
  EXPECT_EQ(traffic.connections[0].statements, std::vector<std::string>{"SELECT * FROM Info"});
  EXPECT_TRUE(traffic.connections[1].statements.empty());
}

TEST(OdbcTrace, CountsOnlyConnectionsThatWereMadeAsClosed)
{
  const std::string close1 = Entry("SQLDisconnect", "\t\t\tConnection = 0x1\n");
  const std::string close2 = Entry("SQLDisconnect", "\t\t\tConnection = 0x2\n");
  const OdbcTraffic traffic = ParseOdbcTrace(
      Connect("0x1", "a") + Exit("SQLDriverConnectW", "SQL_SUCCESS_WITH_INFO") +
      Connect("0x2", "b") + Exit("SQLDriverConnectW", "SQL_ERROR") + close2 + close1);
  EXPECT_EQ(traffic.closed, std::vector<std::string>{"a"});
}

TEST(OdbcTrace, TellsWhatBecameOfEachStatement)
{
  const std::string alloc =
      Entry("SQLAllocHandle", "\t\t\tHandle Type = 3\n\t\t\tInput Handle = 0x1\n") +
      Exit("SQLAllocHandle", "SQL_SUCCESS", "\t\t\tOutput Handle = 0x9\n");
  const auto execute = [](const std::string& text) {
    return Entry("SQLExecDirectW",
                 "\t\t\tStatement = 0x9\n\t\t\tSQL = [" + text + "][length = 6 (SQL_NTS)]\n");
  };
  const OdbcTraffic traffic = ParseOdbcTrace(
      Connect("0x1", "a") + Exit("SQLDriverConnectW", "SQL_SUCCESS") + alloc + execute("UPDATE") +
      Exit("SQLExecDirectW", "SQL_NO_DATA") + execute("INSERT") +
      Exit("SQLExecDirectW", "SQL_ERROR", "\t\tDIAG [23000] [Driver] text\n") + execute("DELETE"));
  const std::vector<OdbcOutcome>& outcomes = traffic.connections.at(0).outcomes;
  ASSERT_EQ(outcomes.size(), 3u);
  EXPECT_EQ(outcomes[0].result, "SQL_NO_DATA");
  EXPECT_EQ(outcomes[0].reason, "");
  EXPECT_EQ(outcomes[1].result, "SQL_ERROR");
  EXPECT_EQ(outcomes[1].reason, "[23000] [Driver] text");
  EXPECT_EQ(outcomes[2].result, "");
}
