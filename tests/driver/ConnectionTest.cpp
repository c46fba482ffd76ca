#include <sys/stat.h>

#include "tests/driver/ConformanceTest.h"

namespace {

const std::string SqliteHeader("SQLite format 3\0", 16);

class Connection : public UnconnectedTest
{
protected:
  void ExpectRefused(const std::string& request)
  {
    const Lines before = folder.Names();
    EXPECT_EQ(session.ConnectWith(request), SQL_ERROR) << request;
    const auto records = calls.Diagnostics(SQL_HANDLE_DBC, session.dbc);
    ASSERT_FALSE(records.empty()) << request;
    EXPECT_EQ(records.front().state.size(), 5U);
    EXPECT_NE(records.front().state, "00000");
    EXPECT_FALSE(records.front().message.empty());
    EXPECT_EQ(folder.Names(), before) << request;
  }
};

}  // namespace

TEST_P(Connection, WithEmptyUserAndPasswordIsPlainSuccess)
{
  EXPECT_EQ(session.ConnectWith("DRIVER={Kestrel ODBC Driver};DBQ=" + database + ";UID=;PWD="),
            SQL_SUCCESS);
  EXPECT_EQ(session.ConnectionState(), "none");
}

TEST_P(Connection, KeywordsMatchWithoutRegardToCase)
{
  EXPECT_EQ(session.ConnectWith("driver={Kestrel ODBC Driver};dBq=" + database + ";uid=;Pwd=x"),
            SQL_SUCCESS);
}

TEST_P(Connection, KeywordsStandInAnyOrderAndTheLastSemicolonIsFree)
{
  EXPECT_EQ(session.ConnectWith("DBQ=" + database + ";PWD=;UID=;DRIVER={Kestrel ODBC Driver};"),
            SQL_SUCCESS);
}

TEST_P(Connection, ValuesMayStandInBraces)
{
  EXPECT_EQ(session.ConnectWith("DRIVER={Kestrel ODBC Driver};DBQ={" + database +
                                "};UID={user};PWD={pass;word}"),
            SQL_SUCCESS);
}

TEST_P(Connection, BracesKeepSemicolonsAndEqualSigns)
{
  const std::string odd = folder.File("a;DBQ=b.mdb");
  WriteFile(odd, "");
  EXPECT_EQ(session.Connect(odd), SQL_SUCCESS);
}

TEST_P(Connection, DoubledClosingBraceInBracesIsOne)
{
  const std::string odd = folder.File("a}b.mdb");
  WriteFile(odd, "");
  EXPECT_EQ(session.Connect(folder.File("a}}b.mdb")), SQL_SUCCESS);
}

TEST_P(Connection, TheFirstOfTwoEqualKeywordsCounts)
{
  EXPECT_EQ(session.ConnectWith(RequestFor(database) + ";DBQ=" + folder.File("absent.mdb")),
            SQL_SUCCESS);
}

TEST_P(Connection, AnUnknownKeywordDoesNoHarm)
{
  EXPECT_TRUE(SQL_SUCCEEDED(session.ConnectWith(RequestFor(database) + ";ExtendedAnsiSQL=1")));
}

TEST_P(Connection, FileNamesBeyondAsciiAreFound)
{
  const std::string named = folder.File("Größe Ω.mdb");
  WriteFile(named, "");
  EXPECT_EQ(session.Connect(named), SQL_SUCCESS) << session.ConnectionState();
}

TEST_P(Connection, WithoutADatabaseIsRefused)
{
  ExpectRefused("DRIVER={Kestrel ODBC Driver};UID=;PWD=");
  ExpectRefused("DRIVER={Kestrel ODBC Driver};DBQ=;UID=;PWD=");
  ExpectRefused("DRIVER={Kestrel ODBC Driver};DBQ={};UID=;PWD=");
}

TEST_P(Connection, ToAMissingFileIsRefusedAndCreatesNothing)
{
  ExpectRefused(RequestFor(folder.File("absent.mdb")));
  ExpectRefused(RequestFor(folder.File("absent/test.mdb")));
}

TEST_P(Connection, ToAFolderIsRefused)
{
  mkdir(folder.File("folder.mdb").c_str(), 0755);
  ExpectRefused(RequestFor(folder.File("folder.mdb")));
}

