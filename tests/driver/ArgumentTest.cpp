// Arguments that no call can do anything with: each is refused with its SQLSTATE, and nothing else
// has changed.

#include "tests/driver/ConformanceTest.h"

namespace {

class Argument : public ConformanceTest
{
protected:
  // A call's narrow or wide entry point, whose text arguments are null pointers here.
  template <typename Function>
  Function Entry(const char* name) const
  {
    return calls.Entry<Function>((std::string(name) + (calls.IsWide() ? "W" : "")).c_str());
  }

  std::string EnvironmentState() const
  {
    const auto records = calls.Diagnostics(SQL_HANDLE_ENV, session.env);
    return records.empty() ? "none" : records.front().state;
  }

  void ExpectStatementFails(SQLRETURN result, const std::string& state) const
  {
    EXPECT_EQ(result, SQL_ERROR);
    EXPECT_EQ(session.State(), state);
  }

  void ExpectConnectionFails(SQLRETURN result, const std::string& state) const
  {
    EXPECT_EQ(result, SQL_ERROR);
    EXPECT_EQ(session.ConnectionState(), state);
  }

  SQLRETURN Bind(SQLUSMALLINT number, SQLSMALLINT cType, SQLPOINTER value, SQLLEN* length,
                 SQLSMALLINT direction = SQL_PARAM_INPUT, SQLLEN capacity = 4) const
  {
    return calls.BindParameter(stmt, number, direction, cType, SQL_INTEGER, 0, 0, value, capacity,
                               length);
  }
};

}  // namespace

TEST_P(Argument, StatementTextThatIsMissingOrOfNegativeLength)
{
  SQLWCHAR text[] = {'S', 0};  // either a wide or a narrow text
  for (const char* name : {"SQLPrepare", "SQLExecDirect"}) {
    if (calls.IsWide()) {
      const auto call = Entry<decltype(&::SQLPrepareW)>(name);
      ExpectStatementFails(call(stmt, nullptr, SQL_NTS), "HY009");
      ExpectStatementFails(call(stmt, text, -7), "HY009");
    } else {
      const auto call = Entry<decltype(&::SQLPrepare)>(name);
      ExpectStatementFails(call(stmt, nullptr, SQL_NTS), "HY009");
      ExpectStatementFails(call(stmt, reinterpret_cast<SQLCHAR*>(text), -7), "HY009");
    }
  }
}

TEST_P(Argument, OtherTextsThatAreMissing)
{
  SQLSMALLINT length = 0;
  SQLINTEGER longLength = 0;
  if (calls.IsWide()) {
    ExpectStatementFails(
        calls.Entry<decltype(&::SQLSetCursorNameW)>("SQLSetCursorNameW")(stmt, nullptr, SQL_NTS),
        "HY009");
    ExpectConnectionFails(calls.Entry<decltype(&::SQLNativeSqlW)>("SQLNativeSqlW")(
                              session.dbc, nullptr, SQL_NTS, nullptr, 0, &longLength),
                          "HY009");
    ExpectConnectionFails(
        calls.Entry<decltype(&::SQLDriverConnectW)>("SQLDriverConnectW")(
            session.dbc, nullptr, nullptr, SQL_NTS, nullptr, 0, &length, SQL_DRIVER_NOPROMPT),
        "HY090");
    ExpectConnectionFails(calls.Entry<decltype(&::SQLConnectW)>("SQLConnectW")(
                              session.dbc, nullptr, SQL_NTS, nullptr, 0, nullptr, 0),
                          "HY090");
  } else {
    ExpectStatementFails(
        calls.Entry<decltype(&::SQLSetCursorName)>("SQLSetCursorName")(stmt, nullptr, SQL_NTS),
        "HY009");
    ExpectConnectionFails(calls.Entry<decltype(&::SQLNativeSql)>("SQLNativeSql")(
                              session.dbc, nullptr, SQL_NTS, nullptr, 0, &longLength),
                          "HY009");
    ExpectConnectionFails(
        calls.Entry<decltype(&::SQLDriverConnect)>("SQLDriverConnect")(
            session.dbc, nullptr, nullptr, SQL_NTS, nullptr, 0, &length, SQL_DRIVER_NOPROMPT),
        "HY090");
    ExpectConnectionFails(calls.Entry<decltype(&::SQLConnect)>("SQLConnect")(
                              session.dbc, nullptr, SQL_NTS, nullptr, 0, nullptr, 0),
                          "HY090");
  }
}

TEST_P(Argument, ConnectionStringThatCanNotBeRead)
{
  session.Disconnect();
  ExpectConnectionFails(calls.DriverConnect(session.dbc, "DBQ={never closed"), "08001");
  ExpectConnectionFails(calls.DriverConnect(session.dbc, "no value;DBQ=x"), "08001");
}

