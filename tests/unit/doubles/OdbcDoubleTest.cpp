// What the contract tests can't show of the ODBC double: the diary, the ordered failures, the
// misuses, and how a test describes databases.
#include "tests/doubles/OdbcDouble.h"
#include "tests/doubles/PlatformTest.h"
#include "tests/doubles/Text.h"

#include <string.h>

namespace {

using Lines = std::vector<std::string>;

const wchar_t Poison = static_cast<wchar_t>(0xBDBD);

}  // namespace

// One database that is described and connected.
class OdbcDoubleTest : public PlatformTest
{
protected:
  OdbcDoubleTest() : database(Odbc().Database("DBQ=a.mdb"))
  {
    (void)SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment);
    (void)SQLSetEnvAttr(environment, SQL_ATTR_ODBC_VERSION,
                        reinterpret_cast<SQLPOINTER>(uintptr_t{SQL_OV_ODBC3}), SQL_IS_INTEGER);
    (void)SQLAllocHandle(SQL_HANDLE_DBC, environment, &connection);
    EXPECT_EQ(SQL_SUCCESS, Connect("DBQ=a.mdb"));
    (void)SQLAllocHandle(SQL_HANDLE_STMT, connection, &statement);
    ClearDiary();
  }

  SQLRETURN Connect(const char* connectionString)
  {
    WideText text(connectionString);
    return SQLDriverConnectW(connection, nullptr, text.data(), SQL_NTS, completed, 64, &length,
                             SQL_DRIVER_NOPROMPT);
  }

  SQLRETURN Execute(const char* sql)
  {
    WideText text(sql);
    return SQLExecDirectW(statement, text.data(), SQL_NTS);
  }

  SQLRETURN Columns(const char* table)
  {
    WideText text(table);
    return SQLColumnsW(statement, nullptr, 0, nullptr, 0, text.data(), SQL_NTS, nullptr, 0);
  }

  SQLRETURN Tables()
  {
    WideText type("TABLE");
    return SQLTablesW(statement, nullptr, 0, nullptr, 0, nullptr, 0, type.data(), 5);
  }

  void Unbind(SQLUSMALLINT column)
  {
    (void)SQLBindCol(statement, column, SQL_C_WCHAR, nullptr, 0, nullptr);
  }

  // The value of a column in each row that can be fetched, `-` for NULL.
  Lines Values(SQLUSMALLINT column)
  {
    wchar_t text[64];
    SQLLEN bytes = 0;
    (void)SQLBindCol(statement, column, SQL_C_WCHAR, text, sizeof(text), &bytes);
    Lines values;
    while (SQL_SUCCEEDED(SQLFetch(statement)))
      values.push_back(bytes == SQL_NULL_DATA ? "-" : Utf8(text));
    (void)SQLCloseCursor(statement);
    Unbind(column);
    return values;
  }

  // Fetches the only value of the only row.
  template <typename Value>
  Value Fetched(const OdbcCell& cell, SQLSMALLINT type)
  {
    Value value;
    memset(&value, 0xBD, sizeof(value));
    SQLLEN bytes = 0;
    database.Query("Q", {{cell}});
    EXPECT_EQ(SQL_SUCCESS, Execute("Q"));
    // Too small on purpose: values of fixed size don't ask for it.
    EXPECT_EQ(SQL_SUCCESS, SQLBindCol(statement, 1, type, &value, 0, &bytes));
    EXPECT_EQ(SQL_SUCCESS, SQLFetch(statement));
    EXPECT_EQ(static_cast<SQLLEN>(sizeof(value)), bytes);
    (void)SQLCloseCursor(statement);
    Unbind(1);
    return value;
  }

  OdbcDatabase& database;
  SQLHENV environment = SQL_NULL_HENV;
  SQLHDBC connection = SQL_NULL_HDBC;
  SQLHSTMT statement = SQL_NULL_HSTMT;
  wchar_t completed[64] = {};
  SQLSMALLINT length = 0;
};