TEST_P(Connection, ToAFileThatIsNoDatabaseIsRefusedAndLeavesItAlone)
{
  for (const std::string& bytes : {std::string("x"), std::string(5000, 'x'),
                                   SqliteHeader + std::string(5000, 'x'), SqliteHeader}) {
    SCOPED_TRACE("a file of " + std::to_string(bytes.size()) + " bytes");
    WriteFile(database, bytes);
    ExpectRefused(RequestFor(database));
    EXPECT_EQ(FileBytes(database), bytes);
  }
}

TEST_P(Connection, ToADatabaseWithADamagedSchemaIsRefused)
{
  ASSERT_EQ(session.Connect(database), SQL_SUCCESS);
  ASSERT_EQ(session.Run("CREATE TABLE [T] ([A] TEXT(5))"), SQL_SUCCESS);
  session.Disconnect();
  std::string bytes = FileBytes(database);
  bytes.replace(100, 8, std::string(8, '\xFF'));
  WriteFile(database, bytes);
  ExpectRefused(RequestFor(database));
  EXPECT_EQ(FileBytes(database), bytes);
}

TEST_P(Connection, CanBeTriedAgainAfterAFailureAndAfterItsEnd)
{
  ExpectRefused(RequestFor(folder.File("absent.mdb")));
  EXPECT_EQ(session.Connect(database), SQL_SUCCESS);
  EXPECT_EQ(session.Disconnect(), SQL_SUCCESS);
  EXPECT_EQ(session.Connect(database), SQL_SUCCESS);
  EXPECT_EQ(session.Select("SELECT 1"), Lines{"1"});
}

TEST_P(Connection, ToAnEmptyFileIsANewDatabase)
{
  ASSERT_EQ(session.Connect(database), SQL_SUCCESS);
  EXPECT_EQ(FileBytes(database), "");
  EXPECT_EQ(session.Run("CREATE TABLE [T] ([A] LONG)"), SQL_SUCCESS);
  EXPECT_EQ(session.Select("SELECT * FROM [T]"), Lines{});
}

TEST_P(Connection, AnswersWithARequestThatConnectsAgain)
{
  TextBuffer completed = calls.Buffer(1000);
  SQLSMALLINT length = 0;
  ASSERT_EQ(calls.DriverConnect(session.dbc, RequestFor(database), completed, length), SQL_SUCCESS);
  EXPECT_EQ(static_cast<size_t>(length), completed.Text().size());
  EXPECT_NE(completed.Text().find(database), std::string::npos) << completed.Text();
  session.Disconnect();
  EXPECT_EQ(session.ConnectWith(completed.Text()), SQL_SUCCESS) << completed.Text();
}

TEST_P(Connection, AnswersWithACutRequestAndAWarning)
{
  TextBuffer whole = calls.Buffer(1000);
  SQLSMALLINT wholeLength = 0;
  ASSERT_EQ(calls.DriverConnect(session.dbc, RequestFor(database), whole, wholeLength),
            SQL_SUCCESS);
  session.Disconnect();
  TextBuffer cut = calls.Buffer(10);
  SQLSMALLINT length = 0;
  EXPECT_EQ(calls.DriverConnect(session.dbc, RequestFor(database), cut, length),
            SQL_SUCCESS_WITH_INFO);
  EXPECT_EQ(session.ConnectionState(), "01004");
  EXPECT_EQ(cut.Text(), whole.Text().substr(0, 9));
  EXPECT_EQ(length, wholeLength);
  EXPECT_TRUE(cut.IsKeptInside());
}

TEST_P(Connection, TwoOfOneDatabaseSeeEachOthersRows)
{
  ASSERT_EQ(session.Connect(database), SQL_SUCCESS);
  OdbcSession second(calls);
  ASSERT_EQ(second.Connect(database), SQL_SUCCESS);
  ASSERT_EQ(session.Run("CREATE TABLE [T] ([A] LONG)"), SQL_SUCCESS);
  ASSERT_EQ(session.Run("INSERT INTO [T] ([A]) VALUES (7)"), SQL_SUCCESS);
  EXPECT_EQ(second.Select("SELECT [A] FROM [T]"), Lines{"7"});
}

INSTANTIATE_TEST_SUITE_P(Each, Connection, AllWays(), WayName);