TEST_P(Argument, RoomForTheCompletedStringThatIsNegative)
{
  session.Disconnect();
  TextArgument request = calls.Argument(RequestFor(database));
  TextBuffer completed = calls.Buffer(200);
  SQLSMALLINT length = -1;
  const SQLRETURN result = calls.IsWide()
                               ? calls.Entry<decltype(&::SQLDriverConnectW)>("SQLDriverConnectW")(
                                     session.dbc, nullptr, request.Wide(), SQL_NTS,
                                     completed.Wide(), -1, &length, SQL_DRIVER_NOPROMPT)
                               : calls.Entry<decltype(&::SQLDriverConnect)>("SQLDriverConnect")(
                                     session.dbc, nullptr, request.Narrow(), SQL_NTS,
                                     completed.Narrow(), -1, &length, SQL_DRIVER_NOPROMPT);
  EXPECT_EQ(result, SQL_SUCCESS_WITH_INFO);
  EXPECT_EQ(session.ConnectionState(), "01004");
  EXPECT_TRUE(completed.IsUntouched());
  EXPECT_GT(length, 0);
}

TEST_P(Argument, TransactionOfAConnectionThatIsNotOpen)
{
  session.Disconnect();
  EXPECT_EQ(calls.EndTran(SQL_HANDLE_DBC, session.dbc, SQL_COMMIT), SQL_SUCCESS);
}

TEST_P(Argument, ConnectionThatIsInUse)
{
  ExpectConnectionFails(calls.DriverConnect(session.dbc, RequestFor(database)), "08002");
  EXPECT_EQ(session.Select("SELECT 1"), Lines{"1"});
}

TEST_P(Argument, PlaceForAHandleThatIsMissing)
{
  EXPECT_EQ(calls.AllocHandle(SQL_HANDLE_ENV, nullptr, nullptr), SQL_ERROR);
  EXPECT_EQ(calls.AllocHandle(SQL_HANDLE_DBC, session.env, nullptr), SQL_ERROR);
  EXPECT_EQ(EnvironmentState(), "HY009");
  ExpectConnectionFails(calls.AllocHandle(SQL_HANDLE_STMT, session.dbc, nullptr), "HY009");
}

TEST_P(Argument, HandlesOfKindsThatThereAreNot)
{
  SQLHANDLE made = &made;
  ExpectConnectionFails(calls.AllocHandle(SQL_HANDLE_DESC, session.dbc, &made), "HYC00");
  EXPECT_EQ(made, nullptr);
  ExpectConnectionFails(calls.AllocHandle(4711, session.dbc, &made), "HY092");
  EXPECT_EQ(calls.FreeHandle(4711, stmt), SQL_INVALID_HANDLE);
  EXPECT_EQ(calls.EndTran(SQL_HANDLE_STMT, stmt, SQL_COMMIT), SQL_INVALID_HANDLE);
}

TEST_P(Argument, EndOfATransactionThatIsNeither)
{
  ExpectConnectionFails(calls.EndTran(SQL_HANDLE_DBC, session.dbc, 4711), "HY012");
  EXPECT_EQ(calls.EndTran(SQL_HANDLE_ENV, session.env, 4711), SQL_ERROR);
  EXPECT_EQ(EnvironmentState(), "HY012");
}

TEST_P(Argument, OptionOfFreeStmt)
{
  ExpectStatementFails(calls.FreeStmt(stmt, 4711), "HY092");
  EXPECT_EQ(calls.FreeStmt(stmt, SQL_DROP), SQL_SUCCESS);
  session.stmt = nullptr;
  EXPECT_EQ(calls.ExecDirect(stmt, "SELECT 1"), SQL_INVALID_HANDLE);
}

TEST_P(Argument, ParameterThatCanNotBe)
{
  SQLINTEGER value = 0;
  SQLLEN length = 0;
  ExpectStatementFails(Bind(0, SQL_C_LONG, &value, nullptr), "07009");
  ExpectStatementFails(Bind(1, SQL_C_LONG, &value, nullptr, SQL_PARAM_OUTPUT), "HYC00");
  ExpectStatementFails(Bind(1, SQL_ARD_TYPE, &value, nullptr), "HY003");
  ExpectStatementFails(Bind(1, SQL_C_GUID, &value, nullptr), "07006");
  ExpectStatementFails(Bind(1, SQL_C_INTERVAL_DAY, &value, nullptr), "07006");
  ExpectStatementFails(Bind(1, SQL_C_LONG, &value, nullptr, SQL_PARAM_INPUT, -1), "HY090");
  ExpectStatementFails(Bind(1, SQL_C_LONG, nullptr, nullptr), "HY009");
  EXPECT_EQ(Bind(2, SQL_C_LONG, nullptr, &length), SQL_SUCCESS);
  // The first one was never bound; the second has no buffer.
  ExpectStatementFails(session.Run("SELECT ?,?"), "07002");
  EXPECT_EQ(Bind(1, SQL_C_LONG, &value, nullptr), SQL_SUCCESS);
  ExpectStatementFails(session.Run("SELECT ?,?"), "HY009");
  length = SQL_DEFAULT_PARAM;
  ExpectStatementFails(session.Run("SELECT ?,?"), "07S01");
}