TEST_F(OdbcDoubleTest, TheDiaryTellsAConnectionFromFirstToLast)
{
  ResetPlatform();
  (void)Odbc().Database("DBQ=a.mdb");
  SQLHDBC second = SQL_NULL_HDBC;
  (void)SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment);
  (void)SQLSetEnvAttr(environment, SQL_ATTR_ODBC_VERSION,
                      reinterpret_cast<SQLPOINTER>(uintptr_t{SQL_OV_ODBC3}), SQL_IS_INTEGER);
  (void)SQLAllocHandle(SQL_HANDLE_DBC, environment, &connection);
  (void)SQLAllocHandle(SQL_HANDLE_DBC, environment, &second);
  (void)SQLSetConnectAttrW(connection, SQL_ATTR_LOGIN_TIMEOUT,
                           reinterpret_cast<SQLPOINTER>(uintptr_t{5}), 0);
  (void)Connect("DBQ=none.mdb");
  (void)Connect("DBQ=a.mdb");
  (void)SQLDisconnect(connection);
  (void)SQLFreeHandle(SQL_HANDLE_DBC, connection);
  (void)SQLFreeHandle(SQL_HANDLE_DBC, second);
  (void)SQLFreeHandle(SQL_HANDLE_ENV, environment);
  EXPECT_EQ(Diary(),
            Lines({"SQLAllocHandle(ENV, null) = 0 env#1", "SQLSetEnvAttr(env#1, 200, 3, -6) = 0",
                   "SQLAllocHandle(DBC, env#1) = 0 dbc#1", "SQLAllocHandle(DBC, env#1) = 0 dbc#2",
                   "SQLSetConnectAttrW(dbc#1, 103, 5, 0) = 0",
                   "SQLDriverConnectW(dbc#1, null, \"DBQ=none.mdb\", -3, 64, length, 0) = -1",
                   "SQLDriverConnectW(dbc#1, null, \"DBQ=a.mdb\", -3, 64, length, 0) = 0",
                   "SQLDisconnect(dbc#1) = 0", "SQLFreeHandle(DBC, dbc#1) = 0",
                   "SQLFreeHandle(DBC, dbc#2) = 0", "SQLFreeHandle(ENV, env#1) = 0"}));
}

TEST_F(OdbcDoubleTest, TheDiaryTellsStatements)
{
  database.Table("T", {{"a"}});
  (void)Execute("SELECT * FROM T");
  (void)SQLFetch(statement);
  (void)SQLFetch(statement);
  (void)SQLCloseCursor(statement);
  (void)Columns("T");
  (void)SQLCloseCursor(statement);
  (void)Tables();
  (void)SQLFreeHandle(SQL_HANDLE_STMT, statement);
  EXPECT_EQ(Diary(),
            Lines({"SQLExecDirectW(stmt#1, \"SELECT * FROM T\", -3) = 0", "SQLFetch(stmt#1) = 0",
                   "SQLFetch(stmt#1) = 100", "SQLCloseCursor(stmt#1) = 0",
                   "SQLColumnsW(stmt#1, null 0, null 0, \"T\" -3, null 0) = 0",
                   "SQLCloseCursor(stmt#1) = 0",
                   "SQLTablesW(stmt#1, null 0, null 0, null 0, \"TABLE\" 5) = 0",
                   "SQLFreeHandle(STMT, stmt#1) = 0"}));
}

TEST_F(OdbcDoubleTest, TheDiaryTellsWhichBindingsShareALengthWord)
{
  wchar_t text[8];
  SQLLEN first = 0;
  SQLLEN second = 0;
  (void)SQLBindCol(statement, 1, SQL_C_WCHAR, text, 16, &first);
  (void)SQLBindCol(statement, 2, SQL_C_LONG, text, 4, &second);
  (void)SQLBindCol(statement, 3, SQL_C_WCHAR, text, 16, &first);
  (void)SQLBindCol(statement, 4, 0, text, 16, nullptr);
  (void)SQLBindCol(statement, 1, SQL_C_WCHAR, nullptr, 0, nullptr);
  EXPECT_EQ(
      Diary(),
      Lines({"SQLBindCol(stmt#1, 1, -8, 16, ind#1) = 0", "SQLBindCol(stmt#1, 2, 4, 4, ind#2) = 0",
             "SQLBindCol(stmt#1, 3, -8, 16, ind#1) = 0", "SQLBindCol(stmt#1, 4, 0, 16, null) = -1",
             "SQLBindCol(stmt#1, 1, -8, null, 0, null) = 0"}));
}

TEST_F(OdbcDoubleTest, AFailureReturnsTheCodeAndDoesNothing)
{
  database.Table("T", {{"a"}, {"b"}});
  (void)Execute("SELECT * FROM T");
  FailOdbcCall("SQLFetch", 1, SQL_ERROR);
  FailOdbcCall("SQLFetch", 2, SQL_NEED_DATA);
  EXPECT_EQ(SQL_ERROR, SQLFetch(statement));
  EXPECT_EQ(SQL_NEED_DATA, SQLFetch(statement));
  EXPECT_EQ(Values(1), Lines({"a", "b"}));
}

