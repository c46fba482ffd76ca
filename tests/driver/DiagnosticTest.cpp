// What a handle tells of its last call, record by record and field by field.

#include "tests/driver/ConformanceTest.h"

namespace {

class Diagnosis : public ConformanceTest
{
protected:
  std::string Text(SQLSMALLINT number, SQLSMALLINT field, SQLSMALLINT kind = SQL_HANDLE_STMT) const
  {
    TextBuffer text = calls.Buffer(200);
    SQLSMALLINT length = -1;
    const SQLHANDLE handle = kind == SQL_HANDLE_STMT ? stmt : session.dbc;
    EXPECT_EQ(calls.GetDiagText(kind, handle, number, field, text, length), SQL_SUCCESS) << field;
    EXPECT_EQ(length, calls.Argument(text.Text()).Bytes());
    return text.Text();
  }

  template <typename Value>
  Value Number(SQLSMALLINT number, SQLSMALLINT field) const
  {
    Value value = 4711;
    EXPECT_EQ(calls.GetDiagNumber(SQL_HANDLE_STMT, stmt, number, field, &value), SQL_SUCCESS);
    return value;
  }

  // CLASS_ORIGIN|SUBCLASS_ORIGIN of the statement's first record.
  std::string Origins() const
  {
    return Text(1, SQL_DIAG_SQLSTATE) + ": " + Text(1, SQL_DIAG_CLASS_ORIGIN) + "|" +
           Text(1, SQL_DIAG_SUBCLASS_ORIGIN);
  }
};

}  // namespace

TEST_P(Diagnosis, FieldsTellWhatTheRecordTells)
{
  EXPECT_EQ(session.Run("SELECT * FROM [absent]"), SQL_ERROR);
  const Diagnostic record = calls.Diagnostics(SQL_HANDLE_STMT, stmt).front();
  EXPECT_EQ(Text(1, SQL_DIAG_SQLSTATE), "42S02");
  EXPECT_EQ(Text(1, SQL_DIAG_MESSAGE_TEXT), record.message);
  EXPECT_EQ(Number<SQLINTEGER>(1, SQL_DIAG_NATIVE), record.native);
  EXPECT_EQ(Number<SQLINTEGER>(0, SQL_DIAG_NUMBER), 1);
  EXPECT_EQ(Text(1, SQL_DIAG_CONNECTION_NAME), "");
  EXPECT_EQ(Text(1, SQL_DIAG_SERVER_NAME), "");
  EXPECT_EQ(Number<SQLLEN>(1, SQL_DIAG_ROW_NUMBER), SQL_ROW_NUMBER_UNKNOWN);
  EXPECT_EQ(Number<SQLINTEGER>(1, SQL_DIAG_COLUMN_NUMBER), SQL_COLUMN_NUMBER_UNKNOWN);
}

TEST_P(Diagnosis, OriginIsThatOfTheState)
{
  EXPECT_EQ(session.Run("SELECT * FROM [absent]"), SQL_ERROR);
  EXPECT_EQ(Origins(), "42S02: ISO 9075|ODBC 3.0");
  EXPECT_EQ(session.Run("SELEC"), SQL_ERROR);
  EXPECT_EQ(Origins(), "42000: ISO 9075|ISO 9075");
  calls.SetStatementNumber(stmt, SQL_ATTR_QUERY_TIMEOUT, 1);
  EXPECT_EQ(session.Run("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n) "
                        "SELECT COUNT(*) FROM n"),
            SQL_ERROR);
  EXPECT_EQ(Origins(), "HYT00: ISO 9075|ODBC 3.0");
}

TEST_P(Diagnosis, RowCountIsThatOfTheStatement)
{
  Make("CREATE TABLE [T] ([A] LONG)");
  Make("INSERT INTO [T] VALUES (1)");
  Make("INSERT INTO [T] VALUES (2)");
  Make("UPDATE [T] SET [A]=3");
  EXPECT_EQ(Number<SQLLEN>(0, SQL_DIAG_ROW_COUNT), 2);
  EXPECT_EQ(Number<SQLLEN>(0, SQL_DIAG_CURSOR_ROW_COUNT), -1);
  EXPECT_EQ(Number<SQLINTEGER>(0, SQL_DIAG_DYNAMIC_FUNCTION_CODE), SQL_DIAG_UNKNOWN_STATEMENT);
  EXPECT_EQ(Text(0, SQL_DIAG_DYNAMIC_FUNCTION), "");
}