TEST_P(Argument, ParameterThatIsDescribed)
{
  SQLSMALLINT type = 0;
  SQLULEN size = 0;
  SQLSMALLINT digits = -1;
  SQLSMALLINT nullable = -1;
  ASSERT_EQ(calls.Prepare(stmt, "SELECT ?"), SQL_SUCCESS);
  EXPECT_EQ(calls.DescribeParam(stmt, 1, &type, &size, &digits, &nullable), SQL_SUCCESS);
  EXPECT_EQ(type, SQL_WVARCHAR);
  EXPECT_EQ(size, 255U);
  EXPECT_EQ(digits, 0);
  EXPECT_EQ(nullable, SQL_NULLABLE_UNKNOWN);
  for (const SQLUSMALLINT number : std::initializer_list<SQLUSMALLINT>{0, 2}) {
    ExpectStatementFails(calls.DescribeParam(stmt, number, &type, &size, &digits, &nullable),
                         "07009");
  }
}

TEST_P(Argument, ColumnThatIsNone)
{
  SQLINTEGER value = 0;
  SQLLEN length = 0;
  MakeRow("SELECT 1");
  ExpectStatementFails(calls.BindCol(stmt, 0, SQL_C_LONG, &value, 4, &length), "HYC00");
  ExpectStatementFails(calls.BindCol(stmt, 2, SQL_C_LONG, &value, 4, &length), "07009");
  ExpectStatementFails(calls.BindCol(stmt, 1, SQL_C_LONG, &value, -1, &length), "HY090");
  ExpectStatementFails(calls.GetData(stmt, 0, SQL_C_LONG, &value, 4, &length), "07009");
  ExpectStatementFails(calls.GetData(stmt, 1, SQL_C_LONG, &value, -1, &length), "HY090");
  ColumnDescription description = {};
  ExpectStatementFails(calls.DescribeCol(stmt, 0, description), "07009");
  ExpectStatementFails(calls.ColAttribute(stmt, 0, SQL_DESC_TYPE, length), "07009");
  ExpectStatementFails(calls.ColAttribute(stmt, 2, SQL_DESC_TYPE, length), "07009");
  ExpectStatementFails(calls.ColAttribute(stmt, 1, 4711, length), "HY091");
}

TEST_P(Argument, ColumnOfAStatementWithoutAResult)
{
  SQLLEN value = -1;
  ColumnDescription description = {};
  ASSERT_EQ(calls.Prepare(stmt, "CREATE TABLE [T] ([A] LONG)"), SQL_SUCCESS);
  ExpectStatementFails(calls.DescribeCol(stmt, 1, description), "07005");
  ExpectStatementFails(calls.ColAttribute(stmt, 1, SQL_DESC_TYPE, value), "07005");
  EXPECT_EQ(calls.ColAttribute(stmt, 1, SQL_COLUMN_COUNT, value), SQL_SUCCESS);
  EXPECT_EQ(value, 0);
}

TEST_P(Argument, StatementWhoseCursorIsOpen)
{
  Make("SELECT 1");
  ExpectStatementFails(calls.Prepare(stmt, "SELECT 2"), "24000");
  ExpectStatementFails(calls.ExecDirect(stmt, "SELECT 2"), "24000");
  ExpectStatementFails(calls.Execute(stmt), "24000");
  ExpectStatementFails(calls.Columns(stmt, "T", std::nullopt), "24000");
  EXPECT_EQ(session.Rest(), Lines{"1"});
}

TEST_P(Argument, StatementThatWasNeverPrepared)
{
  SQLSMALLINT count = -1;
  ExpectStatementFails(calls.Execute(stmt), "HY010");
  EXPECT_EQ(calls.NumParams(stmt, &count), SQL_SUCCESS);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(calls.NumResultCols(stmt, &count), SQL_SUCCESS);
  EXPECT_EQ(count, 0);
}

TEST_P(Argument, TextBehindTheStatement)
{
  ExpectStatementFails(session.Run("SELECT 1; SELECT 2"), "42000");
  EXPECT_EQ(session.Select("SELECT 1 ; -- the end\n;"), Lines{"1"});
}

INSTANTIATE_TEST_SUITE_P(Each, Argument, StraightWays(), WayName);