TEST_F(OdbcDoubleTest, AFailedAllocationLeavesTheHandleAlone)
{
  SQLHSTMT untouched = connection;
  FailOdbcCall("SQLAllocHandle", 1, SQL_ERROR);
  EXPECT_EQ(SQL_ERROR, SQLAllocHandle(SQL_HANDLE_STMT, connection, &untouched));
  EXPECT_EQ(connection, untouched);
  EXPECT_EQ(1, Odbc().OpenStatements());
}

TEST_F(OdbcDoubleTest, AFailureAfterwardsReplacesTheResultAlone)
{
  SQLHSTMT second = SQL_NULL_HSTMT;
  FailOdbcCall("SQLAllocHandle afterwards", 1, SQL_SUCCESS_WITH_INFO);
  EXPECT_EQ(SQL_SUCCESS_WITH_INFO, SQLAllocHandle(SQL_HANDLE_STMT, connection, &second));
  EXPECT_NE(nullptr, second);
  EXPECT_EQ(Diary(), Lines({"SQLAllocHandle(STMT, dbc#1) = 1 stmt#2"}));
}

TEST_F(OdbcDoubleTest, ACallCanThrow)
{
  FailOdbcCall("SQLFreeHandle throwing", 1, 7);
  try {
    (void)SQLFreeHandle(SQL_HANDLE_STMT, statement);
    ADD_FAILURE() << "nothing was thrown";
  } catch (int thrown) {
    EXPECT_EQ(7, thrown);
  }
  EXPECT_EQ(Diary(), Lines({"SQLFreeHandle(STMT, stmt#1) throws"}));
  EXPECT_EQ(1, Odbc().OpenStatements());
}

TEST_F(OdbcDoubleTest, AFetchCanGiveAnyCodeAndTheNextGoesOn)
{
  database.Table("T", {{"a"}, FetchGives(SQL_ERROR), FetchGives(99, {"b"}), {"c"}});
  (void)Execute("SELECT * FROM T");
  wchar_t text[8];
  memset(text, 0xBD, sizeof(text));
  SQLLEN bytes = 0;
  (void)SQLBindCol(statement, 1, SQL_C_WCHAR, text, sizeof(text), &bytes);
  EXPECT_EQ(SQL_SUCCESS, SQLFetch(statement));
  EXPECT_EQ(SQL_ERROR, SQLFetch(statement));
  EXPECT_STREQ(L"a", text);
  EXPECT_EQ(99, SQLFetch(statement));
  EXPECT_STREQ(L"b", text);
  EXPECT_EQ(SQL_SUCCESS, SQLFetch(statement));
  EXPECT_STREQ(L"c", text);
  EXPECT_EQ(Poison, text[2]);
  EXPECT_EQ(SQL_NO_DATA, SQLFetch(statement));
}

TEST_F(OdbcDoubleTest, BuffersBeyondTheCellsOfARowStayAsTheyAre)
{
  database.Table("T", {{"a"}});
  (void)Execute("SELECT * FROM T");
  SQLLEN bytes = -77;
  wchar_t text = Poison;
  (void)SQLBindCol(statement, 2, SQL_C_WCHAR, &text, sizeof(text), &bytes);
  EXPECT_EQ(SQL_SUCCESS, SQLFetch(statement));
  EXPECT_EQ(Poison, text);
  EXPECT_EQ(-77, bytes);
}

TEST_F(OdbcDoubleTest, ANullWithoutALengthWordIsAnError)
{
  database.Table("T", {{nullptr}});
  (void)Execute("SELECT * FROM T");
  wchar_t text = Poison;
  (void)SQLBindCol(statement, 1, SQL_C_WCHAR, &text, sizeof(text), nullptr);
  EXPECT_EQ(SQL_ERROR, SQLFetch(statement));
  EXPECT_EQ(Poison, text);
}

TEST_F(OdbcDoubleTest, ANumberThatItsTypeDoesNotHaveIsAnError)
{
  database.Table("T", {{"32768"}, {"-32768.9"}, {"1e300"}, {"nan"}});
  (void)Execute("SELECT * FROM T");
  SQLSMALLINT number = -77;
  SQLLEN bytes = 0;
  (void)SQLBindCol(statement, 1, SQL_C_SSHORT, &number, sizeof(number), &bytes);
  EXPECT_EQ(SQL_ERROR, SQLFetch(statement));
  EXPECT_EQ(-77, number);
  EXPECT_EQ(SQL_SUCCESS, SQLFetch(statement));
  EXPECT_EQ(-32768, number);
  EXPECT_EQ(SQL_ERROR, SQLFetch(statement));
  EXPECT_EQ(SQL_ERROR, SQLFetch(statement));
}

