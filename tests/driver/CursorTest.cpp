// What attributes and bindings make of the rows of a result.

#include "tests/driver/ConformanceTest.h"

namespace {

class Cursor : public ConformanceTest
{
protected:
  const std::string threeRows = "SELECT 1 UNION ALL SELECT 2 UNION ALL SELECT 3";
};

}  // namespace

TEST_P(Cursor, EndsAtTheMostRowsThatAreWanted)
{
  EXPECT_EQ(calls.SetStatementNumber(stmt, SQL_ATTR_MAX_ROWS, 2), SQL_SUCCESS);
  EXPECT_EQ(session.Select(threeRows), (Lines{"1", "2"}));
  EXPECT_EQ(calls.SetStatementNumber(stmt, SQL_ATTR_MAX_ROWS, 0), SQL_SUCCESS);
  EXPECT_EQ(session.Select(threeRows), (Lines{"1", "2", "3"}));
}

TEST_P(Cursor, RowsMayBePassedWithoutTheirValues)
{
  SQLINTEGER value = 99;
  SQLLEN length = 99;
  EXPECT_EQ(calls.SetStatementNumber(stmt, SQL_ATTR_RETRIEVE_DATA, SQL_RD_OFF), SQL_SUCCESS);
  calls.BindCol(stmt, 1, SQL_C_LONG, &value, sizeof(value), &length);
  MakeRow(threeRows);
  EXPECT_EQ(value, 99);
  EXPECT_EQ(length, 99);
  EXPECT_EQ(session.Field(1), "1");
}

TEST_P(Cursor, AddressesAreMovedByTheOffset)
{
  struct Row
  {
    SQLINTEGER value;
    SQLLEN length;
  };
  Row rows[3] = {};
  SQLULEN offset = 0;
  calls.BindCol(stmt, 1, SQL_C_LONG, &rows[0].value, sizeof(SQLINTEGER), &rows[0].length);
  calls.SetStatementPointer(stmt, SQL_ATTR_ROW_BIND_OFFSET_PTR, &offset);
  Make(threeRows);
  for (; offset < sizeof(rows); offset += sizeof(Row))
    EXPECT_EQ(calls.Fetch(stmt), SQL_SUCCESS);
  calls.SetStatementPointer(stmt, SQL_ATTR_ROW_BIND_OFFSET_PTR, nullptr);
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(rows[i].value, i + 1);
    EXPECT_EQ(rows[i].length, SQLLEN{sizeof(SQLINTEGER)});
  }
}

TEST_P(Cursor, ANullAddressIsMovedNowhere)
{
  SQLINTEGER values[2] = {};
  SQLULEN offset = sizeof(SQLINTEGER);
  calls.BindCol(stmt, 1, SQL_C_LONG, &values[0], sizeof(SQLINTEGER), nullptr);
  calls.SetStatementPointer(stmt, SQL_ATTR_ROW_BIND_OFFSET_PTR, &offset);
  MakeRow(threeRows);
  calls.SetStatementPointer(stmt, SQL_ATTR_ROW_BIND_OFFSET_PTR, nullptr);
  EXPECT_EQ(values[0], 0);
  EXPECT_EQ(values[1], 1);
}

TEST_P(Cursor, StatusTellsWhatBecameOfTheRow)
{
  SQLINTEGER value = 0;
  SQLUSMALLINT status = 99;
  SQLULEN fetched = 99;
  TextBuffer text = calls.Buffer(3);
  SQLLEN length = 0;
  calls.SetStatementPointer(stmt, SQL_ATTR_ROW_STATUS_PTR, &status);
  calls.SetStatementPointer(stmt, SQL_ATTR_ROWS_FETCHED_PTR, &fetched);
  calls.BindCol(stmt, 1, calls.TextType(), text.Data(), text.Bytes(), &length);
  calls.BindCol(stmt, 2, SQL_C_LONG, &value, sizeof(value), nullptr);
  Make("SELECT 'ab', 1 UNION ALL SELECT 'abc', 2 UNION ALL SELECT 'abc', NULL");
  EXPECT_EQ(calls.Fetch(stmt), SQL_SUCCESS);
  EXPECT_EQ(status, SQL_ROW_SUCCESS);
  EXPECT_EQ(calls.Fetch(stmt), SQL_SUCCESS_WITH_INFO);
  EXPECT_EQ(status, SQL_ROW_SUCCESS_WITH_INFO);
  EXPECT_EQ(fetched, 1U);
  EXPECT_EQ(calls.Fetch(stmt), SQL_ERROR);
  EXPECT_EQ(status, SQL_ROW_ERROR);
  EXPECT_EQ(calls.Fetch(stmt), SQL_NO_DATA);
  EXPECT_EQ(status, SQL_ROW_NOROW);
  EXPECT_EQ(fetched, 0U);
}

TEST_P(Cursor, LengthAloneMayBeBound)
{
  SQLLEN length = 99;
  SQLLEN fixed = 99;
  calls.BindCol(stmt, 1, calls.TextType(), nullptr, 0, &length);
  calls.BindCol(stmt, 2, SQL_C_LONG, nullptr, 0, &fixed);
  MakeRow("SELECT 'abcd', 7");
  EXPECT_EQ(length, calls.Argument("abcd").Bytes());
  EXPECT_EQ(fixed, 99);
}