TEST_P(Diagnosis, FieldsOfStatementsAreNoneOfAConnection)
{
  SQLLEN value = 0;
  for (const SQLSMALLINT field : std::initializer_list<SQLSMALLINT>{
           SQL_DIAG_ROW_COUNT, SQL_DIAG_CURSOR_ROW_COUNT, SQL_DIAG_DYNAMIC_FUNCTION_CODE,
           SQL_DIAG_DYNAMIC_FUNCTION}) {
    EXPECT_EQ(calls.GetDiagNumber(SQL_HANDLE_DBC, session.dbc, 0, field, &value), SQL_ERROR);
  }
}

TEST_P(Diagnosis, RecordsAreCountedFromOneAndEnd)
{
  EXPECT_EQ(session.Run("SELEC"), SQL_ERROR);
  TextBuffer state = calls.Buffer(6);
  TextBuffer message = calls.Buffer(100);
  SQLINTEGER native = 0;
  SQLSMALLINT length = 0;
  EXPECT_EQ(calls.GetDiagRec(SQL_HANDLE_STMT, stmt, 0, state, native, message, length), SQL_ERROR);
  for (const SQLSMALLINT field : std::initializer_list<SQLSMALLINT>{SQL_DIAG_NATIVE, 4711}) {
    EXPECT_EQ(calls.GetDiagNumber(SQL_HANDLE_STMT, stmt, 0, field, &native), SQL_ERROR);
    EXPECT_EQ(calls.GetDiagNumber(SQL_HANDLE_STMT, stmt, 2, field, &native), SQL_NO_DATA);
  }
  EXPECT_EQ(calls.GetDiagNumber(SQL_HANDLE_STMT, stmt, 1, 4711, &native), SQL_ERROR);
}

TEST_P(Diagnosis, TextsAreCutToTheirBuffers)
{
  EXPECT_EQ(session.Run("SELEC"), SQL_ERROR);
  TextBuffer state = calls.Buffer(3);
  SQLSMALLINT length = -1;
  EXPECT_EQ(calls.GetDiagText(SQL_HANDLE_STMT, stmt, 1, SQL_DIAG_SQLSTATE, state, length),
            SQL_SUCCESS_WITH_INFO);
  EXPECT_EQ(state.Text(), "42");
  EXPECT_EQ(length, calls.Argument("42000").Bytes());
  EXPECT_TRUE(state.IsKeptInside());
}

TEST_P(Diagnosis, PartsThatAreNotWantedMayBeLeftOut)
{
  EXPECT_EQ(session.Run("SELEC"), SQL_ERROR);
  const std::string message = calls.Diagnostics(SQL_HANDLE_STMT, stmt).front().message;
  SQLSMALLINT length = -1;
  if (calls.IsWide()) {
    const auto get = calls.Entry<decltype(&::SQLGetDiagRecW)>("SQLGetDiagRecW");
    EXPECT_EQ(get(SQL_HANDLE_STMT, stmt, 1, nullptr, nullptr, nullptr, 0, &length), SQL_SUCCESS);
    EXPECT_EQ(get(SQL_HANDLE_STMT, stmt, 1, nullptr, nullptr, nullptr, -1, &length), SQL_ERROR);
  } else {
    const auto get = calls.Entry<decltype(&::SQLGetDiagRec)>("SQLGetDiagRec");
    EXPECT_EQ(get(SQL_HANDLE_STMT, stmt, 1, nullptr, nullptr, nullptr, 0, &length), SQL_SUCCESS);
    EXPECT_EQ(get(SQL_HANDLE_STMT, stmt, 1, nullptr, nullptr, nullptr, -1, &length), SQL_ERROR);
  }
  EXPECT_EQ(length, calls.Argument(message).Units());
}

TEST_P(Diagnosis, NegativeRoomForAFieldIsRefused)
{
  EXPECT_EQ(session.Run("SELEC"), SQL_ERROR);
  TextBuffer state = calls.Buffer(6);
  SQLSMALLINT length = -1;
  const auto get = calls.Entry<decltype(&::SQLGetDiagField)>(calls.IsWide() ? "SQLGetDiagFieldW"
                                                                            : "SQLGetDiagField");
  EXPECT_EQ(get(SQL_HANDLE_STMT, stmt, 1, SQL_DIAG_SQLSTATE, state.Data(), -1, &length), SQL_ERROR);
  EXPECT_TRUE(state.IsUntouched());
}

INSTANTIATE_TEST_SUITE_P(Each, Diagnosis, StraightWays(), WayName);