TEST_F(OdbcDoubleTest, AValueIsConvertedToTheTypeThatIsBound)
{
  EXPECT_EQ(-5, Fetched<SQLINTEGER>("-5", SQL_C_LONG));
  EXPECT_EQ(-5, Fetched<SQLSMALLINT>(-5, SQL_C_SSHORT));
  EXPECT_EQ(2.5, Fetched<double>("2.5", SQL_C_DOUBLE));
  EXPECT_EQ(1, Fetched<unsigned char>(-1, SQL_C_BIT));
  EXPECT_EQ(0, Fetched<unsigned char>("0", SQL_C_BIT));
  const auto time = Fetched<SQL_TIMESTAMP_STRUCT>("2010-03-31 12:30:15", SQL_C_TIMESTAMP);
  EXPECT_EQ(2010, time.year);
  EXPECT_EQ(3, time.month);
  EXPECT_EQ(31, time.day);
  EXPECT_EQ(12, time.hour);
  EXPECT_EQ(30, time.minute);
  EXPECT_EQ(15, time.second);
}

TEST_F(OdbcDoubleTest, NumbersHaveTexts)
{
  database.Table("T", {{7}, {0.5}, {nullptr}});
  (void)Execute("SELECT * FROM T");
  EXPECT_EQ(Values(1), Lines({"7", "0.5", "-"}));
}

TEST_F(OdbcDoubleTest, AStatementGivesWhatItIsDescribedToGive)
{
  database.Statement("UPDATE T", SQL_NO_DATA).Query("Q", {{"a"}}, SQL_SUCCESS_WITH_INFO);
  EXPECT_EQ(SQL_NO_DATA, Execute("UPDATE T"));
  EXPECT_EQ(SQL_SUCCESS_WITH_INFO, Execute("Q"));
  EXPECT_EQ(Values(1), Lines({"a"}));
  EXPECT_EQ(SQL_ERROR, Execute("q"));
  database.OtherStatements(SQL_SUCCESS);
  EXPECT_EQ(SQL_SUCCESS, Execute("q"));
  EXPECT_EQ(SQL_ERROR, SQLFetch(statement));
}

TEST_F(OdbcDoubleTest, ColumnsHaveTheValuesOfAnHonestDriver)
{
  database.Columns("T", {{"Id", SQL_INTEGER, 10, 0}, {"Name", SQL_WVARCHAR, 50}});
  const struct
  {
    SQLUSMALLINT position;
    Lines values;
  } rows[] = {{1, {"-", "-"}},          {3, {"T", "T"}},   {4, {"Id", "Name"}}, {5, {"4", "-9"}},
              {6, {"INTEGER", "TEXT"}}, {7, {"10", "50"}}, {8, {"4", "100"}},   {10, {"10", "-"}},
              {11, {"0", "1"}},         {14, {"4", "-9"}}, {16, {"-", "100"}},  {17, {"1", "2"}},
              {18, {"NO", "YES"}}};
  for (const auto& row : rows) {
    (void)Columns("T");
    EXPECT_EQ(Values(row.position), row.values) << row.position;
  }
}

TEST_F(OdbcDoubleTest, AnyValueOfAColumnCanBeSet)
{
  database.Columns("T", {OdbcColumn("Id", SQL_INTEGER, 10).Set(7, nullptr).Set(3, "")});
  (void)Columns("T");
  EXPECT_EQ(Values(7), Lines({"-"}));
  (void)Columns("T");
  EXPECT_EQ(Values(3), Lines({""}));
}

TEST_F(OdbcDoubleTest, TheCatalogueGivesTheCodesThatItIsToldToGive)
{
  database.ColumnsGive(SQL_ERROR).Tables({"A"}, SQL_SUCCESS_WITH_INFO);
  EXPECT_EQ(SQL_ERROR, Columns("T"));
  EXPECT_EQ(SQL_SUCCESS_WITH_INFO, Tables());
  EXPECT_EQ(Values(3), Lines({"A"}));
  database.TableRows({{nullptr, nullptr, "B"}, FetchGives(2)});
  EXPECT_EQ(SQL_SUCCESS, Tables());
  EXPECT_EQ(SQL_SUCCESS, SQLFetch(statement));
  EXPECT_EQ(2, SQLFetch(statement));
  EXPECT_EQ(SQL_NO_DATA, SQLFetch(statement));
}