TEST_P(Cursor, FieldMayBeReadAsItIsBound)
{
  SQLSMALLINT bound = 0;
  SQLSMALLINT read = 0;
  SQLLEN length = 0;
  calls.BindCol(stmt, 1, SQL_C_SHORT, &bound, sizeof(bound), nullptr);
  MakeRow("SELECT 7, 8");
  EXPECT_EQ(calls.GetData(stmt, 1, SQL_ARD_TYPE, &read, sizeof(read), &length), SQL_SUCCESS);
  EXPECT_EQ(read, 7);
  EXPECT_EQ(length, SQLLEN{sizeof(read)});
  // A column that is not bound is read as its own type.
  int64_t whole = 0;
  EXPECT_EQ(calls.GetData(stmt, 2, SQL_ARD_TYPE, &whole, sizeof(whole), &length), SQL_SUCCESS);
  EXPECT_EQ(whole, 8);
}

TEST_P(Cursor, LengthOfAFieldMayBeAskedForFirst)
{
  SQLLEN length = 0;
  MakeRow("SELECT 'abcd'");
  EXPECT_EQ(calls.GetData(stmt, 1, calls.TextType(), nullptr, 0, &length), SQL_SUCCESS_WITH_INFO);
  EXPECT_EQ(length, calls.Argument("abcd").Bytes());
  EXPECT_EQ(session.Field(1), "abcd");
}

TEST_P(Cursor, EmptyTextNeedsRoomForItsEnd)
{
  SQLLEN length = 99;
  char nothing = 0x55;
  MakeRow("SELECT ''");
  EXPECT_EQ(calls.GetData(stmt, 1, calls.TextType(), &nothing, 0, &length), SQL_SUCCESS_WITH_INFO);
  EXPECT_EQ(length, 0);
  EXPECT_EQ(nothing, 0x55);
  EXPECT_EQ(session.Field(1), "");
}

TEST_P(Cursor, RowThatCanNotBeComputedIsAnErrorAndTheLast)
{
  // The second row is an overflow of whole numbers.
  Make("WITH [c]([n]) AS (VALUES (1),(-9223372036854775808)) SELECT ABS([n]) FROM [c]");
  EXPECT_EQ(calls.Fetch(stmt), SQL_SUCCESS);
  EXPECT_EQ(calls.Fetch(stmt), SQL_ERROR);
  EXPECT_EQ(session.State(), "42000");
  EXPECT_EQ(calls.Fetch(stmt), SQL_NO_DATA);
}

TEST_P(Cursor, EscapeSequencesAreReplacedUnlessTheyMayNotBe)
{
  EXPECT_EQ(session.Select("SELECT {d '2007-03-09'}"), Lines{"2007-03-09"});
  EXPECT_EQ(session.Select("SELECT 'a_b' LIKE 'a\\_b' {escape '\\'}"), Lines{"1"});
  calls.SetStatementNumber(stmt, SQL_ATTR_NOSCAN, SQL_NOSCAN_ON);
  EXPECT_EQ(session.Select("SELECT {d '2007-03-09'}"), Lines{"statement failed: 42000"});
}

TEST_P(Cursor, ReplaceIsAnInsert)
{
  SQLLEN count = -1;
  Make("CREATE TABLE [T] ([Id] LONG PRIMARY KEY, [A] LONG)");
  Make("REPLACE INTO [T] VALUES (1,1)");
  EXPECT_EQ(calls.RowCount(stmt, &count), SQL_SUCCESS);
  EXPECT_EQ(count, 1);
  Make("REPLACE INTO [T] VALUES (1,2)");
  EXPECT_EQ(session.Select("SELECT * FROM [T]"), Lines{"1|2"});
}

TEST_P(Cursor, VerbBehindWithDecides)
{
  Make("CREATE TABLE [T] ([Id] LONG)");
  const std::string with = "WITH \"x\"([n]) AS (SELECT 1) ";
  EXPECT_EQ(session.Run(with + "UPDATE [T] SET [Id]=1"), SQL_NO_DATA);
  EXPECT_EQ(session.Run(with + "DELETE FROM [T]"), SQL_NO_DATA);
  EXPECT_EQ(session.Run(with + "INSERT INTO [T] SELECT [n] FROM [x]"), SQL_SUCCESS);
  EXPECT_EQ(session.Select(with + "SELECT [n] FROM [x]"), Lines{"1"});
}

TEST_P(Cursor, RollbackEndsTheResultsOfAllStatements)
{
  Make("CREATE TABLE [T] ([A] LONG)");
  calls.SetConnectNumber(session.dbc, SQL_ATTR_AUTOCOMMIT, SQL_AUTOCOMMIT_OFF);
  Make("INSERT INTO [T] VALUES (1)");
  Make(threeRows);
  EXPECT_EQ(calls.EndTran(SQL_HANDLE_ENV, session.env, SQL_ROLLBACK), SQL_SUCCESS);
  EXPECT_EQ(calls.Fetch(stmt), SQL_ERROR);
  EXPECT_EQ(session.State(), "24000");
  EXPECT_EQ(session.Select("SELECT COUNT(*) FROM [T]"), Lines{"0"});
}