TEST_F(OdbcDoubleTest, AConnectionGivesTheCodeThatItIsToldToGive)
{
  (void)SQLDisconnect(connection);
  Odbc().Database("DBQ=info.mdb").ConnectGives(SQL_SUCCESS_WITH_INFO);
  Odbc().Database("DBQ=locked.mdb").ConnectGives(SQL_NEED_DATA);
  EXPECT_EQ(SQL_NEED_DATA, Connect("DBQ=locked.mdb"));
  EXPECT_EQ(SQL_SUCCESS_WITH_INFO, Connect("DBQ=info.mdb"));
  EXPECT_EQ(SQL_SUCCESS, SQLDisconnect(connection));
}

TEST_F(OdbcDoubleTest, TheCompletedConnectionStringIsHandedBack)
{
  EXPECT_STREQ(L"DBQ=a.mdb", completed);
  EXPECT_EQ(9, length);
}

TEST_F(OdbcDoubleTest, HandlesThatAreLeftCanBeCounted)
{
  EXPECT_EQ(1, Odbc().OpenEnvironments());
  EXPECT_EQ(1, Odbc().OpenConnections());
  EXPECT_EQ(1, Odbc().OpenStatements());
  (void)SQLDisconnect(connection);
  EXPECT_EQ(0, Odbc().OpenStatements());
  EXPECT_EQ(1, Odbc().OpenConnections());
}

TEST_F(OdbcDoubleTest, AFreedHandleIsAMisuseAndIsNamedSo)
{
  (void)SQLFreeHandle(SQL_HANDLE_STMT, statement);
  ClearDiary();
  EXPECT_EQ(SQL_INVALID_HANDLE, SQLFreeHandle(SQL_HANDLE_STMT, statement));
  EXPECT_EQ(SQL_INVALID_HANDLE, SQLFetch(statement));
  EXPECT_EQ(Diary(), Lines({"SQLFreeHandle(STMT, stmt#?) = -2", "SQLFetch(stmt#?) = -2"}));
  EXPECT_EQ(TakeMisuses(), Lines({"SQLFreeHandle was given a STMT handle that is not allocated.",
                                  "SQLFetch was given a STMT handle that is not allocated."}));
}

TEST_F(OdbcDoubleTest, AStatementThatWentWithItsConnectionIsAMisuse)
{
  (void)SQLDisconnect(connection);
  EXPECT_EQ(SQL_INVALID_HANDLE, Execute("SELECT 1"));
  EXPECT_EQ(1u, TakeMisuses().size());
}

TEST_F(OdbcDoubleTest, AHandleOfAnotherKindIsAMisuse)
{
  EXPECT_EQ(SQL_INVALID_HANDLE, SQLFreeHandle(SQL_HANDLE_STMT, connection));
  EXPECT_EQ(SQL_INVALID_HANDLE, SQLDisconnect(statement));
  EXPECT_EQ(2u, TakeMisuses().size());
}

TEST_F(OdbcDoubleTest, FreeingWhatIsInUseIsAMisuseAndAnError)
{
  EXPECT_EQ(SQL_ERROR, SQLFreeHandle(SQL_HANDLE_ENV, environment));
  EXPECT_EQ(SQL_ERROR, SQLFreeHandle(SQL_HANDLE_DBC, connection));
  EXPECT_EQ(TakeMisuses(),
            Lines({"SQLFreeHandle was given an environment that still has connections.",
                   "SQLFreeHandle was given a connection that is still connected."}));
}

TEST_F(OdbcDoubleTest, AStatementOfAConnectionThatIsNotConnectedIsAMisuse)
{
  (void)SQLDisconnect(connection);
  EXPECT_EQ(SQL_ERROR, SQLAllocHandle(SQL_HANDLE_STMT, connection, &statement));
  EXPECT_EQ(1u, TakeMisuses().size());
}

TEST_F(OdbcDoubleTest, AResetForgetsDatabasesAndHandles)
{
  ResetPlatform();
  EXPECT_EQ(0, Odbc().OpenEnvironments());
  SQLHENV fresh = SQL_NULL_HENV;
  (void)SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &fresh);
  EXPECT_EQ(Diary(), Lines({"SQLAllocHandle(ENV, null) = 0 env#1"}));
}