TEST_P(Cursor, CommitOfTheEnvironmentIsThatOfItsConnections)
{
  Make("CREATE TABLE [T] ([A] LONG)");
  calls.SetConnectNumber(session.dbc, SQL_ATTR_AUTOCOMMIT, SQL_AUTOCOMMIT_OFF);
  EXPECT_EQ(calls.SetConnectNumber(session.dbc, SQL_ATTR_AUTOCOMMIT, SQL_AUTOCOMMIT_OFF),
            SQL_SUCCESS);
  Make("INSERT INTO [T] VALUES (1)");
  EXPECT_EQ(calls.EndTran(SQL_HANDLE_ENV, session.env, SQL_COMMIT), SQL_SUCCESS);
  EXPECT_EQ(calls.EndTran(SQL_HANDLE_DBC, session.dbc, SQL_ROLLBACK), SQL_SUCCESS);
  EXPECT_EQ(session.Select("SELECT COUNT(*) FROM [T]"), Lines{"1"});
  EXPECT_EQ(calls.EndTran(SQL_HANDLE_DBC, session.dbc, SQL_ROLLBACK), SQL_SUCCESS);
}

TEST_P(Cursor, OpenTransactionKeepsTheConnection)
{
  Make("CREATE TABLE [T] ([A] LONG)");
  calls.SetConnectNumber(session.dbc, SQL_ATTR_AUTOCOMMIT, SQL_AUTOCOMMIT_OFF);
  Make("INSERT INTO [T] VALUES (1)");
  EXPECT_EQ(calls.Disconnect(session.dbc), SQL_ERROR);
  EXPECT_EQ(session.ConnectionState(), "25000");
  EXPECT_EQ(calls.EndTran(SQL_HANDLE_DBC, session.dbc, SQL_ROLLBACK), SQL_SUCCESS);
}

TEST_P(Cursor, AutocommitThatIsOnMayBeSetOn)
{
  EXPECT_EQ(calls.SetConnectNumber(session.dbc, SQL_ATTR_AUTOCOMMIT, SQL_AUTOCOMMIT_ON),
            SQL_SUCCESS);
  EXPECT_EQ(session.Select("SELECT 1"), Lines{"1"});
}

TEST_P(Cursor, TransactionsMayBeBegunAndEndedByStatements)
{
  Make("CREATE TABLE [T] ([A] LONG)");
  session.Disconnect();
  ASSERT_EQ(session.Connect(database), SQL_SUCCESS);
  for (const char* sql : {"BEGIN", "INSERT INTO [T] VALUES (1)", "COMMIT", "BEGIN",
                          "INSERT INTO [T] VALUES (2)", "ROLLBACK"})
    EXPECT_EQ(session.Run(sql), SQL_SUCCESS) << sql << session.State();
  EXPECT_EQ(session.Select("SELECT [A] FROM [T]"), Lines{"1"});
}

TEST_P(Cursor, KeyWithoutATypeIsReadAsText)
{
  Make("CREATE TABLE [T] ([A] PRIMARY KEY)");
  Make("INSERT INTO [T] VALUES ('a')");
  EXPECT_EQ(session.Select("SELECT [A] FROM [T]"), Lines{"a"});
}

TEST_P(Cursor, DeferredRuleRefusesTheCommit)
{
  Make("PRAGMA foreign_keys=ON");
  Make("CREATE TABLE [P] ([Id] LONG PRIMARY KEY)");
  Make("CREATE TABLE [C] ([P] LONG REFERENCES [P]([Id]) DEFERRABLE INITIALLY DEFERRED)");
  calls.SetConnectNumber(session.dbc, SQL_ATTR_AUTOCOMMIT, SQL_AUTOCOMMIT_OFF);
  Make("INSERT INTO [C] VALUES (7)");
  EXPECT_EQ(calls.EndTran(SQL_HANDLE_DBC, session.dbc, SQL_COMMIT), SQL_ERROR);
  EXPECT_EQ(session.ConnectionState(), "23000");
  EXPECT_EQ(calls.EndTran(SQL_HANDLE_ENV, session.env, SQL_COMMIT), SQL_ERROR);
  EXPECT_EQ(calls.SetConnectNumber(session.dbc, SQL_ATTR_AUTOCOMMIT, SQL_AUTOCOMMIT_ON), SQL_ERROR);
  EXPECT_EQ(session.ConnectionState(), "23000");
  EXPECT_EQ(calls.EndTran(SQL_HANDLE_DBC, session.dbc, SQL_ROLLBACK), SQL_SUCCESS);
  EXPECT_EQ(session.Select("SELECT COUNT(*) FROM [C]"), Lines{"0"});
}

INSTANTIATE_TEST_SUITE_P(Each, Cursor, StraightWays(), WayName);
